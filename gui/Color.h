#pragma once
// An sRGB colour with straight (not premultiplied) alpha.

#include <cstdint>

namespace tolm::gui {

struct Color {
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;
    std::uint8_t a = 255;

    friend constexpr bool operator==(Color, Color) = default;

    // 0xRRGGBB, opaque.
    static constexpr Color rgb(std::uint32_t hex)
    {
        return {static_cast<std::uint8_t>(hex >> 16), static_cast<std::uint8_t>(hex >> 8),
                static_cast<std::uint8_t>(hex), 255};
    }
    // The same colour, `alpha` 0..1 of opaque.
    constexpr Color withAlpha(float alpha) const
    {
        const float clamped = alpha < 0.0f ? 0.0f : alpha > 1.0f ? 1.0f : alpha;
        return {r, g, b, static_cast<std::uint8_t>(clamped * 255.0f + 0.5f)};
    }
};

// From `a` (t = 0) to `b` (t = 1), channel by channel.
constexpr Color mix(Color a, Color b, float t)
{
    const auto lane = [t](std::uint8_t from, std::uint8_t to) {
        const float f = static_cast<float>(from);
        return static_cast<std::uint8_t>(f + (static_cast<float>(to) - f) * t + 0.5f);
    };
    return {lane(a.r, b.r), lane(a.g, b.g), lane(a.b, b.b), lane(a.a, b.a)};
}

} // namespace tolm::gui
