#pragma once
// A whole choice of sounds measured: figures of each, and how alike they are.

#include "tools/audition/choice.h"
#include "tools/audition/descriptors.h"
#include "tools/audition/features.h"

#include <functional>
#include <string>
#include <vector>

namespace tolm {

struct StudiedSound {
    std::string name; // without "+"
    int category = 0;
    Descriptors descriptors;
    Neighbour nearest;
};

struct BankStudy {
    std::vector<StudiedSound> sounds; // as given
    double medianCpuNsPerFrame = 0.0;
    Likeness likeness{{}}; // by the same indices
};

// Spread over the cores; `progress` hears how many sounds are done.
BankStudy studyBank(const std::vector<Sound>& sounds,
                    const std::function<void(std::size_t done)>& progress);

} // namespace tolm
