#pragma once
// The figures of programs as a table on the terminal.

#include "tools/audition/choice.h"

namespace tolm {

// One row per program, grouped by category below the accepted ranges. "!" marks what is outside,
// "~" what a row in exceptions.toml excuses.
void printFigures(const std::filesystem::path& directory, const SoundChoice& choice);

} // namespace tolm
