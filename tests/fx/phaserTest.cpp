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

void run(FxVintagePhaser& p, Stereo& s)
{
    s.inBlocks([&](int n, float* const* ch) { p.process(n, ch); });
}

// The stage chain as it is defined, one channel, frame by frame.
std::vector<float> plainNetwork(int mode, const Settings& s, const std::vector<float>& input)
{
    const int stages = mode == 2 ? 8 : 6;
    const int outputStage = mode == 0 ? 4 : stages;
    const double centre = 200.0 * std::pow(25.0, static_cast<double>(s.frequency));
    const double hz = 0.05 * std::pow(400.0, static_cast<double>(s.rate));
    const auto increment = static_cast<std::uint32_t>(4294967296.0 / kRate * hz);
    std::uint32_t phase = 0;
    float lowpass[8] = {};
    float fedBack = 0.0f;
    std::vector<float> output;
    for (const float in : input) {
        const double sine = 0.999 * std::sin(2.0 * kPi * (phase >> 21) / 2048.0);
        phase += increment;
        const double f = sine * static_cast<double>(s.depth) * 0.75 * centre + centre;
        const double g = 1.0 - std::exp(-2.0 * kPi * f / kRate);
        double x = static_cast<double>(in - fedBack * 0.98f * s.feedback);
        float out = 0.0f;
        for (int k = 0; k < stages; ++k) {
            const double old = static_cast<double>(lowpass[k]);
            lowpass[k] = static_cast<float>(old + g * (x - old));
            x = x - static_cast<double>(lowpass[k]) - old;
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
        Stereo s = Stereo::noise(20000, 0.5f);
        const Stereo input = s;
        run(p, s);
        // Feedback of 0.88 amplifies roundings, and the increment may differ by one.
        EXPECT_LT(distance(s.left, plainNetwork(mode, settings, input.left)), 2e-3f);
        EXPECT_LT(distance(s.right, plainNetwork(mode, settings, input.right)), 2e-3f);
    }
}

// Without sweep and feedback the notches lie where the stages together turn by an odd number of
// half turns: each by pi - 2 atan(...) of the all-pass (a - 1/z) / (1 - a / z).
TEST(Phaser, notchesLieWhereTheStagesTurnByHalf)
{
    constexpr int kStages[] = {4, 6, 8};
    for (int mode = 0; mode < 3; ++mode) {
        FxVintagePhaser p;
        apply(p, mode, {});
        Stereo s = Stereo::impulse(20000, 1.0f, 1.0f);
        run(p, s);
        const double a = std::exp(-2.0 * kPi * 1000.0 / kRate); // centre 200 * sqrt(25) Hz
        int notches = 0;
        double previous = 0.0;
        for (double hz = 20.0; hz < 20000.0; hz *= 1.0005) {
            const std::complex<double> z = std::polar(1.0, -2.0 * kPi * hz / kRate);
            const auto total = std::pow((a - z) / (1.0 - a * z), kStages[mode]);
            const double turn = std::arg(-total); // passes 0 in a notch
            if (previous != 0.0 && std::abs(turn) < 0.5 && turn * previous < 0.0) {
                ++notches;
                EXPECT_LT(decibels(magnitudeAt(s.left, hz, kRate)), -45.0) << hz;
            }
            previous = turn;
        }
        EXPECT_EQ(notches, kStages[mode] / 2);
        EXPECT_NEAR(magnitudeAt(s.right, 5.0, kRate), 2.0, 0.01);
    }
}

TEST(Phaser, fourAndSixStagesShareOneHistory)
{
    FxVintagePhaser steady, switched;
    apply(steady, 1, {});
    apply(switched, 0, {});
    Stereo a = Stereo::noise(4000, 0.5f);
    Stereo b = a;
    run(steady, a);
    run(switched, b);
    EXPECT_GT(distance(a.left, b.left), 0.1f);
    switched.setParameter(FxVintagePhaser::mode, modeValue(1));
    a = b = Stereo::noise(4000, 0.5f, 8);
    run(steady, a);
    run(switched, b);
    EXPECT_LT(distance(a.left, b.left), 1e-5f); // without feedback all six stages ran alike
}

TEST(Phaser, resetForgetsTheNetworkAndRestartsTheSweep)
{
    const Settings settings{0.9f, 0.5f, 0.8f, 0.7f, 1.0f};
    FxVintagePhaser used, fresh;
    apply(used, 2, settings);
    apply(fresh, 2, settings);
    Stereo s = Stereo::noise(3000, 1.0f);
    run(used, s);
    used.reset();
    Stereo a = Stereo::noise(3000, 1.0f, 9);
    Stereo b = a;
    run(used, a);
    run(fresh, b);
    EXPECT_EQ(a.left, b.left);
    EXPECT_EQ(a.right, b.right);
}

// The lines empty themselves when their level is 0, and only then.
TEST(Chorus, resetLeavesTheLinesAlone)
{
    const Settings settings{0.4f, 0.5f, 0.8f, 0.7f, 1.0f};
    FxVintagePhaser interrupted, steady;
    for (FxVintagePhaser* p : {&interrupted, &steady}) {
        apply(*p, 5, settings);
        Stereo s = Stereo::noise(3000, 1.0f);
        run(*p, s);
    }
    interrupted.reset();
    Stereo a(3000);
    Stereo b = a;
    run(interrupted, a);
    run(steady, b);
    EXPECT_EQ(a.left, b.left);
    EXPECT_EQ(a.right, b.right);
    EXPECT_GT(a.peak(), 0.01f);
}

TEST(Chorus, delayTimesAndSignsOfTheFourModes)
{
    constexpr double kDelays[] = {0.1, 0.1, 0.2, 0.3};
    constexpr float kSigns[] = {1.0f, -1.0f, 1.0f, 1.0f};
    for (int mode = 3; mode < 7; ++mode) {
        SCOPED_TRACE(mode);
        FxVintagePhaser p;
        apply(p, mode, {0.0f, 1.0f, 0.0f, 1.0f, 0.0f}); // no smoothing, no sweep
        Stereo s(60000);                                // the glides settle
        s.left[40000] = s.right[40000] = 1.0f;
        run(p, s);
        const double d = kDelays[mode - 3];
        const double time = d * d * 0.99 + 0.01;
        // Reading before and writing after the clock's step adds one frame.
        const double expected = (2205.0 - 2.0) * time * 0.99 + 2.0 + 1.0;
        for (const auto* channel : {&s.left, &s.right}) {
            EXPECT_FLOAT_EQ((*channel)[40000], 1.0f); // dry
            double weight = 0.0, moment = 0.0;
            for (std::size_t i = 40001; i < 44000; ++i) {
                weight += static_cast<double>((*channel)[i]);
                moment += static_cast<double>((*channel)[i]) * static_cast<double>(i - 40000);
            }
            EXPECT_NEAR(weight, static_cast<double>(kSigns[mode - 3]), 0.05);
            EXPECT_NEAR(moment / weight, expected, 0.05);
        }
    }
}

// Depth 1 shortens the delay to a half at the LFO's top.
TEST(Chorus, lfoSweepsTheDelayAndTheRightSideRunsFaster)
{
    FxVintagePhaser p;
    apply(p, 6, {0.5f, 1.0f, 0.0f, 1.0f, 1.0f}); // 1 Hz
    Stereo s(6 * 44100);
    constexpr std::size_t kPeriod = 441; // less than the shortest delay apart
    for (std::size_t i = 0; i < s.left.size(); i += kPeriod)
        s.left[i] = s.right[i] = 1.0f;
    run(p, s);
    double least[2] = {1e9, 1e9}, most[2] = {0.0, 0.0};
    for (std::size_t c = 0; c < 2; ++c) {
        const auto& x = c == 0 ? s.left : s.right;
        for (std::size_t i = 2 * 44100 / kPeriod * kPeriod; i + kPeriod < x.size(); i += kPeriod) {
            double weight = 0.0, moment = 0.0;
            for (std::size_t k = 1; k < kPeriod; ++k) {
                weight += static_cast<double>(x[i + k]);
                moment += static_cast<double>(x[i + k]) * static_cast<double>(k);
            }
            least[c] = std::min(least[c], moment / weight);
            most[c] = std::max(most[c], moment / weight);
        }
    }
    const double longest = 2203.0 * (0.09 * 0.99 + 0.01) * 0.99 + 2.0; // 218 frames
    for (std::size_t c = 0; c < 2; ++c) {
        EXPECT_NEAR(most[c], longest, 4.0);
        EXPECT_NEAR(least[c], longest / 2.0, 4.0);
    }
    EXPECT_GT(distance(s.left, s.right), 0.1f);
}

TEST(Chorus, withoutAmountTheAudioIsUntouched)
{
    for (int mode = 3; mode < 7; ++mode) {
        FxVintagePhaser p;
        apply(p, mode, {0.5f, 0.5f, 1.0f, 0.0f, 1.0f});
        Stereo s = Stereo::noise(5000, 1.0f);
        const Stereo input = s;
        run(p, s);
        EXPECT_EQ(s.left, input.left);
        EXPECT_EQ(s.right, input.right);
    }
}

TEST(Chorus, newRateBringsDefaultsUntilSettingsReturn)
{
    FxVintagePhaser p;
    apply(p, 6, {0.0f, 0.0f, 0.0f, 0.0f, 0.0f});
    Stereo s = Stereo::noise(8000, 0.5f);
    const Stereo input = s;
    p.setSampleRate(44100.0); // the same rate keeps everything
    run(p, s);
    EXPECT_EQ(s.left, input.left);
    p.setSampleRate(48000.0); // inverted wet at full amount
    s = input;
    run(p, s);
    EXPECT_GT(distance(s.left, input.left), 0.1f);
}

} // namespace tolm
