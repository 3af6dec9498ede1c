#pragma once
// The filter kernels: recursions over one engine call. A recursion is serial in time, so a kernel
// runs several voices side by side: lanes are voices, and the samples are those of one voice after
// another.
//
// State-variable sections after H. Chamberlin, "Musical Applications of Microprocessors" (1980);
// the ladder's stages and their zero after T. Stilson and J. Smith, "Analyzing the Moog VCF with
// Considerations for Digital Implementation" (ICMC 1996).

#include "engine/control.h"

#include <span>

namespace tolm {

// One voice, one call. The buffers lie in the record itself, so that the lanes of a group have a
// fixed distance.
struct FilterCall {
    SliceBuffer voice;     // in and out
    SliceBuffer split;     // second input of the split types
    SliceBuffer position;  // unclamped cutoff index of each frame, envelope and FM included
    SliceBuffer resonance; // 0..1
    // Filled from the two above by the kernel's own preparation.
    SliceBuffer f;  // coefficient of the first section
    SliceBuffer f2; // of the second section
    SliceBuffer q;  // damping

    std::size_t frames = 0;
    const RateTables* tables = nullptr;
    float coefficientLimit = 2.0f; // keeps the state-variable sections stable at low rates
    float offset = 0.0f;           // 0..1
    float comb = 0.0f;             // octaves by which "LFO 3*Comb" moves the teeth
    float combFrames = 100.0f;     // period of oscillator 1
    FilterState* state = nullptr;
    CombLine* line = nullptr;
};

inline constexpr std::size_t kFilterLanes = 4;

// Runs up to kFilterLanes voices that have the same number of frames.
using FilterKernel = void (*)(std::span<FilterCall> lanes);

enum class Kernel : std::uint8_t {
    lowpass12,
    lowpass24,
    splitLow,
    splitBand,
    splitNotch,
    splitHigh,
    ladder24,
    ladder12,
    seriesBand,
    seriesNotch,
    seriesHigh,
    comb,
    lowpass24Lowpass12,
    sweep,
    count
};

FilterKernel filterKernel(Kernel kernel);

} // namespace tolm
