#pragma once
// The ground of boxes that take all input: the window behind in shade, a panel and its title.

#include "gui/Canvas.h"
#include "gui/Style.h"

#include <string_view>

namespace tolm::gui {

struct ModalBox {
    Rect window;
    Rect panel;
    Rect title;
};
void drawModalBox(Canvas& canvas, const Style& style, const ModalBox& box, std::string_view title);

} // namespace tolm::gui
