#include "tools/audition/envelope.h"

#include "tools/audition/spectrum.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>
#include <utility>

namespace tolm {
namespace {

constexpr double kStepSeconds = static_cast<double>(kEnvelopeStepFrames) / kAuditionRateHz;
constexpr double kTenth = 0.1;          // of amplitude, -20 dB
constexpr std::size_t kSmoothSteps = 5; // 25 ms, the period of the lowest keys
constexpr std::size_t kStaySteps = 20;
constexpr std::size_t kSpectrumFrames = 2048;

std::size_t stepOf(std::size_t frame)
{
    return frame / kEnvelopeStepFrames;
}

std::vector<double> smoothed(const std::vector<double>& envelope)
{
    std::vector<double> result(envelope.size());
    for (std::size_t i = 0; i < envelope.size(); ++i) {
        double sum = 0.0;
        const std::size_t begin = i - std::min(i, kSmoothSteps / 2);
        const std::size_t end = std::min(begin + kSmoothSteps, envelope.size());
        for (std::size_t k = begin; k < end; ++k)
            sum += envelope[k] * envelope[k];
        result[i] = std::sqrt(sum / static_cast<double>(end - begin));
    }
    return result;
}

// The first step of a tenth of a second below `limit`, or `end`.
std::size_t firstStayBelow(const std::vector<double>& envelope, std::size_t begin, std::size_t end,
                           double limit)
{
    std::size_t below = 0;
    for (std::size_t i = begin; i < end; ++i) {
        below = envelope[i] < limit ? below + 1 : 0;
        if (below == kStaySteps)
            return i + 1 - kStaySteps;
    }
    return end - std::min(below, end - begin);
}

// Amplitude of what swings at 0.5 to 12 Hz, against the mean.
double swing(const std::vector<double>& values, double stepSeconds)
{
    const std::size_t count = values.size();
    const double mean =
        std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(count);
    if (count < 8 || !(mean > 1e-7))
        return 0.0;
    const double slope = (values.back() - values.front()) / static_cast<double>(count - 1);
    const double seconds = static_cast<double>(count) * stepSeconds;
    double power = 0.0;
    for (int line = std::max(1, static_cast<int>(std::ceil(0.5 * seconds)));
         line <= static_cast<int>(12.0 * seconds) && line < static_cast<int>(count) / 2; ++line) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < count; ++i)
            sum += (values[i] - values.front() - slope * static_cast<double>(i)) *
                   std::polar(1.0, -2.0 * std::numbers::pi * line * static_cast<double>(i) /
                                       static_cast<double>(count));
        power += 2.0 * std::norm(sum / static_cast<double>(count));
    }
    return std::sqrt(2.0 * power) / mean;
}

// Of both channels, scaled to a length of one.
std::vector<double> amplitudesOf(const Rendering& rendering, std::size_t begin)
{
    const Spectra spectra = spectraOf(rendering, begin, begin + kSpectrumFrames, kSpectrumFrames);
    std::vector<double> amplitudes(spectra.mid.size());
    double power = 1e-20;
    for (std::size_t bin = 0; bin < amplitudes.size(); ++bin) {
        amplitudes[bin] = std::sqrt(spectra.mid[bin] + spectra.side[bin]);
        power += spectra.mid[bin] + spectra.side[bin];
    }
    for (double& amplitude : amplitudes)
        amplitude /= std::sqrt(power);
    return amplitudes;
}

} // namespace

std::vector<double> envelopeOf(const Rendering& r)
{
    std::vector<double> envelope;
    for (std::size_t i = 0; i + kEnvelopeStepFrames <= r.left.size(); i += kEnvelopeStepFrames) {
        double sum = 0.0;
        for (std::size_t k = i; k < i + kEnvelopeStepFrames; ++k) {
            const double left = static_cast<double>(r.left[k]);
            const double right = static_cast<double>(r.right[k]);
            sum += left * left + right * right;
        }
        envelope.push_back(std::sqrt(sum / (2.0 * kEnvelopeStepFrames)));
    }
    return envelope;
}

double attackMs(const std::vector<double>& envelope, double withinSeconds)
{
    const auto steps = static_cast<std::ptrdiff_t>(withinSeconds / kStepSeconds);
    const auto end = envelope.begin() + std::min(steps, std::ssize(envelope));
    if (envelope.begin() == end)
        return 0.0;
    const double top = *std::max_element(envelope.begin(), end);
    std::vector<double> loud;
    std::copy_if(envelope.begin(), end, std::back_inserter(loud),
                 [&](double level) { return level >= kTenth * top; });
    const auto middle = loud.begin() + std::ssize(loud) / 2;
    std::nth_element(loud.begin(), middle, loud.end());
    const auto reaches = [&](double share) {
        return std::find_if(envelope.begin(), end, [&](double e) { return e >= share * *middle; });
    };
    return static_cast<double>(reaches(0.9) - reaches(0.1)) * kStepSeconds * 1000.0;
}

double decaySeconds(const std::vector<double>& envelope, std::size_t keyUpFrame)
{
    const std::vector<double> levels = smoothed(envelope);
    const std::size_t keyUp = std::min(stepOf(keyUpFrame), levels.size());
    const auto peak =
        std::max_element(levels.begin(), levels.begin() + static_cast<std::ptrdiff_t>(keyUp));
    const auto at = static_cast<std::size_t>(peak - levels.begin());
    if (at >= keyUp)
        return kNever;
    const std::size_t end = firstStayBelow(levels, at, keyUp, kTenth * *peak);
    return end == keyUp ? kNever : static_cast<double>(end - at) * kStepSeconds;
}

double releaseSeconds(const std::vector<double>& envelope, std::size_t keyUpFrame)
{
    const std::vector<double> levels = smoothed(envelope);
    const std::size_t keyUp = std::min(stepOf(keyUpFrame), levels.size());
    const std::size_t before = keyUp - std::min(keyUp, std::size_t{20});
    if (before == keyUp)
        return 0.0;
    const double level = *std::max_element(levels.begin() + static_cast<std::ptrdiff_t>(before),
                                           levels.begin() + static_cast<std::ptrdiff_t>(keyUp));
    const std::size_t end = firstStayBelow(levels, keyUp, levels.size(), kTenth * level);
    return static_cast<double>(end - keyUp) * kStepSeconds;
}

double levelAtDb(const std::vector<double>& envelope, double seconds)
{
    const auto at = static_cast<std::size_t>(seconds / kStepSeconds);
    if (at >= envelope.size())
        return -200.0;
    const double top = *std::max_element(envelope.begin(), envelope.end());
    return 20.0 * std::log10(std::max(smoothed(envelope)[at], 1e-10) / std::max(top, 1e-10));
}

double modulationPercent(const Rendering& rendering, std::size_t begin, std::size_t end)
{
    end = std::min(end, rendering.left.size());
    std::vector<double> levels;
    std::vector<double> centroids;
    for (std::size_t i = begin; i + kSpectrumFrames <= end; i += kSpectrumFrames / 2) {
        const Spectra spectra = spectraOf(rendering, i, i + kSpectrumFrames, kSpectrumFrames);
        const double power = std::accumulate(spectra.mid.begin(), spectra.mid.end(), 0.0) +
                             std::accumulate(spectra.side.begin(), spectra.side.end(), 0.0);
        levels.push_back(std::sqrt(power));
        centroids.push_back(centroidHz(spectra));
    }
    if (levels.empty())
        return 0.0;
    constexpr double kHopSeconds = static_cast<double>(kSpectrumFrames) / 2 / kAuditionRateHz;
    return 100.0 * std::max(swing(levels, kHopSeconds), swing(centroids, kHopSeconds));
}

double fluxPercent(const Rendering& rendering, std::size_t begin, std::size_t end)
{
    end = std::min(end, rendering.left.size());
    std::vector<double> before;
    double sum = 0.0;
    double count = 0.0;
    for (std::size_t i = begin; i + kSpectrumFrames <= end; i += kSpectrumFrames / 2) {
        std::vector<double> shape = amplitudesOf(rendering, i);
        if (!before.empty()) {
            sum += 1.0 - std::inner_product(shape.begin(), shape.end(), before.begin(), 0.0);
            count += 1.0;
        }
        before = std::move(shape);
    }
    return count > 0.0 ? 100.0 * sum / count : 0.0;
}

int onsetCount(const Rendering& rendering)
{
    constexpr double kRise = 1.26; // 2 dB
    constexpr std::size_t kApart = 10;
    const std::vector<double> envelope = envelopeOf(rendering);
    const std::size_t end = std::min(stepOf(rendering.keyUpFrame), envelope.size());
    const double floor =
        envelope.empty() ? 0.0 : 0.01 * *std::max_element(envelope.begin(), envelope.end());
    int count = 0;
    std::size_t last = 0;
    for (std::size_t i = 0; i < end; ++i) {
        const double before = i < 3 ? 0.0 : envelope[i - 3];
        if (envelope[i] > floor && envelope[i] > kRise * before &&
            (count == 0 || i >= last + kApart)) {
            ++count;
            last = i;
        }
    }
    return count;
}

} // namespace tolm
