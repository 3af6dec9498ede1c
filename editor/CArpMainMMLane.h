#pragma once
// One row of 32 arpeggiator steps as bars or as notes, painted with the mouse.

#include "editor/CArpMainMMSteps.h"
#include "editor/displays.h"
#include "plugin/catalogue.h"

#include <array>
#include <string>

namespace tolm {

class StepListener {
public:
    virtual ~StepListener() = default;
    // What the step under the pointer or the keys reads; empty when there is none.
    virtual void stepPointed(const std::string& text) = 0;
};

// Dragging paints, Shift draws a straight line from where the drag began, the right button resets,
// the wheel moves one step. A stroke is one step of undo.
class CArpMainMMLane final : public CDisplay {
public:
    static constexpr float kGutter = 34.0f; // left of the steps, for what they mean
    static constexpr float kStepWidth = 21.0f;
    static constexpr float kTextHeight = 14.0f; // below the steps
    static constexpr float kWidth = kGutter + kStepWidth * kArpSteps;

    // `firstId` is kArpNote1 or kArpVelocity1, of which the second is read as the mode says.
    CArpMainMMLane(EditorContext& context, StepListener& listener, int firstId, gui::Rect place);
    ~CArpMainMMLane() override;

    StepReading reading() const;
    void showPlayingStep(int step); // 0..31, -1 for none
    // The part of the view in which a step and its text lie.
    gui::Rect column(int step) const;
    // The middle of the place that stands for a number, where a press would set it.
    float heightOf(int number) const;

    void draw(gui::Canvas& canvas) override;
    void valueChanged(int id) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { endStroke(); }
    void captureLost() override { endStroke(); }
    void mouseMoved(const gui::MouseEvent& event) override;
    void mouseLeft() override { point(-1); }
    bool mouseWheel(const gui::WheelEvent& event) override;
    bool animate(double now) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool focused) override;
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string spokenName() const override;

private:
    enum class Stroke : unsigned char { none, paint, reset, wheel };

    const char* name() const;
    float valueAt(int step) const { return context().value(firstId_ + step); }
    int numberOf(int step) const { return stepNumber(reading(), valueAt(step)); }
    void setValue(int step, float value);
    void setNumber(int step, int number);

    // Geometry.
    gui::Rect body() const; // where the steps are drawn
    gui::Rect roll() const; // of notes, without the places of ties and rests
    int octaves() const;
    float rowHeight() const; // of a semitone
    int numberAt(float y) const;
    int stepAt(float x) const;

    // Input.
    void begin(Stroke stroke);
    void endStroke();
    void paintTo(int step, float y);
    void lineTo(int step, float y);
    void resetTo(int step);
    void point(int step);
    void moveCursor(int step);
    void typeValue();
    bool changeByKey(const gui::KeyEvent& event);

    // Drawing.
    void drawGround(gui::Canvas& canvas) const;
    void drawOctaves(gui::Canvas& canvas) const;
    void drawStep(gui::Canvas& canvas, int step) const;
    void drawNote(gui::Canvas& canvas, int step, gui::Color color) const;
    void drawTie(gui::Canvas& canvas, int step, gui::Color color) const;
    void drawBar(gui::Canvas& canvas, int step, gui::Color color) const;
    void drawText(gui::Canvas& canvas, int step) const;

    StepListener& listener_;
    int firstId_;
    int playing_ = -1;
    int pointed_ = -1;
    int cursor_ = 0; // of the keys
    int shownOctaves_ = 2;
    int strokeOctaves_ = 0; // kept while a stroke runs
    Stroke stroke_ = Stroke::none;
    double wheelEnd_ = 0.0;
    int startStep_ = 0;
    int lastStep_ = 0;
    float startY_ = 0.0f;
    float lastY_ = 0.0f;
    std::array<float, kArpSteps> before_{}; // the stroke
};

} // namespace tolm
