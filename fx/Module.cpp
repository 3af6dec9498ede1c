#include "fx/Module.h"

#include <algorithm>

namespace tolm {

void Module::setRate(float hz)
{
    sampleRateHz_ = static_cast<double>(hz);
    phaseScale_ = static_cast<float>(kPhaseTurn / sampleRateHz_);
}

float Module::timeCoefficient(float ms, float target) const
{
    return std::pow(target, 1000.0f / (ms * static_cast<float>(sampleRateHz_)));
}

float Module::onePoleCoefficient(float cornerHz) const
{
    return static_cast<float>(1.0 -
                              std::exp(-2.0 * kPi * static_cast<double>(cornerHz) / sampleRateHz_));
}

double Module::clampCorner(double cornerHz) const
{
    return std::min(cornerHz, 0.49 * sampleRateHz_);
}

OnePole Module::lowpassCoefficients(double cornerHz) const
{
    const double c = 2.0 * sampleRateHz_;
    const double w = c * std::tan(kPi * clampCorner(cornerHz) / sampleRateHz_);
    const auto b = static_cast<float>(w / (w + c));
    return {static_cast<float>((w - c) / (w + c)), b, b};
}

OnePole Module::highpassCoefficients(double cornerHz) const
{
    const double c = 2.0 * sampleRateHz_;
    const double w = c * std::tan(kPi * clampCorner(cornerHz) / sampleRateHz_);
    const auto b = static_cast<float>(c / (w + c));
    return {static_cast<float>((w - c) / (w + c)), b, -b};
}

} // namespace tolm
