// Instances know nothing of one another, and a fresh one always plays the same.

#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

#include <memory>

namespace tolm::test {

namespace {

const std::vector<Message> kChord = {noteOn(0, 48), noteOn(300, 60), noteOn(301, 64),
                                     noteOff(9000, 48)};
constexpr int kFrames = 12000;

constexpr const char* kPrograms[] = {"Warm Horizon", "Acid Lantern", "Storm Window"};

} // namespace

TEST(Instances, renderAlikeWhenFresh)
{
    for (const char* name : kPrograms) {
        PluginRig first;
        first.selectProgram(name);
        PluginRig second;
        second.selectProgram(name);
        EXPECT_EQ(first.render(kFrames, kChord), second.render(kFrames, kChord)) << name;
    }
}

TEST(Instances, doNotHearOneAnother)
{
    std::vector<Stereo> alone;
    for (const char* name : kPrograms) {
        PluginRig rig;
        rig.selectProgram(name);
        alone.push_back(rig.render(kFrames, kChord));
    }
    std::vector<std::unique_ptr<PluginRig>> rigs;
    for (const char* name : kPrograms) {
        rigs.push_back(std::make_unique<PluginRig>());
        rigs.back()->selectProgram(name);
    }
    // Side by side, block by block; one more comes and goes meanwhile.
    std::vector<Stereo> together(rigs.size());
    for (int start = 0; start < kFrames; start += 500) {
        const PluginRig passing(96000.0f);
        for (std::size_t i = 0; i < rigs.size(); ++i) {
            std::vector<Message> due;
            for (Message m : kChord)
                if (m.frame >= start && m.frame < start + 500) {
                    m.frame -= start;
                    due.push_back(m);
                }
            rigs[i]->send(due);
            rigs[i]->process(500, together[i]);
        }
    }
    for (std::size_t i = 0; i < rigs.size(); ++i) {
        PluginRig again;
        again.selectProgram(kPrograms[i]);
        EXPECT_EQ(together[i], again.render(kFrames, kChord, 500)) << kPrograms[i];
        EXPECT_NEAR(rmsOf(together[i]), rmsOf(alone[i]), 0.1 * rmsOf(alone[i]));
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
