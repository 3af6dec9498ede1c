// Which voice a note takes, what releases it, and what a mono line does.

#include "tests/engine/rig.h"

#include "engine/voices.h"

#include <gtest/gtest.h>

#include <set>

namespace tolm {
namespace {

class Voices : public ::testing::Test {
protected:
    Voices() : r(rig.engine.record())
    {
        rig.set(kPolyphony, 0.0f); // eight voices
        rig.set({{kAmpAttack, 0.0f}, {kAmpRelease, 0.0f}, {kAmpSustain, 1.0f}});
        rig.set(kFilterRelease, 0.0f);
    }
    void stack(int n) { rig.set(kVoices, (static_cast<float>(n) - 0.5f) * 18.0f / 128.0f); }
    void mono() { rig.set(kMonoMode, 1.0f); }
    std::multiset<int> soundingKeys() const
    {
        std::multiset<int> keys;
        for (std::size_t v = 0; v < kVoiceCount; ++v)
            if (r.voiceActive[v] != 0 && r.voiceReleased[v] == 0)
                keys.insert(r.voiceNote[v].note);
        return keys;
    }
    int heldPitch() const { return static_cast<int>(r.voiceNote[0].pitch) / 128; }
    using Keys = std::multiset<int>;

    EngineRig rig;
    EngineRecord& r;
};

TEST_F(Voices, fillUpInOrderThenStealByAge)
{
    for (int key = 40; key < 48; ++key) {
        rig.on(key);
        rig.render(64);
    }
    for (std::size_t v = 0; v < 8; ++v)
        EXPECT_EQ(r.voiceNote[v].note, 40 + static_cast<int>(v));
    const float level = r.slot[0].amp.level;
    rig.on(60);
    EXPECT_EQ(r.voiceNote[0].note, 60); // the oldest
    EXPECT_GT(level, 0.5f);
    EXPECT_EQ(r.slot[0].amp.level, level); // goes on from there, without a click
    rig.off(45);
    rig.off(43);
    rig.on(61);
    EXPECT_EQ(r.voiceNote[3].note, 61); // the oldest of the released ones
    rig.on(62);
    EXPECT_EQ(r.voiceNote[5].note, 62);
    EXPECT_EQ(r.voiceActive[8], 0u); // never beyond the polyphony
}

TEST_F(Voices, tiesGoToTheLowestReleasedAndTheHighestOfAll)
{
    for (const bool aged : {false, true}) {
        rig.engine.resetVoices();
        for (int key = 40; key < 48; ++key)
            rig.on(key);
        if (aged)
            rig.render(64);
        EXPECT_EQ(chooseVoice(r), 7);
        for (const int key : {42, 44, 46})
            rig.off(key);
        EXPECT_EQ(chooseVoice(r), aged ? 2 : 7); // a released voice of age 0 is not taken
    }
    r.voiceNote[4].age += 1;
    EXPECT_EQ(chooseVoice(r), 4);
    r.voiceNote[4].age = 0xFFFFFFFFu; // unsigned
    EXPECT_EQ(chooseVoice(r), 4);
}

TEST_F(Voices, stacksStealWholeAndMasksStartReleaseAndRetuneTheirVoices)
{
    stack(8);
    rig.on(72);
    rig.render(64);
    rig.on(60); // steals the whole stack before
    EXPECT_EQ(soundingKeys(), (Keys{60, 60, 60, 60, 60, 60, 60, 60}));
    EXPECT_EQ((std::set<std::uint32_t>(&r.voiceUnisonIndex[0], &r.voiceUnisonIndex[8])).size(), 8u);

    rig.engine.resetVoices();
    stack(4);
    rig.on(60, 100, kEvenStackedVoices);
    EXPECT_EQ(rig.sounding(), 2);
    rig.on(60, 100, kOddStackedVoices);
    EXPECT_EQ(rig.sounding(), 4);
    rig.engine.retuneVoices(55, static_cast<std::uint32_t>(kEvenStackedVoices));
    EXPECT_EQ(soundingKeys(), (Keys{55, 55, 60, 60}));
    rig.off(55, kNoStackedVoice);
    rig.off(55, kOddStackedVoices); // the odd ones play another key
    rig.off(61);
    EXPECT_EQ(soundingKeys(), (Keys{55, 55, 60, 60}));
    rig.off(60);
    EXPECT_EQ(soundingKeys(), (Keys{55, 55}));
}

TEST_F(Voices, velocityRandomAndFilterTypeBelongToTheVoice)
{
    rig.set(kFilterType, 5.0f);
    rig.on(60, 33);
    rig.set(kFilterType, 9.0f);
    EXPECT_EQ(r.voiceNote[0].velocity, 33);
    EXPECT_EQ(r.voiceFilterType[0], 5u);
    std::set<float> draws;
    for (int i = 0; i < 50; ++i) {
        rig.on(60);
        for (std::size_t v = 0; v < 8; ++v) {
            ASSERT_LE(std::abs(r.voiceRandom[v]), 1.0001f);
            draws.insert(r.voiceRandom[v]);
        }
    }
    EXPECT_GT(draws.size(), 40u);
}

TEST_F(Voices, monoLineChangesPitchWithoutAttackAndFallsBackToTheHighestKey)
{
    stack(3);
    mono();
    rig.on(48);
    rig.render(640);
    const std::uint32_t age = r.voiceNote[0].age;
    rig.on(52);
    EXPECT_EQ(rig.sounding(), 3); // still one stack
    EXPECT_EQ(heldPitch(), 52);
    EXPECT_EQ(r.voiceNote[0].note, 48); // legato changes the pitch, not the note
    EXPECT_EQ(r.glideOffset, -4.0f * 128.0f);
    EXPECT_EQ(r.voiceNote[0].age, age);
    EXPECT_NE(r.slot[0].amp.stage, EnvelopeStage::attack);
    rig.on(55);
    EXPECT_EQ(r.glideOffset, -7.0f * 128.0f); // from where the line still sounds
    rig.on(50);
    rig.off(50);
    EXPECT_EQ(heldPitch(), 55); // not the most recent one
    EXPECT_EQ(r.glideOffset, -7.0f * 128.0f);
    rig.off(52); // not the sounding one
    EXPECT_EQ(heldPitch(), 55);
    rig.off(55);
    EXPECT_EQ(heldPitch(), 48);
    EXPECT_EQ(soundingKeys().size(), 3u);
    rig.off(48);
    EXPECT_TRUE(soundingKeys().empty());
}

TEST_F(Voices, monoNoteOverAReleaseStartsAgainWithoutGlide)
{
    mono();
    rig.set(kAmpRelease, 0.5f);
    rig.on(48, 80);
    EXPECT_EQ(r.glideOffset, 0.0f);
    rig.render(640);
    rig.off(48);
    rig.render(64);
    rig.on(60, 90);
    EXPECT_EQ(rig.sounding(), 1);
    EXPECT_EQ(r.glideOffset, 0.0f);
    EXPECT_EQ(r.slot[0].amp.stage, EnvelopeStage::attack);
    EXPECT_EQ(r.slot[0].mod.stage, EnvelopeStage::attack);
    EXPECT_EQ(r.voiceNote[0].age, 0u);
    EXPECT_EQ(r.voiceNote[0].velocity, 90);
    EXPECT_EQ(soundingKeys(), (Keys{60}));
}

TEST_F(Voices, aLineOutlivesNeitherItsKeyNorTheSwitchOfModes)
{
    mono();
    rig.on(48);
    rig.on(55);
    rig.off(48);
    rig.set(kArpOn, 1.0f);
    rig.off(55); // the line's note is still 48
    EXPECT_TRUE(soundingKeys().empty());

    rig.engine.resetVoices();
    rig.set(kArpOn, 0.0f);
    rig.on(51);
    rig.on(58);
    r.lastNote = 70; // as the arpeggiator leaves it
    rig.off(58);
    EXPECT_TRUE(soundingKeys().empty());
}

TEST_F(Voices, softReleasesAndHardSilences)
{
    rig.on(60);
    rig.on(64);
    r.arp.held[60] = 100;
    rig.engine.allNotesOff(false);
    EXPECT_EQ(rig.sounding(), 2);
    EXPECT_TRUE(soundingKeys().empty());
    EXPECT_EQ(r.slot[0].mod.stage, EnvelopeStage::release);
    EXPECT_EQ(r.arp.held[60], 0);
    EXPECT_FALSE(r.anyKeyDown);

    rig.on(60);
    r.releaseEnabled = false;
    r.bendRaw = 100;
    r.bendSmoothed = 50;
    r.arp.held[60] = 100;
    r.arp.velocityOut = 0.9f;
    r.arp.soundingNote = 3;
    r.modWheel = 0.7;
    rig.engine.allNotesOff(true);
    EXPECT_EQ(rig.sounding(), 0);
    EXPECT_TRUE(r.releaseEnabled);
    EXPECT_TRUE(r.retriggerPending);
    EXPECT_EQ(r.bendRaw, 0);
    EXPECT_EQ(r.bendSmoothed, 50);
    EXPECT_EQ(r.arp.held[60], 0);
    EXPECT_EQ(r.arp.velocityOut, 0.5f);
    EXPECT_EQ(r.arp.soundingNote, -1);
    EXPECT_EQ(r.lastNote, -1);
    EXPECT_EQ(r.modWheel, 0.7);
    for (std::size_t v = 0; v < kVoiceCount; ++v) {
        const std::uint32_t phase = r.slot[v].osc1Phase;
        ASSERT_EQ(phase % 65535u, 0u);
        ASSERT_LE(phase / 65535u, 32767u);
        ASSERT_EQ(r.slot[v].amp.level, 0.0f);
    }
}

TEST_F(Voices, loweredPolyphonyFreesWhatLiesBeyond)
{
    rig.set(kPolyphony, 1.0f);
    for (int key = 30; key < 102; ++key)
        rig.on(key);
    EXPECT_EQ(rig.sounding(), 72);
    rig.set(kPolyphony, 0.25f); // 24
    EXPECT_EQ(rig.sounding(), 24);
    rig.set(kPolyphony, 1.0f);
    rig.render(64);
    EXPECT_EQ(rig.sounding(), 24);
}

TEST_F(Voices, leavingMonoReleasesUnlessTheArpeggiatorPlays)
{
    mono();
    rig.on(60);
    rig.set(kMonoMode, 0.0f);
    EXPECT_TRUE(soundingKeys().empty());
    mono();
    rig.on(60);
    rig.set({{kArpOn, 1.0f}, {kMonoMode, 0.0f}});
    EXPECT_EQ(soundingKeys(), (Keys{60}));
    // Off again while it was off already: nothing ends.
    rig.set({{kArpOn, 0.0f}, {kMonoMode, 0.0f}});
    EXPECT_EQ(soundingKeys(), (Keys{60}));
}

} // namespace
} // namespace tolm
