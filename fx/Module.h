#pragma once
// Base of the synthesis engine and of the effect modules: the sample rate and the mappings from
// normalised settings to physical ranges.

#include "engine/constants.h"

#include <cmath>

namespace tolm {

// lo * (hi / lo)^x: an exponential sweep from lo (x = 0) to hi (x = 1).
inline float curve(float x, float lo, float hi)
{
    return lo * std::exp(x * std::log(hi / lo));
}
inline double curve(double x, double lo, double hi)
{
    return lo * std::exp(x * std::log(hi / lo));
}

// 10^((2x - 1) * range / 20): a gain of plus or minus `range` dB.
inline float dbGain(float x, float range)
{
    return std::pow(10.0f, (2.0f * x - 1.0f) * range * 0.05f);
}

// Recursive values too small to hear become 0, which keeps denormal numbers out of feedback.
inline float flushTiny(float value, float limit = 1e-9f)
{
    return std::abs(value) < limit ? 0.0f : value;
}

// y = b0 * x + b1 * x[-1] - a1 * y[-1]
struct OnePole {
    float a1 = 0.0f;
    float b0 = 1.0f;
    float b1 = 0.0f;
};

class Module {
public:
    virtual ~Module() = default;

    double sampleRateHz() const { return sampleRateHz_; }
    // 2^32 / sample rate: a frequency in Hz times this is a phase increment per frame.
    float phaseScale() const { return phaseScale_; }

    // target^(1000 / (ms * sample rate)): per-frame factor that shrinks a value to `target` of
    // itself in `ms` milliseconds.
    float timeCoefficient(float ms, float target) const;
    // 1 - e^(-2 pi f / sample rate)
    float onePoleCoefficient(float cornerHz) const;
    // One-pole filters by the bilinear transform with pre-warping. Corners are limited to
    // 0.49 * sample rate, below the pole of the tangent.
    OnePole lowpassCoefficients(double cornerHz) const;
    OnePole highpassCoefficients(double cornerHz) const;

protected:
    // The rate is rounded to single precision, as hosts announce it.
    void setRate(float hz);
    double clampCorner(double cornerHz) const;

private:
    double sampleRateHz_ = 44100.0;
    float phaseScale_ = static_cast<float>(kPhaseTurn / 44100.0);
};

} // namespace tolm
