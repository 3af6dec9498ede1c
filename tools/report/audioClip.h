#pragma once
// A rendering as a sound file.

#include "tools/audition/play.h"

#include <filesystem>

namespace tolm {

// FLAC with 16 bits. Throws Failure when it cannot be written.
void writeClip(const Rendering& rendering, const std::filesystem::path& path);

} // namespace tolm
