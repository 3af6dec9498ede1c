#pragma once
// Small drawings of waveforms, as icons and as one cycle in a display.

#include "gui/Canvas.h"

#include <cstdint>
#include <string_view>

namespace tolm {

enum class Shape : std::uint8_t { saw, pulse, sine, triangle, table, steps };

// Of a choice's text: "Saw", "Pulse", "Sine", "Triangle", "Wavetbl", "S+H".
Shape shapeNamed(std::string_view text);
void drawShape(gui::Canvas& canvas, Shape shape, const gui::Rect& box, gui::Color color);

} // namespace tolm
