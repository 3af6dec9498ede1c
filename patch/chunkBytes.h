#pragma once
// Integers and floats in byte order of the formats, whatever the machine's own order is. Callers
// have checked that the bytes are there.

#include <bit>
#include <cstddef>
#include <cstdint>

namespace tolm {

inline std::uint32_t readLittle32(const std::uint8_t* from)
{
    return static_cast<std::uint32_t>(from[0]) | static_cast<std::uint32_t>(from[1]) << 8 |
           static_cast<std::uint32_t>(from[2]) << 16 | static_cast<std::uint32_t>(from[3]) << 24;
}

inline void writeLittle32(std::uint8_t* to, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

inline std::uint32_t readBig32(const std::uint8_t* from)
{
    return static_cast<std::uint32_t>(from[0]) << 24 | static_cast<std::uint32_t>(from[1]) << 16 |
           static_cast<std::uint32_t>(from[2]) << 8 | static_cast<std::uint32_t>(from[3]);
}

inline void writeBig32(std::uint8_t* to, std::uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}

inline float readLittleFloat(const std::uint8_t* from)
{
    return std::bit_cast<float>(readLittle32(from));
}

inline void writeLittleFloat(std::uint8_t* to, float value)
{
    writeLittle32(to, std::bit_cast<std::uint32_t>(value));
}

} // namespace tolm
