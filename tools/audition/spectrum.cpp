#include "tools/audition/spectrum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

namespace tolm {
namespace {

constexpr double kLowestHz = 20.0;
constexpr double kHighestHz = 16000.0;
constexpr double kLowHz = 200.0;
constexpr double kSmallestPower = 1e-12;
// Around a harmonic, in fundamentals: what lies between high harmonics stays noise.
constexpr double kWidestReach = 0.12;

using Complex = std::complex<double>;

// Without the care for infinities that the standard product takes.
Complex product(Complex a, Complex b)
{
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

void reverseBits(std::vector<Complex>& x)
{
    for (std::size_t i = 1, j = 0; i < x.size(); ++i) {
        std::size_t bit = x.size() / 2;
        for (; (j & bit) != 0; bit /= 2)
            j ^= bit;
        j ^= bit;
        if (i < j)
            std::swap(x[i], x[j]);
    }
}

// Cooley and Tukey, decimation in time, in place; the size a power of two.
void fourier(std::vector<Complex>& x)
{
    thread_local std::vector<Complex> turns;
    if (turns.size() != x.size() / 2) {
        turns.resize(x.size() / 2);
        for (std::size_t i = 0; i < turns.size(); ++i)
            turns[i] = std::polar(1.0, -2.0 * std::numbers::pi * static_cast<double>(i) /
                                           static_cast<double>(x.size()));
    }
    reverseBits(x);
    for (std::size_t half = 1; half < x.size(); half *= 2) {
        const std::size_t stride = turns.size() / half;
        for (std::size_t start = 0; start < x.size(); start += 2 * half)
            for (std::size_t k = start; k < start + half; ++k) {
                const Complex odd = product(x[k + half], turns[(k - start) * stride]);
                x[k + half] = x[k] - odd;
                x[k] += odd;
            }
    }
}

const std::vector<double>& hannWindow(std::size_t size)
{
    thread_local std::vector<double> window;
    if (window.size() != size) {
        window.resize(size);
        for (std::size_t i = 0; i < size; ++i)
            window[i] = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * static_cast<double>(i) /
                                             static_cast<double>(size));
    }
    return window;
}

// Mid in the real and side in the imaginary part: one transform serves both.
void addFrame(const Rendering& r, std::size_t begin, std::size_t end, Spectra& sum)
{
    const std::vector<double>& window = hannWindow(sum.size);
    std::vector<Complex> x(sum.size);
    for (std::size_t i = 0; i < std::min(sum.size, end - begin); ++i) {
        const double left = static_cast<double>(r.left[begin + i]);
        const double right = static_cast<double>(r.right[begin + i]);
        x[i] = window[i] * Complex{(left + right) / 2.0, (left - right) / 2.0};
    }
    fourier(x);
    for (std::size_t bin = 0; bin <= sum.size / 2; ++bin) {
        const Complex mirrored = std::conj(x[(sum.size - bin) % sum.size]);
        sum.mid[bin] += std::norm(x[bin] + mirrored) / 4.0;
        sum.side[bin] += std::norm(x[bin] - mirrored) / 4.0;
    }
}

// Calls use(bin, power of both) for the bins of a band.
template <class Use>
void forBand(const Spectra& s, double lowHz, double highHz, Use&& use)
{
    for (std::size_t bin = 1; bin < s.mid.size(); ++bin) {
        const double hz = s.hertz(static_cast<double>(bin));
        if (hz >= lowHz && hz <= highHz)
            use(bin, s.mid[bin] + s.side[bin]);
    }
}

double powerOf(const Spectra& s, double lowHz, double highHz)
{
    double sum = 0.0;
    forBand(s, lowHz, highHz, [&](std::size_t, double power) { sum += power; });
    return sum;
}

double powerNearMultiples(const Spectra& s, double fundamentalHz)
{
    const double lobeHz = s.hertz(2.5);
    double sum = 0.0;
    forBand(s, kLowestHz, kHighestHz, [&](std::size_t bin, double power) {
        const double hz = s.hertz(static_cast<double>(bin));
        const double multiple = std::max(std::round(hz / fundamentalHz), 1.0) * fundamentalHz;
        const double reachHz = std::min(0.03 * multiple, kWidestReach * fundamentalHz);
        if (std::fabs(hz - multiple) <= std::max(reachHz, lobeHz))
            sum += power;
    });
    return sum;
}

} // namespace

std::vector<double> powerSpectrum(std::span<const float> signal, std::size_t size)
{
    const std::vector<double>& window = hannWindow(size);
    std::vector<Complex> x(size);
    for (std::size_t i = 0; i < std::min(size, signal.size()); ++i)
        x[i] = window[i] * static_cast<double>(signal[i]);
    fourier(x);
    std::vector<double> power(size / 2 + 1);
    for (std::size_t bin = 0; bin < power.size(); ++bin)
        power[bin] = std::norm(x[bin]);
    return power;
}

Spectra spectraOf(const Rendering& rendering, std::size_t begin, std::size_t end, std::size_t size)
{
    end = std::min(end, rendering.left.size());
    begin = std::min(begin, end);
    Spectra spectra{size, std::vector<double>(size / 2 + 1), std::vector<double>(size / 2 + 1)};
    std::size_t at = begin;
    do
        addFrame(rendering, at, end, spectra);
    while ((at += size) + size <= end);
    return spectra;
}

double centroidHz(const Spectra& spectra)
{
    double weighted = 0.0;
    double total = 0.0;
    forBand(spectra, kLowestHz, kHighestHz, [&](std::size_t bin, double power) {
        weighted += spectra.hertz(static_cast<double>(bin)) * power;
        total += power;
    });
    return total > 0.0 ? weighted / total : 0.0;
}

double flatness(const Spectra& spectra)
{
    double logs = 0.0;
    double sum = 0.0;
    double count = 0.0;
    forBand(spectra, kLowestHz, kHighestHz, [&](std::size_t, double power) {
        logs += std::log(power + kSmallestPower);
        sum += power + kSmallestPower;
        count += 1.0;
    });
    return std::exp(logs / count) / (sum / count);
}

double lowShare(const Spectra& spectra)
{
    return powerOf(spectra, kLowestHz, kLowHz) /
           (powerOf(spectra, kLowestHz, kHighestHz) + kSmallestPower);
}

double widthDb(const Spectra& spectra, double upToHz)
{
    double mid = 0.0;
    double side = 0.0;
    forBand(spectra, kLowestHz, upToHz, [&](std::size_t bin, double) {
        mid += spectra.mid[bin];
        side += spectra.side[bin];
    });
    return 10.0 * std::log10((side + kSmallestPower) / (mid + kSmallestPower));
}

double harmonicity(const Spectra& spectra, double fundamentalHz)
{
    const double total = powerOf(spectra, kLowestHz, kHighestHz) + kSmallestPower;
    return std::max(powerNearMultiples(spectra, fundamentalHz),
                    powerNearMultiples(spectra, fundamentalHz / 2.0)) /
           total;
}

int fundamentalCount(const Spectra& spectra, double keyHz)
{
    constexpr int kOctave = 12;
    constexpr int kLowest = -kOctave;
    constexpr int kHighest = 18; // the third harmonic of the key is one above
    constexpr double kStandsOut = 0.01;
    // From one semitone below to one above, for every tone has two neighbours.
    std::array<double, kHighest - kLowest + 3> powers{};
    for (std::size_t i = 0; i < powers.size(); ++i) {
        const double tone = kLowest - 1.0 + static_cast<double>(i);
        powers[i] = powerOf(spectra, keyHz * std::exp2((tone - 0.5) / kOctave),
                            keyHz * std::exp2((tone + 0.5) / kOctave));
    }
    const double least = kStandsOut * *std::max_element(powers.begin() + 1, powers.end() - 1);
    std::array<bool, kOctave> heard{};
    for (std::size_t i = 1; i + 1 < powers.size(); ++i)
        if (powers[i] > 0.0 && powers[i] >= least &&
            powers[i] >= std::max(powers[i - 1], powers[i + 1]))
            heard[(i - 1) % kOctave] = true; // the first is an octave below the key
    return heard[0] ? static_cast<int>(std::count(heard.begin(), heard.end(), true)) : 0;
}

} // namespace tolm
