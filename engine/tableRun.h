#pragma once
// Table reads of a whole slice at a constant increment. All phases are known beforehand, so four
// frames are read side by side where the machine has SSE2; the values are those of
// SingleTable::between and BlendedTables::between, frame by frame.

#include "engine/tableReader.h"

#include <array>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tolm {

using IntBuffer = std::array<std::int32_t, kMaxSliceFrames>;

// Frame i reads at phase + i * increment + offset, with the fraction of the phase without offset.
struct TableRun {
    std::uint32_t phase;
    std::uint32_t increment;
    std::uint32_t offset;
    int frames; // 0..kMaxSliceFrames

    std::uint32_t at(int frame) const
    {
        return phase + increment * static_cast<std::uint32_t>(frame);
    }
};

// The definition: one frame after another.
template <int bits, class Reader>
void readFrames(const Reader& reader, const TableRun& run, IntBuffer& out)
{
    for (int i = 0; i < run.frames; ++i) {
        const std::uint32_t phase = run.at(i);
        out[static_cast<std::size_t>(i)] = reader.template between<bits>(
            tableIndex(phase + run.offset), tableFraction<bits>(phase));
    }
}

#if defined(__SSE2__)

// value / 2^bits toward zero.
template <int bits>
__m128i divideTowardZero(__m128i value)
{
    const __m128i sign = _mm_srai_epi32(value, 31);
    return _mm_srai_epi32(_mm_add_epi32(value, _mm_srli_epi32(sign, 32 - bits)), bits);
}

// Two 16-bit weights in one lane, for _mm_madd_epi16.
inline __m128i weights(__m128i low, __m128i high)
{
    return _mm_or_si128(_mm_and_si128(low, _mm_set1_epi32(0xFFFF)), _mm_slli_epi32(high, 16));
}

// Entry and next entry of four indices, low and high half of each lane.
inline __m128i gatherPairs(const std::int16_t* table, const std::uint32_t* index)
{
    const auto pair = [table](std::uint32_t i) {
        std::int32_t both;
        std::memcpy(&both, table + i, sizeof both);
        return both;
    };
    const __m128i low =
        _mm_unpacklo_epi32(_mm_cvtsi32_si128(pair(index[0])), _mm_cvtsi32_si128(pair(index[1])));
    const __m128i high =
        _mm_unpacklo_epi32(_mm_cvtsi32_si128(pair(index[2])), _mm_cvtsi32_si128(pair(index[3])));
    return _mm_unpacklo_epi64(low, high);
}

// a + (b - a) * fraction / 2^bits
template <int bits>
__m128i interpolatePairs(__m128i pairs, __m128i fractionWeights)
{
    const __m128i first = _mm_srai_epi32(_mm_slli_epi32(pairs, 16), 16);
    return _mm_add_epi32(first, divideTowardZero<bits>(_mm_madd_epi16(pairs, fractionWeights)));
}

// Calls read(index, weights) for four frames at a time; what it returns goes to `out`, which is
// written up to the next multiple of four.
template <int bits, class Read>
void forFourFrames(const TableRun& run, IntBuffer& out, Read read)
{
    const std::uint32_t d = run.increment;
    __m128i phase = _mm_add_epi32(
        _mm_set1_epi32(static_cast<int>(run.phase)),
        _mm_set_epi32(static_cast<int>(3 * d), static_cast<int>(2 * d), static_cast<int>(d), 0));
    const __m128i step = _mm_set1_epi32(static_cast<int>(4 * d));
    const __m128i offset = _mm_set1_epi32(static_cast<int>(run.offset));
    for (int i = 0; i < run.frames; i += 4) {
        alignas(16) std::uint32_t index[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(index),
                        _mm_srli_epi32(_mm_add_epi32(phase, offset), kTableShift));
        const __m128i fraction = _mm_and_si128(_mm_srli_epi32(phase, kTableShift - bits),
                                               _mm_set1_epi32((1 << bits) - 1));
        const __m128i w = weights(_mm_sub_epi32(_mm_setzero_si128(), fraction), fraction);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(&out[static_cast<std::size_t>(i)]),
                         read(index, w));
        phase = _mm_add_epi32(phase, step);
    }
}

template <int bits>
void readRun(const SingleTable& reader, const TableRun& run, IntBuffer& out)
{
    forFourFrames<bits>(run, out, [&reader](const std::uint32_t* index, __m128i w) {
        return interpolatePairs<bits>(gatherPairs(reader.table, index), w);
    });
}

template <int bits>
void readRun(const BlendedTables& reader, const TableRun& run, IntBuffer& out)
{
    const __m128i share =
        weights(_mm_set1_epi32(1024 - reader.blend), _mm_set1_epi32(reader.blend));
    forFourFrames<bits>(run, out, [&](const std::uint32_t* index, __m128i w) {
        const __m128i a = interpolatePairs<bits>(gatherPairs(reader.table, index), w);
        const __m128i b = interpolatePairs<bits>(gatherPairs(reader.partner, index), w);
        return divideTowardZero<10>(_mm_madd_epi16(weights(a, b), share));
    });
}

#else

template <int bits, class Reader>
void readRun(const Reader& reader, const TableRun& run, IntBuffer& out)
{
    readFrames<bits>(reader, run, out);
}

#endif

} // namespace tolm
