// What parameter values become inside the engine: steps, thresholds and clamped ends. The settings
// that pass through a plain formula are proved by the sound that they make.

#include "tests/engine/rig.h"

#include <gtest/gtest.h>

#include <functional>

namespace tolm {
namespace {

using R = const EngineRecord&;

struct Row {
    int id;
    std::function<double(R)> field;
    std::vector<std::pair<float, double>> becomes;
};

constexpr float kBelowOne = 0.99999f;
constexpr int kLfo2 = kLfoIdStride;
constexpr int kLfo3 = 2 * kLfoIdStride;

TEST(Apply, everyValueReachesItsField)
{
    const Row rows[] = {
        // clang-format off
        {kOsc1Shape, [](R r) { return int(r.oscillator[0].shape); },
         {{0.0f, 0}, {0.333f, 0}, {0.334f, 1}, {kBelowOne, 2}, {1.0f, 3}, {7.0f, 3}, {-1.0f, 0}}},
        {kOsc1Coarse, [](R r) { return r.oscillator[0].coarse; },
         {{0.0f, -36}, {0.5f, 0}, {48.0f / 72.0f, 12}, {kBelowOne, 35}, {1.0f, 36}, {2.0f, 36}}},
        {kOsc2Coarse, [](R r) { return r.oscillator[1].coarse; }, {{0.25f, -18}, {1.0f, 36}}},
        {kOsc1Fine, [](R r) { return r.oscillator[0].fine; }, {{kBelowOne, 63}, {1.0f, 64}}},
        {kOsc2Fat, [](R r) { return r.oscillator[1].fat; }, {{kBelowOne, 127}, {1.0f, 128}}},
        {kOsc2Fat, [](R r) { return r.oscillator[1].fatFactor; }, {{0.0f, 1.0}, {0.5f, 1.005}}},
        {kOsc1Wave, [](R r) { return r.oscillator[0].wave; },
         {{3.0f / 128.0f, 3}, {0.53f, 67}, {0.6f, 69}, {1.0f, 69}}},
        {kOsc3Shape, [](R r) { return int(r.osc3Shape); }, {{0.49f, 0}, {kBelowOne, 1}, {1.0f, 2}}},
        {kOsc3Level, [](R r) { return r.osc3Level; }, {{0.3f, 0.3}, {4.0f, 1}}},
        {kFilterRelease, [](R r) { return r.filterEnvelope.release; }, {{0.3f, 0.3}}},
        {kOscSync, [](R r) { return r.oscSync; }, {{1e-5f, 0}, {2e-5f, 1}}},
        {kLfo1Shape + kLfo2, [](R r) { return int(r.lfo[1].shape); }, {{0.3f, 0}, {kBelowOne, 2}}},
        {kLfo1FadeIn, [](R r) { return r.lfo[0].fadeSeconds; }, {{0.01f, 0}, {1.0f, 10}}},
        {kLfo1Sync, [](R r) { return r.lfo[0].sync; }, {{1e-5f, 0}, {2e-5f, 1}}},
        {kLfo1Reset + kLfo3, [](R r) { return r.lfo[2].keyReset; }, {{0.4f, 0}, {0.401f, 1}}},
        {kArpRange, [](R r) { return r.arp.rangeSemitones; }, {{0.49f, 0}, {0.5f, 12}, {1.0f, 24}}},
        {kArpLength, [](R r) { return r.arp.lengthShift; }, {{kBelowOne, 30}, {1.0f, 31}}},
        {kVolume, [](R r) { return r.outputGainTarget; }, {{0.5f, 1}, {1.0f, 4}, {3.0f, 4}}},
        {kVoiceDetune, [](R r) { return r.unisonDetune; }, {{kBelowOne, 63}, {1.0f, 64}}},
        {kVoices, [](R r) { return r.unisonVoices; },
         {{0.14f, 1}, {0.15f, 2}, {0.98f, 7}, {kBelowOne, 8}, {1.0f, 8}}},
        {kGlide, [](R r) { return r.glideOn; }, {{1e-7f, 0}, {1e-6f, 1}}},
        {kFmMode, [](R r) { return int(r.fmMode); },
         {{0.9f, 0}, {1.0f, 1}, {9.0f, 2}, {-3.0f, 0}}},
        {kArpSync, [](R r) { return r.arp.sync; }, {{0.001f, 0}, {0.0011f, 1}}},
        {kArpOn, [](R r) { return r.arp.on; }, {{0.0011f, 1}, {0.001f, 0}}},
        {kArpMode, [](R r) { return int(r.arp.mode); },
         {{2.9998f, 2}, {2.99995f, 3}, {99.0f, 6}, {-1.0f, 0}}},
        {kFilterType, [](R r) { return r.filterType; },
         {{2.999f, 2}, {17.0f, 17}, {1e9f, 18}, {-5.0f, 0}}},
        {kMonoMode, [](R r) { return r.monoMode; }, {{0.0001f, 0}, {0.00011f, 1}, {0.0f, 0}}},
        {kModSource1 + 23, [](R r) { return r.matrix[23].source; }, {{3.89f, 3}, {3.9f, 4}}},
        {kModAmount1, [](R r) { return r.matrix[0].amount; }, {{0.0f, -1}, {0.56f, 0.12}}},
        {kModDestination1 + 1, [](R r) { return r.matrix[1].destination; }, {{95.9f, 96}}},
        {kModVoices1 + 2, [](R r) { return r.matrix[2].voices; }, {{25.95f, 26}}},
        {kArpNote1 + 31, [](R r) { return r.arp.stepNote[31]; }, {{0.3f, 0.3}}},
        {kArpVelocity1, [](R r) { return r.arp.stepVelocity[0]; }, {{0.3f, 0.3}}},
        {kArpStepCount, [](R r) { return r.arp.steps; }, {{0.0f, 1}, {kBelowOne, 31}, {1.0f, 32}}},
        {kPolyphony, [](R r) { return r.polyphony; },
         {{0.0f, 8}, {0.5f, 40}, {kBelowOne, 71}, {1.0f, 72}, {5.0f, 72}}},
        {kPitchWheel, [](R r) { return r.bendRaw; }, {{0.0f, -8192}, {0.75f, 4096}, {1.0f, 8192}}},
        {kPitchWheel, [](R r) { return r.bendValue; }, {{0.25f, -0.5}, {9.0f, 1}}},
        // clang-format on
    };
    EngineRig rig;
    for (const Row& row : rows)
        for (const auto& [value, expected] : row.becomes) {
            rig.set(row.id, value);
            EXPECT_NEAR(row.field(rig.engine.record()), expected, 1e-6)
                << "parameter " << row.id << " at " << value;
        }
}

TEST(Apply, ignoresWhatItDoesNotKnow)
{
    EngineRig rig;
    rig.set(kFilterCutoff, 0.25f);
    for (const int id : {-1, 27, 39, 110, 112, 124, 152, 184, 216, 255, 322, 345, 347, 348, 100000})
        rig.engine.setEngineParameter(id, 0.9f);
    rig.engine.setEngineParameter(kFilterCutoff, std::nanf(""));
    EXPECT_EQ(rig.engine.record().cutoff.target, 0.25f);
}

TEST(Apply, volumeDoublesInTheOwnHostFromVersion15)
{
    EngineRig rig;
    auto& r = rig.engine.record();
    for (const bool own : {false, true})
        for (const int version : {14, 15, 16}) {
            rig.ownHost = own;
            r.engineVersion = version;
            rig.set(kVolume, 0.5f);
            EXPECT_EQ(r.outputGainTarget, own && version >= 15 ? 2.0f : 1.0f);
        }
}

TEST(Apply, anyTouchedVoiceSwitchPutsTheSelectionInForce)
{
    struct Step {
        int voice;
        float value;
        bool inForce;
    };
    EngineRig rig;
    auto& r = rig.engine.record();
    for (int u = 0; u < kMaxStack; ++u)
        rig.set(kVoice1 + u, 0.0f);
    for (const Step& step : {Step{2, 0.001f, true}, // not on, but not 0
                             Step{2, 0.0f, false}, Step{0, 1.0f, true}, Step{2, 1.0f, true},
                             Step{2, 0.0f, true}, Step{0, 0.0f, false}}) {
        rig.set(kVoice1 + step.voice, step.value);
        EXPECT_EQ(r.voiceSelectionActive, step.inForce) << step.voice << ' ' << step.value;
        EXPECT_EQ(r.stackSwitch[static_cast<std::size_t>(step.voice)], step.value == 1.0f);
    }
}

TEST(Apply, whatDependsOnTheRateFollowsIt)
{
    EngineRig rig;
    auto& r = rig.engine.record();
    rig.set(kGlide, 1.0f / 3.0f); // 10 ms
    rig.set(kLfo1Skew, 1.0f);
    for (const double rate : {44100.0, 96000.0}) {
        rig.engine.setSampleRate(rate);
        EXPECT_NEAR(r.glideCoefficient, std::pow(0.1, 100.0 / rate), 2e-6);
        EXPECT_NEAR(r.lfo[0].smoothing, 1.0 - std::exp(-2.0 * kPi / rate), 1e-6);
    }
}

} // namespace
} // namespace tolm
