#include "gui/Font.h"

#include "gui/textRun.h"

namespace tolm::gui {

namespace {

constexpr char32_t kBroken = 0xFFFD;

std::uint8_t byteAt(std::string_view text, std::size_t at)
{
    return static_cast<std::uint8_t>(text[at]);
}

} // namespace

FontMetrics fontMetrics(FontWeight weight)
{
    return fontFace(weight).metrics();
}

float measureText(std::string_view utf8, const TextStyle& style)
{
    return layOut(utf8, style, [](int, float) { return true; });
}

char32_t nextCodePoint(std::string_view utf8, std::size_t& at)
{
    const std::uint8_t head = byteAt(utf8, at++);
    if (head < 0x80)
        return head;
    const int following = head >= 0xF0 ? 3 : head >= 0xE0 ? 2 : 1;
    if (head < 0xC2 || head > 0xF4)
        return kBroken;
    char32_t value = head & (0x3Fu >> following);
    std::size_t next = at;
    for (int i = 0; i < following; ++i, ++next) {
        if (next >= utf8.size() || (byteAt(utf8, next) & 0xC0) != 0x80)
            return kBroken;
        value = value << 6 | (byteAt(utf8, next) & 0x3F);
    }
    constexpr char32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    if (value < kLeast[following] || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000))
        return kBroken;
    at = next;
    return value;
}

} // namespace tolm::gui
