#pragma once
// Beside the step editor: the menu of ready patterns, and what a mode does with keys.

#include "editor/CArpMainMMSteps.h"
#include "editor/displays.h"

#include <memory>
#include <string>

namespace tolm {

// The pattern whose values the program has, or "User Pattern"; a menu of all.
class CArpPatternMenu final : public CDisplay {
public:
    CArpPatternMenu(EditorContext& context, gui::Rect place);

    void draw(gui::Canvas& canvas) override;
    void valueChanged(int) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string spokenName() const override { return "Arpeggiator pattern"; }
    std::string tooltip() const override { return "Ready patterns"; }
    // The entry of the table that is equal to the program's own; 0 for none.
    int shownPattern();

private:
    void open();

    int shown_ = 0;
    bool stale_ = true;
};

// A button with a menu: copy, paste, turn, reset.
class CArpPatternTools final : public CDisplay {
public:
    CArpPatternTools(EditorContext& context, gui::Rect place) : CDisplay(context, place) {}

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string spokenName() const override { return "Arpeggiator pattern commands"; }
    std::string tooltip() const override { return "Copy, paste, turn or reset the pattern"; }

private:
    void open();
    void copy();
    void paste();
    void turn(int by);
    void reset();

    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true); // text may come later than we live
};

// The length of a step, and below what the mode does. A control that means nothing in the mode goes
// dim.
class CArpModeHint final : public CDisplay {
public:
    // `mix` sets "Arp Range" and lives as long as the hint; null for none.
    CArpModeHint(EditorContext& context, gui::View* mix, gui::Rect place);
    void draw(gui::Canvas& canvas) override;
    void valueChanged(int id) override;
    gui::View* hitTest(gui::Point) override { return nullptr; }

private:
    gui::View* mix_;
};

} // namespace tolm
