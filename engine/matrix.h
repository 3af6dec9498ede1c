#pragma once
// The modulation matrix: 24 rows of source, destination, amount and voice mask. Evaluated per voice
// once per engine call, and once per host block for the destinations that are not per voice.

#include "engine/control.h"
#include "engine/record.h"

namespace tolm {

inline constexpr int kSourceCount = 26;
inline constexpr int kDestinationCount = 97;
inline constexpr int kModEnvelopeSource = 25;
inline constexpr int kFirstAmountDestination = 61; // "MM Amount 1"

// Rebuilds the list of rows in force after a parameter changed one.
void refreshMatrix(EngineRecord& r);

// Applies every row that admits the voice. `modulation` comes with its settings and LFO values set.
void evaluateMatrix(CallContext& call, std::size_t voice, VoiceModulation& modulation);

// Controller curves and the delay's LFO, after the block's last slice.
void evaluateGlobalMatrix(EngineRecord& r, double sampleRateHz, double tempo);

// y = s1 x up to the knee c, s2 x + 1 - s2 above; the pieces meet at (c, 1 - c).
double applyCurve(const ControllerCurve& curve, double x);

} // namespace tolm
