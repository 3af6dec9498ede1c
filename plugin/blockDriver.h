#pragma once
// One host block: tempo, keyboard and arpeggiator notes, voices between events, effects, output.

#include "plugin/SynthCore.h"

namespace tolm {

enum class OutputMode : std::uint8_t { replace, accumulate };

// Renders `frames` into two channels. Silent when another thread holds the guard.
void processBlock(SynthCore& core, float* const* outputs, int frames, OutputMode mode);

} // namespace tolm
