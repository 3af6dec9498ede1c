#include "engine/shapers.h"

#include "fx/Module.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr int kLastDistortionIndex = 4094;
constexpr float kSaturationScale = 16777216.0f; // the table's 4096 steps with 12 bits of fraction
constexpr int kSaturationFractionBits = 12;
constexpr float kSaturationDrive = 0.020625f;

} // namespace

void distort(std::span<float> voice, float offset)
{
    const auto& table = constantTables().saturation;
    const float drive = curve(offset, 0.0125f, 1.0f) * static_cast<float>(kSaturationSteps);
    for (float& x : voice) {
        const float scaled =
            std::min(std::abs(x) * drive, static_cast<float>(kLastDistortionIndex + 1));
        const int i = std::min(static_cast<int>(scaled), kLastDistortionIndex);
        const float t = scaled - static_cast<float>(i);
        const auto index = static_cast<std::size_t>(i);
        x = std::copysign(table[index] + (table[index + 1] - table[index]) * t, x);
    }
}

void crush(std::span<float> voice, float offset)
{
    constexpr float kRange = 1e6f;
    const float steps = curve(1.0f - offset, 0.75f, 512.0f);
    for (float& x : voice) {
        // Half away from zero.
        const float scaled = std::clamp(x * steps, -kRange, kRange);
        x = static_cast<float>(static_cast<int>(scaled + std::copysign(0.5f, scaled))) / steps;
    }
}

void followHighpass(std::span<float> voice, float offset, float osc1Hz, double sampleRateHz,
                    VoiceSlot& slot)
{
    const float corner = osc1Hz * curve(offset, 0.0625f, 16.0f);
    if (corner != slot.followHz) {
        const double w = std::tan(kPi * std::min(static_cast<double>(corner) / sampleRateHz, 0.49));
        slot.followHz = corner;
        slot.followGain = static_cast<float>(1.0 / (1.0 + w));
        slot.followPole = static_cast<float>((w - 1.0) / (w + 1.0));
    }
    float previous = slot.followPrevious;
    float y = slot.followOutput;
    for (float& x : voice) {
        y = slot.followGain * (x - previous) - slot.followPole * y;
        previous = x;
        x = y;
    }
    slot.followPrevious = previous;
    slot.followOutput = flushTiny(y);
}

void saturate(std::span<float> voice, float offset)
{
    const auto& table = constantTables().saturation;
    const float drive = kSaturationDrive * std::pow(64.0f, offset / 2.0f);
    for (float& x : voice) {
        const float v = std::abs(x * drive);
        const int j = static_cast<int>(std::min(v * kSaturationScale, kSaturationScale));
        const auto i = static_cast<std::size_t>(j >> kSaturationFractionBits);
        const float t = static_cast<float>(j & 4095) / 4096.0f;
        const float s = table[i] * (1.0f - t) + table[i + 1] * t;
        x = x * (1.0f - offset) + std::copysign(s, x) * offset;
    }
}

} // namespace tolm
