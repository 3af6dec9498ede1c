#include "fx/CDelayLine.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>

namespace tolm {

namespace {

constexpr int kShortestLength = 5;
constexpr double kFastestClock = 0.2; // five frames
// Cells 7..9 repeat the end of the cycle before; a cycle's own cells start at 10.
constexpr int kFirstCell = 10;
constexpr int kSeamCells = 3;
// A cycle at the slowest clock has `length` cells; one more ends it, one more may come of rounding.
constexpr int kSpareCells = kFirstCell + 6;
constexpr float kSilentWet = 1e-5f;
constexpr double kRateGlide = 0.001;
constexpr float kLevelGlide = 0.01f;

float withoutDenormal(float value)
{
    return std::abs(value) < FLT_MIN ? 0.0f : value;
}

std::size_t cell(int index)
{
    return static_cast<std::size_t>(index + kFirstCell);
}

} // namespace

CDelayLine::CDelayLine(int length, double lfoPhase)
    : length_(std::max(length, kShortestLength)),
      targetRate_(0.0),
      rate_(1.0 / (length_ - 1)),
      initialPhase_(std::clamp(lfoPhase, 0.0, 1.0)),
      phase_(initialPhase_)
{
    for (Cycle& cycle : cycles_)
        cycle.cells.assign(static_cast<std::size_t>(length_ + kSpareCells), Cell{0.0, 0.0f});
    setTime(0.5f);
}

void CDelayLine::setTime(float t)
{
    const double least = 2.0 / length_;
    targetRate_ = 1.0 / (((1.0 - least) * static_cast<double>(t) * 0.99 + least) * length_);
}

void CDelayLine::setLfoIncrement(double turnsPerFrame)
{
    lfoIncrement_ = std::max(turnsPerFrame, 0.0);
}

void CDelayLine::setWet(float wet)
{
    targetWet_ = withoutDenormal(wet);
}

void CDelayLine::setFeedback(float feedback)
{
    targetFeedback_ = withoutDenormal(feedback);
}

void CDelayLine::setSmoothing(float coefficient)
{
    smoothing_ = std::clamp(coefficient, 0.05f, 1.0f);
}

void CDelayLine::reset()
{
    for (Cycle& cycle : cycles_)
        cycle.count = cycle.readIndex = 0;
    wet_ = 0.0f;
    position_ = 0.0;
    phase_ = initialPhase_;
    feedback_ = targetFeedback_;
    rate_ = targetRate_;
    inputGain_ = 0.0f;
    output_ = 0.0f;
}

// A triangle rounded off by 3t^2 - 2t^3, which only ever speeds the clock up.
double CDelayLine::clockMultiplier()
{
    const double t = phase_ < 0.5 ? 2.0 * phase_ : 1.0 - 2.0 * (phase_ - 0.5);
    phase_ += lfoIncrement_;
    if (phase_ > 1.0)
        phase_ -= 1.0;
    return std::max(1.0, 1.0 + t * t * (3.0 - 2.0 * t) * depth_);
}

float CDelayLine::readAt(double position)
{
    Cycle& cycle = cycles_[static_cast<std::size_t>(1 - writing_)];
    if (cycle.count == 0)
        return 0.0f;
    for (; cycle.readIndex <= cycle.count; ++cycle.readIndex) {
        const Cell& after = cycle.cells[cell(cycle.readIndex)];
        if (position > after.time)
            continue;
        const Cell& before = cycle.cells[cell(cycle.readIndex - 1)];
        const double span = after.time - before.time;
        if (span == 0.0)
            return before.value;
        const auto fraction = static_cast<float>((position - before.time) / span);
        return withoutDenormal(before.value + (after.value - before.value) * fraction);
    }
    return 0.0f;
}

// The finished cycle gets the seam to its predecessor and an uncounted last cell beyond its end,
// then becomes the one to read.
void CDelayLine::endCycle(float value)
{
    Cycle& finished = cycles_[static_cast<std::size_t>(writing_)];
    Cycle& previous = cycles_[static_cast<std::size_t>(1 - writing_)];
    for (int i = -kSeamCells; i < 0; ++i) {
        const Cell& from = previous.cells[cell(previous.count + i)];
        finished.cells[cell(i)] = {from.time - 1.0, from.value};
    }
    finished.cells[cell(finished.count)] = {position_, value};
    finished.readIndex = 0;
    position_ -= 1.0;
    writing_ = 1 - writing_;
    previous.count = 0;
}

void CDelayLine::glide()
{
    const double difference = targetRate_ - rate_;
    if (std::abs(difference) > 1e-8)
        rate_ += kRateGlide * difference;
    wet_ += kLevelGlide * (targetWet_ - wet_);
    inputGain_ += kLevelGlide * (1.0f - inputGain_);
    feedback_ += kLevelGlide * (targetFeedback_ - feedback_);
}

void CDelayLine::process(int frames, float* channel)
{
    if (std::abs(wet_) < kSilentWet && std::abs(targetWet_) < kSilentWet) {
        reset();
        return;
    }
    const double slowestClock = 1.0 / length_;
    for (int i = 0; i < frames; ++i) {
        const double multiplier = clockMultiplier();
        const float tap = readAt(position_);
        output_ = withoutDenormal(output_ + (tap - output_) * smoothing_);
        const float input = withoutDenormal(channel[i]);
        const float written = input * inputGain_ + output_ * feedback_;

        position_ += std::clamp(rate_ * multiplier, slowestClock, kFastestClock);
        const float wetPart = wet_ * output_;
        if (position_ >= 1.0)
            endCycle(written);
        Cycle& cycle = cycles_[static_cast<std::size_t>(writing_)];
        cycle.cells[cell(cycle.count)] = {position_, written};
        ++cycle.count;

        glide();
        channel[i] = input + wetPart;
    }
}

} // namespace tolm
