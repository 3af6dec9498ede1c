#pragma once
// The oldest program layout: 1104 bytes with 258 values under ids of their own.

#include "patch/ProgramRecord.h"

#include <cstdint>
#include <span>

namespace tolm {

inline constexpr int kLegacyValueCount = 258;
inline constexpr std::size_t kLegacyRecordBytes = 1104;

// Adjusts the old values, gives them their current ids and derives the settings that the old
// layout did not have.
ProgramRecord convertLegacyProgram(std::span<const std::uint8_t, kLegacyRecordBytes> bytes);

} // namespace tolm
