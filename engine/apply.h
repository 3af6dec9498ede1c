#pragma once
// Parameter values into engine state: one row per id or group of ids.

#include "engine/record.h"
#include "fx/Module.h"

namespace tolm {

struct ApplyContext {
    EngineRecord& r;
    EffectChain& effects;
    const Module& module;      // sample rate and mappings
    bool extendedGain = false; // the host allows twice the volume range
};

// Ids without a row change nothing. Values are clamped to what the parameter can hold.
void applyParameter(ApplyContext& context, int id, float value);

// Voices in use, 8..72.
int polyphonyFromValue(float value);

// What depends on settings and on the sample rate: noise colour, glide, LFO smoothing.
void recomputeRateSettings(ApplyContext& context);

// High-pass of the noise source; colour 0..1 is 5 Hz..20 kHz.
OnePole noiseColourFilter(const Module& module, float colour);
// Puts the engine's noise filter to a colour, computing only when it differs.
void setNoiseFilter(EngineRecord& r, const Module& module, float colour);

} // namespace tolm
