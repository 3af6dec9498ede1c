// Tables that depend on the sample rate, against independent numbers and what they are for.

#include "engine/tables.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <memory>
#include <span>

namespace tolm {

namespace {

constexpr double kRates[] = {5000.0,  8000.0,  22050.0,  44100.0,
                             48000.0, 96000.0, 384000.0, 768000.0};

std::unique_ptr<RateTables> tablesAt(double sampleRateHz)
{
    auto tables = std::make_unique<RateTables>();
    buildRateTables(*tables, sampleRateHz);
    return tables;
}

double cutoffHz(std::size_t index)
{
    return 10.0 * std::exp2(static_cast<double>(index) / (kCutoffScale / std::log2(2200.0)));
}

} // namespace

// Computed apart, from fc = 10 Hz * 2200^(i / 2048).
TEST(RateTables, cutoffCoefficientsAreTheNumbersOfTheirFormulas)
{
    struct Spot {
        double rateHz;
        std::size_t index;
        double svf, gain, feedback, onePole, ladder;
    };
    constexpr Spot kSpots[] = {
        // clang-format off
        {8000, 0, 0.00261799313, 0.00391164991, -0.9921767, 0.00782321971, -0.990612136},
        {8000, 1000, 0.112145824, 0.145236648, -0.709526705, 0.285815555, -0.657021333},
        {8000, 1700, 1.40481242, 0.969531253, 0.939062506, 0.990652391, 0.18878287},
        {44100, 0, 0.00047491952, 0.000711872284, -0.998576255, 0.00142374409, -0.998291507},
        {44100, 1000, 0.0203542382, 0.0296362434, -0.940727513, 0.0592367533, -0.928915896},
        {44100, 1700, 0.281608904, 0.310898157, -0.378203686, 0.571576673, -0.314107993},
        {44100, 2047, 0.994544652, 0.969531253, 0.939062506, 0.955962419, 0.147154903},
        {48000, 0, 0.00043633231, 0.000654070475, -0.998691859, 0.00130814058, -0.998430231},
        {48000, 2047, 0.920301986, 0.879390744, 0.758781488, 0.943243867, 0.13189264},
        {48000, 2253, 1.72176333, 0.969531253, 0.939062506, 0.998014729, 0.197617675},
        {384000, 1000, 0.00233759686, 0.0034941585, -0.993011683, 0.00698825993, -0.991614088},
        {384000, 2253, 0.258524585, 0.290649549, -0.418700902, 0.540561399, -0.351326321},
        // clang-format on
    };
    for (const Spot& spot : kSpots) {
        SCOPED_TRACE(testing::Message() << spot.rateHz << " Hz, entry " << spot.index);
        const auto tables = tablesAt(spot.rateHz);
        EXPECT_NEAR(tables->svf[spot.index] / spot.svf, 1.0, 1e-6);
        EXPECT_NEAR(tables->onePoleGain[spot.index] / spot.gain, 1.0, 1e-6);
        EXPECT_NEAR(tables->onePoleFeedback[spot.index], spot.feedback, 1e-7);
        EXPECT_NEAR(tables->onePole[spot.index] / spot.onePole, 1.0, 1e-6);
        EXPECT_NEAR(tables->ladder[spot.index], spot.ladder, 1e-7);
    }
}

TEST(RateTables, stateVariableCoefficientIsStableWithoutLimitFrom44kHz)
{
    for (double rate : {44100.0, 48000.0, 192000.0}) {
        const auto tables = tablesAt(rate);
        for (std::size_t i = 0; i < kCutoffScale; ++i) {
            const double f = tables->svf[i];
            ASSERT_LT(f * f + 2.0 * f, 4.0) << rate << " Hz, entry " << i;
        }
    }
}

TEST(RateTables, onePolePairHalvesThePowerAtItsCorner)
{
    const auto tables = tablesAt(44100.0);
    for (std::size_t i = 0; i < 2040; i += 85) {
        const auto z = std::polar(1.0, -2.0 * kPi * cutoffHz(i) / 44100.0);
        const auto response = double{tables->onePoleGain[i]} * (1.0 + z) /
                              (1.0 + double{tables->onePoleFeedback[i]} * z);
        EXPECT_NEAR(std::norm(response), 0.5, 1e-3) << i;
    }
}

TEST(RateTables, ladderCapStepsAtTheUsualRates)
{
    EXPECT_EQ(tablesAt(8000.0)->ladderCap, 2046);
    EXPECT_EQ(tablesAt(44100.0)->ladderCap, 2046);
    EXPECT_EQ(tablesAt(44101.0)->ladderCap, 2068);
    EXPECT_EQ(tablesAt(48000.0)->ladderCap, 2068);
    EXPECT_EQ(tablesAt(48001.0)->ladderCap, 2253);
    EXPECT_EQ(tablesAt(384000.0)->ladderCap, 2253);
}

TEST(RateTables, timesRunFrom2MillisecondsTo20Seconds)
{
    struct Spot {
        std::size_t index;
        double seconds;
    };
    constexpr Spot kSpots[] = {{0, 0.002}, {256, 0.02}, {512, 0.2}, {768, 2.0}, {1024, 20.0}};
    for (double rate : {8000.0, 44100.0, 384000.0}) {
        const auto tables = tablesAt(rate);
        for (const auto& [index, seconds] : kSpots) {
            SCOPED_TRACE(testing::Message() << rate << " Hz, entry " << index);
            const double perFrame = std::log10(double{tables->timeMultiplier[index]});
            EXPECT_NEAR(1.0 / double{tables->timeIncrement[index]} / (seconds * rate), 1.0, 1e-6);
            // Near 1 the float steps of the multiplier are coarse: half a step of 2^-24.
            EXPECT_NEAR(perFrame * seconds * rate, -1.0, 1e-6 + 1.4e-8 * seconds * rate);
        }
    }
}

TEST(RateTables, spikesPeakOnceAndDieAway)
{
    for (double rate : kRates) {
        const auto tables = tablesAt(rate);
        SCOPED_TRACE(rate);
        const auto expected = static_cast<int>(rate * 1024.0 / 44100.0);
        EXPECT_EQ(tables->spikeFrames, std::min(expected, kMaxSpikeFrames));
        const auto frames = static_cast<std::size_t>(tables->spikeFrames);
        struct Shape {
            std::span<const float> spike;
            float peak;
            double lowpassHz;
            double riseSeconds;
        };
        const Shape shapes[] = {
            {std::span(tables->softSpike).first(frames), 1.0f, 60.0, 0.00025},
            {std::span(tables->hardSpike).first(frames), 1.6f, 300.0, 0.00005},
        };
        for (const auto& [spike, peak, lowpassHz, riseSeconds] : shapes) {
            const auto top = std::max_element(spike.begin(), spike.end());
            EXPECT_FLOAT_EQ(*top, peak);
            EXPECT_TRUE(std::is_sorted(spike.begin(), top + 1));
            EXPECT_TRUE(std::is_sorted(top, spike.end(), std::greater<>()));
            // The pulse is over after twice its rise; then only the low-pass falls.
            EXPECT_LE(top - spike.begin(), std::max(2.0, 2.0 * riseSeconds * rate));
            const auto fall = static_cast<std::size_t>(std::max(4.0, 3.0 * riseSeconds * rate));
            const double w = std::tan(kPi * lowpassHz / rate);
            EXPECT_NEAR(spike[fall + 1] / spike[fall], (1.0 - w) / (1.0 + w), 1e-5);
        }
    }
}

} // namespace tolm
