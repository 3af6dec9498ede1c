#pragma once
// One level of a menu: its rows, the row that is lit, and the scrolling of a long one.

#include "gui/Menu.h"
#include "gui/Style.h"
#include "gui/menuLayout.h"

namespace tolm::gui {

class MenuPanel final : public View {
public:
    // `entries` outlive the panel. `title` is drawn above the rows: what was typed.
    MenuPanel(Menu& menu, const std::vector<MenuEntry>& entries, const Style& style,
              std::string title, const Rect& bounds);

    // The size that fits into the frame's usable area; not yet placed.
    Point wantedSize() const;

    const std::vector<MenuEntry>& entries() const { return entries_; }
    int rowCount() const { return static_cast<int>(entries_.size()); }
    int lit() const { return lit_; }
    // Scrolls it into sight; -1 for none.
    void light(int index);
    // The next row that can be chosen or opened in a direction, around the ends; where there is
    // none, nothing changes.
    void lightNext(int direction);
    // The row beside the lit one in the neighbouring column; false when there is no column.
    bool lightBeside(int direction);
    void lightFirstOrChecked();
    Rect rowInFrame(int index) const;
    // The row at a point of the panel, -1 for none.
    int rowAt(Point local) const;
    const MenuLayout& layout() const { return layout_; }

    // Comes into sight from now on instead of at once.
    void fadeIn();

    void draw(Canvas& canvas) override;
    bool animate(double nowSeconds) override;
    bool mouseDown(const MouseEvent& event) override;
    void mouseDragged(const MouseEvent& event) override;
    void mouseUp(const MouseEvent& event) override;
    void mouseMoved(const MouseEvent& event) override;
    bool mouseWheel(const WheelEvent& event) override;

private:
    void drawRow(Canvas& canvas, const MenuEntry& entry, const Rect& row, bool lit) const;
    void scrollTo(float offset);
    bool canBeLit(int index) const;
    Rect rowsArea() const;
    Rect rowRect(int index) const;
    MenuRowSize sizeOf(const MenuEntry& entry) const;

    Menu& menu_;
    const std::vector<MenuEntry>& entries_;
    const Style style_;
    std::string title_;
    MenuLayout layout_;
    double shownSince_ = -1.0; // negative: not fading
    float scroll_ = 0.0f;
    int lit_ = -1;
};

} // namespace tolm::gui
