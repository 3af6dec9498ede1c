#pragma once
// A headless window, hands that use it, and a view that writes down what happens to it.

#include "gui/Frame.h"
#include "gui/Window.h"

#include <string>
#include <vector>

namespace tolm::gui {

class Recorder : public View {
public:
    using View::View;

    std::vector<std::string> seen;
    bool takesPresses = true;
    bool takesKeys = true;
    bool focusable = false;
    std::string hint;
    std::function<void()> onPress;

    bool mouseDown(const MouseEvent& event) override
    {
        seen.push_back("down " + at(event.position));
        if (onPress)
            onPress();
        return takesPresses;
    }
    void mouseDragged(const MouseEvent& event) override
    {
        seen.push_back("drag " + at(event.position));
    }
    void mouseUp(const MouseEvent&) override { seen.push_back("up"); }
    void mouseEntered() override { seen.push_back("entered"); }
    void mouseLeft() override { seen.push_back("left"); }
    void captureLost() override { seen.push_back("lost"); }
    bool mouseWheel(const WheelEvent&) override
    {
        seen.push_back("wheel");
        return takesPresses;
    }
    bool keyDown(const KeyEvent& event) override
    {
        if (event.key == Key::tab)
            return false;
        seen.push_back("key " + event.text);
        return takesKeys;
    }
    bool acceptsFocus() const override { return focusable; }
    void focusChanged(bool focused) override { seen.push_back(focused ? "focus" : "blur"); }
    std::string tooltip() const override { return hint; }

    // What was seen since the last call, in one line.
    std::string take()
    {
        std::string all;
        for (const std::string& one : std::exchange(seen, {}))
            all += (all.empty() ? "" : ", ") + one;
        return all;
    }

private:
    static std::string at(Point p)
    {
        return std::to_string(static_cast<int>(p.x)) + "," + std::to_string(static_cast<int>(p.y));
    }
};

class Hands {
public:
    explicit Hands(HeadlessWindow& window) : window_(window) {}

    void press(Point at, Modifiers modifiers = {}, int clicks = 1,
               MouseButton button = MouseButton::left)
    {
        frame().mouseDown({at, button, modifiers, clicks, 0});
    }
    void release(Point at, MouseButton button = MouseButton::left)
    {
        frame().mouseUp({at, button, {}, 1, 0});
    }
    void move(Point at, Modifiers modifiers = {})
    {
        frame().mouseMoved({at, MouseButton::none, modifiers, 1, 0});
    }
    void click(Point at)
    {
        move(at);
        press(at);
        release(at);
    }
    void wheel(Point at, float steps) { frame().mouseWheel({at, steps, {}, 0}); }
    bool key(Key key, Modifiers modifiers = {}) { return frame().keyDown({key, {}, modifiers}); }
    // One event per byte, as ASCII is typed.
    void type(std::string_view text)
    {
        for (const char c : text)
            frame().keyDown({c == ' ' ? Key::space : Key::character, std::string(1, c), {}});
    }
    bool control(char letter)
    {
        return frame().keyDown({Key::character, std::string(1, letter), {false, true, false}});
    }
    void wait(double seconds)
    {
        window_.advance(seconds);
        window_.pump();
    }

private:
    Frame& frame() { return window_.frame(); }

    HeadlessWindow& window_;
};

} // namespace tolm::gui
