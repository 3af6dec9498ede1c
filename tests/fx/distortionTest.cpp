#include "fx/distortion.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

namespace tolm {

namespace {

constexpr double kRate = 44100.0;

// A straightforward model in double precision: one-pole sections around the written-out curves.
struct Section {
    double b0 = 1.0, b1 = 0.0, a1 = 0.0;
    double x1 = 0.0, y1 = 0.0;

    double run(double x)
    {
        y1 = b0 * x + b1 * x1 - a1 * y1;
        x1 = x;
        return y1;
    }
    static Section make(bool highpass, double hz)
    {
        const double t = std::tan(kPi * hz / kRate); // w / c
        Section s;
        s.a1 = (t - 1.0) / (t + 1.0);
        s.b0 = (highpass ? 1.0 : t) / (t + 1.0);
        s.b1 = highpass ? -s.b0 : s.b0;
        return s;
    }
};

double model(int type, double drive, double x, Section& first, Section& second, Section& dc)
{
    switch (type / 2) {
    case 0: {
        const double g = std::pow(64.0, drive);
        return first.run(std::tanh(g * x) * std::pow(16.0, drive) / g);
    }
    case 1: {
        const double g = std::pow(64.0, drive);
        const double u = x >= 0.0 ? 1.0 - (1.0 - x) * std::pow(10.0, -g * x)
                                  : -(1.0 - (x + 1.0) * std::pow(10.0, g * x));
        return second.run(first.run(0.25 * u));
    }
    case 2: {
        const double g = 0.5 * std::pow(64.0, drive);
        const double t = g * x + 0.25;
        const double u = t / (1.0 - std::exp(-8.0 * t)) - 0.25 / (1.0 - std::exp(-2.0));
        return second.run(first.run(u / g));
    }
    case 3:
        return second.run(first.run(0.25 * std::pow(16.0, drive) * x));
    default: {
        const double g = 0.25 * std::pow(64.0, drive);
        double v = g * first.run(x);
        if (v >= 2.0 / 3.0)
            v = 0.5;
        else if (v > 1.0 / 3.0)
            v = (3.0 - (2.0 - 3.0 * v) * (2.0 - 3.0 * v)) / 6.0;
        return dc.run(v / g);
    }
    }
}

float typeValue(int type)
{
    return type == 8 ? 1.0f : (static_cast<float>(type) + 0.1f) / 8.0f;
}

Distortion distortion(int type, float colour, float drive, float amount)
{
    Distortion d;
    d.setSampleRate(kRate);
    d.setParameter(Distortion::type, typeValue(type));
    d.setParameter(Distortion::colour, colour);
    d.setParameter(Distortion::drive, drive);
    d.setParameter(Distortion::amount, amount);
    return d;
}

} // namespace

TEST(Distortion, everyTypeFollowsItsCurveAndToneFilter)
{
    for (int type = 0; type < Distortion::kTypeCount; ++type) {
        for (const float colour : {0.4f, 1.0f}) {
            for (const float drive : {0.0f, 0.35f, 1.0f}) {
                SCOPED_TRACE(testing::Message() << type << " " << colour << " " << drive);
                Distortion d = distortion(type, colour, drive, 1.0f);
                const bool highpass = type % 2 == 1;
                const double c = static_cast<double>(colour);
                const double hz = highpass ? std::pow(2000.0, c) : 100.0 * std::pow(200.0, c);
                Section first =
                    highpass || colour < 0.999f ? Section::make(highpass, hz) : Section{};
                Section second = first;
                Section dc = Section::make(true, 5.0);

                Stereo signal = Stereo::noise(3000, 1.2f);
                const Stereo input = signal;
                signal.inBlocks([&](int n, float* const* ch) { d.process(n, ch); });
                double worst = 0.0;
                for (std::size_t i = 0; i < input.left.size(); ++i) {
                    const double x = static_cast<double>(input.left[i]);
                    const double y = model(type, static_cast<double>(drive), x, first, second, dc);
                    worst = std::max(worst, std::abs(y - static_cast<double>(signal.left[i])));
                }
                EXPECT_LT(worst, 2e-5); // rounding of single precision, amplified by the drive
            }
        }
    }
}

TEST(Distortion, toneFilterIsThreeDecibelsDownPerStageAtItsCorner)
{
    for (const int type : {6, 7}) {
        Distortion d = distortion(type, 0.5f, 0.5f, 1.0f); // drive in the middle: gain 1
        Stereo s = Stereo::impulse(8192, 1.0f, 1.0f);
        s.inOneBlock([&](int n, float* const* ch) { d.process(n, ch); });
        const double hz = type == 6 ? std::sqrt(100.0 * 20000.0) : std::sqrt(2000.0);
        EXPECT_NEAR(decibels(magnitudeAt(s.right, hz, kRate)), -6.02, 0.02);
    }
}

TEST(Distortion, silenceStaysSilentThroughTheBiasedCurve)
{
    Distortion d = distortion(4, 1.0f, 0.9f, 1.0f);
    Stereo s(256);
    s.inBlocks([&](int n, float* const* ch) { d.process(n, ch); });
    EXPECT_LT(s.peak(), 1e-9f);
}

TEST(Distortion, amountJumpsInTheFirstBlockAndRampsLater)
{
    Distortion d = distortion(6, 1.0f, 1.0f, 0.0f); // open low-pass, gain 4
    Stereo s(100);
    const auto ones = [&] {
        std::fill(s.left.begin(), s.left.end(), 1.0f);
        std::fill(s.right.begin(), s.right.end(), 1.0f);
        s.inOneBlock([&](int n, float* const* ch) { d.process(n, ch); });
    };
    ones();
    EXPECT_EQ(s.left[0], 1.0f);
    d.setParameter(Distortion::amount, 1.0f);
    ones();
    for (const std::size_t i : {0u, 1u, 50u, 99u})
        EXPECT_NEAR(s.right[i], 1.0f + 3.0f * static_cast<float>(i) / 100.0f, 1e-4f);
    ones();
    EXPECT_NEAR(s.left[0], 4.0f, 1e-4f);
}

} // namespace tolm
