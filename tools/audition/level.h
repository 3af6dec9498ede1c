#pragma once
// Makes the programs of a directory equally loud by their Volume lines.

#include "tools/audition/choice.h"

namespace tolm {

// Rewrites the files that change, line by line; prints what changed and which programs could not
// reach their target.
void levelDirectory(const std::filesystem::path& directory, const SoundChoice& choice);

} // namespace tolm
