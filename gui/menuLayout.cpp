#include "gui/menuLayout.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace tolm::gui {

namespace {

float totalHeight(const std::vector<MenuRowSize>& rows)
{
    float height = 0.0f;
    for (const MenuRowSize& row : rows)
        height += row.height;
    return height;
}

// Rows from top to bottom, a new column whenever one is full. Nothing when that takes more than
// `columns` of them.
std::optional<MenuLayout> fillColumns(const std::vector<MenuRowSize>& rows, float width,
                                      float height, int columns)
{
    MenuLayout layout;
    layout.columns = 1;
    Point at;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const float next = rows[i].startsGroup && i + 1 < rows.size() ? rows[i + 1].height : 0.0f;
        if (at.y > 0.0f && at.y + rows[i].height + next > height) {
            at = {at.x + width, 0.0f};
            if (++layout.columns > columns)
                return std::nullopt;
        }
        layout.rows.push_back({at.x, at.y, width, rows[i].height});
        at.y += rows[i].height;
        layout.contentHeight = std::max(layout.contentHeight, at.y);
    }
    layout.size = {width * static_cast<float>(layout.columns), layout.contentHeight};
    return layout;
}

// From where a span of `length` stays inside [from, to); at `from` when it is too long.
float keptInside(float at, float length, float from, float to)
{
    return std::max(std::min(at, to - length), from);
}

} // namespace

MenuLayout layOutMenu(const std::vector<MenuRowSize>& rows, float minWidth, Point room)
{
    float width = minWidth;
    for (const MenuRowSize& row : rows)
        width = std::max(width, row.width);
    width = std::min(std::ceil(width), room.x);
    const float total = totalHeight(rows);
    const int most = width > 0.0f ? static_cast<int>(room.x / width) : 1;
    const int fewest = room.y > 0.0f ? static_cast<int>(std::ceil(total / room.y)) : 1;
    for (int columns = std::max(fewest, 1); columns <= most; ++columns) {
        // As even as whole rows allow: the lowest height that still needs no further column.
        float tallest = 0.0f;
        for (const MenuRowSize& row : rows)
            tallest = std::max(tallest, row.height);
        for (float height = total / static_cast<float>(columns); height <= room.y;
             height += std::max(tallest / 2.0f, 1.0f))
            if (auto layout = fillColumns(rows, width, height, columns))
                return *layout;
        if (auto layout = fillColumns(rows, width, room.y, columns))
            return *layout;
    }
    MenuLayout layout = *fillColumns(rows, width, total + 1.0f, 1);
    layout.size.y = std::min(layout.contentHeight, room.y);
    return layout;
}

Rect placeMenu(Point size, const Rect& anchor, const Rect& bounds)
{
    const float below = anchor.bottom();
    const float above = anchor.y - size.y;
    const bool flips = below + size.y > bounds.bottom() && above >= bounds.y;
    return {std::round(keptInside(anchor.x, size.x, bounds.x, bounds.right())),
            std::round(keptInside(flips ? above : below, size.y, bounds.y, bounds.bottom())),
            size.x, size.y};
}

Rect placeSubMenu(Point size, const Rect& row, const Rect& bounds)
{
    const float right = row.right();
    const float left = row.x - size.x;
    const bool flips = right + size.x > bounds.right() && left >= bounds.x;
    return {std::round(keptInside(flips ? left : right, size.x, bounds.x, bounds.right())),
            std::round(keptInside(row.y, size.y, bounds.y, bounds.bottom())), size.x, size.y};
}

} // namespace tolm::gui
