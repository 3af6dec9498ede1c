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
    for (int type = 0; type < Distortion::kTypeCount; ++type)
        for (const float colour : {0.4f, 1.0f})
            for (const float drive : {0.0f, 0.35f, 1.0f}) {
                SCOPED_TRACE(testing::Message() << type << " " << colour << " " << drive);
                Distortion d = distortion(type, colour, drive, 1.0f);
                const bool highpass = type % 2 == 1;
                const double hz =
                    highpass ? std::pow(2000.0, colour) : 100.0 * std::pow(200.0, colour);
                Section first =
                    highpass || colour < 0.999f ? Section::make(highpass, hz) : Section{};
                Section second = first;
                Section dc = Section::make(true, 5.0);
                Stereo signal = Stereo::noise(3000, 1.2f);
                std::fill_n(signal.left.begin(), 100, 0.0f); // silence stays silent
                std::vector<float> expected;
                for (const float x : signal.left)
                    expected.push_back(
                        static_cast<float>(model(type, drive, x, first, second, dc)));
                signal.inBlocks([&](int n, float* const* ch) { d.process(n, ch); });
                // Rounding of single precision, amplified by the drive.
                EXPECT_LT(distance(signal.left, expected), 2e-5f);
            }
}

TEST(Distortion, amountJumpsInTheFirstBlockAndRampsLater)
{
    Distortion d = distortion(6, 1.0f, 1.0f, 0.0f); // open low-pass, gain 4
    Stereo s(100);
    const auto ones = [&] {
        s.fill(1.0f);
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
