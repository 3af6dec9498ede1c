// The band-limited step after Brandt, "Hard sync without aliasing" (ICMC 2001): a windowed sinc is
// turned into its minimum-phase form through the cepstrum, so that all of its ringing follows the
// step, and summed up to a step. The table holds what such a step lacks of its final height.

#include "tools/tableGen/fourier.h"
#include "tools/tableGen/generators.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr int kReach = 2080;         // of the sinc to each side, in rows: 16.25 frames
constexpr double kBandwidth = 1.005; // of the sinc, in halves of the sample rate
// The step starts this many rows before its pulse. With the reach and bandwidth above this makes
// row 0 begin 1, 0.9985, 0.9138, 0.3704, -0.2101.
constexpr std::size_t kLead = 9;
constexpr std::size_t kTransformSize = 16384;
constexpr double kMagnitudeFloor = 1e-9; // of the highest: keeps the logarithm finite

double blackman(double t) // -1..1
{
    return 0.42 + 0.5 * std::cos(kPi * t) + 0.08 * std::cos(2.0 * kPi * t);
}

std::vector<Complex> windowedSinc()
{
    std::vector<Complex> pulse(kTransformSize);
    for (int i = -kReach; i <= kReach; ++i) {
        const double x = kPi * kBandwidth * i / kResidualOffsets;
        const double sinc = i == 0 ? 1.0 : std::sin(x) / x;
        pulse[static_cast<std::size_t>(i + kReach)] =
            sinc * blackman(static_cast<double>(i) / kReach);
    }
    return pulse;
}

// Folding the real cepstrum onto positive times keeps the magnitudes and gives minimum phase.
void makeMinimumPhase(std::vector<Complex>& pulse)
{
    forwardTransform(pulse);
    double highest = 0.0;
    for (const Complex& bin : pulse)
        highest = std::max(highest, std::abs(bin));
    for (Complex& bin : pulse)
        bin = std::log(std::max(std::abs(bin), kMagnitudeFloor * highest));
    inverseTransform(pulse);
    const std::size_t half = pulse.size() / 2;
    for (std::size_t i = 1; i < half; ++i) {
        pulse[i] *= 2.0;
        pulse[half + i] = 0.0;
    }
    forwardTransform(pulse);
    for (Complex& bin : pulse)
        bin = std::exp(bin);
    inverseTransform(pulse);
}

} // namespace

void fillStepResidual(ConstantTables& tables)
{
    std::vector<Complex> pulse = windowedSinc();
    makeMinimumPhase(pulse);
    constexpr std::size_t kLength = std::size_t{kResidualFrames} * kResidualOffsets;
    std::array<double, kLength> step{};
    double sum = 0.0;
    for (std::size_t i = kLead; i < kLength; ++i)
        step[i] = sum += pulse[i - kLead].real();
    for (std::size_t i = 0; i < kLength; ++i)
        tables.stepResidual[i % kResidualOffsets][i / kResidualOffsets] =
            static_cast<float>(1.0 - step[i] / sum);
}

} // namespace tolm
