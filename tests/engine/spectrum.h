#pragma once
// Measuring rendered sound.

#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <vector>

namespace tolm {

// Amplitude of the partial at `hz`, by correlation under a Hann window.
inline double amplitudeAt(std::span<const float> signal, double hz, double rateHz)
{
    std::complex<double> sum = 0.0;
    double weight = 0.0;
    const double n = static_cast<double>(signal.size());
    for (std::size_t i = 0; i < signal.size(); ++i) {
        const double t = static_cast<double>(i);
        const double w = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * t / n);
        sum += static_cast<double>(signal[i]) * w *
               std::polar(1.0, -2.0 * std::numbers::pi * hz * t / rateHz);
        weight += w;
    }
    return 2.0 * std::abs(sum) / weight;
}

inline double rms(std::span<const float> signal)
{
    double sum = 0.0;
    for (const float x : signal)
        sum += double{x} * double{x};
    return std::sqrt(sum / static_cast<double>(signal.size()));
}

inline double peak(std::span<const float> signal)
{
    double highest = 0.0;
    for (const float x : signal)
        highest = std::max(highest, double{std::abs(x)});
    return highest;
}

inline double db(double ratio)
{
    return 20.0 * std::log10(std::max(ratio, 1e-15));
}

} // namespace tolm
