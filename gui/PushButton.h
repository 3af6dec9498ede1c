#pragma once
// A button with a word on it, for boxes and sheets.

#include "gui/View.h"

#include <functional>
#include <string>

namespace tolm::gui {

class PushButton final : public View {
public:
    PushButton(Rect bounds, std::string label, std::function<void()> clicked)
        : View(bounds), label_(std::move(label)), clicked_(std::move(clicked))
    {
    }

    // Drawn filled: what Enter does.
    void setDefault(bool isDefault) { default_ = isDefault; }
    const std::string& label() const { return label_; }

    void draw(Canvas& canvas) override;
    bool mouseDown(const MouseEvent& event) override;
    void mouseDragged(const MouseEvent& event) override;
    void mouseUp(const MouseEvent& event) override;
    void captureLost() override;
    bool showsHover() const override { return true; }
    bool keyDown(const KeyEvent& event) override;
    bool acceptsFocus() const override { return isEnabled(); }
    Cursor cursor() const override { return Cursor::hand; }
    std::string spokenName() const override { return label_; }

private:
    void press(bool pressed);
    void click();

    std::string label_;
    std::function<void()> clicked_;
    bool default_ = false;
    bool pressed_ = false; // and the pointer still over it
    bool armed_ = false;
};

} // namespace tolm::gui
