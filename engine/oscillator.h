#pragma once
// The oscillator section of a voice: two main oscillators with fat voices, FM, hard sync and ring
// modulation, the sub oscillator and coloured noise, mixed into the voice buffer.

#include "engine/control.h"

#include <span>

namespace tolm {

struct OscillatorOutput {
    std::span<float> voice;    // what the filter hears; split filter types: oscillator 1
    std::span<float> split;    // split filter types: oscillators 2 and 3 and noise
    std::span<float> cutoffFm; // "Filter FM": added to the normalised cutoff, else left alone
};

// True when the frames of `cutoffFm` are written for this voice.
bool modulatesCutoff(const EngineRecord& r, const VoiceControl& control);

// Renders one voice for one engine call. Voices must come in ascending order: they share the noise
// seed, which moves by one step per voice and frame.
void renderOscillators(EngineRecord& r, std::size_t voice, const VoiceControl& control,
                       bool splitFilter, const OscillatorOutput& out);

} // namespace tolm
