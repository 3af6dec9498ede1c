#include "fx/equaliser.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

namespace tolm {

namespace {

EqualiserBand band(double rate, float type, float frequency, float q, float gain)
{
    EqualiserBand b;
    b.setSampleRate(rate);
    b.setParameter(EqualiserBand::type, type);
    b.setParameter(EqualiserBand::frequency, frequency);
    b.setParameter(EqualiserBand::quality, q);
    b.setParameter(EqualiserBand::gain, gain);
    return b;
}

// The analogue prototypes, in s. Only the high shelf is pre-warped.
std::complex<double> prototype(int type, double rate, double hz, double q, double g,
                               std::complex<double> s)
{
    const double w =
        type == 2 ? 2.0 * rate * std::tan(kPi * std::min(hz, 0.49 * rate) / rate) : 2.0 * kPi * hz;
    switch (type) {
    case 0:
        return (s * s + s * g * w / q + w * w) / (s * s + s * w / q + w * w);
    case 1:
        return g > 1.0 ? (s + w * g) / (s + w) : (s + w) / (s + w / g);
    default:
        return g > 1.0 ? (w + s * g) / (w + s) : (w + s) / (w + s / g);
    }
}

constexpr float kTypeValues[] = {0.0f, 0.5f, 1.0f};

} // namespace

TEST(Equaliser, everyTypeHasTheResponseOfItsPrototype)
{
    for (const double rate : {8000.0, 44100.0, 384000.0}) {
        for (int type = 0; type < 3; ++type) {
            for (const float frequency : {0.35f, 0.7f, 1.0f}) {
                for (const float gain : {0.0f, 0.3f, 1.0f}) {
                    SCOPED_TRACE(testing::Message()
                                 << rate << " " << type << " " << frequency << " " << gain);
                    EqualiserBand b = band(rate, kTypeValues[type], frequency, 0.6f, gain);
                    Stereo s = Stereo::impulse(static_cast<std::size_t>(rate * 0.3), 1.0f, 0.0f);
                    s.inBlocks([&](int n, float* const* ch) { b.process(n, ch); });
                    const double hz = 10.0 * std::pow(1000.0, frequency);
                    const double q = 0.1 * std::pow(100.0, 0.6);
                    const double g = std::pow(10.0, 0.5 * (2.0 * gain - 1.0));
                    for (const double at : {0.02, 0.1, 0.25, 0.45}) {
                        const std::complex<double> z = std::polar(1.0, -2.0 * kPi * at);
                        const auto expected =
                            prototype(type, rate, hz, q, g, 2.0 * rate * (1.0 - z) / (1.0 + z));
                        EXPECT_NEAR(decibels(magnitudeAt(s.left, at, 1.0)),
                                    decibels(std::abs(expected)), 0.01);
                    }
                    EXPECT_EQ(energy(s.right, 0, s.right.size()), 0.0);
                }
            }
        }
    }
}

// The hardest case for precision: poles within 1e-4 of the unit circle.
TEST(Equaliser, lowestPeakAtHighestRateReachesItsGain)
{
    constexpr double kRate = 384000.0;
    EqualiserBand b = band(kRate, 0.0f, 0.0f, 0.5f, 1.0f); // 10 Hz, Q 1, +10 dB
    Stereo s = Stereo::sine(static_cast<std::size_t>(kRate), 10.0, kRate, 0.1);
    s.inBlocks([&](int n, float* const* ch) { b.process(n, ch); });
    const float peak = *std::max_element(s.left.begin() + 300000, s.left.end());
    EXPECT_NEAR(decibels(static_cast<double>(peak) / 0.1), 10.0, 0.05);
}

TEST(Equaliser, middleGainReturnsTheInputBitByBit)
{
    for (const float type : kTypeValues) {
        EqualiserBand b = band(44100.0, type, 0.2f, 1.0f, 0.5f);
        Stereo s = Stereo::noise(5000, 1.0f);
        const Stereo input = s;
        s.inBlocks([&](int n, float* const* ch) { b.process(n, ch); });
        EXPECT_EQ(s.left, input.left);
        EXPECT_EQ(s.right, input.right);
    }
}

TEST(Equaliser, typeChangesAtItsThresholds)
{
    // At the lowest frequency a low shelf at full cut leaves treble alone, a high shelf does not.
    const auto treble = [](float type) {
        EqualiserBand b = band(44100.0, type, 0.0f, 0.0f, 0.0f);
        Stereo s = Stereo::sine(4000, 5000.0, 44100.0);
        s.inBlocks([&](int n, float* const* ch) { b.process(n, ch); });
        return std::sqrt(energy(s.left, 1000, 4000) / 1500.0);
    };
    EXPECT_NEAR(treble(0.5f), 1.0, 0.01);
    EXPECT_NEAR(treble(0.99f), 1.0, 0.01);
    EXPECT_NEAR(treble(0.996f), 0.316, 0.01);
}

} // namespace tolm
