#pragma once
// Spectra of the waves: what an octave table may hold, how loud it is, and how it becomes samples.

#include "engine/tables.h"
#include "tools/tableGen/fourier.h"

#include <array>

namespace tolm {

inline constexpr int kSpectrumBins = kTableSize / 2; // bins 1..1023 are used

// Bin k is a sine of k turns per table: |bins[k]| * sin(k t + arg(bins[k])). Bin 0 stays 0.
struct Spectrum {
    std::array<Complex, kSpectrumBins> bins{};

    void add(int bin, double level, double phase = 0.0)
    {
        if (bin > 0 && bin < kSpectrumBins)
            bins[static_cast<std::size_t>(bin)] += std::polar(1.0, phase) * level;
    }
    void scale(double gain)
    {
        for (Complex& bin : bins)
            bin *= gain;
    }
};

// Clears all above `limit`; a raised cosine over the last 15 % leads there.
void bandLimit(Spectrum& spectrum, int limit);

// K-weighted level (ITU-R BS.1770) of what is below 20 kHz when one table length lasts 1 / hz.
double loudness(const Spectrum& spectrum, double hz);

std::array<double, kTableSize> samples(const Spectrum& spectrum);

} // namespace tolm
