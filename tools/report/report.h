#pragma once
// The sounds of a directory as one page to look at and listen to.

#include "tools/audition/choice.h"

namespace tolm {

// Writes index.html with a picture and a sound file of every program into `output`. Throws Failure
// when that cannot be written.
void writeReport(const std::filesystem::path& directory, const SoundChoice& choice,
                 const std::filesystem::path& output);

} // namespace tolm
