#pragma once
// Magnitude of the filter types over frequency, for the picture of the filter: the kernels'
// transfer functions at 44.1 kHz with the settings at rest. Shapers bend samples, not the response;
// split types show both paths with equal parts.

#include <span>

namespace tolm {

struct FilterSettings {
    int type = 0;           // stored id
    float cutoff = 0.5f;    // normalised 0..1
    float resonance = 0.0f; // 0..1
    float offset = 0.5f;    // 0..1
    float keyHz = 261.63f;  // of oscillator 1, where the comb's teeth stand
};

// In dB, at `hz.size()` frequencies.
void filterResponse(const FilterSettings& settings, std::span<const float> hz,
                    std::span<float> decibels);

} // namespace tolm
