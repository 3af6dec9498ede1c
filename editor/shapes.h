#pragma once
// Small drawings that controls share: waveforms as icons, the ground of fields, arrows.

#include "gui/Canvas.h"

#include <cstdint>
#include <string_view>

namespace tolm {

enum class Shape : std::uint8_t { saw, pulse, sine, triangle, table, steps };

// Of a choice's text: "Saw", "Pulse", "Sine", "Triangle", "Wavetbl", "S+H".
Shape shapeNamed(std::string_view text);
void drawShape(gui::Canvas& canvas, Shape shape, const gui::Rect& box, gui::Color color);

// The dark ground of fields and buttons; `lit` 1 under the pointer.
void drawField(gui::Canvas& canvas, const gui::Rect& bounds, float lit);
// An open arrow head that points along (dx, dy), which is half of its height.
void drawArrow(gui::Canvas& canvas, gui::Point centre, float dx, float dy, gui::Color color);

} // namespace tolm
