#include "editor/filterResponse.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace tolm {

namespace {

using Complex = std::complex<double>;

constexpr double kPi = 3.14159265358979323846;
constexpr double kRateHz = 44100.0;
constexpr double kHighestCutoffHz = 22000.0;
constexpr double kCutoffRange = 2200.0;
constexpr double kCutoffScale = 2048.0;
constexpr double kFloorDb = -96.0;

double curve(double x, double lo, double hi)
{
    return lo * std::pow(hi / lo, x);
}

// Cutoffs are entries of a table; what lies between is cut off.
double cornerHz(double position)
{
    const double entry = std::trunc(std::clamp(position * kCutoffScale, 0.0, kCutoffScale - 1.0));
    return kHighestCutoffHz * std::pow(kCutoffRange, entry / kCutoffScale - 1.0);
}

double sectionCoefficient(double position)
{
    return 2.0 * std::sin(kPi * cornerHz(position) / (3.0 * kRateHz));
}

// A state-variable section of coefficient f and damping q: all outputs at delay d = z^-1.
struct Section {
    Complex low, band, high;

    Section(double f, double q, Complex d)
    {
        const Complex integrator = f / (1.0 - d);
        high = 1.0 / (1.0 + q * d * integrator + d * integrator * integrator);
        band = integrator * high;
        low = integrator * band;
    }
    Complex notch() const { return high + low; }
};

struct Settings {
    double f, f2, q;
    const FilterSettings& s;
};

using Response = Complex (*)(const Settings& x, Complex d, double hz);

Complex lowpass12(const Settings& x, Complex d, double)
{
    return Section(x.f, x.q, d).low;
}
Complex lowpass24(const Settings& x, Complex d, double)
{
    const Complex once = Section(x.f, x.q, d).low;
    return once * once;
}
Complex second(const Settings& x, Complex d)
{
    return x.s.offset >= 0.999f ? 1.0 : Section(x.f2, x.q, d).low;
}
Complex seriesBand(const Settings& x, Complex d, double)
{
    return Section(x.f, x.q, d).band * second(x, d);
}
Complex seriesNotch(const Settings& x, Complex d, double)
{
    return Section(x.f, x.q, d).notch() * second(x, d);
}
Complex seriesHigh(const Settings& x, Complex d, double)
{
    return Section(x.f, x.q, d).high * second(x, d);
}
Complex splitLow(const Settings& x, Complex d, double)
{
    return 0.5 * (Section(x.f, x.q, d).low + Section(x.f2, x.q, d).low);
}
Complex splitBand(const Settings& x, Complex d, double)
{
    return 0.5 * (Section(x.f, x.q, d).band + Section(x.f2, x.q, d).low);
}
Complex splitNotch(const Settings& x, Complex d, double)
{
    return 0.5 * (Section(x.f, x.q, d).notch() + Section(x.f2, x.q, d).low);
}
Complex splitHigh(const Settings& x, Complex d, double)
{
    return 0.5 * (Section(x.f, x.q, d).high + Section(x.f2, x.q, d).low);
}
Complex threeLows(const Settings& x, Complex d, double)
{
    const double last = 1.0 - 0.96 * static_cast<double>(x.s.resonance);
    return Section(x.f, 1.0, d).low * Section(x.f, x.q, d).low * Section(x.f2, last, d).low;
}
Complex sweep(const Settings& x, Complex d, double)
{
    const Section section(x.f, x.q, d);
    const double offset = static_cast<double>(x.s.offset);
    const double low = std::max(0.0, 1.0 - 2.0 * offset);
    const double high = std::max(0.0, 2.0 * offset - 1.0);
    return low * section.low + (1.0 - low - high) * section.band + high * section.high;
}

template <int poles>
Complex ladder(const Settings& x, Complex d, double)
{
    constexpr double kZero = 0.3;
    constexpr double kStageGain = 1.3677824;
    constexpr double kHighestPole = 0.1472;
    const double onePole =
        1.0 - std::exp(-2.0 * kPi * cornerHz(static_cast<double>(x.s.cutoff)) / kRateHz);
    const double pole = std::min((2.0 * onePole - 1.0) * 0.6 - 0.4, kHighestPole);
    const double b = kStageGain / (1.0 + kZero) * (1.0 + pole);
    const Complex stage = b * (1.0 + kZero * d) / (1.0 + pole * d);
    const Complex two = stage * stage;
    const double feedback = 0.95 * static_cast<double>(x.s.resonance);
    const Complex tap = poles == 2 ? two * (kStageGain * kStageGain) : two * two;
    return 0.35 * tap / (1.0 + feedback * d * two * two);
}

Complex comb(const Settings& x, Complex d, double hz)
{
    const double ratio = curve(static_cast<double>(x.s.offset), 0.25, 4.0);
    const double seconds = 1.0 / (static_cast<double>(x.s.keyHz) * ratio);
    const Complex delay = std::polar(1.0, -2.0 * kPi * hz * seconds);
    const double feedback = 0.95 * static_cast<double>(x.s.resonance);
    const Complex teeth = 0.5 * (1.0 + delay) / (1.0 - feedback * delay) * (1.0 - 0.6 * feedback);
    const Complex low = Section(x.f, 1.0, d).low;
    return teeth * low * low;
}

struct TypeRow {
    int id;
    Response response;
    bool wide; // the offset moves the second corner over two octaves to either side, else over one
};

constexpr TypeRow kTypes[] = {
    {0, lowpass12, false}, {1, lowpass24, false},  {2, lowpass12, false},   {3, comb, false},
    {4, lowpass12, false}, {5, ladder<4>, false},  {6, lowpass12, false},   {7, ladder<4>, false},
    {8, threeLows, true},  {9, seriesBand, true},  {10, seriesNotch, true}, {11, seriesHigh, true},
    {12, splitLow, false}, {13, splitBand, false}, {14, splitNotch, false}, {15, splitHigh, false},
    {16, sweep, false},    {17, ladder<2>, false},
};

const TypeRow& typeRow(int id)
{
    const auto found = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [id](const TypeRow& row) { return row.id == id; });
    return found != std::end(kTypes) ? *found : kTypes[0];
}

// Series types move one octave down and two up.
double offsetRatio(const TypeRow& row, double offset)
{
    const bool series = row.id >= 9 && row.id <= 11;
    const bool wide = row.wide && (!series || offset > 0.5);
    return wide ? curve(offset, 0.25, 4.0) : curve(offset, 0.5, 2.0);
}

} // namespace

void filterResponse(const FilterSettings& settings, std::span<const float> hz,
                    std::span<float> decibels)
{
    const TypeRow& row = typeRow(settings.type);
    const double cutoff = static_cast<double>(settings.cutoff);
    const double ratio = offsetRatio(row, static_cast<double>(settings.offset));
    const Settings x{sectionCoefficient(cutoff), sectionCoefficient(cutoff * ratio),
                     1.0 - 0.9 * static_cast<double>(settings.resonance), settings};
    for (std::size_t i = 0; i < hz.size() && i < decibels.size(); ++i) {
        const double at = static_cast<double>(hz[i]);
        const Complex d = std::polar(1.0, -2.0 * kPi * at / kRateHz);
        const double magnitude = std::abs(row.response(x, d, at));
        decibels[i] =
            static_cast<float>(std::max(kFloorDb, 20.0 * std::log10(std::max(magnitude, 1e-9))));
    }
}

} // namespace tolm
