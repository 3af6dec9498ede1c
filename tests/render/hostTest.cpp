// What hosts do around playing: switching off and on, new rates, program changes, tempo, several
// instances.

#include "plugin/catalogue.h"
#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace tolm::test {

namespace {

constexpr int kSecond = 44100;

void sustained(PluginRig& rig)
{
    rig.selectProgram("Init Patch");
    rig.set(kAmpSustain, 1.0f);
    rig.set(kFilterCutoff, 1.0f);
}

// First frame of sound after 1000 silent frames that follow the first sound.
int secondOnset(const Stereo& s)
{
    int quiet = -1;
    for (std::size_t i = 0; i < s.frames(); ++i) {
        const bool sounds = std::abs(s.left[i]) > 1e-4f;
        if (sounds && quiet >= 1000)
            return static_cast<int>(i);
        quiet = sounds ? 0 : quiet < 0 ? quiet : quiet + 1;
    }
    return -1;
}

} // namespace

TEST(Host, aHeldNoteSurvivesSwitchingOffAndOn)
{
    PluginRig rig;
    sustained(rig);
    const double before = rmsOf(rig.render(kSecond / 4, {noteOn(0, 60)}), 4000);
    rig.switchOn(false);
    rig.switchOn(true);
    EXPECT_NEAR(rmsOf(rig.render(kSecond / 4)), before, 0.1 * before);
    EXPECT_LT(rmsOf(rig.render(kSecond, {noteOff(0, 60)}), kSecond - 4000), 1e-4 * before);
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
    // Every value is what a host's own selection gives.
    PluginRig other;
    other.selectProgram(17);
    for (int id = 0; id < kHostParameterCount; ++id)
        EXPECT_EQ(rig.get(id), other.get(id)) << id;
    EXPECT_GT(peakOf(rig.render(8000, {noteOn(0, 48)})), 0.01);
}

// Delays and reverbs with tails of seconds. (A chorus keeps its few milliseconds.)
TEST(Host, aProgramLoadCutsEveryTail)
{
    for (const char* name : {"Dub Suspension", "Temple Bronze", "Rain On Foil", "Night Siren"}) {
        PluginRig rig;
        rig.selectProgram(name);
        EXPECT_GT(peakOf(rig.render(20000, {noteOn(0, 48), noteOn(0, 60)})), 0.01) << name;
        rig.selectProgram(name);
        EXPECT_LT(peakOf(rig.render(20000)), 1e-9) << name; // nothing that a file of 24 bits holds
    }
}

TEST(Host, arpeggiatorAndDelayKeepTheHostsTempo)
{
    for (const double tempo : {60.0, 120.0, 174.0}) {
        const double beatFrames = kSecond * 60.0 / tempo;
        PluginRig pattern;
        pattern.tempo = tempo;
        sustained(pattern);
        for (int step = 0; step < kArpSteps; ++step)
            pattern.set(kArpNote1 + step, step % 2 == 0 ? 0.25f : 0.0f); // sixteenths and rests
        pattern.set(kArpMode, 0.0f);
        pattern.set(kArpSync, 1.0f);
        pattern.set(kArpRate, 10.5f / 20.001f);
        pattern.set(kArpLength, 0.5f);
        pattern.set(kArpSwing, 0.5f);
        pattern.set(kArpOn, 1.0f);
        pattern.set(kAmpRelease, 0.0f);
        EXPECT_NEAR(secondOnset(pattern.render(kSecond, {noteOn(0, 60)}, 256)), 0.5 * beatFrames,
                    64.0)
            << tempo;

        PluginRig stroke;
        stroke.tempo = tempo;
        sustained(stroke);
        stroke.set(kAmpDecay, 0.0f);
        stroke.set(kAmpSustain, 0.0f);
        stroke.set(kDelayOn, 1.0f);
        stroke.set(kDelayType, 0.0f);
        stroke.set(kDelayRateLeft, 13.5f / 20.001f); // a sixteenth
        EXPECT_NEAR(secondOnset(stroke.render(kSecond, {noteOn(0, 60)}, 256)), 0.25 * beatFrames,
                    64.0)
            << tempo;
    }
}

// Side by side, block by block; one more comes and goes meanwhile.
TEST(Host, severalInstancesPlayAsIfTheyWereAlone)
{
    constexpr const char* kPrograms[] = {"Warm Horizon", "Acid Lantern", "Storm Window"};
    constexpr int kFrames = 12000;
    constexpr int kBlock = 500;
    const std::vector<Message> chord = {noteOn(0, 48), noteOn(300, 60), noteOn(301, 64),
                                        noteOff(9000, 48)};
    std::vector<std::unique_ptr<PluginRig>> rigs;
    for (const char* name : kPrograms) {
        rigs.push_back(std::make_unique<PluginRig>());
        rigs.back()->selectProgram(name);
    }
    std::vector<Stereo> together(rigs.size());
    for (int start = 0; start < kFrames; start += kBlock) {
        const PluginRig passing(96000.0f);
        for (std::size_t i = 0; i < rigs.size(); ++i) {
            rigs[i]->send(messagesWithin(chord, start, start + kBlock));
            rigs[i]->process(kBlock, together[i]);
        }
    }
    for (std::size_t i = 0; i < rigs.size(); ++i) {
        PluginRig alone;
        alone.selectProgram(kPrograms[i]);
        EXPECT_EQ(together[i], alone.render(kFrames, chord, kBlock)) << kPrograms[i];
        EXPECT_GT(rmsOf(together[i]), 0.001) << kPrograms[i];
    }
}

} // namespace tolm::test
