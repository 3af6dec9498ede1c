#pragma once
// A titled box with text and buttons. The window takes no other input until it is answered; the
// host and its thread go on.

#include "gui/View.h"
#include "gui/textWrap.h"

#include <functional>
#include <string>
#include <vector>

namespace tolm::gui {

class PushButton;

struct MessageRequest {
    std::string title;
    std::string text;                          // may hold line breaks
    std::vector<std::string> buttons = {"OK"}; // from left to right; the last answers Enter
    // The button's index. Escape answers with the first one. The box is gone by then.
    std::function<void(int button)> answered;
};

class Message final : public View {
public:
    static Message& show(Frame& frame, MessageRequest request);

    const std::string& title() const { return request_.title; }
    const std::string& text() const { return request_.text; }
    PushButton& button(std::size_t index) { return *buttons_[index]; }

    void draw(Canvas& canvas) override;
    bool mouseDown(const MouseEvent&) override { return true; }
    bool mouseWheel(const WheelEvent&) override { return true; }
    bool keyDown(const KeyEvent& event) override;

private:
    explicit Message(MessageRequest request);
    void layOut(const Frame& frame);
    void answer(int button);

    MessageRequest request_;
    Rect box_;
    std::vector<TextLine> lines_;
    std::vector<PushButton*> buttons_;
};

} // namespace tolm::gui
