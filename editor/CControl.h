#pragma once
// A control of one parameter or tag: holds the place in the layout, follows the value, and turns
// drags, wheel, keys and clicks into changes with a begin and an end.

#include "editor/EditorContext.h"
#include "editor/layout.h"
#include "gui/DragGesture.h"
#include "gui/View.h"

namespace tolm {

class CControl : public gui::View, public ValueListener, protected gui::DragListener {
public:
    // `row` belongs to the layout and outlives the control.
    CControl(EditorContext& context, const ControlRow& row);
    ~CControl() override;

    const ControlRow& row() const { return row_; }
    // The parameter behind the tag, or -1.
    int id() const { return id_; }

    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    std::string tooltip() const override;
    std::string spokenName() const override { return row_.spoken; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }

    bool mouseDown(const gui::MouseEvent& event) override;
    bool mouseWheel(const gui::WheelEvent& event) override;
    void captureLost() override { gesture_.end(); }
    bool keyDown(const gui::KeyEvent& event) override;
    bool animate(double now) override { return gesture_.tick(now); }
    void valueChanged(int) override;

protected:
    EditorContext& context() { return context_; }
    const EditorContext& context() const { return context_; }
    float value() const { return value_; }
    gui::Color accent() const { return theme::color(row_.accent); }
    gui::DragGesture& gesture() { return gesture_; }
    bool isTurning() const { return gesture_.isActive(); }
    // The user's new value: shown, and handed to the actions.
    void change(float value);
    // A press of the left button; true when it was used.
    virtual bool pressed(const gui::MouseEvent& event) = 0;
    // The smallest step of keys and wheel, 0 for the usual.
    virtual float smallestStep() const { return 0.0f; }

    void gestureBegan() override;
    void gestureMoved(float value) override { change(value); }
    void gestureEnded() override;

    // A line around the control while it has the focus of the keyboard.
    void drawFocus(gui::Canvas& canvas, const gui::Rect& around, float radius) const;

private:
    EditorContext& context_;
    const ControlRow& row_;
    int id_;
    float value_ = 0.0f;
    gui::DragGesture gesture_{*this};
};

} // namespace tolm
