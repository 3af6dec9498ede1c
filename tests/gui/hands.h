#pragma once
// Hands that use a window without a display.

#include "gui/Frame.h"
#include "gui/Window.h"

#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace tolm::gui {

class Hands {
public:
    explicit Hands(HeadlessWindow* used = nullptr) : window(used) {}
    virtual ~Hands() = default;

    HeadlessWindow* window;

    Frame& frame() { return window->frame(); }
    void move(Point at, Modifiers modifiers = {})
    {
        frame().mouseMoved({at, MouseButton::none, modifiers, 1, 0});
    }
    void press(Point at, MouseButton button = MouseButton::left, Modifiers modifiers = {},
               int clicks = 1)
    {
        frame().mouseDown({at, button, modifiers, clicks, 0});
    }
    void release(Point at, MouseButton button = MouseButton::left)
    {
        frame().mouseUp({at, button, {}, 1, 0});
        settle();
    }
    void click(Point at, MouseButton button = MouseButton::left)
    {
        move(at);
        press(at, button);
        release(at, button);
    }
    void dragTo(Point from, Point to)
    {
        press(from);
        move(to);
        release(to);
    }
    void wheel(Point at, float steps, Modifiers modifiers = {})
    {
        frame().mouseWheel({at, steps, modifiers, 0});
    }
    // Keys by their names, such as "Home Shift+Right a". True when the last one was used.
    bool keys(std::string_view names)
    {
        static const std::map<std::string, Key> kKeys = {{"Left", Key::left},
                                                         {"Right", Key::right},
                                                         {"Up", Key::up},
                                                         {"Down", Key::down},
                                                         {"PageUp", Key::pageUp},
                                                         {"PageDown", Key::pageDown},
                                                         {"Home", Key::home},
                                                         {"End", Key::end},
                                                         {"Enter", Key::enter},
                                                         {"Escape", Key::escape},
                                                         {"Backspace", Key::backspace},
                                                         {"Delete", Key::deleteForward},
                                                         {"Tab", Key::tab},
                                                         {"Space", Key::space}};
        bool used = false;
        std::istringstream words{std::string(names)};
        for (std::string word; words >> word;) {
            const auto held = [&word](std::string_view modifier) {
                const bool with = word.starts_with(modifier);
                word.erase(0, with ? modifier.size() : 0);
                return with;
            };
            const Modifiers modifiers{held("Shift+"), held("Control+"), held("Alt+")};
            const auto named = kKeys.find(word);
            const Key key = named != kKeys.end() ? named->second : Key::character;
            const bool hasText = key == Key::character || key == Key::space;
            const std::string text = !hasText ? "" : key == Key::space ? " " : word;
            used = frame().keyDown({key, text, modifiers});
            settle();
        }
        return used;
    }
    // One event per byte, as ASCII is typed.
    void type(std::string_view text)
    {
        for (const char c : text)
            frame().keyDown({c == ' ' ? Key::space : Key::character, std::string(1, c), {}});
        settle();
    }
    void wait(double seconds)
    {
        window->advance(seconds);
        window->pump();
    }

protected:
    // After a release or a key: what the window's owner does meanwhile.
    virtual void settle() {}
};

} // namespace tolm::gui
