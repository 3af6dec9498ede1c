// What a single voice sounds like: pitch, level, spectrum, envelopes, against the maths.

#include "tests/engine/rig.h"
#include "tests/engine/spectrum.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

constexpr double kRate = 44100.0;

double keyHz(int key)
{
    return 440.0 * std::exp2((key - 69) / 12.0);
}

// One oscillator through an open filter, at full sustain.
void openSine(EngineRig& rig)
{
    rig.set(kOsc1Shape, 0.7f);
    rig.set(kOscMix, 0.0f);
    rig.set(kFilterCutoff, 1.0f);
    rig.set(kFilterResonance, 0.0f);
    rig.set(kFilterEnvAmount, 0.0f);
    rig.set(kAmpAttack, 0.0f);
    rig.set(kAmpSustain, 1.0f);
    rig.set(kVolume, 0.5f);
}

// Gain of the two-pole low-pass at a coefficient f and damping q.
double svfGain(double f, double q, double hz)
{
    const auto z1 = std::polar(1.0, -2.0 * std::numbers::pi * hz / kRate); // z^-1
    // bp = f hp / (1 - z1), lp = f bp / (1 - z1), hp = x - z1 lp - q z1 bp.
    const auto integrator = f / (1.0 - z1);
    const auto hp = 1.0 / (1.0 + z1 * integrator * integrator + q * z1 * integrator);
    return std::abs(hp * integrator * integrator);
}

TEST(VoiceSound, everyKeyUpToTheEndOfThePitchTableIsInTune)
{
    // The table ends at key 119; the keys above it sound like its last entry. A phase difference
    // over short windows tells high keys apart only within a few cents.
    for (int key = 0; key <= 119; ++key) {
        EngineRig rig;
        openSine(rig);
        rig.on(key);
        rig.render(4096);
        const Stereo out = rig.render(key < 24 ? 88200 : key < 90 ? 22050 : 2205);
        const double hz = frequencyOf(out.left, keyHz(key), kRate);
        ASSERT_NEAR(1200.0 * std::log2(hz / keyHz(key)), 0.0, 2.0) << "key " << key;
    }
}

TEST(VoiceSound, oneSineHasTheLevelThatTheGainsPredict)
{
    EngineRig rig;
    openSine(rig);
    rig.on(57);
    rig.render(8192);
    const Stereo out = rig.render(22050);
    // Sine table 0.999, voice headroom 0.2, master 4 * 0.5^2 = 1; the envelope settles one decay
    // step below 0.9.
    const double level = static_cast<double>(rig.engine.record().slot[0].amp.level);
    EXPECT_NEAR(level, 0.9, 0.01);
    const double f = 2.0 * std::sin(std::numbers::pi * 22000.0 * std::pow(2200.0, -1.0 / 2048.0) /
                                    (3.0 * kRate));
    const double expected = 0.999 * 0.2 * level * svfGain(f, 1.0, keyHz(57));
    EXPECT_NEAR(db(amplitudeAt(out.left, keyHz(57), kRate) / expected), 0.0, 0.02);
    EXPECT_EQ(out.left, out.right);
}

TEST(VoiceSound, sawHasItsHarmonicsAndNoOthersBelowTheirLimit)
{
    EngineRig rig;
    openSine(rig);
    rig.set(kOsc1Shape, 0.0f);
    rig.on(60);
    rig.render(8192);
    const Stereo out = rig.render(44100);
    const double f = 2.0 * std::sin(std::numbers::pi * 22000.0 * std::pow(2200.0, -1.0 / 2048.0) /
                                    (3.0 * kRate));
    const double first = amplitudeAt(out.left, keyHz(60), kRate) / svfGain(f, 1.0, keyHz(60));
    for (int k : {2, 3, 5, 11, 30, 60}) {
        const double hz = k * keyHz(60);
        const double amplitude = amplitudeAt(out.left, hz, kRate) / svfGain(f, 1.0, hz);
        EXPECT_NEAR(db(amplitude / first), -20.0 * std::log10(k), 0.3) << "harmonic " << k;
    }
    // Between harmonics there is nothing but 16-bit and interpolation noise.
    for (double k : {1.5, 4.37, 20.5, 55.5})
        EXPECT_LT(db(amplitudeAt(out.left, k * keyHz(60), kRate) / first), -75.0) << k;
}

TEST(VoiceSound, pulseWidthZeroAndOneAreSilentAndHalfHasOddHarmonics)
{
    EngineRig rig;
    openSine(rig);
    rig.set(kOsc1Shape, 0.4f);
    rig.on(57);
    for (float width : {0.0f, 1.0f}) {
        rig.set(kPulseWidth, width);
        rig.render(8192);
        EXPECT_LT(peak(rig.render(4096).left), 1e-6) << width;
    }
    rig.set(kPulseWidth, 0.5f);
    rig.render(8192);
    const Stereo out = rig.render(44100);
    const double first = amplitudeAt(out.left, keyHz(57), kRate);
    EXPECT_LT(db(amplitudeAt(out.left, 2.0 * keyHz(57), kRate) / first), -60.0);
    EXPECT_NEAR(db(amplitudeAt(out.left, 3.0 * keyHz(57), kRate) / first), -9.54, 0.3);
}

TEST(VoiceSound, attackDecayAndReleaseTakeTheirTimes)
{
    for (const auto& [value, ms] : {std::pair{0.0f, 2.0}, {0.5f, 200.0}, {0.75f, 2000.0}}) {
        EngineRig rig;
        openSine(rig);
        rig.set(kAmpAttack, value);
        rig.set(kAmpDecay, 1.0f);
        rig.set(kAmpRelease, value);
        rig.on(60);
        const auto& amp = rig.engine.record().slot[0].amp;
        int frames = 0;
        while (amp.stage == EnvelopeStage::attack && frames < 1000000) {
            rig.render(1, 1);
            ++frames;
        }
        EXPECT_NEAR(frames, ms * 0.001 * kRate, 2.0) << value;
        const double start = static_cast<double>(amp.level);
        rig.off(60);
        rig.render(static_cast<int>(ms * 0.001 * kRate));
        EXPECT_NEAR(static_cast<double>(amp.level) / start, 0.1, 0.002) << value;
    }
}

TEST(VoiceSound, voiceEndsOnceItsReleaseIsInaudible)
{
    EngineRig rig;
    openSine(rig);
    rig.set(kAmpRelease, 0.25f); // 20 ms for 20 dB, so 180 ms for 180 dB
    rig.on(60);
    rig.render(4096);
    rig.off(60);
    rig.render(static_cast<int>(0.170 * kRate));
    EXPECT_EQ(rig.sounding(), 1);
    rig.render(static_cast<int>(0.020 * kRate));
    EXPECT_EQ(rig.sounding(), 0);
    EXPECT_EQ(peak(rig.render(512).left), 0.0);
}

TEST(VoiceSound, aStolenVoiceGoesOnFromItsLevel)
{
    EngineRig rig;
    openSine(rig);
    rig.set(kPolyphony, 0.0f);
    rig.set(kAmpAttack, 0.5f);
    for (int key = 40; key < 48; ++key)
        rig.on(key);
    rig.render(22050);
    const float before = rig.engine.record().slot[7].amp.level;
    rig.on(60); // equal ages: the highest index is taken
    rig.render(64);
    EXPECT_EQ(rig.engine.record().voiceNote[7].note, 60);
    EXPECT_GE(rig.engine.record().slot[7].amp.level, before);
}

} // namespace
} // namespace tolm
