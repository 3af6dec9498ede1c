// What each parameter value becomes inside the engine. Expected numbers are written out.

#include "tests/engine/rig.h"

#include <gtest/gtest.h>

#include <functional>

namespace tolm {
namespace {

struct Case {
    int id;
    float value;
    double expected;
};
struct Field {
    const char* name;
    std::function<double(const EngineRecord&)> read;
    double tolerance;
    std::vector<Case> cases;
};

constexpr float kBelowOne = 0.99999f;

const std::vector<Field>& fields()
{
    using R = const EngineRecord&;
    static const std::vector<Field> kFields = {
        {"osc 1 shape",
         [](R r) { return double(int(r.oscillator[0].shape)); },
         0.0,
         {{0, 0.0f, 0},
          {0, 0.333f, 0},
          {0, 0.334f, 1},
          {0, kBelowOne, 2},
          {0, 1.0f, 3},
          {0, 7.0f, 3},
          {0, -1.0f, 0}}},
        {"osc 1 coarse",
         [](R r) { return double(r.oscillator[0].coarse); },
         0.0,
         {{1, 0.0f, -36},
          {1, 0.5f, 0},
          {1, kBelowOne, 35},
          {1, 1.0f, 36},
          {1, 2.0f, 36},
          {1, 48.0f / 72.0f, 12}}},
        {"osc 2 coarse",
         [](R r) { return double(r.oscillator[1].coarse); },
         0.0,
         {{6, 0.25f, -18}, {6, 1.0f, 36}}},
        {"osc 1 fine",
         [](R r) { return double(r.oscillator[0].fine); },
         0.0,
         {{2, 0.0f, -64}, {2, 0.5f, 0}, {2, kBelowOne, 63}, {2, 1.0f, 64}}},
        {"osc 2 fat",
         [](R r) { return double(r.oscillator[1].fat); },
         0.0,
         {{8, 0.0f, 0}, {8, kBelowOne, 127}, {8, 1.0f, 128}}},
        {"osc 2 fat factor",
         [](R r) { return double(r.oscillator[1].fatFactor); },
         1e-6,
         {{8, 0.0f, 1.0}, {8, 0.5f, 1.005}, {8, 1.0f, 1.01}}},
        {"osc 1 wave",
         [](R r) { return double(r.oscillator[0].wave); },
         0.0,
         {{4, 0.0f, 0}, {4, 3.0f / 128.0f, 3}, {4, 0.53f, 67}, {4, 0.6f, 69}, {4, 1.0f, 69}}},
        {"osc 3 shape",
         [](R r) { return double(int(r.osc3Shape)); },
         0.0,
         {{10, 0.49f, 0}, {10, 0.5f, 1}, {10, kBelowOne, 1}, {10, 1.0f, 2}}},
        {"osc 3 level",
         [](R r) { return double(r.osc3Level); },
         1e-7,
         {{11, 0.3f, 0.3}, {11, 4.0f, 1}}},
        {"osc mix", [](R r) { return double(r.oscMix); }, 1e-7, {{12, 0.3f, 0.3}}},
        {"noise level", [](R r) { return double(r.noiseLevel); }, 1e-7, {{14, 0.3f, 0.3}}},
        {"ring", [](R r) { return double(r.ringMod); }, 1e-7, {{15, 0.3f, 0.3}}},
        {"pulse width", [](R r) { return double(r.pulseWidth.target); }, 1e-7, {{16, 0.3f, 0.3}}},
        {"fm", [](R r) { return double(r.fm.target); }, 1e-6, {{17, 0.3f, 1.2}, {17, 1.0f, 4}}},
        {"amp attack", [](R r) { return double(r.ampEnvelope.attack); }, 1e-7, {{18, 0.3f, 0.3}}},
        {"amp decay", [](R r) { return double(r.ampEnvelope.decay); }, 1e-7, {{19, 0.3f, 0.3}}},
        {"amp sustain",
         [](R r) { return double(r.ampEnvelope.sustain); },
         1e-6,
         {{20, 0.3f, 0.09}}},
        {"amp release", [](R r) { return double(r.ampEnvelope.release); }, 1e-7, {{21, 0.3f, 0.3}}},
        {"filter attack",
         [](R r) { return double(r.filterEnvelope.attack); },
         1e-7,
         {{22, 0.3f, 0.3}}},
        {"filter decay",
         [](R r) { return double(r.filterEnvelope.decay); },
         1e-7,
         {{23, 0.3f, 0.3}}},
        {"filter sustain",
         [](R r) { return double(r.filterEnvelope.sustain); },
         1e-6,
         {{24, 0.5f, 0.25}}},
        {"filter release",
         [](R r) { return double(r.filterEnvelope.release); },
         1e-7,
         {{25, 0.3f, 0.3}}},
        {"keytrack", [](R r) { return double(r.filterKeytrack); }, 1e-7, {{26, 0.3f, 0.3}}},
        {"cutoff", [](R r) { return double(r.cutoff.target); }, 1e-7, {{28, 0.3f, 0.3}}},
        {"resonance", [](R r) { return double(r.resonance); }, 1e-7, {{29, 0.3f, 0.3}}},
        {"env amount", [](R r) { return double(r.filterEnvAmount); }, 1e-7, {{30, 0.3f, 0.3}}},
        {"offset", [](R r) { return double(r.filterOffset); }, 1e-7, {{31, 0.3f, 0.3}}},
        {"sync", [](R r) { return double(r.oscSync); }, 0.0, {{32, 1e-5f, 0}, {32, 2e-5f, 1}}},
        {"lfo 2 shape",
         [](R r) { return double(int(r.lfo[1].shape)); },
         0.0,
         {{42, 0.3f, 0}, {42, kBelowOne, 2}, {42, 1.0f, 3}}},
        {"lfo 1 rate", [](R r) { return double(r.lfo[0].rate); }, 1e-7, {{34, 0.3f, 0.3}}},
        {"lfo 3 saw exponent",
         [](R r) { return double(r.lfo[2].sawExponent); },
         1e-5,
         {{53, 0.0f, 0.25}, {53, 0.5f, 1}, {53, 1.0f, 4}}},
        {"lfo 3 sine exponent",
         [](R r) { return double(r.lfo[2].sineExponent); },
         1e-5,
         {{53, 0.0f, 0.5}, {53, 0.5f, 1}, {53, 1.0f, 2}}},
        {"lfo 1 smoothing",
         [](R r) { return double(r.lfo[0].smoothing); },
         1e-6,
         {{35, 1.0f, 1.0 - std::exp(-2.0 * kPi / 44100.0)},
          {35, 0.0f, 1.0 - std::exp(-2.0 * kPi * 1e5 / 44100.0)}}},
        {"lfo 1 fade",
         [](R r) { return double(r.lfo[0].fadeSeconds); },
         1e-4,
         {{36, 0.0f, 0},
          {36, 0.01f, 0},
          {36, 0.5f, 0.01 * std::sqrt(1001.0) - 0.01},
          {36, 1.0f, 10}}},
        {"lfo 1 sync",
         [](R r) { return double(r.lfo[0].sync); },
         0.0,
         {{37, 1e-5f, 0}, {37, 2e-5f, 1}}},
        {"lfo 3 reset",
         [](R r) { return double(r.lfo[2].keyReset); },
         0.0,
         {{56, 0.4f, 0}, {56, 0.401f, 1}}},
        {"mod attack", [](R r) { return double(r.modEnvelope.attack); }, 1e-7, {{57, 0.3f, 0.3}}},
        {"mod decay", [](R r) { return double(r.modEnvelope.decay); }, 1e-7, {{58, 0.3f, 0.3}}},
        {"mod sustain",
         [](R r) { return double(r.modEnvelope.sustain); },
         1e-6,
         {{59, 0.3f, 0.09}}},
        {"mod release", [](R r) { return double(r.modEnvelope.release); }, 1e-7, {{60, 0.3f, 0.3}}},
        {"feedback", [](R r) { return double(r.fmFeedback); }, 1e-7, {{61, 0.3f, 0.3}}},
        {"arp blend", [](R r) { return double(r.arp.velocityBlend); }, 1e-7, {{70, 0.3f, 0.3}}},
        {"arp range",
         [](R r) { return double(r.arp.rangeSemitones); },
         0.0,
         {{70, 0.49f, 0}, {70, 0.5f, 12}, {70, 1.0f, 24}}},
        {"arp Hz",
         [](R r) { return r.arp.rateHz; },
         1e-5,
         {{71, 0.0f, 0.1}, {71, 0.5f, std::sqrt(10.0)}, {71, 1.0f, 100}}},
        {"arp length",
         [](R r) { return double(r.arp.lengthShift); },
         0.0,
         {{72, 0.0f, -31}, {72, 0.5f, 0}, {72, kBelowOne, 30}, {72, 1.0f, 31}}},
        {"volume",
         [](R r) { return double(r.outputGainTarget); },
         1e-6,
         {{74, 0.0f, 0}, {74, 0.5f, 1}, {74, 1.0f, 4}, {74, 3.0f, 4}}},
        {"spread", [](R r) { return double(r.voiceSpread); }, 1e-7, {{75, 0.3f, 0.3}}},
        {"detune",
         [](R r) { return double(r.unisonDetune); },
         0.0,
         {{76, 0.0f, 0}, {76, 0.5f, 32}, {76, kBelowOne, 63}, {76, 1.0f, 64}}},
        {"voices",
         [](R r) { return double(r.unisonVoices); },
         0.0,
         {{77, 0.0f, 1},
          {77, 0.14f, 1},
          {77, 0.15f, 2},
          {77, 0.98f, 7},
          {77, kBelowOne, 8},
          {77, 1.0f, 8}}},
        {"glide on", [](R r) { return double(r.glideOn); }, 0.0, {{78, 1e-7f, 0}, {78, 1e-6f, 1}}},
        {"glide factor",
         [](R r) { return double(r.glideCoefficient); },
         2e-6,
         {{78, 0.0f, std::pow(0.1, 1.0 / 44.1)}, {78, 1.0f, std::pow(0.1, 1.0 / 44100.0)}}},
        {"fm mode",
         [](R r) { return double(int(r.fmMode)); },
         0.0,
         {{111, 0.9f, 0}, {111, 1.0f, 1}, {111, 2.0f, 2}, {111, 9.0f, 2}, {111, -3.0f, 0}}},
        {"wheel", [](R r) { return r.modWheel; }, 1e-7, {{113, 0.3f, 0.3}}},
        {"arp sync",
         [](R r) { return double(r.arp.sync); },
         0.0,
         {{114, 0.001f, 0}, {114, 0.0011f, 1}}},
        {"arp on",
         [](R r) { return double(r.arp.on); },
         0.0,
         {{115, 0.0011f, 1}, {115, 0.001f, 0}}},
        {"arp mode",
         [](R r) { return double(int(r.arp.mode)); },
         0.0,
         {{125, 2.9998f, 2}, {125, 2.99995f, 3}, {125, 6.0f, 6}, {125, 99.0f, 6}, {125, -1.0f, 0}}},
        {"filter type",
         [](R r) { return double(r.filterType); },
         0.0,
         {{126, 2.999f, 2}, {126, 17.0f, 17}, {126, 1e9f, 18}, {126, -5.0f, 0}}},
        {"mono",
         [](R r) { return double(r.monoMode); },
         0.0,
         {{127, 0.0001f, 0}, {127, 0.00011f, 1}, {127, 0.0f, 0}}},
        {"row 24 source",
         [](R r) { return double(r.matrix[23].source); },
         0.0,
         {{151, 24.95f, 25}, {151, 3.89f, 3}, {151, 3.9f, 4}}},
        {"row 1 amount",
         [](R r) { return r.matrix[0].amount; },
         1e-12,
         {{160, 0.0f, -1},
          {160, 0.5f, 0},
          {160, 0.56f, 2.0 * double(0.56f) - 1.0},
          {160, 1.0f, 1}}},
        {"row 2 destination",
         [](R r) { return double(r.matrix[1].destination); },
         0.0,
         {{193, 95.9f, 96}, {193, 12.0f, 12}}},
        {"row 3 voices", [](R r) { return double(r.matrix[2].voices); }, 0.0, {{226, 25.95f, 26}}},
        {"step 32", [](R r) { return double(r.arp.stepNote[31]); }, 1e-7, {{287, 0.3f, 0.3}}},
        {"velocity 1", [](R r) { return double(r.arp.stepVelocity[0]); }, 1e-7, {{288, 0.3f, 0.3}}},
        {"arp steps",
         [](R r) { return double(r.arp.steps); },
         0.0,
         {{320, 0.0f, 1}, {320, kBelowOne, 31}, {320, 1.0f, 32}}},
        {"poly",
         [](R r) { return double(r.polyphony); },
         0.0,
         {{321, 0.0f, 8}, {321, 0.5f, 40}, {321, kBelowOne, 71}, {321, 1.0f, 72}, {321, 5.0f, 72}}},
        {"bend raw",
         [](R r) { return double(r.bendRaw); },
         0.0,
         {{346, 0.0f, -8192}, {346, 0.5f, 0}, {346, 0.75f, 4096}, {346, 1.0f, 8192}}},
        {"bend", [](R r) { return r.bendValue; }, 1e-12, {{346, 0.25f, -0.5}, {346, 9.0f, 1}}},
    };
    return kFields;
}

TEST(Apply, everyValueReachesItsField)
{
    EngineRig rig;
    for (const Field& field : fields()) {
        for (const Case& c : field.cases) {
            rig.set(c.id, c.value);
            EXPECT_NEAR(field.read(rig.engine.record()), c.expected, field.tolerance)
                << field.name << " at " << c.value;
        }
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
    for (const bool own : {false, true}) {
        for (const int version : {14, 15, 16}) {
            rig.ownHost = own;
            r.engineVersion = version;
            rig.set(kVolume, 0.5f);
            EXPECT_EQ(r.outputGainTarget, own && version >= 15 ? 2.0f : 1.0f);
        }
    }
}

TEST(Apply, anyTouchedVoiceSwitchPutsTheSelectionInForce)
{
    EngineRig rig;
    auto& r = rig.engine.record();
    for (int u = 0; u < kMaxStack; ++u)
        rig.set(kVoice1 + u, 0.0f);
    EXPECT_FALSE(r.voiceSelectionActive);
    rig.set(kVoice1 + 2, 0.001f); // not on, but not 0
    EXPECT_TRUE(r.voiceSelectionActive);
    EXPECT_FALSE(r.stackSwitch[2]);
    rig.set(kVoice1 + 2, 0.0f);
    EXPECT_FALSE(r.voiceSelectionActive);
    rig.set(kVoice1, 1.0f);
    rig.set(kVoice1 + 2, 1.0f);
    rig.set(kVoice1 + 2, 0.0f);
    EXPECT_TRUE(r.voiceSelectionActive);
    rig.set(kVoice1, 0.0f);
    EXPECT_FALSE(r.voiceSelectionActive);
}

TEST(Apply, filterTypeClearsEveryFilterButNoLatchedType)
{
    EngineRig rig;
    auto& r = rig.engine.record();
    rig.on(60);
    rig.render(256);
    const auto type = r.voiceFilterType[0];
    EXPECT_NE(r.slot[0].filterState[0], 0.0f);
    rig.set(kFilterType, 8.0f);
    for (const float state : r.slot[0].filterState)
        EXPECT_EQ(state, 0.0f);
    EXPECT_EQ(r.voiceFilterType[0], type);
    EXPECT_EQ(rig.sounding(), 1);
}

TEST(Apply, whatDependsOnTheRateFollowsIt)
{
    EngineRig rig;
    auto& r = rig.engine.record();
    rig.set(kGlide, 0.0f);
    rig.set(kLfo1Skew, 1.0f);
    rig.engine.setSampleRate(96000.0);
    EXPECT_NEAR(r.glideCoefficient, std::pow(0.1, 1.0 / 96.0), 2e-6);
    EXPECT_NEAR(r.lfo[0].smoothing, 1.0 - std::exp(-2.0 * kPi / 96000.0), 1e-6);
}

} // namespace
} // namespace tolm
