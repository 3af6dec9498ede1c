#pragma once
// From key codes to what was typed, by the server's own core map: the layout the user has set, its
// second group and third level, Caps Lock and Num Lock, and dead keys. Reading the map ourselves
// keeps another shared library out of the host's process.

#include "gui/events.h"
#include "gui/keysyms.h"
#include "gui/xcbReply.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tolm::gui {

// The map and which modifier bits mean what; filled from the server, or by tests.
struct KeyMap {
    int firstCode = 8;
    int symbolsPerCode = 0;
    std::vector<Keysym> symbols;
    std::uint16_t numLock = 0;
    std::uint16_t thirdLevel = 0;
    std::uint16_t secondGroup = 0;

    Keysym at(int code, int column) const;
    // Group, level and locks applied.
    Keysym symbolOf(int code, std::uint16_t state) const;
};

Modifiers modifiersOf(std::uint16_t state);

class XcbKeyboard {
public:
    explicit XcbKeyboard(KeyMap map = {}) : map_(std::move(map)) {}

    // Asks the server; at the beginning and whenever it says that the map has changed.
    void read(xcb_connection_t* connection);
    // Nothing for modifiers, dead keys and keys that mean nothing here.
    std::optional<KeyEvent> translate(int code, std::uint16_t state);

private:
    std::optional<KeyEvent> typed(char32_t character, KeyEvent event);

    KeyMap map_;
    Keysym deadKey_ = 0; // pressed, waiting for its letter
};

} // namespace tolm::gui
