#pragma once
// The browser's two lists: names in columns, a whole bank at one glance, and the categories.

#include "editor/CBrowserModel.h"

#include <functional>

namespace tolm {

// Names run down the columns; more than fit are scrolled sideways.
class CBrowserNames final : public gui::View {
public:
    static constexpr int kColumns = 4; // visible
    static constexpr float kRowHeight = 16.0f;

    CBrowserNames(CBrowserModel& model, gui::Rect place) : View(place), model_(model) {}

    // The model's rows are new, or another is current.
    void update();
    // To the row that many further, which becomes the current program.
    void move(int rows);
    int rowsPerColumn() const;
    gui::Rect rowPlace(int row) const;

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseMoved(const gui::MouseEvent& event) override;
    void mouseLeft() override { point(-1); }
    bool mouseWheel(const gui::WheelEvent& event) override;
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string spokenName() const override { return "Programs"; }
    std::function<void()> activated; // a double click

private:
    gui::Rect starPlace(int row) const;
    int rowAt(gui::Point p) const;
    int columns() const;
    void scrollTo(int column);
    void showRow(int row);
    void point(int row);
    void drawRow(gui::Canvas& canvas, int row) const;

    CBrowserModel& model_;
    int firstColumn_ = 0;
    int pointed_ = -1;
    int current_ = -1;
};

// "Whole bank", the thirteen categories, and the favourites.
class CBrowserCategories final : public gui::View {
public:
    static constexpr float kRowHeight = 26.0f;

    CBrowserCategories(CBrowserModel& model, gui::Rect place) : View(place), model_(model) {}

    std::function<void()> changed;

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseMoved(const gui::MouseEvent& event) override;
    void mouseLeft() override { point(-1); }
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string spokenName() const override { return "Categories"; }

private:
    int chosen() const;
    void choose(int row);
    void point(int row);

    CBrowserModel& model_;
    int pointed_ = -1;
};

// Bank A, B or C.
class CBankSwitch final : public gui::View {
public:
    CBankSwitch(EditorContext& context, CBrowserModel& model, gui::Rect place)
        : View(place), context_(context), model_(model)
    {
    }

    std::function<void()> changed;

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string tooltip() const override { return "Bank"; }

private:
    EditorContext& context_;
    CBrowserModel& model_;
};

} // namespace tolm
