// The waves, from lists of harmonics.

#include "tools/tableGen/fourier.h"
#include "tools/tableGen/generators.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

// Highest harmonic of each octave table. At the top of an octave the last ones fold down to no
// lower than 18 kHz at 44.1 kHz.
constexpr std::array<int, kWaveOctaves> kOctaveHarmonics = {99, 49, 24, 12, 6, 3};

} // namespace

void fillWaves(ConstantTables& tables)
{
    const auto& sine = unitSine();
    for (std::size_t w = 0; w < tables.waves.size(); ++w)
        for (std::size_t o = 0; o < kWaveOctaves; ++o) {
            std::array<double, kTableSize> signal{};
            const double slope = 6.0 - 5.0 * static_cast<double>(w) / kWaveCount;
            for (int k = 1; k <= kOctaveHarmonics[o]; ++k)
                for (int i = 0; i < kTableSize; ++i)
                    signal[static_cast<std::size_t>(i)] +=
                        std::pow(k, -slope) * sine[static_cast<std::size_t>((k * i) & kTableMask)];
            for (std::size_t i = 0; i < kTableSize; ++i)
                tables.waves[w][o][i] = static_cast<std::int16_t>(std::lround(16000 * signal[i]));
        }
    tables.waves[kWaveCount] = tables.waves[kWaveCount - 1];
}

} // namespace tolm
