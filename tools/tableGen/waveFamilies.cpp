#include "tools/tableGen/waveFamilies.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr std::size_t kShapePoints = 8192; // oversamples shapes that are drawn in time
constexpr double kTurn = 2.0 * kPi;

// The spectrum of one period shape(t), t = 0..1.
template <class Shape>
void addShape(Spectrum& out, Shape shape)
{
    std::vector<Complex> data(kShapePoints);
    for (std::size_t i = 0; i < kShapePoints; ++i)
        data[i] = shape(static_cast<double>(i) / kShapePoints);
    forwardTransform(data);
    const Complex toSine = Complex(0.0, 2.0) / static_cast<double>(kShapePoints);
    for (std::size_t k = 1; k < kSpectrumBins; ++k)
        out.bins[k] += data[k] * toSine;
}

// The same partials, all starting as rising sines. A wave loses the look of its shape and gains
// neighbours that do not cancel when they cross-fade.
template <class Shape>
void addAlignedShape(Spectrum& out, Shape shape)
{
    Spectrum drawn;
    addShape(drawn, shape);
    for (int k = 1; k < kSpectrumBins; ++k)
        out.add(k, std::abs(drawn.bins[static_cast<std::size_t>(k)]));
}

// A fixed phase per bin, the same in every wave and octave, so that noisy waves cross-fade as
// smoothly as plain ones.
double scatteredPhase(int bin)
{
    auto x = static_cast<std::uint32_t>(bin) * 2654435761u;
    x ^= x >> 15;
    x *= 2246822519u;
    x ^= x >> 13;
    return kTurn * static_cast<double>(x) / kPhaseTurn;
}

// Two-pole resonances in series, each 1 at 0 Hz, as in a vocal tract without side branches.
double resonance(const double* formants, double hz)
{
    double gain = 1.0;
    for (; *formants > 0.0; formants += 2) {
        const double centreHz = formants[0];
        const double x = hz / centreHz;
        const double width = formants[1] / centreHz;
        gain /= std::hypot(1.0 - x * x, width * x);
    }
    return gain;
}

} // namespace

void slopeFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (int k = 1; k < kSpectrumBins; ++k)
        out.add(k, std::pow(k, -p[0]));
}

void oddFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (int k = 1; k < kSpectrumBins; k += 2) {
        const double sign = p[2] > 0.0 && (k & 2) != 0 ? -1.0 : 1.0;
        out.add(k, sign * std::pow(std::max(1.0, k / p[1]), -p[0]));
    }
}

// A rising edge at phase 0 and a falling one a duty cycle later.
void pulseFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (int k = 1; k < kSpectrumBins; ++k) {
        out.add(k, 1.0 / k);
        out.add(k, -1.0 / k, -kTurn * k * p[0]);
    }
}

void partialsFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (std::size_t i = 0; i + 1 < p.size(); i += 2)
        out.add(static_cast<int>(p[i]), p[i + 1]);
}

void formantFamily(Spectrum& out, const Numbers& p, const Place& place)
{
    for (int k = 1; k < kSpectrumBins; ++k)
        out.add(k, resonance(p.data(), k * place.noteHz) / k);
}

void quantisedFamily(Spectrum& out, const Numbers& p, const Place&)
{
    const double steps = p[0] - 1.0;
    addShape(out, [=](double t) {
        return std::round((std::sin(kTurn * t) * 0.5 + 0.5) * steps) / steps * 2.0 - 1.0;
    });
}

void heldFamily(Spectrum& out, const Numbers& p, const Place&)
{
    const double steps = p[0];
    addShape(out,
             [=](double t) { return std::sin(kTurn * (std::floor(t * steps) + 0.5) / steps); });
}

void foldedFamily(Spectrum& out, const Numbers& p, const Place&)
{
    const double drive = p[0];
    addShape(out, [=](double t) { return std::sin(drive * std::sin(kTurn * t)); });
}

void fmFamily(Spectrum& out, const Numbers& p, const Place&)
{
    const double ratio = p[0];
    const double index = p[1];
    addAlignedShape(
        out, [=](double t) { return std::sin(kTurn * t + index * std::sin(kTurn * ratio * t)); });
}

void reedFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (int k = 1; k < kSpectrumBins; ++k) {
        const double even = (k & 1) != 0 ? 1.0 : std::min(1.0, k / p[1]);
        out.add(k, even * std::pow(k, -p[0]));
    }
}

void notchedFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (int k = 1; k < kSpectrumBins; ++k) {
        double body = 1.0;
        for (std::size_t i = 1; i <= 4; ++i)
            body -= p[i] > 0.0 ? 0.9 * std::exp(-std::pow((k - p[i]) / (0.15 * p[i]), 2.0)) : 0.0;
        out.add(k, std::max(body, 0.0) * std::pow(k, -p[0]));
    }
}

void humpFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (int k = 1; k < kSpectrumBins; ++k)
        out.add(k, std::exp(-std::pow(std::log2(k / p[0]) / p[1], 2.0)));
}

void windowedFamily(Spectrum& out, const Numbers& p, const Place&)
{
    const double turns = p[0];
    addAlignedShape(out, [=](double t) { return (1.0 - t) * std::sin(kTurn * turns * t); });
}

// A string plucked at one point of its length and heard at another.
void pluckedFamily(Spectrum& out, const Numbers& p, const Place&)
{
    for (int k = 1; k < kSpectrumBins; ++k)
        out.add(k, std::sin(kPi * k * p[0]) * std::sin(kPi * k * p[1]) / k);
}

// Schroeder's quadratic phases: many partials, low peak.
void bellFamily(Spectrum& out, const Numbers& p, const Place& place)
{
    for (std::size_t i = 0; i + 1 < p.size(); i += 2) {
        const double n = static_cast<double>(i) / 2.0;
        out.add(static_cast<int>(std::lround(p[i] * place.cycles)), p[i + 1],
                -kPi * n * n * 2.0 / static_cast<double>(p.size()));
    }
}

void breathFamily(Spectrum& out, const Numbers& p, const Place& place)
{
    for (int bin = 1; bin < kSpectrumBins; ++bin) {
        const int harmonic = std::max(1, (bin + place.cycles / 2) / place.cycles);
        const double distance = std::abs(bin - harmonic * place.cycles);
        // Upper harmonics spread into their neighbour bins until they are noise.
        const double spread = std::exp(-distance / (p[1] * harmonic));
        out.add(bin, std::pow(harmonic, -p[0]) * spread, scatteredPhase(bin));
    }
}

void airFamily(Spectrum& out, const Numbers& p, const Place& place)
{
    breathFamily(out, p, place);
    for (int bin = 1; bin < kSpectrumBins; ++bin)
        out.bins[static_cast<std::size_t>(bin)] *=
            resonance(p.data() + 2, bin * place.noteHz / place.cycles);
}

void growlFamily(Spectrum& out, const Numbers& p, const Place& place)
{
    const double sides[] = {1.0, p[1], p[2]};
    for (int harmonic = 1; harmonic * place.cycles < kSpectrumBins; ++harmonic)
        for (int side = -2; side <= 2; ++side) {
            const int bin = harmonic * place.cycles + side;
            out.add(bin, sides[std::abs(side)] * std::pow(harmonic, -p[0]), scatteredPhase(bin));
        }
}

void denseFamily(Spectrum& out, const Numbers& p, const Place& place)
{
    const int first = static_cast<int>(p[1]);
    for (int bin = first; bin < kSpectrumBins; ++bin)
        if (bin % place.cycles != 0)
            out.add(bin, std::pow(bin, -p[0]), scatteredPhase(bin));
    out.add(place.cycles, 3.0 * std::pow(first, -p[0]), scatteredPhase(place.cycles));
}

void windFamily(Spectrum& out, const Numbers& p, const Place& place)
{
    for (int bin = 1; bin < kSpectrumBins; ++bin) {
        const double octaves = std::log2(static_cast<double>(bin) / place.cycles);
        out.add(bin, std::exp(-std::pow(octaves / p[0], 2.0)), scatteredPhase(bin));
    }
}

} // namespace tolm
