#pragma once
// One engine call: up to 64 frames of all sounding voices, staged. Control runs first for every
// voice, then oscillators, filters and amplifiers; the samples are those of voice after voice.

#include "engine/control.h"

namespace tolm {

struct RenderBuses {
    float* const* effects; // left and right of what passes the effect chain
    float* const* bypass;  // left and right of what goes around it
};

// Work space of a call, kept out of the stack and allocated once.
struct RenderScratch {
    PerVoice<VoiceControl> control;
    PerVoice<SliceBuffer> voice;
    PerVoice<SliceBuffer> split;
    PerVoice<SliceBuffer> cutoffFm;
};

// Adds to buses that the caller has cleared. False when no voice sounded.
bool renderSlice(EngineRecord& r, RenderScratch& scratch, const Module& module, double tempo,
                 int frames, const RenderBuses& buses);

// Master gain, ramped over the block, and the DC blocker of oscillator sync. Returns the gain
// reached.
float renderOutputStage(EngineRecord& r, int frames, float* const* outputs);

} // namespace tolm
