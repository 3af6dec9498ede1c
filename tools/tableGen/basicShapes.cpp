// Sine, saws, square, triangle and the saturation curve.

#include "tools/tableGen/fourier.h"
#include "tools/tableGen/generators.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr double kFullScale = 32767.0;
constexpr double kSineLevel = 0.999;
constexpr double kSawLevel = 17707.95; // of harmonic 1: the peak of 1023 harmonics rounds to 32767
constexpr double kLowestHz = 1.021974609375; // frequency of pitch 0
constexpr double kHighestHarmonicHz = 20050.0;
constexpr int kMaxHarmonic = kTableSize / 2 - 1;
// Oscillator 3 reads the same square and triangle at every pitch, an octave below oscillator 1.
// 153 harmonics are free of aliases up to 131 Hz (oscillator 1 at middle C) and still bright in
// the bass; the taper keeps what folds above that low.
constexpr int kSubHarmonics = 153;
constexpr double kSaturationDrive = 80.0; // tanh's argument at full scale

using Signal = std::array<double, kTableSize>;

void addHarmonic(Signal& signal, int harmonic, double amplitude)
{
    const auto& sine = unitSine();
    for (int i = 0; i < kTableSize; ++i)
        signal[static_cast<std::size_t>(i)] +=
            amplitude * sine[static_cast<std::size_t>((harmonic * i) & kTableMask)];
}

double peak(const Signal& signal)
{
    double highest = 0.0;
    for (double value : signal)
        highest = std::max(highest, std::fabs(value));
    return highest;
}

Wave quantise(const Signal& signal, double gain)
{
    Wave wave{};
    for (std::size_t i = 0; i < kTableSize; ++i)
        wave[i] = static_cast<std::int16_t>(std::lround(signal[i] * gain));
    wave[kTableSize] = wave[0];
    return wave;
}

int sawHarmonics(int semitone)
{
    const double hz = kLowestHz * std::exp2(semitone / 12.0);
    return std::min(static_cast<int>(kHighestHarmonicHz / hz), kMaxHarmonic + 1);
}

// Lanczos' sigma factor: fades the series out so that its edges do not ring.
double sigma(int harmonic)
{
    const double x = kPi * harmonic / (kSubHarmonics + 1);
    return std::sin(x) / x;
}

} // namespace

void fillSine(ConstantTables& tables)
{
    for (int i = 0; i <= kTableSize; ++i) {
        const auto entry = static_cast<std::size_t>(i);
        const double value = kSineLevel * unitSine()[static_cast<std::size_t>(i & kTableMask)];
        tables.sine[entry] = static_cast<std::int16_t>(kFullScale * value);
        tables.floatSine[entry] = static_cast<float>(value);
    }
}

// The tables share the partial sums of one series. From the highest semitone down each has at
// least the harmonics of the one above, and its own highest at half level; a table whose limit
// lies beyond 1023 harmonics has all of them in full.
void fillSaws(ConstantTables& tables)
{
    Signal full{}; // harmonics 1..count
    int count = 0;
    for (int semitone = kSemitoneCount - 1; semitone >= 0; --semitone) {
        const int limit = sawHarmonics(semitone);
        for (; count < limit - 1; ++count)
            addHarmonic(full, count + 1, -1.0 / (count + 1));
        Signal saw = full;
        if (limit <= kMaxHarmonic)
            addHarmonic(saw, limit, -0.5 / limit);
        tables.saw[static_cast<std::size_t>(semitone)] = quantise(saw, kSawLevel);
    }
}

void fillSquareAndTriangle(ConstantTables& tables)
{
    Signal square{};
    Signal triangle{};
    for (int k = 1; k <= kSubHarmonics; k += 2) {
        addHarmonic(square, k, -sigma(k) / k);
        const double alternating = (k & 2) != 0 ? -1.0 : 1.0;
        addHarmonic(triangle, k, alternating * sigma(k) / (k * k));
    }
    tables.square = quantise(square, kFullScale / peak(square));
    tables.triangle = quantise(triangle, kFullScale / peak(triangle));
}

void fillSaturation(ConstantTables& tables)
{
    for (std::size_t i = 0; i < tables.saturation.size(); ++i) {
        const double x = static_cast<double>(i) / kSaturationSteps;
        tables.saturation[i] = static_cast<float>(std::tanh(kSaturationDrive * x));
    }
}

} // namespace tolm
