#pragma once
// The filter section of a voice: eighteen types over eleven kernels. The type is picked from the
// table once per voice and call.

#include "engine/control.h"

#include <span>

namespace tolm {

enum class Shaper : std::uint8_t { none, distort, crush, follow };

struct FilterType;

// The row of a type id; unknown ids get the two-pole low-pass.
const FilterType& filterType(int id);
bool isSplit(const FilterType& type);

// Shapes and filters the voice buffer in place, stepping the filter envelope. `cutoffFm` is empty
// or holds what "Filter FM" adds to the normalised cutoff of each frame; `split` is the second
// input of the split types.
void filterVoice(EngineRecord& r, std::size_t voice, const VoiceControl& control,
                 double sampleRateHz, std::span<float> buffer, std::span<const float> split,
                 std::span<const float> cutoffFm);

} // namespace tolm
