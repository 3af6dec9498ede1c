#pragma once
// A few words beside the pointer. Takes no input; the frame shows and removes it.

#include "gui/Style.h"
#include "gui/View.h"

#include <string>
#include <vector>

namespace tolm::gui {

class Tooltip final : public View {
public:
    // Lines break at '\n' and where they get too long.
    Tooltip(const Style& style, const std::string& text);

    // Its bounds below `anchor`, above it when there is no room, beside the pointer horizontally;
    // always inside a frame of `frameSize` when it fits at all.
    Rect placed(const Rect& anchor, Point pointer, Point frameSize) const;

    void draw(Canvas& canvas) override;
    View* hitTest(Point) override { return nullptr; }

private:
    const Style style_;
    std::vector<std::string> lines_;
};

} // namespace tolm::gui
