#pragma once
// The parts of the window, made from the layout's rows.

#include "editor/EditorContext.h"
#include "editor/layout.h"
#include "gui/View.h"

#include <memory>

namespace tolm {

// A page with its panels, controls and displays, at its place in the window.
std::unique_ptr<gui::View> makePage(EditorContext& context, Page page);

void drawPanel(gui::Canvas& canvas, const gui::Rect& place, std::string_view title, Accent accent);

} // namespace tolm
