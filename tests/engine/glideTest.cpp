// Pitch bend, modulation wheel and glide, in units of 1/128 semitone.

#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

// Plays one call and tells oscillator 1's step in it.
std::uint32_t callStep(ToneRig& rig, int frames = 1, std::size_t voice = 0)
{
    const std::uint32_t before = rig.slot(voice).osc1Phase;
    rig.render(frames, frames);
    return (rig.slot(voice).osc1Phase - before) / static_cast<std::uint32_t>(frames);
}

TEST(Bend, smoothsInTruncatingIntegers)
{
    for (const auto& [raw, settles] : {std::pair{8191, 8184}, {-8192, -8185}, {100, 93}}) {
        ToneRig rig;
        rig.record().bendRaw = raw;
        int model = 0;
        for (int call = 1; call <= 200; ++call) {
            rig.render(1, 1);
            model = (raw * 16 + model * 112) / 128;
            ASSERT_EQ(rig.record().bendSmoothed, model);
            if (call == 35 && std::abs(raw) > 8000) {
                EXPECT_GT(std::abs(model), std::abs(raw) * 0.99);
            }
        }
        EXPECT_EQ(model, settles);
    }
}

TEST(Bend, rangesAreIndependent)
{
    struct Case {
        int smoothed;
        int up, down;
        int offset;
    };
    for (const Case& c : {Case{8184, 2, 2, 255}, Case{-8185, 2, 2, -255}, Case{8184, 0, 12, 0},
                          Case{-8192, 0, 12, -1536}, Case{4096, 64, 0, 4096}}) {
        ToneRig rig;
        EngineRecord& r = rig.record();
        r.bendUpRange = c.up;
        r.bendDownRange = c.down;
        rig.on(60);
        r.bendSmoothed = r.bendRaw = c.smoothed;
        EXPECT_EQ(callStep(rig), stepOfPitch(pitchOfKey(60) + c.offset, kRate)) << c.offset;
    }
}

TEST(Bend, wheelParameterAndReset)
{
    ToneRig rig;
    const EngineRecord& r = rig.record();
    rig.set(kPitchWheel, 0.25f);
    EXPECT_EQ(r.bendRaw, -4096);
    EXPECT_EQ(r.bendValue, -0.5);
    rig.render(6400);
    const int smoothed = r.bendSmoothed;
    EXPECT_LT(smoothed, -4000);
    rig.engine.resetVoices();
    EXPECT_EQ(r.bendRaw, 0);
    EXPECT_EQ(r.bendOffset, 0);
    EXPECT_EQ(r.bendSmoothed, smoothed); // glides back
    rig.render(64, 64);
    EXPECT_EQ(r.bendSmoothed, smoothed * 112 / 128);
}

TEST(ModWheel, smoothsOncePerCallAndEndsAtZero)
{
    ToneRig rig;
    EngineRecord& r = rig.record();
    rig.set(kModWheel, 1.0f);
    double model = 0.0;
    for (int call = 0; call < 50; ++call) {
        rig.render(64, 64);
        model = 0.1 + 0.9 * model;
        ASSERT_NEAR(r.modWheelSmoothed, model, 1e-12);
    }
    rig.set(kModWheel, 0.0f);
    rig.render(64 * 105, 64); // 0.9^109 is the last above 0.00001
    EXPECT_GT(r.modWheelSmoothed, 0.00001);
    rig.render(64 * 6, 64);
    EXPECT_EQ(r.modWheelSmoothed, 0.0);
}

// Once per call, whatever the number of voices.
TEST(Glide, longestTimeLosesNineTenthsInASecondAndEndsAtZero)
{
    ToneRig rig;
    rig.set(kMonoMode, 1.0f);
    rig.set(kVoices, 1.0f); // eight
    rig.set(kGlide, 1.0f);
    rig.hold(48);
    rig.render(64);
    EXPECT_EQ(rig.record().glideOffset, 0.0f); // the first note does not glide
    rig.on(60);
    EXPECT_EQ(rig.record().glideOffset, -1536.0f);
    // The call's own decay is in force for all of it.
    const double first = 1536.0 * std::pow(0.1, 64.0 / kRate);
    EXPECT_EQ(callStep(rig, 64), stepOfPitch(static_cast<int>(pitchOfKey(60) - first), kRate));
    rig.render(44100 - 64);
    EXPECT_NEAR(rig.record().glideOffset, -153.6, 0.1);
    rig.set(kGlide, 1e-6f); // on, a millisecond
    rig.render(64 * 40, 64);
    EXPECT_EQ(rig.record().glideOffset, 0.0f);
}

TEST(Glide, whileOffItCollectsAndOnceSwitchedOnItMovesTheWholeChord)
{
    ToneRig rig;
    rig.hold(60);
    rig.on(62);
    rig.on(67);
    EXPECT_EQ(rig.record().glideOffset, -7.0f * 128.0f);
    EXPECT_EQ(callStep(rig, 64), stepOfPitch(pitchOfKey(60), kRate));
    EXPECT_EQ(rig.record().glideOffset, -7.0f * 128.0f);
    rig.set(kGlide, 1.0f);
    for (const int v : {0, 1}) {
        const std::uint32_t step = callStep(rig, 1, static_cast<std::size_t>(v));
        const int pitch = pitchOfKey(60 + 2 * v) + static_cast<int>(rig.record().glideOffset);
        EXPECT_NEAR(step, stepOfPitch(pitch, kRate), 1e-3 * step) << v; // a unit is 0.045 %
    }
    EXPECT_GT(rig.record().glideOffset, -7.0f * 128.0f);
    // In silence it stands still.
    rig.record().voiceActive.fill(0);
    const float left = rig.record().glideOffset;
    rig.render(6400);
    EXPECT_EQ(rig.record().glideOffset, left);
}

} // namespace
} // namespace tolm
