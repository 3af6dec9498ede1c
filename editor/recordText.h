#pragma once
// Small things about program records that several parts of the editor ask.

#include "patch/ProgramRecord.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string_view>

namespace tolm {

// A text field up to its zero; bounded by the field.
template <std::size_t size>
std::string_view fieldText(const std::array<char, size>& field)
{
    const auto end = std::find(field.begin(), field.end(), '\0');
    return {field.data(), static_cast<std::size_t>(end - field.begin())};
}

// Bits, not numbers: -0 and 0 are different values of a record.
inline bool sameBits(float a, float b)
{
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

inline bool sameRecord(const ProgramRecord& a, const ProgramRecord& b)
{
    return a.name == b.name && a.description == b.description && a.reserved == b.reserved &&
           std::equal(a.values.begin(), a.values.end(), b.values.begin(), sameBits);
}

} // namespace tolm
