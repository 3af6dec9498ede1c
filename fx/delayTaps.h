#pragma once
// The delay's rings are read in chunks, before the chunk's own frames are written: what a tap reads
// has then left the ring long ago, and the frames of a chunk do not wait for each other.

#include "engine/constants.h"
#include "fx/DelayModulation.h"

#include <array>
#include <bit>
#include <cstdint>

namespace tolm {

inline constexpr std::uint32_t kDelayRingFrames = 262144;
inline constexpr std::uint32_t kDelayRingMask = kDelayRingFrames - 1;
inline constexpr int kDelayChunk = 64;
using DelayChunk = std::array<float, kDelayChunk>;

// Integer and fractional delay of both taps.
struct TapTime {
    std::uint32_t frames = 0; // modulo 2^32
    float fraction = 0.0f;
};
// Adding 1.5 * 2^42 makes a double count in 1/1024, which decides about the integer part; adding
// 1.5 * 2^52 makes it count in ones, and leaves them in its low bits. Both without the library's
// floor(), so that several frames go side by side.
inline TapTime splitDelay(double delayFrames)
{
    constexpr double kCountSteps = 6597069766656.0;
    constexpr double kCountOnes = 6755399441055744.0;
    const double stepped = (delayFrames + kCountSteps) - kCountSteps;
    const double nearest = (stepped + kCountOnes) - kCountOnes;
    const double whole = nearest - (nearest > stepped ? 1.0 : 0.0);
    return {static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(whole + kCountOnes)),
            static_cast<float>(delayFrames - whole)};
}

// The LFO's value between two entries of its table.
inline float sweepAt(const float* table, std::uint32_t phase)
{
    const std::uint32_t i = phase >> kTableShift;
    const float f = static_cast<float>(static_cast<std::int32_t>((phase >> 5) & 0xFFFF)) / 65536.0f;
    return table[i] * (1.0f - f) + table[(i + 1) & kTableMask] * f;
}

inline float readTap(const float* ring, std::uint32_t base, const TapTime& time)
{
    const float newer = ring[(base - time.frames) & kDelayRingMask];
    const float older = ring[(base - time.frames - 1) & kDelayRingMask];
    return newer * (1.0f - time.fraction) + older * time.fraction;
}

// Every frame with its own time.
struct SweptTimes {
    std::array<std::uint32_t, kDelayChunk> whole;
    DelayChunk fraction;

    TapTime at(int frame) const
    {
        const auto n = static_cast<std::size_t>(frame);
        return {whole[n], fraction[n]};
    }
    // Whether all taps, whose base is `ahead` frames before the write position, stay clear of
    // `frames` frames that are being written.
    bool stayClear(int frames, std::uint32_t ahead) const
    {
        int touching = 0;
        for (int i = 0; i < frames; ++i) {
            const auto n = static_cast<std::size_t>(i);
            const auto behind = static_cast<std::int32_t>((whole[n] - ahead) & kDelayRingMask);
            touching += behind < frames ? 1 : 0;
        }
        return touching == 0;
    }
    void read(const float* ring, std::uint32_t base, int first, int frames, DelayChunk& out) const
    {
        for (int i = 0; i < frames; ++i)
            out[static_cast<std::size_t>(i)] =
                readTap(ring, base + static_cast<std::uint32_t>(i), at(first + i));
    }
};

// One time for all frames.
struct StillTime {
    TapTime time;

    bool stayClear(int frames, std::uint32_t ahead) const
    {
        return ((time.frames - ahead) & kDelayRingMask) >= static_cast<std::uint32_t>(frames);
    }
    void read(const float* ring, std::uint32_t base, int, int frames, DelayChunk& out) const
    {
        const std::uint32_t oldest = (base - time.frames - 1) & kDelayRingMask;
        if (oldest + static_cast<std::uint32_t>(frames) >= kDelayRingFrames) {
            for (int i = 0; i < frames; ++i)
                out[static_cast<std::size_t>(i)] =
                    readTap(ring, base + static_cast<std::uint32_t>(i), time);
            return;
        }
        const float* from = ring + oldest;
        const float newerShare = 1.0f - time.fraction;
        for (int i = 0; i < frames; ++i)
            out[static_cast<std::size_t>(i)] = from[i + 1] * newerShare + from[i] * time.fraction;
    }
};

// All-pass that smears a repeat. The cells are this effect's; the length follows the rate.
struct DelayDiffuser {
    static constexpr int kCells = 8192; // room for 768 kHz
    std::array<float, kCells> cells{};
    int length = 1;
    int index = 0;

    // In place. No cell comes twice before the index wraps.
    void run(int frames, float* __restrict samples)
    {
        while (frames > 0) {
            const int count = frames < length - index ? frames : length - index;
            float* __restrict cell = &cells[static_cast<std::size_t>(index)];
            for (int i = 0; i < count; ++i) {
                const float old = cell[i];
                cell[i] = samples[i] - 0.2f * old;
                samples[i] = -old - 0.2f * cell[i];
            }
            index = index + count >= length ? 0 : index + count;
            samples += count;
            frames -= count;
        }
    }
};

} // namespace tolm
