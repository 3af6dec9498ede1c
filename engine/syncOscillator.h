#pragma once
// Oscillator 2 hard-synced to oscillator 1: naive waveforms whose steps are corrected by a
// minimum-phase band-limited step (E. Brandt, "Hard Sync Without Aliasing", ICMC 2001), and the
// frequency modulation that synced and free oscillators share.

#include "engine/control.h"

#include <algorithm>
#include <span>

namespace tolm {

// A phase step in 64 bits, kept inside a range in which sums stay exact.
inline std::int64_t phaseStep(double increment)
{
    return static_cast<std::int64_t>(std::clamp(increment, -1e15, 1e15));
}

// "1->2 fbk": both oscillators bend the increment of oscillator 2. It may run backwards, but never
// stands still.
inline std::int64_t feedbackIncrement(const VoiceControl& c, int frame, float osc1, float osc2)
{
    const auto increment = static_cast<double>(c.osc[1].increment);
    const double bend = static_cast<double>(osc1 * c.fm1.at(frame) + osc2 * c.fm2);
    const std::int64_t step = phaseStep(increment + bend * increment);
    return step == 0 ? 1 : step;
}

// "1->2 dual": increment of the second phase.
inline std::int64_t dualIncrement(const VoiceControl& c, int frame, float osc1, float osc2)
{
    const auto increment = static_cast<double>(c.osc[1].increment);
    const double bend = static_cast<double>(c.fm1.at(frame) * osc1);
    const double feedback = static_cast<double>(4.0f * c.fm2 * osc2);
    return phaseStep(increment * (1.0 + bend) + increment * feedback);
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
