#pragma once
// Where the rows of a menu lie and where the menu lies in its window: never outside of it.

#include "gui/geometry.h"

#include <vector>

namespace tolm::gui {

struct MenuRowSize {
    float height = 0.0f;
    float width = 0.0f;
    bool startsGroup = false; // a heading: not left alone at a column's end
};

struct MenuLayout {
    std::vector<Rect> rows; // relative to the panel's rows area, before scrolling
    Point size;             // of the rows area as shown
    float contentHeight = 0.0f;
    int columns = 1;

    bool scrolls() const { return contentHeight > size.y; }
};

// Columns of equal height while they fit into `room`, else one column that scrolls.
MenuLayout layOutMenu(const std::vector<MenuRowSize>& rows, float minWidth, Point room);

// A panel of `size` below `anchor`, else above it, else where it fits; inside `bounds`.
Rect placeMenu(Point size, const Rect& anchor, const Rect& bounds);
// A sub-menu's panel to the right of its row, else to the left, else over it.
Rect placeSubMenu(Point size, const Rect& row, const Rect& bounds);

} // namespace tolm::gui
