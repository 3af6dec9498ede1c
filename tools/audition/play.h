#pragma once
// Plays a program through a synth of its own, off-line and repeatably.

#include "patch/ProgramRecord.h"
#include "tools/audition/Phrase.h"

#include <vector>

namespace tolm {

inline constexpr int kAuditionRateHz = 48000;

struct Rendering {
    std::vector<float> left, right;
    std::size_t keyUpFrame = 0; // what follows is release and echo
    double cpuNsPerFrame = 0.0;
};

// The phrase, then its end until it has been silent for a while or `tailSeconds` are over.
// Thread-safe: nothing is shared.
Rendering play(const ProgramRecord& program, const Phrase& phrase, double tailSeconds);

} // namespace tolm
