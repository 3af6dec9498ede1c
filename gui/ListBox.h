#pragma once
// A scrolling list of lines with one of them selected. Draws only what is visible, so thousands of
// rows cost nothing.

#include "gui/View.h"

#include <functional>
#include <string>
#include <vector>

namespace tolm::gui {

struct ListRow {
    std::string label;
    std::string detail; // at the right, secondary
    bool isFolder = false;
};

class ListBox final : public View {
public:
    static constexpr float kRowHeight = 20.0f;

    // By mouse or keys, not by select().
    std::function<void(int row)> selected;
    // Double click or Enter.
    std::function<void(int row)> activated;

    ListBox(Rect bounds, std::string spokenName) : View(bounds), spokenName_(std::move(spokenName))
    {
    }

    // Nothing is selected then, and the list is at its top.
    void setRows(std::vector<ListRow> rows);
    const std::vector<ListRow>& rows() const { return rows_; }
    // Shown instead of rows when there are none.
    void setEmptyText(std::string text);
    const std::string& emptyText() const { return emptyText_; }
    int selection() const { return selection_; }
    // Scrolls it into sight; -1 for none.
    void select(int row);
    float scrollOffset() const { return scroll_; }

    void draw(Canvas& canvas) override;
    bool mouseDown(const MouseEvent& event) override;
    void mouseDragged(const MouseEvent& event) override;
    void mouseUp(const MouseEvent&) override { draggingBar_ = false; }
    void captureLost() override { draggingBar_ = false; }
    bool mouseWheel(const WheelEvent& event) override;
    bool keyDown(const KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool focused) override;
    std::string spokenName() const override { return spokenName_; }

protected:
    void boundsChanged() override { scrollTo(scroll_); }

private:
    int rowCount() const { return static_cast<int>(rows_.size()); }
    float furthest() const;
    void scrollTo(float offset);
    Rect thumb() const;
    void choose(int row);
    bool findTyped(const KeyEvent& event);
    void drawRow(Canvas& canvas, const ListRow& row, const Rect& box, bool isSelected) const;

    std::vector<ListRow> rows_;
    std::string emptyText_;
    std::string spokenName_;
    std::string typed_;
    double typedAt_ = 0.0;
    int selection_ = -1;
    float scroll_ = 0.0f;
    bool draggingBar_ = false;
    float grip_ = 0.0f; // where the thumb was taken, from its top
};

} // namespace tolm::gui
