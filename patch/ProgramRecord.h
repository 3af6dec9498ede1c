#pragma once
// A program as it lies in memory, in chunks and in files: 1840 bytes, little-endian.

#include "engine/constants.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tolm {

struct ProgramRecord {
    std::array<char, 32> name{};         // zero-terminated, factory names at most 23 characters
    std::array<char, 480> description{}; // zero-terminated free text
    // By parameter id; mostly 0..1, selectors hold their whole-number index. Host and audio threads
    // share these floats: access them through ProgramStore::value and setValue.
    std::array<float, kStoredParameterCount> values{};
    std::array<std::uint8_t, 12> reserved{};
};

static_assert(sizeof(ProgramRecord) == 1840);
static_assert(offsetof(ProgramRecord, description) == 32);
static_assert(offsetof(ProgramRecord, values) == 512);
static_assert(offsetof(ProgramRecord, reserved) == 1828);

} // namespace tolm
