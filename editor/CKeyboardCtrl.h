#pragma once
// Sixty-one keys that play notes and light up with those that sound. The lower a key is pressed,
// the louder; dragging slides from key to key. One key is held at a time, and none is ever left
// hanging.

#include "editor/EditorContext.h"

#include <bitset>
#include <optional>

namespace tolm {

class CKeyboardCtrl final : public gui::View, public MeterListener {
public:
    static constexpr int kKeys = 61;
    static constexpr int kLowestFirst = 0;
    static constexpr int kHighestFirst = 60;

    CKeyboardCtrl(EditorContext& context, gui::Rect place);
    ~CKeyboardCtrl() override;

    // The leftmost key: a C, 0..60. A held note ends.
    int firstKey() const { return first_; }
    void setFirstKey(int key);
    // The key under a place, with its velocity 1..127; nothing beside the keys.
    struct Touch {
        int key;
        int velocity;
    };
    std::optional<Touch> touchAt(gui::Point p) const;

    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { release(); }
    void captureLost() override { release(); }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string spokenName() const override { return "Keyboard"; }
    void metersChanged(const EditorMeters& meters) override;

private:
    gui::Rect keyPlace(int key) const;
    bool isLit(int key) const;
    void play(Touch touch);
    void release();
    void drawWhite(gui::Canvas& canvas, int key) const;
    void drawBlack(gui::Canvas& canvas, int key) const;

    EditorContext& context_;
    int first_ = 36;
    int held_ = -1;
    std::bitset<128> lit_;
};

// Two buttons that move the keyboard by an octave, and the octave's name between them.
class COctaveShift final : public gui::View {
public:
    COctaveShift(CKeyboardCtrl& keys, gui::Rect place) : View(place), keys_(keys) {}
    void draw(gui::Canvas& canvas) override;
    bool mouseDown(const gui::MouseEvent& event) override;
    bool mouseWheel(const gui::WheelEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool) override { invalidate(); }
    bool showsHover() const override { return true; }
    gui::Cursor cursor() const override { return gui::Cursor::hand; }
    std::string tooltip() const override { return "Moves the keys by an octave"; }
    std::string spokenName() const override { return "Octave of the keys"; }

private:
    void shift(int octaves);
    CKeyboardCtrl& keys_;
};

// The strip at the bottom: both wheels, the octave and the keys.
std::unique_ptr<gui::View> makeKeyboardPage(EditorContext& context);

} // namespace tolm
