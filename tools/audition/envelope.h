#pragma once
// How the level of a rendering moves: attack, decay, release, modulation.

#include "tools/audition/play.h"

#include <limits>
#include <vector>

namespace tolm {

inline constexpr std::size_t kEnvelopeStepFrames = kAuditionRateHz / 200; // 5 ms
inline constexpr double kNever = std::numeric_limits<double>::infinity();

// RMS of both channels per step of 5 ms.
std::vector<double> envelopeOf(const Rendering& rendering);

// 10 to 90 % of the level that the first `withinSeconds` reach: the median of what is louder than a
// tenth of the loudest, so that slow beats do not count as a rise.
double attackMs(const std::vector<double>& envelope, double withinSeconds);

// Seconds from the loudest moment before `keyUpFrame` until the level stays 20 dB below it for a
// tenth of a second, which lets single echoes pass; kNever when the key goes up earlier.
double decaySeconds(const std::vector<double>& envelope, std::size_t keyUpFrame);
// The same from the key-up on, against the level just before.
double releaseSeconds(const std::vector<double>& envelope, std::size_t keyUpFrame);
// Level at a time against the loudest, dB.
double levelAtDb(const std::vector<double>& envelope, double seconds);

// Percent by which level or brightness swing at 0.5 to 12 Hz between two frames.
double modulationPercent(const Rendering& rendering, std::size_t begin, std::size_t end);
// Percent by which the shape of the spectrum turns from each 21 ms to the next: 0 for a steady
// tone.
double fluxPercent(const Rendering& rendering, std::size_t begin, std::size_t end);
// Rises of the level by 2 dB within 15 ms, at least 50 ms apart, before the key goes up.
int onsetCount(const Rendering& rendering);

} // namespace tolm
