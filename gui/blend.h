#pragma once
// Arithmetic on premultiplied pixels, see Image.

#include "gui/Color.h"

#include <cstdint>

namespace tolm::gui {

// x / 255, rounded; exact for x up to 65535 * 255.
constexpr std::uint32_t dividedBy255(std::uint32_t x)
{
    return (x + 128 + ((x + 128) >> 8)) >> 8;
}

constexpr std::uint32_t premultiplied(Color c)
{
    const auto lane = [&c](std::uint32_t v) { return dividedBy255(v * c.a); };
    return lane(c.b) | lane(c.g) << 8 | lane(c.r) << 16 | std::uint32_t{c.a} << 24;
}

// All four lanes times k / 255, rounded. Two lanes share one multiplication.
constexpr std::uint32_t scaledPixel(std::uint32_t pixel, std::uint32_t k)
{
    const auto two = [k](std::uint32_t lanes) {
        const std::uint32_t x = lanes * k + 0x00800080;
        return ((x + ((x >> 8) & 0x00FF00FF)) >> 8) & 0x00FF00FF;
    };
    return two(pixel & 0x00FF00FF) | two((pixel >> 8) & 0x00FF00FF) << 8;
}

// `source` over `below`. Lanes never overflow, because no lane of a premultiplied pixel is larger
// than its alpha.
constexpr std::uint32_t over(std::uint32_t below, std::uint32_t source)
{
    return source + scaledPixel(below, 255 - (source >> 24));
}

} // namespace tolm::gui
