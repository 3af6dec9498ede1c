#pragma once
// Reading 16-bit waveform tables with a 32-bit phase. Integer interpolation; every division
// truncates toward zero.

#include "engine/constants.h"

#include <cstdint>

namespace tolm {

inline constexpr std::uint32_t tableIndex(std::uint32_t phase)
{
    return phase >> kTableShift;
}

// The `bits` bits below the table index.
template <int bits>
constexpr std::int32_t tableFraction(std::uint32_t phase)
{
    return static_cast<std::int32_t>((phase >> (kTableShift - bits)) & ((1u << bits) - 1u));
}

template <int bits>
std::int32_t interpolate(const std::int16_t* table, std::uint32_t index, std::int32_t fraction)
{
    const std::int32_t a = table[index];
    const std::int32_t b = table[index + 1]; // every table has a guard entry
    return a + (b - a) * fraction / (1 << bits);
}

// One table.
struct SingleTable {
    const std::int16_t* table;

    std::int32_t at(std::uint32_t index) const { return table[index]; }
    template <int bits>
    std::int32_t between(std::uint32_t index, std::int32_t fraction) const
    {
        return interpolate<bits>(table, index, fraction);
    }
};

// Two neighbouring waves, cross-faded by `blend` of 1024.
struct BlendedTables {
    const std::int16_t* table;
    const std::int16_t* partner;
    std::int32_t blend;

    std::int32_t mix(std::int32_t a, std::int32_t b) const
    {
        return (a * (1024 - blend) + b * blend) / 1024;
    }
    std::int32_t at(std::uint32_t index) const { return mix(table[index], partner[index]); }
    template <int bits>
    std::int32_t between(std::uint32_t index, std::int32_t fraction) const
    {
        return mix(interpolate<bits>(table, index, fraction),
                   interpolate<bits>(partner, index, fraction));
    }
};

} // namespace tolm
