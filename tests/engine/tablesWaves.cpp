// The waves: what an ear would notice of a bad table. Aliases, jumps in loudness where an octave
// table takes over or a cross-fade passes, doubles, and changes that nobody meant.

#include "tests/engine/tableSpectrum.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tolm {

namespace {

constexpr double kFirstHostRateHz = 44100.0;
constexpr double kC3Hz = 130.8127826502993;

using Spectrum = std::vector<std::complex<double>>;

double decibels(double ratio)
{
    return 20.0 * std::log10(ratio);
}

// Bins that a table may hold: aliases of the highest note that reads it stay above 18 kHz. Noisy
// waves are read so low that their first table is allowed more.
int binLimit(int wave, int octave)
{
    constexpr int kLimits[] = {99, 49, 24, 12, 6, 3};
    const bool manyCycles = (wave >= 60 && wave <= 62) || wave >= 65;
    return octave == 0 && manyCycles ? 200 : kLimits[octave];
}

double cycles(int wave)
{
    return std::exp2(-wavePitchOffset(wave) / 1536.0);
}

const Wave& table(int wave, int octave)
{
    return constantTables().waves[static_cast<std::size_t>(wave)][static_cast<std::size_t>(octave)];
}

const Spectrum& spectrum(int wave, int octave)
{
    static const auto all = [] {
        std::array<std::array<Spectrum, kWaveOctaves>, kWaveCount> spectra;
        for (int w = 0; w < kWaveCount; ++w)
            for (int o = 0; o < kWaveOctaves; ++o)
                spectra[static_cast<std::size_t>(w)][static_cast<std::size_t>(o)] =
                    harmonics(table(w, o), binLimit(w, o));
        return spectra;
    }();
    return all[static_cast<std::size_t>(wave)][static_cast<std::size_t>(octave)];
}

// The K weighting of ITU-R BS.1770 as a magnitude, from its analogue prototype: a shelf of 4 dB
// at 1682 Hz and a high-pass at 38 Hz.
double weight(double hz)
{
    using namespace std::complex_literals;
    const std::complex<double> s = 1.0i * hz / 1681.97;
    const double vh = std::pow(10.0, 3.99984 / 20.0);
    const double vb = std::pow(vh, 0.49966);
    const auto shelf = (1.0 + vb / 0.70718 * s + vh * s * s) / (1.0 + s / 0.70718 + s * s);
    const std::complex<double> h = 1.0i * hz / 38.135;
    return std::abs(shelf * h * h / (1.0 + h / 0.50033 + h * h));
}

double loudness(const Spectrum& levels, double binHz)
{
    double power = 0.0;
    for (std::size_t k = 1; k < levels.size() && static_cast<double>(k) * binHz < 20000.0; ++k)
        power += std::norm(levels[k] * weight(static_cast<double>(k) * binHz));
    return std::sqrt(power);
}

} // namespace

TEST(Waves, holdNoOffsetAndNothingAboveTheLimitOfTheirOctave)
{
    for (int wave = 0; wave < kWaveCount; ++wave)
        for (int octave = 0; octave < kWaveOctaves; ++octave)
            EXPECT_LT(remainder(table(wave, octave), spectrum(wave, octave)), kRoundingPower)
                << "wave " << wave << " octave " << octave;
}

TEST(Waves, aliasesStayOutOfTheAudibleRange)
{
    for (int wave = 0; wave < kWaveCount; ++wave) {
        // The noisy ones are clean up to C6; above, noise folds into noise.
        const int highestKey = wave >= 65 ? 84 : 96;
        const double allowed = wave >= 60 ? -40.0 : -60.0;
        for (int key = 36; key <= highestKey; ++key) {
            const int pitch = (key + 36) * 128 + wavePitchOffset(wave);
            const Spectrum& levels = spectrum(wave, std::clamp(((pitch >> 7) - 84) / 12, 0, 5));
            const double binHz = keyHz(pitch / 128.0 - 36.0);
            double whole = 0.0;
            double folded = 0.0;
            for (std::size_t k = 1; k < levels.size(); ++k) {
                const double hz = static_cast<double>(k) * binHz;
                const double heardHz = std::fabs(std::remainder(hz, kFirstHostRateHz));
                whole += std::norm(levels[k]);
                if (hz > kFirstHostRateHz / 2.0 && heardHz < 16000.0)
                    folded += std::norm(levels[k]);
            }
            EXPECT_LT(10.0 * std::log10(folded / whole + 1e-12), allowed)
                << "wave " << wave << " key " << key;
        }
    }
}

TEST(Waves, areEquallyLoudAndStaySoWhereTheNextOctaveTableTakesOver)
{
    const double reference = loudness(spectrum(0, 0), kC3Hz);
    for (int wave = 0; wave < kWaveCount; ++wave) {
        SCOPED_TRACE(wave);
        EXPECT_NEAR(decibels(loudness(spectrum(wave, 0), kC3Hz / cycles(wave)) / reference), 0.0,
                    1.0);
        for (int octave = 1; octave < kWaveOctaves; ++octave) {
            // Tables that hold no harmonic of the note are only read far above key 127.
            if (cycles(wave) > binLimit(wave, octave))
                continue;
            const double binHz = keyHz(48 + 12 * octave);
            const double step = loudness(spectrum(wave, octave), binHz) /
                                loudness(spectrum(wave, octave - 1), binHz);
            EXPECT_NEAR(decibels(step), 0.0, 1.5) << "octave " << octave;
        }
    }
}

TEST(Waves, crossFadesInsideAFamilyKeepTheirLoudness)
{
    constexpr int kFamilyStarts[] = {0, 6, 10, 16, 23, 30, 36, 42, 48, 54, 58, 60, 63, 65, 70};
    for (std::size_t family = 0; family + 1 < std::size(kFamilyStarts); ++family)
        for (int wave = kFamilyStarts[family]; wave + 1 < kFamilyStarts[family + 1]; ++wave) {
            const double binHz = kC3Hz / cycles(wave);
            Spectrum half = spectrum(wave, 0);
            for (std::size_t k = 0; k < half.size(); ++k)
                half[k] = 0.5 * (half[k] + spectrum(wave + 1, 0)[k]);
            EXPECT_GT(decibels(loudness(half, binHz) / loudness(spectrum(wave, 0), binHz)), -2.0)
                << "between " << wave << " and " << wave + 1;
        }
}

TEST(Waves, partnerOfTheLastWaveIsItsCopy)
{
    EXPECT_EQ(constantTables().waves[kWaveCount], constantTables().waves[kWaveCount - 1]);
}

// Saved sounds depend on the waves. Whoever changes one on purpose puts its new numbers here.
TEST(Waves, areTheOnesThatSavedSoundsKnow)
{
    struct Known {
        double centroid; // of power, in bins of table 0
        int peak;
    };
    constexpr Known kKnown[] = {
        // clang-format off
        {1.000, 12200}, {1.019, 12027}, {1.111, 11848}, {1.359, 11822}, {1.791, 12005},
        {3.108, 16395}, {1.037, 14870}, {1.168, 10234}, {2.349, 9784}, {11.107, 22376},
        {2.361, 10477}, {2.462, 12071}, {2.696, 14095}, {3.162, 16911}, {4.176, 21490},
        {6.114, 28177}, {1.329, 14484}, {1.927, 16710}, {2.622, 13042}, {2.540, 15593},
        {2.741, 17259}, {3.867, 17673}, {4.426, 17152}, {5.861, 22745}, {2.477, 17323},
        {1.702, 15212}, {2.936, 20611}, {2.032, 17578}, {3.090, 17234}, {7.315, 21157},
        {2.000, 16873}, {2.316, 14006}, {1.505, 14159}, {3.040, 17107}, {3.860, 18011},
        {2.844, 14995}, {1.239, 12169}, {1.645, 11729}, {1.927, 11224}, {1.272, 12040},
        {1.670, 11655}, {1.324, 11111}, {1.367, 14846}, {2.023, 17572}, {1.427, 10415},
        {3.868, 18969}, {3.475, 14372}, {2.786, 13093}, {2.297, 13456}, {5.074, 22123},
        {2.786, 19089}, {3.393, 21618}, {2.861, 16337}, {5.424, 25845}, {2.403, 16975},
        {3.388, 18830}, {5.374, 21059}, {8.364, 21785}, {2.826, 13997}, {5.528, 19697},
        {15.888, 22001}, {28.091, 22191}, {20.920, 25759}, {2.775, 20557}, {3.558, 17406},
        {17.491, 20544}, {24.306, 20973}, {12.478, 20129}, {17.875, 20987}, {8.369, 20049},
        // clang-format on
    };
    static_assert(std::size(kKnown) == kWaveCount);
    for (int wave = 0; wave < kWaveCount; ++wave) {
        const Spectrum& levels = spectrum(wave, 0);
        double power = 0.0;
        double moment = 0.0;
        for (std::size_t k = 1; k < levels.size(); ++k) {
            power += std::norm(levels[k]);
            moment += std::norm(levels[k]) * static_cast<double>(k);
        }
        int peak = 0;
        for (std::int16_t value : table(wave, 0))
            peak = std::max(peak, std::abs(int{value}));
        // Another mathematics library may round a sample the other way.
        EXPECT_NEAR(moment / power, kKnown[wave].centroid, 0.001) << wave;
        EXPECT_NEAR(peak, kKnown[wave].peak, 1) << wave;
    }
}

} // namespace tolm
