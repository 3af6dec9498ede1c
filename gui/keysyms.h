#pragma once
// What the X server's key symbols mean: keys, characters, and accents that wait for a letter.

#include "gui/events.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tolm::gui {

using Keysym = std::uint32_t;

// Keys that are no characters, on the keypad too.
std::optional<Key> namedKey(Keysym symbol);
// 0 when the symbol is no character: those of Latin 1, of the keypad, and all that carry their
// Unicode number themselves.
char32_t characterOf(Keysym symbol);
bool isKeypad(Keysym symbol);
bool isDeadKey(Keysym symbol);
// The letter with the dead key's accent; 0 when there is none in Latin 1.
char32_t accented(Keysym deadKey, char32_t letter);
// The accent alone, as when a dead key is followed by a space.
char32_t accentOf(Keysym deadKey);
// The capital of a letter of Latin 1, the same for all else.
char32_t capital(char32_t c);
std::string utf8Of(char32_t c);

} // namespace tolm::gui
