#include "fx/ReverbInput.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <span>

namespace tolm {

namespace {

constexpr int kShortestRing = 65536;
constexpr int kRoomOrigin = 1599; // the room's tap positions count from here
constexpr double kTapRateHz = 48000.0;

} // namespace

void InputRing::resize(int longestDelay)
{
    const int cells = std::max(kShortestRing, longestDelay + 2 * kReverbChunk);
    const auto size = std::bit_ceil(static_cast<std::uint32_t>(cells));
    mask_ = size - 1;
    cells_.assign(size + kReverbChunk, 0.0f);
    start_ = next_ = 0;
}

void InputRing::clear()
{
    std::fill(cells_.begin(), cells_.end(), 0.0f);
}

void InputRing::write(const float* chunk, int frames)
{
    start_ = next_;
    for (int i = 0; i < frames; ++i) {
        cells_[next_] = chunk[i];
        if (next_ < kReverbChunk)
            cells_[next_ + mask_ + 1] = chunk[i];
        next_ = (next_ + 1) & mask_;
    }
}

void EarlyReflections::Taps::add(int delayFrames, float gain)
{
    const auto i = static_cast<std::size_t>(count++);
    delays[i] = delayFrames;
    gains[i] = gain;
}

// Two taps per pass: half the traffic to the sums.
void EarlyReflections::Taps::addTo(const InputRing& ring, int frames, ReverbBuffer& out) const
{
    float* __restrict sum = out.data();
    std::size_t t = 0;
    for (; t + 1 < static_cast<std::size_t>(count); t += 2) {
        const float* a = ring.at(delays[t]);
        const float* b = ring.at(delays[t + 1]);
        const float gainA = gains[t];
        const float gainB = gains[t + 1];
        for (int i = 0; i < frames; ++i)
            sum[i] += a[i] * gainA + b[i] * gainB;
    }
    if (t < static_cast<std::size_t>(count)) {
        const float* a = ring.at(delays[t]);
        for (int i = 0; i < frames; ++i)
            sum[i] += a[i] * gains[t];
    }
}

void EarlyReflections::build(const ReverbRow& row, double sampleRateHz, int preDelayFrames,
                             const std::array<int, kReverbLongLines>& lineLengths, Random& random)
{
    left_.count = right_.count = diffuse_.count = 0;
    if (row.lineTapSeconds > 0.0) {
        const int offset = static_cast<int>(sampleRateHz * row.lineTapSeconds) + preDelayFrames;
        for (std::size_t i = 0; i < kReverbLineTaps; ++i) {
            const float gain = (i % 2 == 0 ? -1.0f : 1.0f) / 64.0f * row.earlyGain;
            left_.add(offset + lineLengths[i], kLineTapLeft[i] * gain);
            right_.add(offset + lineLengths[i], kLineTapRight[i] * gain);
        }
    }

    const bool room = row.network == ReverbNetwork::half;
    const int origin = room ? kRoomOrigin : 0;
    const double scale = sampleRateHz / kTapRateHz * row.timeScale;
    const auto addAll = [&](Taps& taps, std::span<const EarlyTap> table) {
        for (const EarlyTap& tap : table)
            taps.add(static_cast<int>((tap.position - origin) * scale) + preDelayFrames,
                     tap.gain * row.earlyGain);
    };
    addAll(left_, row.early->left);
    addAll(right_, row.early->right);

    for (int k = 1; room && k <= kDiffuseTaps; ++k) {
        const double place = std::pow(static_cast<double>(k) / kDiffuseTaps, 0.45);
        const float level = static_cast<float>(std::max(k - 1, 1)) / kDiffuseTaps;
        const float r = static_cast<float>(random.next()) / Random::kMax - 0.5f;
        diffuse_.add(static_cast<int>(place * sampleRateHz * 0.1) + preDelayFrames,
                     level * r * 0.0625f);
    }
}

void EarlyReflections::render(const InputRing& ring, int frames, ReverbBuffer& left,
                              ReverbBuffer& right) const
{
    left.fill(0.0f);
    right.fill(0.0f);
    left_.addTo(ring, frames, left);
    right_.addTo(ring, frames, right);
    if (diffuse_.count == 0)
        return;
    ReverbBuffer diffuse{};
    diffuse_.addTo(ring, frames, diffuse);
    for (std::size_t i = 0; i < static_cast<std::size_t>(frames); ++i) {
        left[i] += diffuse[i];
        right[i] -= diffuse[i];
    }
}

} // namespace tolm
