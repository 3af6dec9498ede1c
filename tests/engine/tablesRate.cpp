// Tables that depend on the sample rate, against independent numbers and what they are for.

#include "engine/tables.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <span>

namespace tolm {

namespace {

std::unique_ptr<RateTables> tablesAt(double sampleRateHz)
{
    auto tables = std::make_unique<RateTables>();
    buildRateTables(*tables, sampleRateHz);
    return tables;
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
        {8000, 1700, 1.40481242, 0.969531253, 0.939062506, 0.990652391, 0.18878287},
        {44100, 1000, 0.0203542382, 0.0296362434, -0.940727513, 0.0592367533, -0.928915896},
        {48000, 2253, 1.72176333, 0.969531253, 0.939062506, 0.998014729, 0.197617675},
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

TEST(RateTables, ladderCapStepsAtTheUsualRates)
{
    for (const auto& [rate, cap] : {std::pair{44100.0, 2046},
                                    {44101.0, 2068},
                                    {48000.0, 2068},
                                    {48001.0, 2253},
                                    {384000.0, 2253}})
        EXPECT_EQ(tablesAt(rate)->ladderCap, cap) << rate;
}

TEST(RateTables, timesRunFrom2MillisecondsTo20Seconds)
{
    for (const double rate : {8000.0, 44100.0, 384000.0})
        for (const std::uint32_t index : {0u, 256u, 512u, 1024u}) {
            SCOPED_TRACE(testing::Message() << rate << " Hz, entry " << index);
            const auto tables = tablesAt(rate);
            const double frames = rate * 0.002 * std::pow(10000.0, index / 1024.0);
            EXPECT_NEAR(tables->timeIncrement[index] * frames, 1.0, 1e-6);
            // Near 1 the float steps of the multiplier are coarse: half a step of 2^-24.
            EXPECT_NEAR(std::log10(double{tables->timeMultiplier[index]}) * frames, -1.0,
                        1e-6 + 1.4e-8 * frames);
        }
}

// At low rates the rise is shorter than a frame, at high ones the spike reaches the tables' end.
TEST(RateTables, spikesPeakOnceAndDieAwayAtEveryRate)
{
    for (const double rate : {5000.0, 44100.0, 768000.0}) {
        SCOPED_TRACE(rate);
        const auto tables = tablesAt(rate);
        EXPECT_EQ(tables->spikeFrames,
                  std::min(static_cast<int>(rate * 1024.0 / 44100.0), kMaxSpikeFrames));
        const auto frames = static_cast<std::size_t>(tables->spikeFrames);
        for (const bool hard : {false, true}) {
            const auto spike =
                std::span(hard ? tables->hardSpike : tables->softSpike).first(frames);
            const auto top = std::max_element(spike.begin(), spike.end());
            EXPECT_FLOAT_EQ(*top, hard ? 1.6f : 1.0f);
            EXPECT_TRUE(std::is_sorted(spike.begin(), top + 1));
            EXPECT_TRUE(std::is_sorted(top, spike.end(), std::greater<>()));
            EXPECT_LT(spike.back(), 1e-3f);
        }
    }
}

} // namespace tolm
