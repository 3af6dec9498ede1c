#pragma once
// Which sounds of a directory a command works on, and how it shows how far it is.

#include "patch/soundText.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tolm {

// Empty lists choose everything; a sound must be in both.
struct SoundChoice {
    std::vector<std::string> categories; // "Sound Effects"
    std::vector<std::string> programs;   // names without "+"
};

// Throws Failure when a name is unknown or nothing is left.
std::vector<Sound> chosenSounds(const std::filesystem::path& directory, const SoundChoice& choice);

// One line on a terminal that is rewritten and, when all is done, wiped.
void showProgress(const char* what, std::size_t done, std::size_t count);

} // namespace tolm
