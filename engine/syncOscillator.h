#pragma once
// Oscillator 2 hard-synced to oscillator 1: naive waveforms whose steps are corrected by a
// minimum-phase band-limited step (E. Brandt, "Hard Sync Without Aliasing", ICMC 2001), and the
// frequency modulation that synced and free oscillators share.

#include "engine/control.h"

#include <algorithm>
#include <span>

namespace tolm {

// A part of a frame's phase step, truncated in 64 bits.
inline std::int64_t phaseStep(double increment)
{
    return static_cast<std::int64_t>(increment);
}

// Phase steps under FM are formed in 64 bits and wrap. The control stage bounds the FM amount, so
// that no product leaves that range.

// "1->2 fbk": both oscillators bend the increment of oscillator 2. It may run backwards, but never
// stands still.
inline std::int64_t feedbackIncrement(const VoiceControl& c, int frame, float osc1, float osc2)
{
    const std::uint32_t increment = c.osc[1].increment;
    const float bend = osc1 * c.fm1.at(frame) + osc2 * c.fm2;
    const std::int64_t step =
        increment + static_cast<std::int64_t>(bend * static_cast<float>(increment));
    return step == 0 ? 1 : step;
}

// "1->2 dual": increment of the second phase.
inline std::int64_t dualIncrement(const VoiceControl& c, int frame, float osc1, float osc2)
{
    const std::uint32_t increment = c.osc[1].increment;
    const float bend = c.fm1.at(frame) * osc1 + 4.0f * c.fm2 * osc2;
    return increment + static_cast<std::int64_t>(bend * static_cast<float>(increment));
}

inline bool wraps(std::uint32_t phase, std::int64_t increment)
{
    const std::int64_t end = static_cast<std::int64_t>(phase) + increment;
    return end < 0 || end > 0xFFFFFFFFll;
}

// `syncPhase` is oscillator 1's phase at the call's start.
void renderSyncedOscillator2(FmMode mode, const VoiceControl& control, VoiceSlot& slot,
                             std::uint32_t syncPhase, std::span<const float> osc1,
                             std::span<float> out);

} // namespace tolm
