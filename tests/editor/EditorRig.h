#pragma once
// A whole editor over an offline plug-in, in a window without a display, with hands for mouse and
// keys. Places are of the window.

#include "FakeEditorPort.h"
#include "editor/ADEditor.h"
#include "editor/arpPattern.h"
#include "gui/Frame.h"

#include <memory>
#include <string>
#include <vector>

namespace tolm::test {

struct EditorRig {
    explicit EditorRig(bool opened = true)
    {
        if (opened)
            open();
    }

    void open()
    {
        editor.setScale(1.0f);
        auto made = std::make_unique<gui::HeadlessWindow>(kWindowSize, 1.0f);
        window = made.get();
        editor.openIn(std::move(made));
        port.takeCalls();
    }
    gui::Frame& frame() { return window->frame(); }
    // The first view of a type whose spoken name begins so.
    template <class T = gui::View>
    T* find(std::string_view spoken)
    {
        return dynamic_cast<T*>(findIn(frame().content(), spoken));
    }
    void idle(double seconds = 0.05)
    {
        window->advance(seconds);
        editor.idle();
    }

    void press(gui::Point p, gui::MouseButton button = gui::MouseButton::left, int clicks = 1)
    {
        frame().mouseMoved({p, gui::MouseButton::none, {}, 1, 0});
        frame().mouseDown({p, button, {}, clicks, 0});
    }
    void drag(gui::Point p) { frame().mouseMoved({p, gui::MouseButton::left, {}, 1, 0}); }
    void release(gui::Point p) { frame().mouseUp({p, gui::MouseButton::left, {}, 1, 0}); }
    void click(gui::Point p)
    {
        press(p);
        release(p);
        idle();
    }
    void click(gui::View& view) { click(view.boundsInFrame().centre()); }
    bool key(gui::Key pressed)
    {
        const bool used = frame().keyDown({pressed, {}, {}});
        idle();
        return used;
    }
    void type(const std::string& text)
    {
        for (const char letter : text)
            frame().keyDown({letter == ' ' ? gui::Key::space : gui::Key::character,
                             std::string(1, letter),
                             {}});
        idle();
    }

    FakeEditorPort port;
    std::vector<ProgramRecord> userPattern = std::vector<ProgramRecord>(1);
    RecordPatternTable patterns{userPattern};
    ADEditor editor{port, patterns};
    gui::HeadlessWindow* window = nullptr;

private:
    static gui::View* findIn(gui::View& view, std::string_view spoken)
    {
        if (view.spokenName().starts_with(spoken) && !spoken.empty())
            return &view;
        for (const auto& child : view.children())
            if (gui::View* const found = findIn(*child, spoken))
                return found;
        return nullptr;
    }
};

} // namespace tolm::test
