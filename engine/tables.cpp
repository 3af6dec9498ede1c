#include "engine/tables.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace tolm {

namespace {

constexpr double kHighestCutoffHz = 22000.0; // at index kCutoffScale
constexpr double kCutoffRange = 2200.0;      // ratio of that to index 0
constexpr double kNyquistMargin = 0.49; // of the sample rate: corners stay below the pole of tan
constexpr double kShortestTimeMs = 2.0;
constexpr double kTimeRange = 10000.0;

struct SpikeShape {
    double riseSeconds; // of the triangle pulse, and of its fall
    double lowpassHz;
    double peak;
};
constexpr SpikeShape kSoftSpike = {0.00025, 60.0, 1.0};
constexpr SpikeShape kHardSpike = {0.00005, 300.0, 1.6};

void buildCutoffTables(RateTables& tables, double sampleRateHz)
{
    const double twice = 2.0 * sampleRateHz;
    for (std::size_t i = 0; i < kCutoffEntries; ++i) {
        const double position = static_cast<double>(i) / kCutoffScale - 1.0;
        const double hz = kHighestCutoffHz * std::pow(kCutoffRange, position);
        // Never negative, even at rates of a few kHz; what is too high to be stable at low rates is
        // limited where the damping is known.
        const double svf = 2.0 * std::sin(kPi * std::min(hz / (3.0 * sampleRateHz), 1.0));
        tables.svf[i] = static_cast<float>(svf);

        const double k = twice * std::tan(kPi * std::min(hz / sampleRateHz, kNyquistMargin));
        tables.onePoleGain[i] = static_cast<float>(k / (k + twice));
        tables.onePoleFeedback[i] = static_cast<float>((k - twice) / (k + twice));

        const double onePole = 1.0 - std::exp(-2.0 * kPi * hz / sampleRateHz);
        tables.onePole[i] = static_cast<float>(onePole);
        tables.ladder[i] = static_cast<float>((2.0 * onePole - 1.0) * 0.6 - 0.4);
    }
    tables.ladderCap = sampleRateHz < 44101.0 ? 2046 : sampleRateHz < 48001.0 ? 2068 : 2253;
}

void buildTimeTables(RateTables& tables, double sampleRateHz)
{
    for (std::size_t i = 0; i <= kTimeSteps; ++i) {
        const double ms =
            kShortestTimeMs * std::pow(kTimeRange, static_cast<double>(i) / kTimeSteps);
        tables.timeMultiplier[i] = static_cast<float>(std::pow(0.1, 1000.0 / (ms * sampleRateHz)));
        tables.timeIncrement[i] = static_cast<float>(1.0 / (ms * 0.001 * sampleRateHz));
    }
}

// A triangle pulse through a one-pole low-pass (bilinear transform), scaled to its peak. At rates
// where the rise is shorter than a frame the pulse is a single frame.
void buildSpike(std::span<float> spike, const SpikeShape& shape, double sampleRateHz)
{
    const int rise = std::max(static_cast<int>(shape.riseSeconds * sampleRateHz), 1);
    const double w = std::tan(kPi * std::min(shape.lowpassHz / sampleRateHz, kNyquistMargin));
    const double b = w / (w + 1.0);
    const double a = (w - 1.0) / (w + 1.0);
    double lastInput = 0.0;
    double output = 0.0;
    double peak = 0.0;
    for (std::size_t i = 0; i < spike.size(); ++i) {
        const double distance = std::fabs(static_cast<double>(i) - rise) / rise;
        const double input = std::max(0.0, 1.0 - distance);
        output = b * (input + lastInput) - a * output;
        lastInput = input;
        spike[i] = static_cast<float>(output);
        peak = std::max(peak, output);
    }
    const double gain = peak > 0.0 ? shape.peak / peak : 0.0;
    for (float& value : spike)
        value = static_cast<float>(value * gain);
}

} // namespace

void buildRateTables(RateTables& tables, double sampleRateHz)
{
    buildCutoffTables(tables, sampleRateHz);
    buildTimeTables(tables, sampleRateHz);
    const std::int64_t wholeRate = static_cast<std::int64_t>(sampleRateHz);
    tables.spikeFrames =
        static_cast<int>(std::clamp<std::int64_t>(wholeRate * 1024 / 44100, 0, kMaxSpikeFrames));
    const auto frames = static_cast<std::size_t>(tables.spikeFrames);
    buildSpike(std::span(tables.softSpike).first(frames), kSoftSpike, sampleRateHz);
    buildSpike(std::span(tables.hardSpike).first(frames), kHardSpike, sampleRateHz);
}

// One octave through exp2, the others by doubling, which is exact: octaves never drift.
void buildPitchTable(PitchTable& table)
{
    constexpr double kLowestHz = 1.021974609375;
    for (int i = 0; i < kPitchUnitsPerOctave; ++i) {
        double hz = kLowestHz * std::exp2(static_cast<double>(i) / kPitchUnitsPerOctave);
        for (int p = i; p < kPitchCount; p += kPitchUnitsPerOctave, hz *= 2.0)
            table[static_cast<std::size_t>(p)] = static_cast<float>(hz);
    }
}

} // namespace tolm
