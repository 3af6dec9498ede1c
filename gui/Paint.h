#pragma once
// What a path is filled or stroked with: one colour, or a gradient of up to eight stops.

#include "gui/Color.h"
#include "gui/geometry.h"

#include <array>
#include <cstddef>
#include <initializer_list>

namespace tolm::gui {

struct GradientStop {
    float offset = 0.0f; // 0..1, ascending
    Color color;
};

struct Paint {
    enum class Kind : unsigned char { solid, linear, radial };
    static constexpr std::size_t kMaxStops = 8;

    Kind kind = Kind::solid;
    Color color;         // solid
    Point from;          // linear: where offset 0 lies; radial: the centre
    Point to;            // linear: where offset 1 lies
    float radius = 0.0f; // radial: where offset 1 lies
    std::array<GradientStop, kMaxStops> stops{};
    std::size_t stopCount = 0;

    Paint(Color solid) : color(solid) {} // NOLINT: a colour is the usual paint

    // Stops beyond the eighth are left out. Gradients are dithered, so that dark ones do not band.
    static Paint linear(Point from, Point to, std::initializer_list<GradientStop> stops);
    static Paint linear(Point from, Point to, Color first, Color last)
    {
        return linear(from, to, {{0.0f, first}, {1.0f, last}});
    }
    static Paint radial(Point centre, float radius, std::initializer_list<GradientStop> stops);
};

enum class LineCap : unsigned char { butt, round };

struct Stroke {
    float width = 1.0f;
    LineCap cap = LineCap::butt; // joins are round with round caps, else mitred
};

} // namespace tolm::gui
