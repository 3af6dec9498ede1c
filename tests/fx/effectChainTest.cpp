#include "fx/effectChain.h"
#include "plugin/catalogue.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

namespace tolm {

namespace {

constexpr EffectKind kKinds[] = {EffectKind::distortion, EffectKind::equaliser1,
                                 EffectKind::equaliser2, EffectKind::phaser,
                                 EffectKind::delay,      EffectKind::reverb};
constexpr int kSwitches[] = {kDistOn, kEq1On, kEq2On, kPhaserOn, kDelayOn, kReverbOn};

struct Rig {
    Random random{11};
    EffectChain chain{random};
    DelayModulation modulation;

    void set(int id, float value) { chain.setParameter(id, value); }
    void setAll(float value)
    {
        for (int id = kPhaserType; id <= kEq2Gain; ++id)
            set(id, value);
    }
    void switchAll(float value)
    {
        for (const int id : kSwitches)
            set(id, value);
    }
    Stereo run(Stereo s, std::initializer_list<int> slots, float tempo = 120.0f)
    {
        s.inBlocks([&](int n, float* const* ch) {
            for (const int slot : slots)
                chain.process(slot, n, ch, tempo, modulation);
        });
        return s;
    }
};

} // namespace

TEST(EffectChain, everySwitchReachesItsEffectAboveTheThreshold)
{
    for (std::size_t k = 0; k < 6; ++k) {
        Rig rig;
        for (const EffectKind kind : kKinds)
            EXPECT_FALSE(rig.chain.isOn(kind));
        rig.set(kSwitches[k], 0.001f);
        EXPECT_FALSE(rig.chain.isOn(kKinds[k]));
        rig.set(kSwitches[k], 0.0011f);
        for (const EffectKind kind : kKinds)
            EXPECT_EQ(rig.chain.isOn(kind), kind == kKinds[k]);
    }
}

// Each id changes the sound of its own effect and of no other.
TEST(EffectChain, everySettingReachesItsEffect)
{
    struct Row {
        int first, last;
        EffectKind kind;
    };
    const Row rows[] = {
        {kPhaserType, 84, EffectKind::phaser},   {kDelayType, 90, EffectKind::delay},
        {kReverbType, 96, EffectKind::reverb},   {kDistType, kDistAmount, EffectKind::distortion},
        {kEq1Type, 104, EffectKind::equaliser1}, {kEq2Type, kEq2Gain, EffectKind::equaliser2}};
    const auto sound = [](int changedId, EffectKind kind) {
        Rig rig;
        rig.setAll(0.3f);
        rig.switchAll(1.0f);
        if (changedId >= 0)
            rig.set(changedId, 0.8f);
        return rig.run(Stereo::noise(18000, 0.5f), {static_cast<int>(kind)}, 960.0f);
    };
    for (const EffectKind kind : kKinds) {
        const Stereo plain = sound(-1, kind);
        for (const Row& row : rows)
            for (int id = row.first; id <= row.last; ++id) {
                const float change = distance(plain, sound(id, kind));
                EXPECT_EQ(change > 1e-4f, row.kind == kind) << id;
                EXPECT_TRUE(row.kind == kind || change == 0.0f) << id;
            }
    }
}

TEST(EffectChain, slotsRunOnceTwiceOrNotAtAll)
{
    Rig rig;
    rig.switchAll(1.0f);
    rig.set(kDistType, 0.8f); // gain alone, through an open low-pass
    rig.set(kDistColour, 1.0f);
    rig.set(kDistDrive, 1.0f); // times 4
    rig.set(kDistAmount, 1.0f);
    const auto firstSample = [&](std::initializer_list<int> slots) {
        return rig.run(Stereo::impulse(1, 0.125f, 0.0f), slots).left[0];
    };
    EXPECT_NEAR(firstSample({0}), 0.5f, 1e-6f);
    EXPECT_NEAR(firstSample({0, 0}), 2.0f, 1e-5f);
    EXPECT_EQ(firstSample({-1, 6, 7, 1000000}), 0.125f);
    rig.set(kDistOn, 0.0f);
    EXPECT_EQ(firstSample({0, 0}), 0.125f);
}

TEST(EffectChain, switchingOffKeepsTheState)
{
    Rig rig;
    rig.set(kDelayOn, 1.0f);
    rig.set(kDelayType + 1, 0.5f); // colour
    rig.set(kDelayType + 3, 1.0f); // amount
    rig.set(kDelayRateLeft, 1.0f); // 1/64T: 20.8 ms at 120
    rig.run(Stereo::impulse(10, 1.0f, 0.0f), {4});
    rig.set(kDelayOn, 0.0f);
    const Stereo dry = Stereo::noise(500, 0.5f);
    EXPECT_EQ(rig.run(dry, {4}).left, dry.left);
    rig.set(kDelayOn, 1.0f);
    EXPECT_NEAR(rig.run(Stereo(1000), {4}).left[918 - 10], 1.0f, 1e-6f);
}

TEST(EffectChain, resetClearsPhaserDelayAndReverbOnly)
{
    Rig rig;
    rig.setAll(0.4f);
    rig.switchAll(1.0f);
    for (const int slot : {0, 1, 2, 3, 4, 5}) {
        rig.run(Stereo::noise(6000, 0.5f), {slot});
        rig.chain.reset();
        const float left = rig.run(Stereo(6000), {slot}).peak();
        EXPECT_TRUE(slot < 3 ? left > 1e-6f : left < 1e-12f) << slot << ' ' << left;
    }
}

// A new rate starts the reverb as "Room", undamped, and amounts stay.
TEST(EffectChain, rateChangeLeavesDefaultsUntilSettingsReturn)
{
    Rig a, b;
    for (Rig* rig : {&a, &b}) {
        rig->switchAll(1.0f);
        rig->set(kReverbType + 3, 1.0f);
    }
    a.set(kReverbType, 1.0f);
    a.set(kReverbType + 2, 0.0f);
    a.chain.setSampleRate(48000.0);
    b.chain.setSampleRate(48000.0);
    const Stereo s = a.run(Stereo::impulse(30000, 1.0f, 1.0f), {5});
    const Stereo t = b.run(Stereo::impulse(30000, 1.0f, 1.0f), {5});
    EXPECT_LT(distance(s.left, t.left), 0.3f); // the diffuse taps are drawn anew
    EXPECT_NEAR(energy(s.left, 20000, 30000) / energy(t.left, 20000, 30000), 1.0, 0.1);
}

// Every effect with all its settings at their ends and jumping, noise at full level, rates from
// lowest to highest, an LFO that sweeps the delay as far as it goes.
TEST(EffectChain, extremesStayFiniteAndBounded)
{
    // Resonance amplifies: bands by 3 and when they jump by more, phasers by up to 100, delays up
    // to their limit, the longest reverb by the sum of 64 lines.
    constexpr float kBounds[] = {8.0f, 32.0f, 32.0f, 150.0f, 600.0f, 1000.0f};
    const std::vector<float> lfo = squareLfo();
    Random dice(99);
    for (const double rate : {1000.0, 8000.0, 44100.0, 384000.0, 768000.0}) {
        for (int slot = 0; slot < 6; ++slot) {
            SCOPED_TRACE(testing::Message() << rate << " " << slot);
            Rig rig;
            rig.chain.setSampleRate(rate);
            rig.switchAll(1.0f);
            rig.modulation = {0x01234567, 0x80000000u, 24.0f, lfo.data()};
            float peak = 0.0f;
            for (int round = 0; round < 40; ++round) {
                for (int id = kPhaserType; id <= kEq2Gain; ++id) {
                    constexpr float kEnds[] = {0.0f, 1.0f, 1.0f};
                    const int draw = dice.next() % 4;
                    rig.set(id,
                            draw < 3 ? kEnds[draw] : static_cast<float>(dice.next()) / 32767.0f);
                }
                const Stereo noise = Stereo::noise(1000, 1.0f, static_cast<std::uint32_t>(round));
                peak =
                    std::max(peak, rig.run(noise, {slot}, round % 2 == 0 ? 1.0f : 1000.0f).peak());
            }
            EXPECT_LT(peak, kBounds[slot]);
            EXPECT_GT(peak, 0.5f);
        }
    }
}

TEST(EffectChain, settingsThatAreNoNumbersCountAsZero)
{
    Rig rig;
    rig.switchAll(1.0f);
    for (const float value : {NAN, INFINITY, -INFINITY, 1e30f, -1e30f}) {
        rig.setAll(value);
        EXPECT_LT(rig.run(Stereo::noise(3000, 0.5f), {0, 1, 2, 3, 4, 5}).peak(), 1e4f);
    }
}

} // namespace tolm
