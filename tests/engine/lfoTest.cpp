// LFOs: rates, tables, fades, draws and the running of their phases.

#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

constexpr int kFirstLfo = 13;

int lfoId(int n, int id)
{
    return id + n * kLfoIdStride;
}

std::uint32_t stepOfHz(double hz)
{
    return static_cast<std::uint32_t>(hz * kPhaseTurn / kRate);
}

// Advance of an LFO's phase in one frame.
std::uint32_t phaseStepOf(ToneRig& rig, std::size_t n)
{
    const std::uint32_t before = rig.slot().lfoPhase[n];
    rig.render(1, 1);
    return rig.slot().lfoPhase[n] - before;
}
void expectHz(double hz, ToneRig& rig, std::size_t n = 0)
{
    const double expected = stepOfHz(hz);
    EXPECT_NEAR(phaseStepOf(rig, n), expected, 1.0 + 2e-6 * expected) << hz << " Hz";
}

TEST(Lfo, freeRatesRunFromATenthToAHundredHertz)
{
    for (int n = 0; n < 3; ++n)
        for (const auto& [setting, hz] :
             {std::pair{0.0f, 0.1}, {0.5f, 3.16227766}, {1.0f, 100.0}}) {
            ToneRig rig;
            rig.set(lfoId(n, kLfo1Rate), setting);
            rig.set(lfoId(n, kLfo1Sync), 0.0f);
            rig.on(60);
            expectHz(hz, rig, static_cast<std::size_t>(n));
        }
}

TEST(Lfo, syncedDivisionsFollowTheTempo)
{
    // Beats of the longest division; each length comes dotted, plain and as a triplet, then halves.
    const double kinds[] = {48.0, 32.0, 64.0 / 3.0};
    ToneRig rig;
    rig.set(kLfo1Sync, 1.0f);
    rig.on(60);
    for (const double tempo : {40.0, 120.0, 173.5})
        for (int index = 0; index < 27; ++index) {
            rig.tempo = tempo;
            rig.set(kLfo1Rate, static_cast<float>((index + 0.3) / 26.001));
            expectHz(tempo / 60.0 / (kinds[index % 3] / std::exp2(index / 3)), rig);
        }
    rig.tempo = 120.0;
    rig.set(kLfo1Rate, 1.0f);
    expectHz(24.0, rig); // the last
    rig.set(kLfo1Rate, 0.0f);
    expectHz(1.0 / 24.0, rig); // the first
    rig.setRow(1, kConst, 34, 1.0);
    expectHz(24.0, rig); // moved by a row, clamped to the end
    rig.setRow(1, 0, 0, 0.0);
    expectHz(1.0 / 24.0, rig);
}

TEST(Lfo, tablesFollowShapeAndSkew)
{
    ToneRig rig;
    for (const float skew : {0.0f, 0.25f, 0.5f, 1.0f}) {
        const double v = skew;
        const int high = static_cast<int>(2032.0 * v) + 8;
        const auto table = [&](int shape) -> const std::array<float, kTableSize + 1>& {
            rig.set({{kLfo1Shape, shapeValue(shape)}, {kLfo1Skew, skew}});
            rig.render(1, 1);
            return rig.record().lfo[0].table;
        };
        for (int i = 0; i < 2048; ++i) {
            const double ramp = 1.0 - i / 2047.0;
            const double saw = 2.0 * (std::pow(ramp, 0.25 * std::pow(16.0, v)) - 0.5);
            // A step of the grid shows most where the root is steepest.
            ASSERT_NEAR(table(0)[static_cast<std::size_t>(i)], saw, i > 2040 ? 2e-2 : 2e-4)
                << skew << ' ' << i;
            if (i > 64 && i < 2032)
                i += 30; // the ends matter
        }
        const auto& pulse = table(1);
        EXPECT_EQ(std::count(pulse.begin(), pulse.begin() + 2048, 1.0f), high) << skew;
        EXPECT_EQ(pulse[static_cast<std::size_t>(high - 1)], 1.0f);
        EXPECT_EQ(pulse[static_cast<std::size_t>(high)], -1.0f);
        const auto& sine = table(2);
        for (int i = 0; i < 2048; i += 31) {
            const double s = 0.999 * std::sin(2.0 * kPi * i / 2048.0);
            const double bent = std::copysign(std::pow(std::abs(s), 0.5 * std::pow(4.0, v)), s);
            ASSERT_NEAR(sine[static_cast<std::size_t>(i)], bent, 1e-4) << skew << ' ' << i;
        }
    }
}

TEST(Lfo, fadesInByTheFrameFromTheNotesStart)
{
    ToneRig rig;
    rig.set(kLfo1Shape, shapeValue(1));
    rig.set(kLfo1Skew, 1.0f); // nearly always high
    rig.set({{kLfo1Reset, 1.0f}, {kLfo1Rate, 0.0f}, {kLfo1FadeIn, 0.5f}});
    const double fadeFrames = (0.01 * std::sqrt(1001.0) - 0.01) * kRate;
    rig.setRow(1, kFirstLfo, 47, 1.0); // 128 units at full depth
    rig.on(60);
    for (int age = 0; age < fadeFrames + 640; age += 64) {
        const std::uint32_t before = rig.slot().osc1Phase;
        rig.render(64, 64);
        const double step = (rig.slot().osc1Phase - before) / 64u;
        const double units = 128.0 * std::min(1.0, age / fadeFrames);
        const double heard = 1536.0 * std::log2(step / stepOfPitch(pitchOfKey(60), kRate));
        ASSERT_NEAR(heard, units, age < fadeFrames ? 1.0 : 1e-3) << age; // truncated to units
    }
}

TEST(Lfo, resetStartsThePhaseWithTheNoteAndOnlyThen)
{
    for (const bool reset : {false, true}) {
        ToneRig rig;
        rig.set(kLfo1Reset, reset ? 1.0f : 0.0f);
        rig.slot().lfoPhase[0] = 0x40000000u;
        rig.on(60);
        rig.render(1, 1);
        const std::uint32_t start = reset ? 0u : 0x40000000u;
        EXPECT_EQ(rig.slot().lfoPhase[0], start + stepOfHz(rig.record().lfo[0].frequency.hz));
    }
}

TEST(Lfo, phasesRunInSilentSlotsWhileAnotherSoundsAndStandInSilence)
{
    ToneRig rig;
    rig.render(1000);
    EXPECT_EQ(rig.slot(3).lfoPhase[1], 0u);
    rig.on(60);
    const std::uint32_t step = phaseStepOf(rig, 1);
    rig.render(999);
    EXPECT_EQ(rig.slot(3).lfoPhase[1], step * 1000u);
    EXPECT_EQ(rig.slot(0).lfoPhase[1], step * 1000u);
    // Slots beyond the polyphony are not in use.
    EXPECT_EQ(rig.slot(static_cast<std::size_t>(rig.record().polyphony)).lfoPhase[1], 0u);
}

TEST(Lfo, sampleAndHoldDrawsAtTheStartAndAtEveryWrap)
{
    ToneRig rig;
    rig.set({{kLfo1Shape, 1.0f}, {kLfo1Reset, 1.0f}});
    rig.set(kLfo1Rate, 1.0f); // 100 Hz: a wrap every 441 frames
    rig.on(60);
    rig.engine.seed(99u);
    std::uint32_t state = 99u;
    const auto draw = [&state] {
        state = state * 214013u + 2531011u;
        return 2.0 * static_cast<double>((state >> 16) & 0x7FFFu) / 32767.0 - 1.0;
    };
    for (const float skew : {0.0f, 0.5f, 1.0f}) {
        rig.set(kLfo1Skew, skew);
        const double corner = std::pow(100000.0, 1.0 - skew);
        const double k = 1.0 - std::exp(-2.0 * kPi * corner / kRate);
        int draws = 0;
        for (int call = 0; call < 70; ++call) {
            const VoiceSlot& slot = rig.slot();
            double held = slot.lfoHeld[0];
            const double smoothed = slot.lfoSmoothed[0];
            const std::uint64_t end =
                slot.lfoPhase[0] + static_cast<std::uint64_t>(stepOfHz(100.0)) * 64u;
            if (rig.record().voiceNote[0].age == 0 || end > 0xFFFFFFFFull) {
                held = draw();
                ++draws;
            }
            rig.render(64, 64);
            ASSERT_NEAR(slot.lfoHeld[0], held, 1e-6) << call;
            ASSERT_NEAR(slot.lfoSmoothed[0], smoothed + (held - smoothed) * k, 1e-5) << call;
        }
        EXPECT_NEAR(draws, 70 * 64 / 441, 1);
    }
}

} // namespace
} // namespace tolm
