// Numbers of key symbols: X Window System protocol, appendix A, and the extension's ISO keys.

#include "gui/keysyms.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tolm::gui {

namespace {

struct NamedKey {
    Keysym symbol;
    Key key;
};

constexpr NamedKey kNamedKeys[] = {
    {0xFF08, Key::backspace},
    {0xFF09, Key::tab},
    {0xFE20, Key::tab}, // with Shift
    {0xFF0D, Key::enter},
    {0xFF8D, Key::enter},
    {0xFF1B, Key::escape},
    {0xFF50, Key::home},
    {0xFF95, Key::home},
    {0xFF51, Key::left},
    {0xFF96, Key::left},
    {0xFF52, Key::up},
    {0xFF97, Key::up},
    {0xFF53, Key::right},
    {0xFF98, Key::right},
    {0xFF54, Key::down},
    {0xFF99, Key::down},
    {0xFF55, Key::pageUp},
    {0xFF9A, Key::pageUp},
    {0xFF56, Key::pageDown},
    {0xFF9B, Key::pageDown},
    {0xFF57, Key::end},
    {0xFF9C, Key::end},
    {0xFFFF, Key::deleteForward},
    {0xFF9F, Key::deleteForward},
    {0xFFBE, Key::f1},
    {0x0020, Key::space},
    {0xFF80, Key::space},
};

struct DeadKey {
    Keysym symbol;
    char32_t alone;
    std::u32string_view letters;
    std::u32string_view results;
};

constexpr DeadKey kDeadKeys[] = {
    {0xFE50, U'`', U"AEIOUaeiou", U"\u00C0\u00C8\u00CC\u00D2\u00D9\u00E0\u00E8\u00EC\u00F2\u00F9"},
    {0xFE51, U'\u00B4', U"AEIOUYaeiouy",
     U"\u00C1\u00C9\u00CD\u00D3\u00DA\u00DD\u00E1\u00E9\u00ED\u00F3\u00FA\u00FD"},
    {0xFE52, U'^', U"AEIOUaeiou", U"\u00C2\u00CA\u00CE\u00D4\u00DB\u00E2\u00EA\u00EE\u00F4\u00FB"},
    {0xFE53, U'~', U"ANOano", U"\u00C3\u00D1\u00D5\u00E3\u00F1\u00F5"},
    {0xFE57, U'\u00A8', U"AEIOUaeiouy",
     U"\u00C4\u00CB\u00CF\u00D6\u00DC\u00E4\u00EB\u00EF\u00F6\u00FC\u00FF"},
    {0xFE58, U'\u00B0', U"Aa", U"\u00C5\u00E5"},
    {0xFE5B, U'\u00B8', U"Cc", U"\u00C7\u00E7"},
};

const DeadKey* deadKey(Keysym symbol)
{
    const auto* found = std::find_if(std::begin(kDeadKeys), std::end(kDeadKeys),
                                     [symbol](const DeadKey& d) { return d.symbol == symbol; });
    return found == std::end(kDeadKeys) ? nullptr : found;
}

} // namespace

std::optional<Key> namedKey(Keysym symbol)
{
    for (const NamedKey& named : kNamedKeys)
        if (named.symbol == symbol)
            return named.key;
    return std::nullopt;
}

bool isKeypad(Keysym symbol)
{
    return symbol >= 0xFF80 && symbol <= 0xFFBD;
}

char32_t characterOf(Keysym symbol)
{
    constexpr Keysym kUnicode = 0x01000000;
    constexpr Keysym kEuro = 0x20AC;
    constexpr Keysym kKeypadFirst = 0xFFAA; // * + , - . / 0 ... 9 as in ASCII
    if ((symbol >= 0x20 && symbol <= 0x7E) || (symbol >= 0xA0 && symbol <= 0xFF))
        return symbol;
    if (symbol >= kUnicode + 0x100 && symbol <= kUnicode + 0x10FFFF)
        return symbol - kUnicode;
    if (symbol >= kKeypadFirst && symbol <= 0xFFB9)
        return U'*' + (symbol - kKeypadFirst);
    return symbol == kEuro ? U'\u20AC' : 0;
}

bool isDeadKey(Keysym symbol)
{
    return deadKey(symbol) != nullptr;
}

char32_t accented(Keysym symbol, char32_t letter)
{
    const DeadKey* dead = deadKey(symbol);
    const std::size_t at = dead != nullptr ? dead->letters.find(letter) : std::string_view::npos;
    return at == std::string_view::npos ? 0 : dead->results[at];
}

char32_t accentOf(Keysym symbol)
{
    const DeadKey* dead = deadKey(symbol);
    return dead != nullptr ? dead->alone : 0;
}

char32_t capital(char32_t c)
{
    const bool ascii = c >= U'a' && c <= U'z';
    const bool latin = c >= 0xE0 && c <= 0xFE && c != 0xF7;
    return ascii || latin ? c - 0x20 : c;
}

std::string utf8Of(char32_t c)
{
    std::string text;
    const auto put = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
    return text;
}

} // namespace tolm::gui
