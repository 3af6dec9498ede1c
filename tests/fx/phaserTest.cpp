#include "fx/FxVintagePhaser.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

namespace tolm {

namespace {

constexpr double kRate = 44100.0;

float modeValue(int mode)
{
    return (static_cast<float>(mode) + 0.05f) / 6.1f;
}

struct Settings {
    float rate = 0.0f, frequency = 0.5f, feedback = 0.0f, amount = 1.0f, depth = 0.0f;
};

void apply(FxVintagePhaser& p, int mode, const Settings& s)
{
    const float values[] = {s.rate, s.frequency, s.feedback, s.amount, s.depth, modeValue(mode)};
    for (int i = 0; i < 6; ++i)
        p.setParameter(i, values[i]);
}

Stereo run(FxVintagePhaser& p, Stereo s)
{
    s.inBlocks([&](int n, float* const* ch) { p.process(n, ch); });
    return s;
}

// Sum of a stretch, and where its weight lies in it.
std::pair<double, double> centreOf(const std::vector<float>& x, std::size_t from, std::size_t count)
{
    double weight = 0.0, moment = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        weight += x[from + i];
        moment += x[from + i] * static_cast<double>(i);
    }
    return {weight, moment / weight};
}

// The stage chain as it is defined, one channel, frame by frame.
std::vector<float> plainNetwork(int mode, const Settings& s, const std::vector<float>& input)
{
    const int stages = mode == 2 ? 8 : 6;
    const int outputStage = mode == 0 ? 4 : stages;
    const double centre = 200.0 * std::pow(25.0, s.frequency);
    const double hz = 0.05 * std::pow(400.0, s.rate);
    const auto increment = static_cast<std::uint32_t>(4294967296.0 / kRate * hz);
    std::uint32_t phase = 0;
    float lowpass[8] = {};
    float fedBack = 0.0f;
    std::vector<float> output;
    for (const float in : input) {
        const double sine = 0.999 * std::sin(2.0 * kPi * (phase >> 21) / 2048.0);
        phase += increment;
        const double f = sine * s.depth * 0.75 * centre + centre;
        const double g = 1.0 - std::exp(-2.0 * kPi * f / kRate);
        double x = in - fedBack * 0.98f * s.feedback;
        float out = 0.0f;
        for (int k = 0; k < stages; ++k) {
            const double old = lowpass[k];
            lowpass[k] = static_cast<float>(old + g * (x - old));
            x = x - lowpass[k] - old;
            if (k == outputStage - 1)
                out = static_cast<float>(x);
        }
        fedBack = out;
        output.push_back((in + out) * s.amount + in * (1.0f - s.amount));
    }
    return output;
}

} // namespace

TEST(Phaser, networksFollowTheirDefinition)
{
    for (int mode = 0; mode < 3; ++mode) {
        SCOPED_TRACE(mode);
        const Settings settings{0.7f, 0.8f, 0.9f, 0.6f, 1.0f};
        FxVintagePhaser p;
        apply(p, mode, settings);
        const Stereo input = Stereo::noise(20000, 0.5f);
        const Stereo s = run(p, input);
        // Feedback of 0.88 amplifies roundings, and the increment may differ by one.
        EXPECT_LT(distance(s.left, plainNetwork(mode, settings, input.left)), 2e-3f);
        EXPECT_LT(distance(s.right, plainNetwork(mode, settings, input.right)), 2e-3f);
    }
}

TEST(Phaser, fourAndSixStagesShareOneHistory)
{
    FxVintagePhaser steady, switched;
    apply(steady, 1, {});
    apply(switched, 0, {});
    Stereo noise = Stereo::noise(4000, 0.5f);
    EXPECT_GT(distance(run(steady, noise), run(switched, noise)), 0.1f);
    switched.setParameter(FxVintagePhaser::mode, modeValue(1));
    noise = Stereo::noise(4000, 0.5f, 8);
    // Without feedback all six stages ran alike.
    EXPECT_LT(distance(run(steady, noise), run(switched, noise)), 1e-5f);
}

// The phaser forgets its network and restarts its sweep; the delay lines of flanger and chorus
// empty themselves when their level is 0, and only then.
TEST(Phaser, resetForgetsTheNetworkAndLeavesTheDelayLinesAlone)
{
    const Settings settings{0.9f, 0.5f, 0.8f, 0.7f, 1.0f};
    const Stereo before = Stereo::noise(3000, 1.0f);
    const Stereo after = Stereo::noise(3000, 1.0f, 9);
    for (const int mode : {2, 5}) {
        SCOPED_TRACE(mode);
        FxVintagePhaser reset, steady, fresh;
        for (FxVintagePhaser* p : {&reset, &steady, &fresh})
            apply(*p, mode, settings);
        run(reset, before);
        run(steady, before);
        reset.reset();
        const Stereo sound = run(reset, after);
        const float fromSteady = distance(sound, run(steady, after));
        const float fromFresh = distance(sound, run(fresh, after));
        EXPECT_EQ(mode == 2 ? fromFresh : fromSteady, 0.0f);
        EXPECT_GT(mode == 2 ? fromSteady : fromFresh, 0.01f);
    }
}

TEST(Chorus, delayTimesAndSignsOfTheFourModes)
{
    constexpr double kDelays[] = {0.1, 0.1, 0.2, 0.3};
    constexpr double kSigns[] = {1.0, -1.0, 1.0, 1.0};
    for (int mode = 3; mode < 7; ++mode) {
        SCOPED_TRACE(mode);
        FxVintagePhaser p;
        apply(p, mode, {0.0f, 1.0f, 0.0f, 1.0f, 0.0f}); // no smoothing, no sweep
        Stereo s(60000);                                // the glides settle
        s.left[40000] = s.right[40000] = 1.0f;
        s = run(p, s);
        const double d = kDelays[mode - 3];
        const double time = d * d * 0.99 + 0.01;
        // Reading before and writing after the clock's step adds one frame.
        const double expected = (2205.0 - 2.0) * time * 0.99 + 2.0 + 1.0;
        for (const auto* channel : {&s.left, &s.right}) {
            EXPECT_FLOAT_EQ((*channel)[40000], 1.0f); // dry
            const auto [weight, centre] = centreOf(*channel, 40001, 4000);
            EXPECT_NEAR(weight, kSigns[mode - 3], 0.05);
            EXPECT_NEAR(centre + 1.0, expected, 0.05);
        }
    }
}

// Depth 1 shortens the delay to a half at the LFO's top. The right side is 0.3 turns ahead and
// sweeps 1.1 times as fast.
TEST(Chorus, lfoSweepsTheDelayAndTheRightSideRunsFaster)
{
    FxVintagePhaser p;
    apply(p, 6, {0.5f, 1.0f, 0.0f, 1.0f, 1.0f}); // 1 Hz
    Stereo s(12 * 44100);
    constexpr std::size_t kPeriod = 441; // less than the shortest delay apart
    for (std::size_t i = 0; i < s.left.size(); i += kPeriod)
        s.left[i] = s.right[i] = 1.0f;
    s = run(p, s);
    const double longest = 2203.0 * (0.09 * 0.99 + 0.01) * 0.99 + 2.0; // 218 frames
    double crossing[2] = {}; // s, the last fall of the LFO through its middle
    for (std::size_t c = 0; c < 2; ++c) {
        double least = 1e9, most = 0.0, last = 0.0;
        for (std::size_t i = 2 * 44100; i + kPeriod < s.left.size(); i += kPeriod) {
            const double delay = centreOf(c == 0 ? s.left : s.right, i + 1, kPeriod - 1).second + 1;
            least = std::min(least, delay);
            most = std::max(most, delay);
            if (last != 0.0 && last < 0.75 * longest && delay >= 0.75 * longest)
                crossing[c] = static_cast<double>(i) / 44100.0;
            last = delay;
        }
        EXPECT_NEAR(most, longest, 4.0);
        EXPECT_NEAR(least, longest / 2.0, 4.0);
    }
    EXPECT_NEAR(std::remainder(1.1 * crossing[1] + 0.3 - crossing[0], 1.0), 0.0, 0.03);
}

TEST(Chorus, withoutAmountTheAudioIsUntouchedAndANewRateBringsDefaultsBack)
{
    const Stereo input = Stereo::noise(8000, 1.0f);
    for (int mode = 3; mode < 7; ++mode) {
        FxVintagePhaser p;
        apply(p, mode, {0.5f, 0.5f, 1.0f, 0.0f, 1.0f});
        EXPECT_EQ(distance(run(p, input), input), 0.0f) << mode;
        p.setSampleRate(44100.0); // the same rate keeps everything
        EXPECT_EQ(distance(run(p, input), input), 0.0f) << mode;
        p.setSampleRate(48000.0); // inverted wet at full amount until settings return
        EXPECT_GT(distance(run(p, input), input), 0.1f) << mode;
    }
}

} // namespace tolm
