#pragma once
// Programs that sound much like another one, as a list on the terminal.

#include "tools/audition/choice.h"

namespace tolm {

// Pairs of nearest programs below 5 units, the closest first; see Likeness.
void printAlike(const std::filesystem::path& directory, const SoundChoice& choice);

} // namespace tolm
