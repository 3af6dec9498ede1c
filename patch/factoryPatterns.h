#pragma once
// The arpeggiator patterns that the build embeds, in the order of the pattern menu.

#include "patch/ProgramRecord.h"

#include <span>
#include <string_view>

namespace tolm {

// Whole records of which only the arpeggiator's values count; choosing one sets "Arp Mode", the
// step notes and velocities, "Arp Steps", "Arp Sync", "Arp Rate", "Arp Length" and "Arp Swing".
// The first, "User Pattern", stands for the program's own pattern and is not meant to be set.
std::span<const ProgramRecord> factoryPatterns();

// `pattern` must be below factoryPatterns().size().
std::string_view factoryPatternName(std::size_t pattern);

} // namespace tolm
