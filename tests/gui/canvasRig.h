#pragma once
// A small canvas and questions about its pixels.

#include "gui/Canvas.h"

#include <cstdint>

namespace tolm::gui {

struct CanvasRig {
    explicit CanvasRig(int width = 32, int height = 32, float scale = 1.0f)
        : image(width, height), canvas(image, glyphs, scale)
    {
    }

    std::uint32_t at(int x, int y) const { return image.row(y)[static_cast<std::size_t>(x)]; }
    int alphaAt(int x, int y) const { return static_cast<int>(at(x, y) >> 24); }
    int painted() const
    {
        int count = 0;
        for (std::uint32_t pixel : image.pixels())
            count += pixel != 0;
        return count;
    }
    // Covered area in pixels.
    double area() const
    {
        double sum = 0.0;
        for (std::uint32_t pixel : image.pixels())
            sum += static_cast<double>(pixel >> 24) / 255.0;
        return sum;
    }

    Image image;
    GlyphCache glyphs;
    Canvas canvas;
};

inline constexpr Color kWhite = Color::rgb(0xFFFFFF);

} // namespace tolm::gui
