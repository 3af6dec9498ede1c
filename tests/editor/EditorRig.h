#pragma once
// The whole editor over an offline plug-in, in a window without a display, and hands that use it.
// Places are of the window; views are found by their spoken names.

#include "ActionsRig.h"
#include "editor/ADEditor.h"
#include "tests/gui/hands.h"

#include <memory>

namespace tolm::test {

inline constexpr gui::Modifiers kShift{true, false, false};
inline constexpr auto kLeft = gui::MouseButton::left;
inline constexpr auto kRight = gui::MouseButton::right;

struct EditorRig : gui::Hands {
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
    using gui::Hands::click;
    void click(std::string_view spoken) { click(middle(spoken)); }
    void enter(std::string_view text)
    {
        type(text);
        keys("Enter");
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

private:
    void settle() override { wait(); }
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
