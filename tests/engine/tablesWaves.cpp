// The waves: what an ear would notice of a bad table. Aliases, jumps in loudness where an octave
// table takes over, and changes that nobody meant.

#include "tests/engine/tableSpectrum.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tolm {

namespace {

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

// Level in dB around each of 24 harmonics of C3, once with and once without the harmonic itself
// (what is between them makes a wave rough), down to 40 dB below the whole.
std::array<double, 48> bandLevels(int wave)
{
    std::array<double, 48> bands{};
    const Spectrum& levels = spectrum(wave, 0);
    const double whole = loudness(levels, kC3Hz / cycles(wave));
    const auto perNote = static_cast<std::size_t>(std::lround(cycles(wave)));
    bands.fill(1e-4 * whole * whole);
    for (std::size_t k = 1; k < levels.size(); ++k) {
        const std::size_t number = (k + perNote / 2) / perNote;
        if (number < 1 || number > 24)
            continue;
        bands[number - 1] += std::norm(levels[k]);
        if (k % perNote != 0)
            bands[number + 23] += std::norm(levels[k]);
    }
    for (double& band : bands)
        band = 10.0 * std::log10(band);
    return bands;
}

} // namespace

TEST(Waves, holdNoOffsetAndNothingAboveTheLimitOfTheirOctave)
{
    for (int wave = 0; wave < kWaveCount; ++wave)
        for (int octave = 0; octave < kWaveOctaves; ++octave)
            EXPECT_LT(remainder(table(wave, octave), spectrum(wave, octave)), kRoundingPower)
                << "wave " << wave << " octave " << octave;
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

TEST(Waves, noTwoSoundAlike)
{
    std::vector<std::array<double, 48>> levels;
    for (int wave = 0; wave < kWaveCount; ++wave)
        levels.push_back(bandLevels(wave));
    for (std::size_t a = 0; a < levels.size(); ++a)
        for (std::size_t b = 0; b < a; ++b) {
            double square = 0.0;
            for (std::size_t i = 0; i < levels[a].size(); ++i)
                square += std::pow(levels[a][i] - levels[b][i], 2.0);
            EXPECT_GT(std::sqrt(square / static_cast<double>(levels[a].size())), 1.5)
                << b << " and " << a;
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
        double centroid; // of power, in bins; both are summed over the octaves
        int peak;
    };
    constexpr Known kKnown[] = {
        // clang-format off
        {6.001, 73203}, {6.113, 72328}, {6.609, 71705}, {7.728, 73924}, {9.265, 77574},
        {12.905, 93880}, {6.189, 85897}, {6.761, 62027}, {10.239, 59987}, {36.693, 100290},
        {10.267, 63747}, {10.626, 75109}, {11.639, 88494}, {13.458, 104943}, {17.395, 129625},
        {24.193, 159791}, {7.973, 86904}, {11.418, 100034}, {13.868, 80800}, {13.757, 88290},
        {13.162, 99013}, {18.995, 103303}, {21.269, 95382}, {12.111, 105742}, {7.657, 80081},
        {7.953, 76924}, {8.112, 84413}, {7.065, 78063}, {8.841, 87379}, {15.582, 94655},
        {10.600, 93847}, {12.152, 78974}, {7.544, 79521}, {14.418, 93114}, {16.621, 95496},
        {14.286, 90173}, {6.514, 73481}, {7.691, 71057}, {8.625, 69543}, {6.567, 72727},
        {7.722, 71094}, {7.827, 66387}, {8.190, 89063}, {11.922, 104079}, {8.231, 62521},
        {20.505, 105370}, {17.244, 81865}, {13.273, 77927}, {9.994, 73150}, {12.243, 108212},
        {7.925, 82178}, {9.261, 95606}, {10.985, 76001}, {27.952, 136736}, {14.180, 101841},
        {19.564, 110281}, {28.421, 109945}, {39.043, 117761}, {12.162, 86911}, {23.554, 117045},
        {57.694, 82839}, {64.010, 59729}, {62.538, 81803}, {15.668, 119033}, {19.029, 103371},
        {55.296, 75143}, {56.947, 73437}, {46.338, 91816}, {51.985, 85035}, {42.061, 95736},
        // clang-format on
    };
    static_assert(std::size(kKnown) == kWaveCount);
    for (int wave = 0; wave < kWaveCount; ++wave) {
        double centroid = 0.0;
        int peak = 0;
        for (int octave = 0; octave < kWaveOctaves; ++octave) {
            const Spectrum& levels = spectrum(wave, octave);
            double power = 0.0;
            double moment = 0.0;
            for (std::size_t k = 1; k < levels.size(); ++k) {
                power += std::norm(levels[k]);
                moment += std::norm(levels[k]) * static_cast<double>(k);
            }
            centroid += power > 0.0 ? moment / power : 0.0;
            const auto [low, high] =
                std::minmax_element(table(wave, octave).begin(), table(wave, octave).end());
            peak += std::max(-*low, int{*high});
        }
        // Another mathematics library may round a sample the other way.
        EXPECT_NEAR(centroid, kKnown[wave].centroid, 0.003) << wave;
        EXPECT_NEAR(peak, kKnown[wave].peak, kWaveOctaves) << wave;
    }
}

} // namespace tolm
