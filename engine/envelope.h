#pragma once
// The three envelopes of a voice. All are four-stage machines; times come from the shared tables.

#include "engine/control.h"

#include <algorithm>
#include <span>

namespace tolm {

// Index of a normalised time in the 1025-entry tables.
inline std::size_t timeIndex(float v)
{
    return static_cast<std::size_t>(
        std::clamp(static_cast<int>(std::clamp(v, -1.0f, 2.0f) * static_cast<float>(kTimeSteps)), 0,
                   kTimeSteps));
}

// Amplitude and filter: multipliers. With the pedal down the release multiplier is 1.
EnvelopeCoefficients exponentialCoefficients(const RateTables& tables, const EnvelopeSettings& s,
                                             bool releaseEnabled);
// Mod: linear attack; a release at the end of its range never decays.
EnvelopeCoefficients modCoefficients(const RateTables& tables, const EnvelopeSettings& s,
                                     bool releaseEnabled);

// Steps once per frame and yields the level after the step. Nothing but the attack moves while the
// age, counted from the note's start, is below `holdFrames`.
void runAmpEnvelope(EnvelopeState& state, const EnvelopeCoefficients& c, std::uint32_t age,
                    std::uint32_t holdFrames, std::span<float> levels);

// Yields the level first and steps then.
void runFilterEnvelope(EnvelopeState& state, const EnvelopeCoefficients& c,
                       std::span<float> levels);

// Only the level at the call's end is ever observed.
void runModEnvelope(EnvelopeState& state, const EnvelopeCoefficients& c, int frames);

} // namespace tolm
