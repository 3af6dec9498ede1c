#pragma once
// A wheel beside the keys: the pitch wheel, which springs back to the middle, or the modulation
// wheel, which stays. Moves follow the pointer; the whole height is the whole range.

#include "editor/EditorContext.h"

namespace tolm {

class CWheel final : public gui::View, public ValueListener {
public:
    // `tag` is kTagPitchWheel or kModWheel.
    CWheel(EditorContext& context, int tag, gui::Rect place);
    ~CWheel() override;

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { release(); }
    void captureLost() override { release(); }
    bool showsHover() const override { return true; }
    bool mouseWheel(const gui::WheelEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    gui::Cursor cursor() const override { return gui::Cursor::resizeVertical; }
    std::string tooltip() const override;
    std::string spokenName() const override;
    void valueChanged(int) override;

private:
    bool isPitch() const { return tag_ == kTagPitchWheel; }
    void begin();
    void move(float value);
    void release();
    void step(float by);

    EditorContext& context_;
    int tag_;
    float value_;
    float grip_ = 0.0f; // what was added to the pointer's place
    bool held_ = false;
};

} // namespace tolm
