// The shapers before the filter and the saturation behind it, against their formulas.

#include "tests/engine/spectrum.h"
#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

constexpr int kFrames = 600;

// The saw of oscillator 1 behind the shaper of a filter type with an open low-pass.
std::vector<double> shaped(int type, float offset)
{
    ToneRig rig;
    rig.set({{kFilterType, static_cast<float>(type)}, {kFilterOffset, offset}});
    rig.hold(60).osc1Phase = 0;
    return rig.mix(kFrames);
}
const std::vector<double>& plain()
{
    static const std::vector<double> sound = shaped(0, 0.0f);
    return sound;
}

// The shaper table: tanh over 4096 steps up to 80.
double saturated(double x)
{
    return std::tanh(80.0 * x);
}

TEST(Shaper, distortionDrivesTheSaturationTable)
{
    for (const float offset : {0.0f, 0.5f, 1.0f}) {
        const double drive = 0.0125 * std::pow(80.0, offset);
        const std::vector<double> sound = shaped(2, offset);
        for (std::size_t i = 0; i < sound.size(); ++i)
            ASSERT_NEAR(sound[i], saturated(plain()[i] * drive), 3e-4) << offset << ' ' << i;
    }
}

TEST(Shaper, crushRoundsHalfAwayFromZero)
{
    for (const float offset : {0.0f, 0.6f, 0.9f, 1.0f}) {
        const double steps = 0.75 * std::pow(512.0 / 0.75, 1.0 - offset);
        const std::vector<double> sound = shaped(4, offset);
        int near = 0;
        for (std::size_t i = 0; i < sound.size(); ++i) {
            const double scaled = plain()[i] * steps;
            if (std::abs(std::abs(scaled - std::trunc(scaled)) - 0.5) < 1e-3)
                ++near; // either side is right within the rounding of the comparison
            else
                ASSERT_NEAR(sound[i], std::round(scaled) / steps, 2e-5) << offset << ' ' << i;
        }
        EXPECT_LT(near, kFrames / 20);
    }
}

TEST(Shaper, followingHighpassStandsAtAMultipleOfThePitch)
{
    for (const float offset : {0.0f, 0.5f, 1.0f}) {
        const double corner = 440.0 * std::exp2(-0.75) * 0.0625 * std::pow(256.0, offset);
        const double w = std::tan(kPi * corner / kRate);
        const std::vector<double> sound = shaped(6, offset);
        double previous = 0.0;
        double y = 0.0;
        for (std::size_t i = 0; i < sound.size(); ++i) {
            y = (plain()[i] - previous - (w - 1.0) * y) / (w + 1.0);
            previous = plain()[i];
            ASSERT_NEAR(sound[i], y, 5e-5) << offset << ' ' << i;
        }
    }
    ToneRig low(8000.0); // the corner is held below the Nyquist frequency
    low.set({{kFilterType, 6.0f}, {kFilterOffset, 1.0f}});
    low.hold(110);
    EXPECT_LT(peak(low.render(4000).left), 2.0);
}

TEST(Shaper, saturationMixesTheDrivenLadderIn)
{
    const auto play = [](int type, float offset) {
        ToneRig rig;
        rig.set({{kFilterType, static_cast<float>(type)}, {kFilterOffset, offset}});
        rig.set({{kFilterResonance, 0.7f}, {kFilterCutoff, 0.8f}});
        rig.hold(48).osc1Phase = 0;
        return rig.render(kFrames).left;
    };
    const std::vector<float> ladder = play(7, 0.0f);
    for (const float offset : {0.0f, 0.4f, 1.0f}) {
        const double drive = 0.020625 * std::pow(64.0, offset / 2.0);
        const std::vector<float> sound = play(5, offset);
        for (std::size_t i = 0; i < sound.size(); ++i) {
            const double x = ladder[i] / kVoiceGain;
            ASSERT_NEAR(sound[i] / kVoiceGain, x * (1.0 - offset) + saturated(x * drive) * offset,
                        3e-4)
                << offset << ' ' << i;
        }
    }
}

} // namespace
} // namespace tolm
