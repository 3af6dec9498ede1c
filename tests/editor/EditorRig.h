#pragma once
// The whole editor over an offline plug-in, in a window without a display, and hands that use it.
// Places are of the window; views are found by their spoken names.

#include "ActionsRig.h"
#include "editor/ADEditor.h"
#include "gui/Frame.h"

#include <memory>

namespace tolm::test {

inline constexpr gui::Modifiers kShift{true, false, false};
inline constexpr gui::Modifiers kAlt{false, false, true};
inline constexpr auto kLeft = gui::MouseButton::left;
inline constexpr auto kRight = gui::MouseButton::right;

struct EditorRig {
    explicit EditorRig(Page page = Page::modulation)
    {
        editor.showPage(page);
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
    EditHistory& history() { return editor.context().history(); }
    float value(int id) const { return port.value(id); }
    std::string programName() const { return port.record(port.currentProgram()).name.data(); }
    // From outside of the window's hands, as a host would.
    void set(int id, float value)
    {
        port.OfflinePort::setParameter(id, value);
        editor.idle();
    }
    // As a control of the window does.
    void change(int tag, float value)
    {
        editor.context().actions().controlChanged(tag, value);
        editor.idle();
    }

    // The first view of a type whose name begins so, shown or not.
    template <class T = gui::View>
    T* find(std::string_view spoken)
    {
        return dynamic_cast<T*>(findIn(frame().content(), spoken));
    }
    gui::Rect place(std::string_view spoken) { return find(spoken)->boundsInFrame(); }
    gui::Point middle(std::string_view spoken) { return place(spoken).centre(); }
    // The box above all others, if it is one.
    template <class T>
    T* overlay()
    {
        move({kWindowSize.x / 2, kWindowSize.y / 2});
        for (gui::View* view = frame().hovered(); view != nullptr; view = view->parent())
            if (auto* const found = dynamic_cast<T*>(view))
                return found;
        return nullptr;
    }

    void wait(double seconds = 0.05)
    {
        window->advance(seconds);
        editor.idle();
    }
    void move(gui::Point at, gui::Modifiers modifiers = {})
    {
        frame().mouseMoved({at, gui::MouseButton::none, modifiers, 1, 0});
    }
    void press(gui::Point at, gui::MouseButton button = kLeft, gui::Modifiers modifiers = {},
               int clicks = 1)
    {
        move(at);
        frame().mouseDown({at, button, modifiers, clicks, 0});
    }
    void release(gui::Point at, gui::MouseButton button = kLeft)
    {
        frame().mouseUp({at, button, {}, 1, 0});
        wait();
    }
    void click(gui::Point at, gui::MouseButton button = kLeft)
    {
        press(at, button);
        release(at, button);
    }
    void click(std::string_view spoken) { click(middle(spoken)); }
    void dragTo(gui::Point from, gui::Point to)
    {
        press(from);
        move(to);
        release(to);
    }
    void wheel(gui::Point at, float steps, gui::Modifiers modifiers = {})
    {
        frame().mouseWheel({at, steps, modifiers, 0});
    }
    bool key(gui::Key key, gui::Modifiers modifiers = {})
    {
        const bool used = frame().keyDown({key, {}, modifiers});
        wait();
        return used;
    }
    void type(std::string_view text)
    {
        for (const char c : text)
            frame().keyDown(
                {c == ' ' ? gui::Key::space : gui::Key::character, std::string(1, c), {}});
        wait();
    }
    void enter(std::string_view text)
    {
        type(text);
        key(gui::Key::enter);
    }
    // An entry of a menu, found by typing.
    void choose(std::string_view menu, std::string_view entry)
    {
        click(menu);
        enter(entry);
    }
    void focusOn(std::string_view spoken) { frame().setFocus(find(spoken)); }
    bool undo() { return history().undo(); }
    // How many steps can be taken back.
    int undoAll()
    {
        int steps = 0;
        while (undo())
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

    FakeEditorPort port;
    TwoPatterns patterns;
    ADEditor editor{port, patterns};
    gui::HeadlessWindow* window = nullptr;

private:
    static gui::View* findIn(gui::View& view, std::string_view spoken)
    {
        if (view.spokenName().starts_with(spoken))
            return &view;
        for (const auto& child : view.children())
            if (gui::View* const found = findIn(*child, spoken))
                return found;
        return nullptr;
    }
};

} // namespace tolm::test
