#pragma once
// The controls of single parameters.

#include "editor/CControl.h"

#include <memory>

namespace tolm {

// A knob with its label below, which turns into the value while it moves. A ring outside shows how
// far the matrix moves the parameter.
class CKnob final : public CControl {
public:
    CKnob(EditorContext& context, const ControlRow& row);
    void draw(gui::Canvas& canvas) override;
    bool pressed(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override { gesture().drag(event); }
    void mouseUp(const gui::MouseEvent&) override { gesture().end(); }

private:
    float smallestStep() const override;
    bool bipolar_;
};

// A switch that fills when it is on.
class CToggle final : public CControl {
public:
    using CControl::CControl;
    void draw(gui::Canvas& canvas) override;
    bool pressed(const gui::MouseEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;

private:
    void flip();
};

// A few positions side by side, as words or as waveforms.
class CSegments final : public CControl {
public:
    CSegments(EditorContext& context, const ControlRow& row, bool shapes);
    void draw(gui::Canvas& canvas) override;
    bool pressed(const gui::MouseEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool mouseWheel(const gui::WheelEvent& event) override;

private:
    void choose(int position);
    bool shapes_;
};

// A field with the chosen entry of a menu.
class CMenu final : public CControl {
public:
    using CControl::CControl;
    void draw(gui::Canvas& canvas) override;
    bool pressed(const gui::MouseEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool mouseWheel(const gui::WheelEvent& event) override;

private:
    void open();
    void step(int direction);
};

// Two arrows: previous and next.
class CStepper final : public CControl {
public:
    using CControl::CControl;
    void draw(gui::Canvas& canvas) override;
    bool pressed(const gui::MouseEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool mouseWheel(const gui::WheelEvent& event) override;

private:
    void send(float direction);
};

// A value as text in a field, dragged up and down.
class CNumber final : public CControl {
public:
    using CControl::CControl;
    void draw(gui::Canvas& canvas) override;
    bool pressed(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override { gesture().drag(event); }
    void mouseUp(const gui::MouseEvent&) override { gesture().end(); }
    gui::Cursor cursor() const override { return gui::Cursor::resizeVertical; }

private:
    float smallestStep() const override;
};

std::unique_ptr<CControl> makeControl(EditorContext& context, const ControlRow& row);

} // namespace tolm
