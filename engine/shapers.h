#pragma once
// What three filter types do to the voice before their kernel, and what one does after it.

#include "engine/record.h"

#include <span>

namespace tolm {

// sign(x) * T(|x| * g) with a drive g of 0.0125..1 over the offset and T the saturation table.
void distort(std::span<float> voice, float offset);
// Rounds to steps of 1/512 (offset 0) to 1/0.75 (offset 1).
void crush(std::span<float> voice, float offset);
// One-pole high-pass, its corner at oscillator 1's frequency times 0.0625..16 over the offset.
void followHighpass(std::span<float> voice, float offset, float osc1Hz, double sampleRateHz,
                    VoiceSlot& slot);
// Mixes each sample with its saturated self by the offset, which also sets the drive.
void saturate(std::span<float> voice, float offset);

} // namespace tolm
