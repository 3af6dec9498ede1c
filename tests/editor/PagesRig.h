#pragma once
// The whole editor in a window without a display, and hands that use it.

#include "ActionsRig.h"
#include "editor/ADEditor.h"
#include "gui/Frame.h"
#include "gui/Window.h"

#include <memory>
#include <string>
#include <vector>

namespace tolm::test {

class PagesRig {
public:
    explicit PagesRig(Page page) : editor(port, patterns)
    {
        auto made = std::make_unique<gui::HeadlessWindow>(kWindowSize, 1.0f);
        window = made.get();
        editor.showPage(page);
        editor.openIn(std::move(made));
        port.takeCalls();
    }

    FakeEditorPort port;
    TwoPatterns patterns;
    ADEditor editor;
    gui::HeadlessWindow* window = nullptr;

    gui::Frame& frame() { return window->frame(); }
    EditHistory& history() { return editor.context().history(); }
    float value(int id) const { return port.value(id); }
    // From outside of the window's hands, as a host would.
    void set(int id, float value)
    {
        port.OfflinePort::setParameter(id, value);
        editor.idle();
    }

    // By its spoken name; the first that is visible.
    gui::View* view(const std::string& name) { return find(frame().content(), name); }
    template <class T>
    T& viewOf(const std::string& name)
    {
        return dynamic_cast<T&>(*view(name));
    }
    gui::Point middleOf(const std::string& name) { return view(name)->boundsInFrame().centre(); }

    void press(gui::Point at, gui::MouseButton button = gui::MouseButton::left,
               gui::Modifiers modifiers = {})
    {
        move(at);
        frame().mouseDown({at, button, modifiers, 1, 0});
    }
    void move(gui::Point at, gui::Modifiers modifiers = {})
    {
        frame().mouseMoved({at, gui::MouseButton::none, modifiers, 1, 0});
    }
    void release(gui::Point at, gui::MouseButton button = gui::MouseButton::left)
    {
        frame().mouseUp({at, button, {}, 1, 0});
        editor.idle();
    }
    void click(gui::Point at, gui::MouseButton button = gui::MouseButton::left)
    {
        press(at, button);
        release(at, button);
    }
    void wheel(gui::Point at, float steps, gui::Modifiers modifiers = {})
    {
        frame().mouseWheel({at, steps, modifiers, 0});
    }
    bool key(gui::Key key, gui::Modifiers modifiers = {})
    {
        const bool used = frame().keyDown({key, {}, modifiers});
        wait(0.0);
        return used;
    }
    // And Enter behind it.
    void type(const std::string& text)
    {
        for (const char c : text)
            frame().keyDown(
                {c == ' ' ? gui::Key::space : gui::Key::character, std::string(1, c), {}});
        key(gui::Key::enter);
    }
    void wait(double seconds)
    {
        window->advance(seconds);
        editor.idle();
    }
    // Of the undo list, how many steps it takes back.
    int undoAll()
    {
        int steps = 0;
        while (history().undo())
            ++steps;
        return steps;
    }
    // What is painted again after meters came in, device pixels at scale 1.
    std::vector<gui::Rect> paintedBy(const EditorMeters& meters)
    {
        wait(1.0);
        editor.context().tellMeters(meters);
        return painted();
    }
    // What waits to be painted.
    std::vector<gui::Rect> painted()
    {
        gui::Image image(static_cast<int>(kWindowSize.x), static_cast<int>(kWindowSize.y));
        gui::GlyphCache glyphs;
        return frame().paint(image, glyphs);
    }

private:
    static gui::View* find(gui::View& from, const std::string& name)
    {
        if (!from.isVisible())
            return nullptr;
        if (from.spokenName() == name)
            return &from;
        for (const auto& child : from.children())
            if (gui::View* found = find(*child, name))
                return found;
        return nullptr;
    }
};

} // namespace tolm::test
