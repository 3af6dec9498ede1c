// The plug-in's state through the host's chunk calls, with a playing engine behind it.

#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>

namespace tolm::test {
namespace {

std::int32_t field(const std::vector<std::uint8_t>& chunk, std::size_t offset)
{
    std::int32_t value;
    std::memcpy(&value, chunk.data() + offset, sizeof value);
    return value;
}

TEST(Chunk, aProjectComesBackByteForByteAndItsBankAlone)
{
    SynthRig rig;
    EXPECT_EQ(field(rig.savedChunk(), 12), 12) << "not the engine's own voice count";
    ProgramStore& programs = rig.core().engine().programBank();
    rig.synth->setParameter(kPolyphony, 1.0f);
    rig.record().bendUpRange = 12;
    const std::vector<ProgramRecord> factory(programs.records().begin(), programs.records().end());
    ProgramRecord other;
    other.name.fill('x');
    other.values.fill(0.7654321f);
    for (int bank = 0; bank < kBankCount; ++bank) {
        SCOPED_TRACE(bank);
        std::copy(factory.begin(), factory.end(), programs.records().begin());
        const int current = bank * kBankSize + 2;
        rig.synth->setProgram(current);
        programs.setDescription(current, "Kept");
        programs.record(current).reserved[11] = 3;
        const std::vector<std::uint8_t> saved = rig.savedChunk();
        ASSERT_EQ(saved.size(), 235560u);
        EXPECT_EQ(saved, rig.savedChunk(true));
        EXPECT_EQ(field(saved, 8), current);
        EXPECT_EQ(field(saved, 16), 12);
        EXPECT_EQ(field(saved, 28), bank);
        std::fill(programs.records().begin(), programs.records().end(), other);
        rig.synth->setProgram(200);
        EXPECT_EQ(rig.load(saved), 235560);
        EXPECT_EQ(rig.synth->getProgram(), current);
        EXPECT_EQ(rig.savedChunk(), saved);
        for (int p = 0; p < kProgramCount; ++p)
            EXPECT_EQ(programs.name(p).front() == 'x', p / kBankSize != bank) << p;
    }
}

TEST(Chunk, rejectedChunksChangeNothingButTheBendRanges)
{
    SynthRig rig;
    const std::vector<std::uint8_t> before = rig.savedChunk();
    std::vector<std::uint8_t> chunk = before;
    chunk[16] = 7;
    chunk[24] = 1; // a version that nobody can read
    EXPECT_EQ(rig.load(chunk), 235560);
    EXPECT_EQ(rig.record().bendUpRange, 7);
    EXPECT_EQ(rig.shownMessages, std::vector<std::string>{"Info: Very Old patches are rejected."});
    rig.load({before.begin(), before.begin() + 1000});
    EXPECT_EQ(rig.synth->setChunk(nullptr, 0, false), 235560);
    EXPECT_EQ(rig.savedChunk(), before);
}

TEST(Chunk, aHostThatStoppedInsideABlockHangsNoLoadAndNoProgramChange)
{
    SynthRig rig;
    const std::vector<std::uint8_t> chunk = rig.savedChunk();
    rig.synth->setParameter(kFilterCutoff, 0.123f);
    const GuardHold stuck = GuardHold::attempt(rig.core().guard());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(rig.load(chunk), 235560);
    EXPECT_EQ(rig.synth->getParameter(kFilterCutoff), 0.123f);
    rig.synth->setProgram(5);
    EXPECT_EQ(rig.synth->getProgram(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8));
}

} // namespace
} // namespace tolm::test
