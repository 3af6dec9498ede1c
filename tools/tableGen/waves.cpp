// The waves: one row each, in families whose neighbours cross-fade well: equal phases, equal
// loudness, and a brightness that moves one way.

#include "plugin/menus.h"
#include "tools/tableGen/generators.h"
#include "tools/tableGen/waveFamilies.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tolm {

namespace {

struct WaveRow {
    Family* family;
    Numbers p;
};

constexpr WaveRow kWaves[] = {
    // clang-format off
    // Additive slopes, from nearly a sine to a saw.
    {slopeFamily,     {6.0}},
    {slopeFamily,     {3.0}},
    {slopeFamily,     {2.0}},
    {slopeFamily,     {1.5}},
    {slopeFamily,     {1.25}},
    {slopeFamily,     {1.0}},
    // Odd harmonics only.
    {oddFamily,       {2.0, 1.0, 1.0}},
    {oddFamily,       {1.5, 1.0}},
    {oddFamily,       {1.0, 1.0}},
    {oddFamily,       {1.0, 7.0}},
    // Pulses, from the square down to a needle.
    {pulseFamily,     {0.46}},
    {pulseFamily,     {0.38}},
    {pulseFamily,     {0.30}},
    {pulseFamily,     {0.22}},
    {pulseFamily,     {0.14}},
    {pulseFamily,     {0.08}},
    // Drawbar organs.
    {partialsFamily,  {1, 1.0, 2, 0.7}},
    {partialsFamily,  {1, 1.0, 2, 0.9, 3, 0.9}},
    {partialsFamily,  {1, 1.0, 2, 0.8, 4, 0.7, 8, 0.5}},
    {partialsFamily,  {1, 1.0, 3, 0.8, 6, 0.6}},
    {partialsFamily,  {1, 1.0, 2, 0.8, 3, 0.6, 16, 0.4}},
    {partialsFamily,  {1, 1.0, 2, 0.9, 3, 0.8, 4, 0.7, 6, 0.6, 8, 0.5, 10, 0.4,
                                          12, 0.35, 16, 0.3}},
    {partialsFamily,  {1, 0.9, 3, 0.7, 4, 0.8, 6, 0.6, 8, 0.6, 12, 0.5}},
    // Sung vowels: formants stay at their frequencies from octave to octave.
    {formantFamily,   {800, 80, 1150, 120, 2900, 160}},
    {formantFamily,   {400, 80, 1700, 120, 2600, 160}},
    {formantFamily,   {290, 80, 2150, 120, 2950, 160}},
    {formantFamily,   {450, 80, 800, 120, 2830, 160}},
    {formantFamily,   {330, 80, 700, 120, 2700, 160}},
    {formantFamily,   {500, 80, 1500, 120, 2500, 160}},
    {formantFamily,   {800, 80, 1150, 120, 2800, 90, 3000, 90, 3200, 90}},
    // Bars and tines: a few partials far apart.
    {partialsFamily,  {1, 1.0, 4, 0.5, 10, 0.25}},
    {partialsFamily,  {1, 1.0, 3, 0.6, 9, 0.4}},
    {partialsFamily,  {1, 1.0, 2, 0.1, 14, 0.2}},
    {partialsFamily,  {1, 1.0, 2, 0.5, 5, 0.6, 13, 0.4}},
    {partialsFamily,  {1, 1.0, 6, 0.5, 11, 0.4, 17, 0.3}},
    {partialsFamily,  {1, 1.0, 2, 0.6, 3, 0.35, 4, 0.3, 7, 0.5, 9, 0.4}},
    // Coarse digital sines.
    {quantisedFamily, {8}},
    {quantisedFamily, {4}},
    {quantisedFamily, {3}},
    {heldFamily,      {16}},
    {heldFamily,      {8}},
    {foldedFamily,    {2.5}},
    // Frequency modulation: growing ratio, then growing distance of the side bands.
    {fmFamily,        {1, 1.0}},
    {fmFamily,        {1, 2.5}},
    {fmFamily,        {2, 1.5}},
    {fmFamily,        {3, 2.0}},
    {fmFamily,        {5, 1.2}},
    {fmFamily,        {7, 0.8}},
    // Reed, nasal, bowed and brass.
    {reedFamily,      {1.1, 14.0}},
    {formantFamily,   {1100, 150, 3000, 300}},
    {formantFamily,   {500, 120, 1200, 200}},
    {formantFamily,   {700, 250, 1500, 300, 2600, 400}},
    {notchedFamily,   {1.0, 2.0, 5.0, 9.0, 15.0}},
    {humpFamily,      {4.0, 1.3}},
    // A sine under a falling window, as of a synchronised oscillator.
    {windowedFamily,  {2.5}},
    {windowedFamily,  {3.5}},
    {windowedFamily,  {5.5}},
    {windowedFamily,  {8.5}},
    // Plucked strings.
    {pluckedFamily,   {1.0 / 5.0, 1.0 / 3.0}},
    {pluckedFamily,   {1.0 / 8.0, 1.0 / 11.0}},
    // Bells: ten cycles, partials on a grid of tenths.
    {bellFamily,      {0.5, 0.6, 1.0, 1.0, 1.2, 0.8, 1.5, 0.4, 2.0, 0.9, 2.5, 0.35,
                                          2.7, 0.3, 3.0, 0.4, 4.2, 0.3, 5.4, 0.25}},
    {bellFamily,      {1.0, 1.0, 2.8, 0.7, 5.4, 0.5, 8.9, 0.35, 13.3, 0.2}},
    {bellFamily,      {1.0, 1.0, 1.4, 0.8, 1.8, 0.7, 2.3, 0.7, 2.9, 0.6, 3.6, 0.5,
                                          4.7, 0.4, 6.1, 0.35}},
    // Two cycles: an octave below sounds along.
    {partialsFamily,  {1, 0.5, 2, 1.0, 3, 0.6, 4, 0.5, 5, 0.45, 7, 0.3}},
    {partialsFamily,  {2, 1.0, 3, 0.8, 4, 0.5, 6, 0.5, 9, 0.35, 12, 0.25}},
    // Noisy: eight cycles, so the noise repeats three octaves below the note.
    {breathFamily,    {1.2, 0.2}},
    {airFamily,       {1.0, 0.25, 800, 120, 1150, 160, 2900, 220}},
    {growlFamily,     {1.3, 0.6, 0.35}},
    {denseFamily,     {0.8, 6.0}},
    {windFamily,      {0.5}},
    // clang-format on
};
static_assert(std::size(kWaves) == std::size(kWaveNames));

// Highest bin of each octave table. At the top of an octave the last ones fold down to no lower
// than 18 kHz at 44.1 kHz.
constexpr std::array<int, kWaveOctaves> kOctaveBins = {99, 49, 24, 12, 6, 3};
// The lowest table of a wave with many cycles serves notes up to 95 and more. Its limit is a
// compromise: aliases stay above 16 kHz up to C6, and bass notes keep some brilliance.
constexpr int kManyCyclesBins = 200;
constexpr int kManyCyclesCentreKey = 60;

// K-weighted level of every wave at C3, on the scale of the samples.
constexpr double kLoudness = 8000.0;
constexpr int kLoudnessKey = 48;
// Centres of what the octave tables serve; the lowest table serves all keys below 60.
constexpr std::array<int, kWaveOctaves> kOctaveCentreKeys = {48, 66, 78, 90, 102, 114};
constexpr int kFirstOctaveKey = 60; // where table 1 takes over from table 0

double keyHz(double key)
{
    return 440.0 * std::exp2((key - 69.0) / 12.0);
}

int cyclesOf(int wave)
{
    return static_cast<int>(
        std::lround(std::exp2(-wavePitchOffset(wave) / static_cast<double>(kPitchUnitsPerOctave))));
}

int highestBin(int cycles, std::size_t octave)
{
    return octave == 0 && cycles > 2 ? kManyCyclesBins : kOctaveBins[octave];
}

Spectrum spectrumOf(const WaveRow& row, int cycles, std::size_t octave)
{
    Spectrum spectrum;
    const bool wide = octave == 0 && cycles > 2;
    const double noteHz =
        wide ? keyHz(kManyCyclesCentreKey) : cycles * keyHz(kOctaveCentreKeys[octave]);
    row.family(spectrum, row.p, {cycles, noteHz});
    bandLimit(spectrum, highestBin(cycles, octave));
    return spectrum;
}

// All waves are equally loud at C3, and a wave keeps its loudness where an octave table takes over
// from the one below.
std::array<Spectrum, kWaveOctaves> levelledSpectra(const WaveRow& row, int cycles)
{
    std::array<Spectrum, kWaveOctaves> spectra;
    for (std::size_t octave = 0; octave < kWaveOctaves; ++octave) {
        spectra[octave] = spectrumOf(row, cycles, octave);
        const double hz = octave == 0
                              ? keyHz(kLoudnessKey) / cycles
                              : keyHz(kFirstOctaveKey + 12.0 * (static_cast<double>(octave) - 1.0));
        const double target = octave == 0 ? kLoudness : loudness(spectra[octave - 1], hz);
        const double given = loudness(spectra[octave], hz);
        if (given > 0.0) // nothing of a wave with many cycles may be left in its highest tables
            spectra[octave].scale(target / given);
    }
    return spectra;
}

Wave quantised(const Spectrum& spectrum, const char* name)
{
    Wave wave{};
    const auto signal = samples(spectrum);
    for (std::size_t i = 0; i < kTableSize; ++i) {
        const long value = std::lround(signal[i]);
        if (std::labs(value) > 32767) {
            std::fprintf(stderr, "tolm-tables: wave \"%s\" is over full scale\n", name);
            std::exit(1);
        }
        wave[i] = static_cast<std::int16_t>(value);
    }
    wave[kTableSize] = wave[0];
    return wave;
}

} // namespace

void fillWaves(ConstantTables& tables)
{
    for (int w = 0; w < kWaveCount; ++w) {
        const WaveRow& row = kWaves[w];
        const auto spectra = levelledSpectra(row, cyclesOf(w));
        for (std::size_t octave = 0; octave < kWaveOctaves; ++octave)
            tables.waves[static_cast<std::size_t>(w)][octave] =
                quantised(spectra[octave], kWaveNames[w]);
    }
    tables.waves[kWaveCount] = tables.waves[kWaveCount - 1];
}

} // namespace tolm
