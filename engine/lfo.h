#pragma once
// The three LFOs: shape tables, rates and the value that a voice reads once per engine call.

#include "engine/record.h"

namespace tolm {

// Rebuilds the table of 2048 values -1..1 from shape and skew.
void buildLfoTable(LfoSettings& lfo);
// Rebuilds what parameters have marked as stale.
void refreshLfoTables(EngineRecord& r);

// 0.1 * 1000^rate Hz, or the synchronised length that the rate selects at `tempo` beats per minute.
float lfoRateHz(const LfoSettings& lfo, float rate, double tempo);
std::uint32_t lfoIncrement(float hz, double sampleRateHz);
// Both for a normalised rate, computed anew when anything differs from what is known.
const LfoFrequency& lfoFrequency(LfoFrequency& known, const LfoSettings& lfo, float rate,
                                 double tempo, double sampleRateHz);

// Value -1..1 for a voice at the start of an engine call, fade-in included. A random shape draws
// when the voice is in its first call or its phase wraps during this one, and moves toward the
// draw once per call.
float readLfo(EngineRecord& r, std::size_t voice, std::size_t n, std::uint32_t increment,
              int frames, double sampleRateHz);

} // namespace tolm
