// The three envelopes of a voice: their order of steps, hold, pedal and ends.

#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

constexpr int kModEnv = 25; // matrix source

// Factor per frame that takes a level to a tenth in the time of a setting.
double factorOf(double setting, double rate = kRate)
{
    const double ms = 2.0 * std::pow(10000.0, std::trunc(setting * 1024.0) / 1024.0);
    return std::pow(0.1, 1000.0 / (ms * rate));
}

TEST(AmpEnvelope, followsTheModelFrameByFrame)
{
    for (const double rate : {22050.0, 44100.0, 96000.0}) {
        ToneRig rig(rate);
        rig.setFrom(kAmpAttack, {0.1f, 0.2f, 0.5f, 0.15f});
        const double attack = factorOf(0.1f, rate);
        const double decay = factorOf(0.2f, rate);
        const double release = factorOf(0.15f, rate);
        rig.on(60);
        double level = 0.0;
        int stage = 0;
        for (int i = 0; i < 3000; ++i) {
            if (i == 2500) {
                rig.off(60);
                stage = 3;
            }
            if (stage == 0) {
                level = 1.0 - (1.0 - level) * attack;
                stage = level >= 0.9 ? 1 : 0;
            } else if (stage == 1) {
                level *= decay;
                stage = 0.25 > level ? 2 : 1; // the setting is squared
            } else if (stage == 3) {
                level *= release;
            }
            rig.render(1, 1);
            ASSERT_NEAR(rig.slot().amp.level, level, 2e-3 * level) << i;
        }
    }
}

TEST(AmpEnvelope, fullSustainSettlesOneStepBelowTheEndOfTheAttack)
{
    ToneRig rig;
    rig.setFrom(kAmpAttack, {0.0f, 0.5f, 1.0f, 0.0f});
    rig.on(60);
    rig.render(2000);
    const EnvelopeState& amp = rig.slot().amp;
    EXPECT_EQ(amp.stage, EnvelopeStage::sustain);
    // The attack ends somewhere in the first step above 0.9; one decay step follows.
    const double over = 1.0 - 0.1 * factorOf(0.0);
    EXPECT_GE(amp.level, 0.9 * factorOf(0.5) - 1e-6);
    EXPECT_LE(amp.level, over * factorOf(0.5) + 1e-6);
    // A sustain that moves later finds the level where it stopped.
    const float settled = amp.level;
    rig.set(kAmpSustain, 0.3f);
    rig.render(2000);
    EXPECT_EQ(amp.level, settled);
}

TEST(AmpEnvelope, anInaudibleLevelEndsTheVoiceEvenUnderAHeldKey)
{
    ToneRig rig;
    rig.setFrom(kAmpAttack, {0.0f, 0.25f, 0.0f, 0.0f}); // 20 ms per decade, 9 decades
    rig.on(60);
    rig.render(static_cast<int>(0.176 * kRate), 64);
    EXPECT_EQ(rig.sounding(), 1);
    rig.render(static_cast<int>(0.010 * kRate), 64);
    EXPECT_EQ(rig.sounding(), 0);
    EXPECT_EQ(rig.slot().amp.level, 0.0f);
}

TEST(AmpEnvelope, holdCountsFromTheNotesStartAndDelaysTheReleaseToo)
{
    for (const bool released : {false, true}) {
        ToneRig rig;
        rig.setFrom(kAmpAttack, {0.0f, 0.0f, 0.0f, 0.0f});
        rig.setRow(1, kConst, 31, 1.0); // 0.1 s
        rig.on(60);
        rig.render(1024, 64);
        if (released)
            rig.off(60);
        rig.render(4410 - 1024, 64);
        EXPECT_GE(rig.slot().amp.level, 0.9f);
        rig.render(88, 64);
        EXPECT_NEAR(rig.slot().amp.level, 0.09f, 0.01f);
    }
    // Rows add up but never below nothing.
    ToneRig rig;
    rig.setFrom(kAmpAttack, {0.0f, 0.0f, 0.0f, 0.0f});
    rig.setRow(2, kConst, 31, -1.0);
    rig.setRow(1, kConst, 31, 0.5);
    rig.on(60);
    rig.render(2205, 64);
    EXPECT_GE(rig.slot().amp.level, 0.9f);
}

TEST(AmpEnvelope, pedalFreezesAReleasedLevelEvenInMidAttack)
{
    ToneRig rig;
    rig.setFrom(kAmpAttack, {0.5f, 0.5f, 0.5f, 0.0f});
    rig.record().releaseEnabled = false;
    rig.on(60);
    rig.render(1024);
    rig.off(60);
    rig.render(64);
    const float frozen = rig.slot().amp.level;
    EXPECT_GT(frozen, 0.1f);
    EXPECT_LT(frozen, 0.8f);
    rig.engine.allNotesOff(false); // does not lift it
    rig.render(44100);
    EXPECT_EQ(rig.slot().amp.level, frozen);
    rig.record().releaseEnabled = true;
    rig.render(2000);
    EXPECT_EQ(rig.sounding(), 0);
}

TEST(FilterEnvelope, yieldsTheLevelBeforeItsStep)
{
    // Seen through the cutoff: index = trunc((level + 0.25) * 2048), the sound is the reference's.
    ToneRig rig;
    rig.setFrom(kFilterAttack, {0.05f, 0.1f, 0.6f, 0.0f});
    rig.set({{kFilterCutoff, 0.25f}, {kFilterEnvAmount, 0.5f}});
    rig.hold(48).osc1Phase = 0;
    ToneRig source;
    source.hold(48).osc1Phase = 0;
    const std::vector<double> input = source.mix(1500);
    const Stereo out = rig.render(1500);
    double level = 0.0;
    double distance = 1.0;
    int stage = 0;
    SvfModel filter;
    for (std::size_t i = 0; i < input.size(); ++i) {
        double used = level;
        if (stage == 0) {
            used = level = 1.0 - distance;
            distance *= factorOf(0.05f);
            stage = used >= 0.9 ? 1 : 0;
        } else if (stage == 1) {
            if (0.36 >= level)
                stage = 2;
            else
                level *= factorOf(0.1f);
        }
        const double expected = filter.low(input[i], used * 0.5 + 0.25);
        ASSERT_NEAR(out.left[i] / kVoiceGain, expected, 1e-3) << i;
    }
    EXPECT_EQ(stage, 2);
    EXPECT_NEAR(rig.slot().filter.level, level, 1e-3);
}

TEST(FilterEnvelope, hardSpikeWithAttackZeroStartsAtTheTop)
{
    for (const float attack : {0.0f, 0.1f}) {
        ToneRig rig;
        rig.setFrom(kFilterAttack, {attack, 1.0f, 0.0f, 0.0f});
        rig.setRow(1, kConst, 85, 0.5);
        rig.on(60);
        rig.render(1, 1);
        EXPECT_EQ(rig.slot().filter.level > 0.99f, attack == 0.0f) << attack;
    }
}

TEST(ModEnvelope, climbsLinearlyAndDecaysToItsSustain)
{
    ToneRig rig;
    rig.setFrom(kModAttack, {0.25f, 0.25f, 0.5f, 0.25f}); // 20 ms
    rig.setRow(1, kModEnv, 3, 0.0);
    rig.on(60);
    const EnvelopeState& mod = rig.slot().mod;
    rig.render(441, 63);
    EXPECT_NEAR(mod.level, 0.5f, 1e-3f);
    rig.render(441, 63);
    EXPECT_NEAR(mod.level, 1.0f, 0.004f);
    rig.render(441, 63);
    EXPECT_NEAR(mod.level, std::sqrt(0.1f), 0.004f);
    rig.render(2000);
    EXPECT_EQ(mod.stage, EnvelopeStage::sustain);
    EXPECT_NEAR(mod.level, 0.25f, 0.001f);
    rig.off(60);
    rig.render(882);
    EXPECT_NEAR(mod.level, 0.025f, 0.001f);
}

TEST(ModEnvelope, sustainAboveTheLimitNeverDecaysAndReleaseOneNeither)
{
    ToneRig rig;
    rig.setFrom(kModAttack, {0.0f, 0.0f, 1.0f, 1.0f});
    rig.set(kAmpRelease, 0.9f);
    rig.setRow(1, kModEnv, 3, 0.0);
    rig.on(60);
    rig.render(4096);
    EXPECT_EQ(rig.slot().mod.level, 1.0f);
    rig.off(60);
    rig.render(4096);
    EXPECT_EQ(rig.slot().mod.level, 1.0f);
    EXPECT_EQ(rig.slot().mod.stage, EnvelopeStage::release);
}

} // namespace
} // namespace tolm
