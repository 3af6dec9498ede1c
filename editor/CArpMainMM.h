#pragma once
// The step editor of the arpeggiator: a ruler with the pattern's length, a row of notes and a row
// of velocities, fingers or second notes, as the mode reads them.

#include "editor/CArpMainMMLane.h"

#include <string>

namespace tolm {

// Step numbers; its handle, or a press on a number, sets how many steps are played.
class CArpMainMMRuler final : public CDisplay {
public:
    CArpMainMMRuler(EditorContext& context, gui::Rect place);
    ~CArpMainMMRuler() override;

    void draw(gui::Canvas& canvas) override;
    void showPlayingStep(int step);
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { endDrag(); }
    void captureLost() override { endDrag(); }
    bool mouseWheel(const gui::WheelEvent& event) override;
    bool animate(double now) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    gui::Cursor cursor() const override { return gui::Cursor::resizeHorizontal; }
    std::string tooltip() const override;
    std::string spokenName() const override { return "Arpeggiator length"; }

private:
    int steps() const { return arpStepCount(context().value(kArpStepCount)); }
    float handleX() const;
    void setSteps(int steps);
    void endDrag();
    void endWheel();

    bool dragging_ = false;
    double wheelEnd_ = 0.0;  // 0 while no turn is under way
    float grabbedAt_ = 0.0f; // from the middle of the last step
    int playing_ = -1;
};

class CArpMainMM final : public CDisplay, private MeterListener, private StepListener {
public:
    CArpMainMM(EditorContext& context, gui::Rect place);
    ~CArpMainMM() override;

    void draw(gui::Canvas& canvas) override;
    void valueChanged(int id) override;
    // The panel's title and what lies beside it stay reachable.
    gui::View* hitTest(gui::Point local) override;
    const std::string& readout() const { return readout_; }
    CArpMainMMRuler& ruler() { return ruler_; }
    CArpMainMMLane& notes() { return notes_; }
    CArpMainMMLane& second() { return second_; }

private:
    void metersChanged(const EditorMeters& meters) override;
    void stepPointed(const std::string& text) override;
    void layOut();
    gui::Rect readoutPlace() const;

    CArpMainMMRuler& ruler_;
    CArpMainMMLane& notes_;
    CArpMainMMLane& second_;
    std::string readout_;
};

} // namespace tolm
