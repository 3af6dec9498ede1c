// Chunk reader. Control byte: bit 0 preset, bit 1 from a file, bit 2 repeat the record bytes until
// all programs that the header promises are there, bit 3 write back, bits 4..7 current program
// / 25.

#include "patch/chunkBytes.h"
#include "patch/legacyLayout.h"
#include "tests/fuzz/chunkHarness.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace tolm::fuzz {

namespace {

constexpr std::uint32_t kMostPrograms = 400;
constexpr std::uint32_t kFewPrograms = 4;
constexpr std::uint32_t kDose = 128;

// The same answer for the same input, so that findings repeat; true for one of `n`.
bool isOneOf(std::uint32_t n, Input input)
{
    std::uint32_t hash = 2166136261u; // FNV-1a
    for (std::uint8_t byte : input)
        hash = (hash ^ byte) * 16777619u;
    return (hash >> 8) % n == 0;
}

std::size_t repeatedBytes(Input chunk, bool isPreset, bool dosed)
{
    const bool legacy = isPreset && readLittle32(&chunk[0]) == kLegacyValueCount;
    const std::uint32_t most = dosed ? kMostPrograms : legacy ? 0 : kFewPrograms;
    const std::size_t count = std::min(readLittle32(&chunk[4]), most);
    return kChunkHeaderBytes + count * (legacy ? kLegacyRecordBytes : kRecordBytes);
}

// A few bytes stand for a whole chunk, which would be far too long to mutate well.
std::vector<std::uint8_t> repeated(Input chunk, std::size_t byteSize)
{
    std::vector<std::uint8_t> bytes(chunk.begin(), chunk.end());
    bytes.resize(std::max(byteSize, kChunkHeaderBytes));
    for (std::size_t done = chunk.size(); done < bytes.size();) { // doubles what is there
        const std::size_t more = std::min(done - kChunkHeaderBytes, bytes.size() - done);
        std::memcpy(&bytes[done], &bytes[kChunkHeaderBytes], more);
        done += more;
    }
    return bytes;
}

} // namespace

void chunkTarget(Input input)
{
    if (input.empty())
        return;
    const unsigned control = input[0];
    ChunkInput chunk;
    chunk.bytes = input.subspan(1);
    chunk.isPreset = (control & 1) != 0;
    chunk.fromFile = (control & 2) != 0;
    chunk.writeBack = (control & 8) != 0 && isOneOf(kDose, input);
    chunk.program = static_cast<int>(control >> 4) * 25;
    std::vector<std::uint8_t> whole;
    if (control & 4 && chunk.bytes.size() > kChunkHeaderBytes) {
        whole = repeated(chunk.bytes,
                         repeatedBytes(chunk.bytes, chunk.isPreset, isOneOf(kDose, input)));
        chunk.bytes = whole;
    }
    feedChunk(chunk);
}

} // namespace tolm::fuzz
