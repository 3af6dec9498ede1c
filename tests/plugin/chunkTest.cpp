// The plug-in's state through the host's chunk calls, with a playing engine behind it.

#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace tolm::test {
namespace {

std::vector<std::uint8_t> savedChunk(SynthRig& rig, bool single = false)
{
    void* data = nullptr;
    const std::int32_t size = rig.synth->getChunk(&data, single);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

std::int32_t load(SynthRig& rig, const std::vector<std::uint8_t>& chunk, bool single = false)
{
    return rig.synth->setChunk(chunk.data(), static_cast<std::int32_t>(chunk.size()), single);
}

std::int32_t field(const std::vector<std::uint8_t>& chunk, std::size_t offset)
{
    std::int32_t value;
    std::memcpy(&value, chunk.data() + offset, sizeof value);
    return value;
}

TEST(Chunk, aProjectComesBackByteForByteAfterManyChanges)
{
    SynthRig rig;
    rig.synth->setProgram(130);
    rig.synth->setParameter(kPolyphony, 1.0f);
    rig.record().bendUpRange = 12;
    const std::vector<std::uint8_t> saved = savedChunk(rig);
    ASSERT_EQ(saved.size(), 235560u);
    EXPECT_EQ(saved, savedChunk(rig, true));
    EXPECT_EQ(field(saved, 8), 130);
    EXPECT_EQ(field(saved, 12), 72);
    EXPECT_EQ(field(saved, 16), 12);
    EXPECT_EQ(field(saved, 28), 1);

    std::mt19937 random(7);
    std::uniform_real_distribution<float> value(0.0f, 1.0f);
    for (int i = 0; i < 10000; ++i) {
        if (i % 500 == 0)
            rig.synth->setProgram(static_cast<int>(random() % 384));
        rig.synth->setParameter(static_cast<int>(random() % 329), value(random));
    }
    EXPECT_EQ(load(rig, saved), 235560);
    EXPECT_EQ(rig.synth->getProgram(), 130);
    EXPECT_EQ(savedChunk(rig), saved);
}

TEST(Chunk, anEarlyChunkHoldsTheEnginesOwnVoiceCount)
{
    SynthRig rig;
    EXPECT_EQ(field(savedChunk(rig), 12), 12);
}

TEST(Chunk, rejectedChunksChangeNothingButTheBendRanges)
{
    SynthRig rig;
    std::vector<std::uint8_t> chunk = savedChunk(rig);
    const std::vector<std::uint8_t> before = chunk;
    chunk[16] = 7;
    chunk[24] = 1; // a version that nobody can read
    EXPECT_EQ(load(rig, chunk), 235560);
    EXPECT_EQ(rig.record().bendUpRange, 7);
    ASSERT_EQ(rig.shownMessages.size(), 1u);
    EXPECT_EQ(rig.shownMessages[0], "Info: Very Old patches are rejected.");

    chunk = before;
    chunk.resize(1000); // cut short
    EXPECT_EQ(load(rig, chunk), 235560);
    chunk.resize(39);
    EXPECT_EQ(load(rig, chunk), 235560);
    EXPECT_EQ(rig.synth->setChunk(nullptr, 0, false), 235560);
    EXPECT_EQ(savedChunk(rig), before);
}

TEST(Chunk, aHostThatStoppedInsideABlockDoesNotHangTheLoad)
{
    SynthRig rig;
    std::vector<std::uint8_t> chunk = savedChunk(rig);
    rig.synth->setParameter(kFilterCutoff, 0.123f);
    const GuardHold stuck = GuardHold::attempt(rig.core().guard());
    EXPECT_EQ(load(rig, chunk), 235560);
    EXPECT_EQ(rig.synth->getParameter(kFilterCutoff), 0.123f);
}

} // namespace
} // namespace tolm::test
