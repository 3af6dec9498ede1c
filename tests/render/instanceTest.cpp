// Instances know nothing of one another, and a fresh one always plays the same.

#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

#include <memory>

namespace tolm::test {

namespace {

const std::vector<Message> kChord = {noteOn(0, 48), noteOn(300, 60), noteOn(301, 64),
                                     noteOff(9000, 48)};
constexpr int kFrames = 12000;
constexpr int kBlock = 500;

constexpr const char* kPrograms[] = {"Warm Horizon", "Acid Lantern", "Storm Window"};

Stereo alone(const char* program)
{
    PluginRig rig;
    rig.selectProgram(program);
    return rig.render(kFrames, kChord, kBlock);
}

} // namespace

// Side by side, block by block; one more comes and goes meanwhile.
TEST(Instances, playAsIfTheyWereAlone)
{
    std::vector<std::unique_ptr<PluginRig>> rigs;
    for (const char* name : kPrograms) {
        rigs.push_back(std::make_unique<PluginRig>());
        rigs.back()->selectProgram(name);
    }
    std::vector<Stereo> together(rigs.size());
    for (int start = 0; start < kFrames; start += kBlock) {
        const PluginRig passing(96000.0f);
        for (std::size_t i = 0; i < rigs.size(); ++i) {
            rigs[i]->send(messagesWithin(kChord, start, start + kBlock));
            rigs[i]->process(kBlock, together[i]);
        }
    }
    for (std::size_t i = 0; i < rigs.size(); ++i) {
        EXPECT_EQ(together[i], alone(kPrograms[i])) << kPrograms[i];
        EXPECT_GT(rmsOf(together[i]), 0.001) << kPrograms[i];
    }
}

TEST(Instances, keepTheirOwnParametersAndPrograms)
{
    PluginRig one;
    PluginRig two;
    const float before = two.get(28);
    one.set(28, 0.125f);
    one.selectProgram(5);
    one.set(28, 0.25f);
    EXPECT_EQ(two.get(28), before);
    EXPECT_EQ(two.dispatch(vst2::effGetProgram), 0);
    EXPECT_EQ(one.dispatch(vst2::effGetProgram), 5);
}

} // namespace tolm::test
