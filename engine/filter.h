#pragma once
// The filter section: eighteen types over the kernels. A voice is prepared alone (shaper, envelope,
// cutoff per frame); voices with the same kernel then run side by side.

#include "engine/control.h"
#include "engine/filterKernels.h"

#include <span>

namespace tolm {

enum class Shaper : std::uint8_t { none, distort, crush, follow };

struct FilterType {
    int id;
    Kernel kernel;
    Shaper shaper = Shaper::none;
    bool saturates = false; // after the kernel
    bool split = false;     // takes two input buffers
};

// The row of a type id; unknown ids get the two-pole low-pass.
const FilterType& filterType(int id);

// Voice buffers of a call: `voice` is filtered in place, `split` is the second input of the split
// types, `cutoffFm` is empty or what "Filter FM" adds to the normalised cutoff of each frame.
struct FilterInput {
    std::size_t index; // of the voice
    std::span<float> voice;
    std::span<const float> split;
    std::span<const float> cutoffFm;
};

// Filters up to kFilterLanes voices whose types share a kernel, stepping their filter envelopes.
void filterVoices(EngineRecord& r, const PerVoice<VoiceControl>& control, double sampleRateHz,
                  std::span<const FilterInput> inputs);

} // namespace tolm
