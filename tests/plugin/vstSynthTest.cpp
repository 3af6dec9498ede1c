// The plug-in object: its own host and the tuning, displays, programs.

#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm {
namespace {

using test::SynthRig;
using ::testing::ElementsAre;

TEST(VstSynth, letsOnlyTheOwnHostRetune)
{
    constexpr std::int32_t kTuni = 0x54756E69;
    std::vector<float> tuning(15360);
    for (std::size_t i = 0; i < tuning.size(); ++i)
        tuning[i] = 1.0f + static_cast<float>(i);
    SynthRig stranger("Corvane Audio "); // not to the letter
    const PitchTable before = stranger.record().pitch;
    EXPECT_EQ(stranger.synth->vendorSpecific(kTuni, 0, tuning.data(), 0.0f), 0);
    EXPECT_EQ(stranger.record().pitch, before);

    SynthRig rig("Corvane Audio");
    EXPECT_EQ(rig.synth->vendorSpecific(kTuni, 0, nullptr, 0.0f), 0);
    EXPECT_EQ(rig.synth->vendorSpecific(kTuni, 0, tuning.data(), 0.0f), 0);
    EXPECT_EQ(rig.record().pitch[4607], before[4607]);
    EXPECT_EQ(rig.record().pitch[4608], 1.0f);
    EXPECT_EQ(rig.record().pitch[19967], 15360.0f);
    const PitchTable retuned = rig.record().pitch;
    for (const float bad : {0.0f, -1.0f, NAN, INFINITY}) {
        tuning[0] = 5.0f;
        tuning[15359] = bad;
        rig.synth->vendorSpecific(kTuni, 0, tuning.data(), 0.0f);
        EXPECT_EQ(rig.record().pitch, retuned) << bad;
    }
}

TEST(VstSynth, showsTheStoredValueInTheLightOfTheOthers)
{
    SynthRig rig;
    EXPECT_EQ(rig.display(43, 0.0f), "0.1 Hz");
    rig.synth->setParameter(46, 1.0f);
    EXPECT_EQ(rig.display(43, 0.0f), "8/1*");
    rig.synth->setParameter(97, 0.125f);
    EXPECT_EQ(rig.display(98, 0.0f), "1 Hz");
    for (const int editorsOwn : {71, 72})
        EXPECT_EQ(rig.display(editorsOwn, 0.5f), "untouched");
}

TEST(VstSynth, copiesAndNamesPrograms)
{
    SynthRig rig;
    rig.synth->setProgram(10);
    rig.synth->setProgramName("Source");
    rig.synth->setParameter(328, 0.625f);
    rig.core().engine().programBank().record(10).reserved[11] = 3;
    EXPECT_TRUE(rig.synth->copyProgram(300));
    EXPECT_TRUE(rig.synth->copyProgram(10)); // onto itself
    for (const int none : {384, -1})
        EXPECT_FALSE(rig.synth->copyProgram(none));
    const auto& programs = rig.core().engine().programBank();
    EXPECT_EQ(programs.name(300), "Source");
    EXPECT_EQ(programs.value(300, 328), 0.625f);
    EXPECT_EQ(programs.record(300).reserved[11], 3);
    EXPECT_EQ(rig.synth->getProgram(), 10);
}

TEST(PendingParameters, comeInIdOrderAndOnce)
{
    PendingParameters pending;
    for (const int id : {346, 5, 64, 63, 348, 5, 0})
        pending.mark(id);
    std::vector<int> drained;
    const auto note = [&drained](int id) { drained.push_back(id); };
    pending.drain(note);
    EXPECT_THAT(drained, ElementsAre(0, 5, 63, 64, 346, 348));
    pending.mark(7);
    pending.clear();
    pending.drain(note);
    EXPECT_EQ(drained.size(), 6u);
}

} // namespace
} // namespace tolm
