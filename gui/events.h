#pragma once
// Input as views receive it. Positions are logical and relative to the view that handles the event.

#include "gui/geometry.h"

#include <cstdint>
#include <string>

namespace tolm::gui {

struct Modifiers {
    bool shift = false;
    bool control = false;
    bool alt = false;

    friend constexpr bool operator==(Modifiers, Modifiers) = default;
};

enum class MouseButton : std::uint8_t { none, left, middle, right };

struct MouseEvent {
    Point position;
    MouseButton button = MouseButton::none;
    Modifiers modifiers;
    int clicks = 1;           // 2 for the second press of a double click
    std::uint32_t timeMs = 0; // wraps around
};

struct WheelEvent {
    Point position;
    float steps = 0.0f; // upwards and away from the user positive
    Modifiers modifiers;
    std::uint32_t timeMs = 0;
};

enum class Key : std::uint8_t {
    character, // `text` holds it
    left,
    right,
    up,
    down,
    pageUp,
    pageDown,
    home,
    end,
    enter,
    escape,
    tab,
    backspace,
    deleteForward,
    space,
    f1,
};

struct KeyEvent {
    Key key = Key::character;
    std::string text; // UTF-8 of what was typed, also for space; empty for other keys
    Modifiers modifiers;
};

} // namespace tolm::gui
