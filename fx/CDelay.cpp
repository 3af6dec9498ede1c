#include "fx/CDelay.h"

namespace tolm {

namespace {

constexpr double kLongestDelaySeconds = 0.05;
constexpr double kRightLfoPhase = 0.3;
constexpr double kRightLfoRatio = 1.1;
constexpr float kDefaultDelay = 0.2f;
constexpr double kDefaultLfoHz = 0.15;

} // namespace

CDelay::CDelay()
{
    setSampleRate(44100.0);
}

void CDelay::setSampleRate(double hz)
{
    if (hz == sampleRateHz_)
        return;
    sampleRateHz_ = hz;
    const int length = static_cast<int>(hz * kLongestDelaySeconds);
    left_ = std::make_unique<CDelayLine>(length, 0.0);
    right_ = std::make_unique<CDelayLine>(length, kRightLfoPhase);

    enabled_ = true;
    setDelay(kDefaultDelay);
    setLfoRate(kDefaultLfoHz);
    setDepth(1.0f);
    setAmount(1.0f);
    setInvertWet(1.0f);
    invertFeedback_ = true;
    setFeedback(0.5f);
    setSmoothing(1.0f);
}

void CDelay::setDelay(float delay)
{
    const float t = delay * delay * 0.99f + 0.01f;
    left_->setTime(t);
    right_->setTime(t);
}

void CDelay::setLfoRate(double hz)
{
    left_->setLfoIncrement(hz / sampleRateHz_);
    right_->setLfoIncrement(kRightLfoRatio * hz / sampleRateHz_);
}

void CDelay::setDepth(float depth)
{
    const double squared = static_cast<double>(depth * depth);
    left_->setDepth(squared);
    right_->setDepth(squared);
}

void CDelay::setAmount(float amount)
{
    amount_ = amount;
    applyWet();
}

void CDelay::setInvertWet(float value)
{
    invertWet_ = value > 0.5f;
    applyWet();
}

void CDelay::applyWet()
{
    const float squared = amount_ * amount_;
    const float wet = !enabled_ ? 0.0f : invertWet_ ? -squared : squared;
    left_->setWet(wet);
    right_->setWet(wet);
}

void CDelay::setFeedback(float feedback)
{
    const float squared = 0.95f * feedback * feedback;
    const float signedFeedback = invertFeedback_ ? -squared : squared;
    left_->setFeedback(signedFeedback);
    right_->setFeedback(signedFeedback);
}

void CDelay::setSmoothing(float value)
{
    const float coefficient = 0.95f * value + 0.05f;
    left_->setSmoothing(coefficient);
    right_->setSmoothing(coefficient);
}

void CDelay::process(int frames, float* const* channels)
{
    left_->process(frames, channels[0]);
    right_->process(frames, channels[1]);
}

} // namespace tolm
