#pragma once
// The filter kernels: recursions over one voice and one engine call. What they share (cutoff
// positions with envelope and FM, damping) is prepared per frame before they run.
//
// State-variable sections after H. Chamberlin, "Musical Applications of Microprocessors" (1980);
// the ladder's stages and their zero after T. Stilson and J. Smith, "Analyzing the Moog VCF with
// Considerations for Digital Implementation" (ICMC 1996).

#include "engine/record.h"

#include <span>

namespace tolm {

// One voice, one call.
struct FilterCall {
    std::span<float> voice;           // in and out
    std::span<const float> split;     // second input of the split types
    std::span<const float> position;  // unclamped cutoff index of each frame
    std::span<const float> resonance; // 0..1 per frame
    const RateTables* tables = nullptr;
    float coefficientLimit = 2.0f; // keeps the state-variable sections stable at low rates
    float offset = 0.0f;           // 0..1
    float comb = 0.0f;             // octaves by which "LFO 3*Comb" moves the teeth
    float combFrames = 100.0f;     // period of oscillator 1
    FilterState* state = nullptr;
    CombLine* line = nullptr;
};

using FilterKernel = void (*)(const FilterCall&);

void lowpass12(const FilterCall& call);
void lowpass24(const FilterCall& call);
template <int sectionOutput>
void splitFilter(const FilterCall& call);
template <int sectionOutput>
void seriesFilter(const FilterCall& call);
template <int poles>
void ladder(const FilterCall& call);
void combLowpass(const FilterCall& call);
void lowpass24Lowpass12(const FilterCall& call);
void sweep(const FilterCall& call);

// Outputs of a state-variable section.
inline constexpr int kLow = 0;
inline constexpr int kBand = 1;
inline constexpr int kHigh = 2;
inline constexpr int kNotch = 3;

} // namespace tolm
