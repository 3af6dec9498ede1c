#include "gui/XcbKeyboard.h"

#include <utility>

namespace tolm::gui {

namespace {

constexpr Keysym kModeSwitch = 0xFF7E;
constexpr Keysym kNumLock = 0xFF7F;
constexpr Keysym kThirdLevelShift = 0xFE03;
constexpr int kGroupShift = 13; // bits 13 and 14 of the state

// Without a capital of its own a key's shifted letter is the capital of the plain one.
Keysym capitalSymbol(Keysym symbol)
{
    const char32_t c = characterOf(symbol);
    return c < 0x100 && capital(c) != c ? capital(c) : symbol;
}

} // namespace

Modifiers modifiersOf(std::uint16_t state)
{
    return {(state & XCB_MOD_MASK_SHIFT) != 0, (state & XCB_MOD_MASK_CONTROL) != 0,
            (state & XCB_MOD_MASK_1) != 0};
}

Keysym KeyMap::at(int code, int column) const
{
    if (code < firstCode || column < 0 || column >= symbolsPerCode)
        return 0;
    const auto index = static_cast<std::size_t>((code - firstCode) * symbolsPerCode + column);
    return index < symbols.size() ? symbols[index] : 0;
}

// Columns of the core map: group 1 plain, shifted; group 2 plain, shifted; then the third and
// fourth level of group 1 and of group 2.
Keysym KeyMap::symbolOf(int code, std::uint16_t state) const
{
    const bool second = (state >> kGroupShift & 3) != 0 || (state & secondGroup) != 0;
    const bool third = (state & thirdLevel) != 0;
    int column = third ? (second ? 6 : 4) : second ? 2 : 0;
    if (at(code, column) == 0)
        column = 0;
    const Keysym plain = at(code, column);
    const bool shift = (state & XCB_MOD_MASK_SHIFT) != 0;
    const Keysym shifted = at(code, column + 1);
    if ((state & numLock) != 0 && isKeypad(shifted))
        return shift ? plain : shifted;
    Keysym symbol = plain;
    if (shift)
        symbol = shifted != 0 ? shifted : capitalSymbol(plain);
    return (state & XCB_MOD_MASK_LOCK) != 0 && !shift ? capitalSymbol(symbol) : symbol;
}

void XcbKeyboard::read(xcb_connection_t* connection)
{
    const xcb_setup_t* setup = xcb_get_setup(connection);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto mapCookie =
        xcb_get_keyboard_mapping(connection, setup->min_keycode, static_cast<std::uint8_t>(count));
    const auto modifierCookie = xcb_get_modifier_mapping(connection);
    const auto symbols = owned(xcb_get_keyboard_mapping_reply(connection, mapCookie, nullptr));
    const auto modifiers =
        owned(xcb_get_modifier_mapping_reply(connection, modifierCookie, nullptr));
    if (!symbols || !modifiers)
        return;
    map_ = {};
    map_.firstCode = setup->min_keycode;
    map_.symbolsPerCode = symbols->keysyms_per_keycode;
    const Keysym* first = xcb_get_keyboard_mapping_keysyms(symbols.get());
    map_.symbols.assign(first, first + xcb_get_keyboard_mapping_keysyms_length(symbols.get()));

    const xcb_keycode_t* codes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const int perModifier = modifiers->keycodes_per_modifier;
    for (int i = 0; i < 8 * perModifier; ++i) {
        const auto bit = static_cast<std::uint16_t>(1u << (i / perModifier));
        for (int column = 0; column < map_.symbolsPerCode && codes[i] != 0; ++column) {
            const Keysym symbol = map_.at(codes[i], column);
            if (symbol == kNumLock)
                map_.numLock |= bit;
            else if (symbol == kThirdLevelShift)
                map_.thirdLevel |= bit;
            else if (symbol == kModeSwitch)
                map_.secondGroup |= bit;
        }
    }
}

std::optional<KeyEvent> XcbKeyboard::translate(int code, std::uint16_t state)
{
    KeyEvent event;
    event.modifiers = modifiersOf(state);
    Keysym symbol = map_.symbolOf(code, state);
    // Commands are Latin letters in every layout.
    const char32_t plain = characterOf(symbol);
    if (event.modifiers.control && !namedKey(symbol) && (plain == 0 || plain >= 0x80))
        symbol = map_.at(code, 0);
    if (isDeadKey(symbol)) {
        const Keysym before = std::exchange(deadKey_, symbol);
        if (before != symbol)
            return std::nullopt;
        deadKey_ = 0; // twice is the accent itself
        event.text = utf8Of(accentOf(symbol));
        return event;
    }
    if (const auto named = namedKey(symbol)) {
        event.key = *named;
        if (event.key != Key::space) {
            deadKey_ = 0;
            return event;
        }
        return typed(U' ', event);
    }
    const char32_t character = characterOf(symbol);
    return character != 0 ? typed(character, event) : std::nullopt;
}

std::optional<KeyEvent> XcbKeyboard::typed(char32_t character, KeyEvent event)
{
    const Keysym dead = std::exchange(deadKey_, 0);
    if (dead == 0) {
        event.text = utf8Of(character);
        return event;
    }
    if (const char32_t result = accented(dead, character); result != 0)
        event.text = utf8Of(result);
    else if (character == U' ')
        event.text = utf8Of(accentOf(dead));
    else
        event.text = utf8Of(accentOf(dead)) + utf8Of(character);
    event.key = Key::character;
    return event;
}

} // namespace tolm::gui
