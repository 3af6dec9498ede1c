// What hosts do around playing: switching off and on, new rates, program changes, tempo.

#include "plugin/catalogue.h"
#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tolm::test {

namespace {

constexpr int kSecond = 44100;

void sustained(PluginRig& rig)
{
    rig.selectProgram("Init Patch");
    rig.set(kAmpSustain, 1.0f);
    rig.set(kFilterCutoff, 1.0f);
}

// Frames between the starts of the sounds of a pattern, where each follows some silence.
std::vector<std::size_t> onsets(const Stereo& s, float threshold)
{
    std::vector<std::size_t> found;
    std::size_t quiet = 1000;
    for (std::size_t i = 0; i < s.frames(); ++i) {
        if (std::abs(s.left[i]) < threshold) {
            ++quiet;
            continue;
        }
        if (quiet >= 1000)
            found.push_back(i);
        quiet = 0;
    }
    return found;
}

} // namespace

TEST(Host, aHeldNoteSurvivesSwitchingOffAndOn)
{
    PluginRig rig;
    sustained(rig);
    const Stereo before = rig.render(kSecond / 4, {noteOn(0, 60)});
    rig.switchOn(false);
    rig.switchOn(true);
    const Stereo after = rig.render(kSecond / 4);
    EXPECT_NEAR(rmsOf(after), rmsOf(before, 4000), 0.1 * rmsOf(before, 4000));
    const Stereo end = rig.render(kSecond, {noteOff(0, 60)});
    EXPECT_LT(rmsOf(end, kSecond - 4000), 1e-4 * rmsOf(after));
}

TEST(Host, aNewRateSilencesAndKeepsThePitch)
{
    PluginRig rig;
    sustained(rig);
    rig.set(kOsc1Shape, 0.68f); // sine
    rig.set(kOscMix, 0.0f);
    for (const float rate : {44100.0f, 96000.0f, 22050.0f}) {
        rig.switchOn(false);
        rig.setRate(rate);
        rig.switchOn(true);
        const auto frames = static_cast<int>(rate);
        EXPECT_EQ(peakOf(rig.render(2000)), 0.0) << rate;
        const Stereo sound = rig.render(frames, {noteOn(0, 69)});
        int rises = 0;
        for (std::size_t i = 1; i < sound.frames(); ++i)
            rises += sound.left[i - 1] < 0.0f && sound.left[i] >= 0.0f ? 1 : 0;
        EXPECT_NEAR(rises, 440, 2) << rate; // periods in one second
    }
}

TEST(Host, aProgramChangeMessageSelectsSilencesAndLoads)
{
    PluginRig rig;
    sustained(rig);
    rig.render(kSecond / 10, {noteOn(0, 60)});
    const Stereo after = rig.render(1000, {{0, {0xC0, 17, 0}}});
    EXPECT_LT(peakOf(after), 1e-12); // filters of the effects may hold a last trace
    EXPECT_EQ(rig.dispatch(vst2::effGetProgram), 17);
    char name[64] = {};
    rig.dispatch(vst2::effGetProgramName, 0, 0, name);
    EXPECT_EQ(name, rig.programName(17));
    // Every value is what a host's own selection gives.
    PluginRig other;
    other.selectProgram(17);
    for (int id = 0; id < kHostParameterCount; ++id)
        EXPECT_EQ(rig.get(id), other.get(id)) << id;
    EXPECT_GT(peakOf(rig.render(8000, {noteOn(0, 48)})), 0.01);
}

TEST(Host, theArpeggiatorKeepsTheHostsTempo)
{
    double firstBeats = 0.0;
    for (const double tempo : {60.0, 120.0, 174.0}) {
        PluginRig rig;
        rig.tempo = tempo;
        sustained(rig);
        for (int step = 0; step < kArpSteps; ++step) {
            rig.set(kArpNote1 + step, step % 2 == 0 ? 0.25f : 0.0f); // every other one a rest
            rig.set(kArpVelocity1 + step, 1.0f);
        }
        rig.set(kArpMode, 0.0f);
        rig.set(kAmpRelease, 0.0f);
        rig.set(kArpStepCount, 1.0f);
        rig.set(kArpLength, 0.5f);
        rig.set(kArpSync, 1.0f);
        rig.set(kArpRate, 12.5f / 20.001f);
        rig.set(kArpOn, 1.0f);
        const Stereo sound = rig.render(4 * kSecond, {noteOn(0, 60)}, 256);
        const std::vector<std::size_t> at = onsets(sound, 1e-4f);
        ASSERT_GE(at.size(), 4u) << tempo;
        // Whatever note value the rate stands for, its length in beats is the same at any tempo.
        const double frames = static_cast<double>(at[3] - at[1]) / 2.0;
        const double beats = frames / kSecond * tempo / 60.0;
        EXPECT_NEAR(beats * 48.0, std::round(beats * 48.0), 0.05) << tempo;
        firstBeats = firstBeats > 0.0 ? firstBeats : beats;
        EXPECT_NEAR(beats, firstBeats, 0.002) << tempo;
    }
}

TEST(Host, theDelayKeepsTheHostsTempo)
{
    double firstBeats = 0.0;
    for (const double tempo : {80.0, 120.0}) {
        PluginRig rig;
        rig.tempo = tempo;
        sustained(rig);
        rig.set(kAmpDecay, 0.0f);
        rig.set(kAmpSustain, 0.0f);
        rig.set(kDelayOn, 1.0f);
        rig.set(kDelayType, 0.0f);
        rig.set(kDelayRateLeft, 8.5f / 20.001f);
        rig.set(kDelayRateRight, 8.5f / 20.001f);
        const Stereo sound = rig.render(4 * kSecond, {noteOn(0, 72)}, 256);
        const std::vector<std::size_t> at = onsets(sound, 1e-4f);
        ASSERT_GE(at.size(), 2u) << tempo;
        const double beats = static_cast<double>(at[1] - at[0]) / kSecond * tempo / 60.0;
        firstBeats = firstBeats > 0.0 ? firstBeats : beats;
        EXPECT_NEAR(beats, firstBeats, 0.01) << tempo;
    }
}

TEST(Host, aTempoNobodyBelievesCountsAs120)
{
    const auto play = [](std::optional<double> tempo) {
        PluginRig rig;
        rig.tempo = tempo;
        rig.selectProgram("Acid Lantern");
        return rig.render(kSecond, {noteOn(0, 48)});
    };
    const Stereo normal = play(120.0);
    EXPECT_EQ(play({}), normal);
    for (const double tempo : {0.0, -50.0, 1e9, std::nan("")})
        EXPECT_EQ(play(tempo), normal) << tempo;
    EXPECT_NE(play(90.0), normal);
}

} // namespace tolm::test
