#include "tools/audition/features.h"

#include "tools/audition/Phrase.h"
#include "tools/audition/envelope.h"
#include "tools/audition/spectrum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tolm {
namespace {

using D = Descriptor;

constexpr int kKeys[] = {40, 60, 76};
constexpr double kHeldSeconds = 1.2;
constexpr double kSegmentEnds[] = {0.15, 0.6, kHeldSeconds}; // onset, body, rest
constexpr std::size_t kFrame = 2048;
constexpr std::size_t kHop = kFrame / 2;
constexpr std::size_t kBands = 32;
constexpr std::size_t kCoefficients = 13;
constexpr double kLowestHz = 40.0;
constexpr double kHighestHz = 16000.0;
constexpr double kFloor = 1e-4; // of a band's power, about -90 dBFS

double melOf(double hz)
{
    return 2595.0 * std::log10(1.0 + hz / 700.0);
}

using Cepstrum = std::array<double, kCoefficients>;

// Triangular bands of equal width in mel, their logarithms through a cosine transform.
Cepstrum cepstrumOf(std::span<const float> frame)
{
    const std::vector<double> power = powerSpectrum(frame, kFrame);
    std::array<double, kBands> bands{};
    const double low = melOf(kLowestHz);
    const double width = (melOf(kHighestHz) - low) / (kBands + 1);
    for (std::size_t bin = 1; bin < power.size(); ++bin) {
        const double hz = static_cast<double>(bin) * kAuditionRateHz / kFrame;
        const double place = (melOf(hz) - low) / width - 1.0; // 0 is the middle of band 0
        const double below = std::floor(place);
        for (const double band : {below, below + 1.0})
            if (band >= 0.0 && band < kBands)
                bands[static_cast<std::size_t>(band)] +=
                    power[bin] * (1.0 - std::fabs(place - band));
    }
    Cepstrum cepstrum{};
    for (std::size_t c = 0; c < kCoefficients; ++c)
        for (std::size_t band = 0; band < kBands; ++band)
            cepstrum[c] += std::log10(bands[band] + kFloor) *
                           std::cos(std::numbers::pi * static_cast<double>(c) *
                                    (static_cast<double>(band) + 0.5) / kBands);
    return cepstrum;
}

void appendSegment(std::span<const Cepstrum> frames, Features& features)
{
    const double count = static_cast<double>(std::max(frames.size(), std::size_t{1}));
    for (std::size_t c = 0; c < kCoefficients; ++c) {
        double sum = 0.0;
        double squares = 0.0;
        for (const Cepstrum& frame : frames) {
            sum += frame[c];
            squares += frame[c] * frame[c];
        }
        const double mean = sum / count;
        features.push_back(mean);
        features.push_back(std::sqrt(std::max(squares / count - mean * mean, 0.0)));
    }
}

void appendNote(const ProgramRecord& program, int key, int velocity, Features& features)
{
    const Rendering r = play(program, heldKeys({&key, 1}, kHeldSeconds, velocity), 0.0);
    std::vector<float> mono(r.left.size());
    for (std::size_t i = 0; i < mono.size(); ++i)
        mono[i] = (r.left[i] + r.right[i]) / 2.0f;
    std::size_t at = 0;
    for (const double end : kSegmentEnds) {
        std::vector<Cepstrum> frames;
        const auto last = static_cast<std::size_t>(end * kAuditionRateHz);
        for (; at < last && at + kFrame <= mono.size(); at += kHop)
            frames.push_back(cepstrumOf(std::span(mono).subspan(at, kFrame)));
        appendSegment(frames, features);
    }
}

// Figures on the scales on which the ear compares them.
double decades(double value, double least)
{
    return std::log10(std::max(value, least));
}
// What never ends counts as ten seconds.
double timeOf(double seconds)
{
    return decades(std::min(seconds, 10.0), 0.002);
}
double widthOf(const Descriptors& d)
{
    return std::clamp(d[D::width], -40.0, 6.0);
}

void appendDescriptors(const Descriptors& d, Features& features)
{
    for (const double figure :
         {timeOf(d[D::attack] / 1000.0), timeOf(d[D::decay]), timeOf(d[D::release]), widthOf(d),
          std::min(d[D::modulation], 100.0)})
        features.push_back(figure);
}

double distanceOf(const Features& a, const Features& b)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return std::sqrt(sum);
}

} // namespace

Features featuresOf(const ProgramRecord& program, const Descriptors& descriptors, int velocity)
{
    Features features;
    for (const int key : kKeys)
        appendNote(program, key, velocity, features);
    appendDescriptors(descriptors, features);
    return features;
}

Features characterOf(const Descriptors& d)
{
    constexpr double kMostOnsets = 4.0; // per beat
    constexpr double kFaintDb = -60.0;
    return {decades(d[D::centroid], 20.0),
            timeOf(d[D::attack] / 1000.0),
            timeOf(d[D::decay]),
            timeOf(d[D::release]),
            d[D::harmonicity],
            d[D::lowShare],
            widthOf(d),
            decades(d[D::modulation], 0.5),
            decades(d[D::flatness], 1e-7),
            std::min(d[D::onsets], kMostOnsets),
            std::clamp(d[D::levelAfter4s], kFaintDb, 0.0)};
}

Likeness::Likeness(std::vector<Features> bank)
{
    const std::size_t size = bank.empty() ? 0 : bank.front().size();
    const double count = static_cast<double>(std::max(bank.size(), std::size_t{1}));
    mean_.resize(size);
    deviation_.resize(size);
    for (std::size_t i = 0; i < size; ++i) {
        for (const Features& features : bank)
            mean_[i] += features[i] / count;
        for (const Features& features : bank)
            deviation_[i] += (features[i] - mean_[i]) * (features[i] - mean_[i]) / count;
        deviation_[i] = std::max(std::sqrt(deviation_[i]), 1e-9);
    }
    for (Features& features : bank)
        bank_.push_back(scaled(std::move(features)));
}

void Likeness::setUnit(std::span<const std::pair<Features, Features>> touches)
{
    std::vector<double> distances;
    for (const auto& [softer, harder] : touches)
        distances.push_back(distanceOf(scaled(softer), scaled(harder)));
    if (distances.empty())
        return;
    const auto middle = distances.begin() + std::ssize(distances) / 2;
    std::nth_element(distances.begin(), middle, distances.end());
    unit_ = std::max(*middle, 1e-9);
}

double Likeness::distance(std::size_t a, std::size_t b) const
{
    return distanceOf(bank_[a], bank_[b]) / unit_;
}

Neighbour Likeness::nearest(std::size_t index) const
{
    Neighbour nearest{index, bank_.size() > 1 ? kNever : 0.0};
    for (std::size_t other = 0; other < bank_.size(); ++other) {
        if (other == index)
            continue;
        const double d = distance(index, other);
        if (d < nearest.distance)
            nearest = {other, d};
    }
    return nearest;
}

Features Likeness::scaled(Features features) const
{
    for (std::size_t i = 0; i < features.size(); ++i)
        features[i] = (features[i] - mean_[i]) / deviation_[i];
    return features;
}

} // namespace tolm
