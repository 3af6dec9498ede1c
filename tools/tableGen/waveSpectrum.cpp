#include "tools/tableGen/waveSpectrum.h"

#include <cmath>

namespace tolm {

namespace {

constexpr double kTaperShare = 0.15;
constexpr double kHighestAudibleHz = 20000.0;

struct Biquad {
    double b0, b1, b2, a1, a2;
};
// The two stages of the K weighting at 48 kHz, as BS.1770 prints them: head shelf and high-pass.
constexpr double kWeightingRateHz = 48000.0;
constexpr Biquad kHeadShelf = {1.53512485958697, -2.69169618940638, 1.19839281085285,
                               -1.69065929318241, 0.73248077421585};
constexpr Biquad kHighPass = {1.0, -2.0, 1.0, -1.99004745483398, 0.99007225036621};

double magnitude(const Biquad& f, Complex z1)
{
    return std::abs((f.b0 + z1 * (f.b1 + z1 * f.b2)) / (1.0 + z1 * (f.a1 + z1 * f.a2)));
}

double kWeight(double hz)
{
    const Complex z1 = std::polar(1.0, -2.0 * kPi * hz / kWeightingRateHz);
    return magnitude(kHeadShelf, z1) * magnitude(kHighPass, z1);
}

} // namespace

void bandLimit(Spectrum& spectrum, int limit)
{
    const double taperStart = limit * (1.0 - kTaperShare);
    for (int k = 1; k < kSpectrumBins; ++k) {
        const double into = (k - taperStart) / (limit + 1 - taperStart); // 0..1 inside the taper
        if (k > limit)
            spectrum.bins[static_cast<std::size_t>(k)] = 0.0;
        else if (into > 0.0)
            spectrum.bins[static_cast<std::size_t>(k)] *= 0.5 + 0.5 * std::cos(kPi * into);
    }
}

double loudness(const Spectrum& spectrum, double hz)
{
    double power = 0.0;
    for (int k = 1; k < kSpectrumBins && k * hz < kHighestAudibleHz; ++k) {
        const double weighted =
            std::abs(spectrum.bins[static_cast<std::size_t>(k)]) * kWeight(k * hz);
        power += 0.5 * weighted * weighted;
    }
    return std::sqrt(power);
}

// Im(sum of X_k e^(i k t)): the inverse transform without its division by the size.
std::array<double, kTableSize> samples(const Spectrum& spectrum)
{
    std::vector<Complex> data(kTableSize);
    for (std::size_t k = 1; k < kSpectrumBins; ++k)
        data[k] = spectrum.bins[k];
    inverseTransform(data);
    std::array<double, kTableSize> signal{};
    for (std::size_t i = 0; i < signal.size(); ++i)
        signal[i] = data[i].imag() * kTableSize;
    return signal;
}

} // namespace tolm
