#include "tools/audition/measure.h"

#include "tools/audition/envelope.h"
#include "tools/audition/spectrum.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <numbers>
#include <utility>

namespace tolm {
namespace {

constexpr double kNothing = -std::numeric_limits<double>::infinity();
constexpr std::size_t kMeterStep = kAuditionRateHz / 20;
constexpr double kUsualAttackSeconds = 0.5;

struct MeterCloser {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};
using Meter = std::unique_ptr<ebur128_state, MeterCloser>;

Meter openMeter()
{
    Meter meter(ebur128_init(2, kAuditionRateHz, EBUR128_MODE_S));
    if (!meter)
        throw std::bad_alloc();
    return meter;
}

std::vector<float> interleaved(const Rendering& r, std::size_t begin, std::size_t end)
{
    std::vector<float> frames;
    frames.reserve(2 * (end - begin));
    for (std::size_t i = begin; i < end; ++i) {
        frames.push_back(r.left[i]);
        frames.push_back(r.right[i]);
    }
    return frames;
}

// K-weighted power of the last `frames`, summed over them. The meter's own longer windows would do,
// but its library takes a thousand times the memory they need.
double energyOver(ebur128_state* meter, std::size_t frames)
{
    double level = kNothing;
    const unsigned long ms = std::max(frames * 1000 / kAuditionRateHz, std::size_t{1});
    ebur128_loudness_window(meter, ms, &level);
    return std::pow(10.0, level / 10.0) * static_cast<double>(frames);
}

double fadeSecondsOf(const Rendering& r, double peak)
{
    const double limit = peak * 1e-3;
    std::size_t last = r.keyUpFrame;
    for (std::size_t i = r.keyUpFrame; i < r.left.size(); ++i)
        if (std::max(std::fabs(r.left[i]), std::fabs(r.right[i])) > static_cast<float>(limit))
            last = i;
    return static_cast<double>(last - r.keyUpFrame) / kAuditionRateHz;
}

struct Sums {
    double mid = 0.0, side = 0.0; // of the squares
    double peak = 0.0;
    bool finite = true;
};

Sums sumsOf(const Rendering& r)
{
    Sums s;
    for (std::size_t i = 0; i < r.left.size(); ++i) {
        const double left = static_cast<double>(r.left[i]);
        const double right = static_cast<double>(r.right[i]);
        s.finite = s.finite && std::isfinite(left) && std::isfinite(right);
        s.peak = std::max({s.peak, std::fabs(left), std::fabs(right)});
        s.mid += (left + right) * (left + right) / 4.0;
        s.side += (left - right) * (left - right) / 4.0;
    }
    return s;
}

// The mean of a piece under a Hann window: without it, parts of cycles at both ends would count.
double meanOf(std::span<const float> piece)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < piece.size(); ++i)
        sum += static_cast<double>(piece[i]) * (1.0 - std::cos(2.0 * kPi * static_cast<double>(i) /
                                                               static_cast<double>(piece.size())));
    return sum / static_cast<double>(std::max(piece.size(), std::size_t{1}));
}

// The median over pieces: a struck low tone has a mean of its own at its onset, and a slow beat
// one of either sign.
double standingOffset(std::span<const float> signal)
{
    constexpr std::size_t kPiece = kAuditionRateHz / 4;
    std::vector<double> offsets;
    std::size_t at = 0;
    do
        offsets.push_back(meanOf(signal.subspan(at, std::min(kPiece, signal.size() - at))));
    while ((at += kPiece / 2) + kPiece <= signal.size());
    const auto middle = offsets.begin() + std::ssize(offsets) / 2;
    std::nth_element(offsets.begin(), middle, offsets.end());
    return std::fabs(*middle);
}

} // namespace

double Loudness::of(LoudnessKind kind) const
{
    const double figures[] = {wholePhrase, momentary, shortTerm};
    return figures[static_cast<std::size_t>(kind)];
}

Loudness loudnessOf(const Rendering& rendering)
{
    const std::size_t keyUp = std::min(rendering.keyUpFrame, rendering.left.size());
    const Meter meter = openMeter();
    double energy = 0.0;
    Loudness loudness{kNothing, kNothing, kNothing};
    for (std::size_t frame = 0; frame < rendering.left.size();) {
        std::size_t end = std::min(frame + kMeterStep, rendering.left.size());
        if (frame < keyUp)
            end = std::min(end, keyUp);
        const std::vector<float> step = interleaved(rendering, frame, end);
        if (ebur128_add_frames_float(meter.get(), step.data(), end - frame) != 0)
            throw std::bad_alloc();
        double level = kNothing;
        ebur128_loudness_momentary(meter.get(), &level);
        loudness.momentary = std::max(loudness.momentary, level);
        ebur128_loudness_shortterm(meter.get(), &level);
        loudness.shortTerm = std::max(loudness.shortTerm, level);
        if (end <= keyUp)
            energy += energyOver(meter.get(), end - frame);
        frame = end;
    }
    loudness.wholePhrase =
        10.0 * std::log10(energy / static_cast<double>(std::max(keyUp, std::size_t{1})));
    return loudness;
}

Figures figuresOf(const Rendering& rendering)
{
    const Sums sums = sumsOf(rendering);
    const std::size_t held = std::min(rendering.keyUpFrame, rendering.left.size());
    Figures f;
    f.finite = sums.finite;
    f.peakDb = decibels(sums.peak);
    f.offsetDb = decibels(std::max(standingOffset(std::span(rendering.left).first(held)),
                                   standingOffset(std::span(rendering.right).first(held))));
    f.attackMs = attackMs(envelopeOf(rendering), kUsualAttackSeconds);
    f.fadeSeconds = fadeSecondsOf(rendering, sums.peak);
    f.centroidHz = tolm::centroidHz(spectraOf(rendering, 0, rendering.keyUpFrame));
    f.widthDb = decibels(std::sqrt(sums.side / std::max(sums.mid, 1e-30)));
    f.monoLossDb = decibels(std::sqrt((sums.mid + sums.side) / std::max(sums.mid, 1e-30)));
    return f;
}

double decibels(double amplitude)
{
    return 20.0 * std::log10(std::max(amplitude, 1e-10));
}

} // namespace tolm
