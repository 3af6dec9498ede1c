#pragma once
// Spectra of tables by the definition of the transform, apart from the generators' own code.

#include "engine/tables.h"

#include <cmath>
#include <complex>
#include <span>
#include <vector>

namespace tolm {

// Amplitude of sin (real part) and cos (imaginary part) of harmonic k.
inline std::complex<double> harmonic(const Wave& wave, int k)
{
    static const std::vector<double> sine = [] {
        std::vector<double> values(kTableSize);
        for (std::size_t i = 0; i < kTableSize; ++i)
            values[i] = std::sin(2.0 * kPi * static_cast<double>(i) / kTableSize);
        return values;
    }();
    double inSine = 0.0;
    double inCosine = 0.0;
    for (int i = 0; i < kTableSize; ++i) {
        const double value = wave[static_cast<std::size_t>(i)];
        inSine += value * sine[static_cast<std::size_t>((i * k) & kTableMask)];
        inCosine += value * sine[static_cast<std::size_t>((i * k + kTableSize / 4) & kTableMask)];
    }
    return {inSine * 2.0 / kTableSize, inCosine * 2.0 / kTableSize};
}

// Harmonics 0..limit; entry 0 is unused.
inline std::vector<std::complex<double>> harmonics(const Wave& wave, int limit)
{
    std::vector<std::complex<double>> found(static_cast<std::size_t>(limit) + 1);
    for (int k = 1; k <= limit; ++k)
        found[static_cast<std::size_t>(k)] = harmonic(wave, k);
    return found;
}

// Mean square of what harmonics 1..limit leave over: offset and everything above.
inline double remainder(const Wave& wave, const std::vector<std::complex<double>>& spectrum)
{
    double power = 0.0;
    for (std::int16_t value : std::span(wave).first(kTableSize))
        power += static_cast<double>(value) * value / kTableSize;
    for (const auto& level : spectrum)
        power -= 0.5 * std::norm(level);
    return power;
}

// Rounding to whole numbers alone leaves 1/12.
inline constexpr double kRoundingPower = 0.2;

inline double keyHz(double key)
{
    return 440.0 * std::exp2((key - 69.0) / 12.0);
}

} // namespace tolm
