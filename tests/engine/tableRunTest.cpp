// Reading a slice at once gives what reading frame by frame gives, to the bit.

#include "engine/tableRun.h"
#include "engine/tables.h"

#include <gtest/gtest.h>

#include <random>

namespace tolm {
namespace {

template <int bits, class Reader>
void expectSameValues(const Reader& reader, const TableRun& run)
{
    IntBuffer fast;
    IntBuffer defined;
    readRun<bits>(reader, run, fast);
    readFrames<bits>(reader, run, defined);
    for (std::size_t i = 0; i < static_cast<std::size_t>(run.frames); ++i)
        ASSERT_EQ(fast[i], defined[i]) << "frame " << i << " of " << run.frames;
}

TEST(TableRun, yieldsTheValuesOfSingleReads)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> sample(-32768, 32767);
    Wave a;
    Wave b;
    for (std::size_t i = 0; i < kTableSize; ++i) {
        a[i] = static_cast<std::int16_t>(sample(random));
        b[i] = static_cast<std::int16_t>(sample(random));
    }
    // The largest step that there is, across the guard.
    a[kTableSize - 1] = -32768;
    a[0] = 32767;
    a[kTableSize] = a[0];
    b[kTableSize] = b[0];
    for (int frames = 0; frames <= kMaxSliceFrames; ++frames) {
        const auto word = [&random] { return static_cast<std::uint32_t>(random()); };
        const TableRun run{word(), word() >> (random() % 24), word(), frames};
        expectSameValues<10>(SingleTable{a.data()}, run);
        expectSameValues<8>(SingleTable{a.data()}, run);
        const auto blend = static_cast<std::int32_t>(random() % 1024);
        expectSameValues<10>(BlendedTables{a.data(), b.data(), blend}, run);
        expectSameValues<8>(BlendedTables{b.data(), a.data(), blend}, run);
    }
    expectSameValues<10>(SingleTable{a.data()}, {0xFFFF0000u, 0x101u, 0, kMaxSliceFrames});
}

} // namespace
} // namespace tolm
