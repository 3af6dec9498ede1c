#pragma once
// A view that writes down what happens to it, and a window to put it in.

#include "tests/gui/hands.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
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

// A frame in a headless window, and the hands at it.
class FrameTest : public testing::Test {
protected:
    explicit FrameTest(Point size) : window(size, 1.0f) {}

    HeadlessWindow window;
    Frame& frame = window.frame();
    Hands hands{&window};
};

} // namespace tolm::gui
