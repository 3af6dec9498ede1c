#include "gui/textWrap.h"

namespace tolm::gui {

namespace {

// Where the line that begins at `begin` ends at the latest, no further than `limit`.
std::size_t fit(std::string_view text, const TextStyle& style, float width, std::size_t begin,
                std::size_t limit)
{
    std::size_t lastSpace = begin;
    for (std::size_t at = begin; at < limit;) {
        std::size_t next = at;
        const char32_t c = nextCodePoint(text, next);
        if (c == U' ' && at > begin)
            lastSpace = at;
        // Spaces may hang over the edge.
        if (c != U' ' && measureText(text.substr(begin, next - begin), style) > width)
            return lastSpace > begin ? lastSpace : at > begin ? at : next;
        at = next;
    }
    return limit;
}

} // namespace

std::vector<TextLine> wrapText(std::string_view text, const TextStyle& style, float width)
{
    std::vector<TextLine> lines;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t lineBreak = text.find('\n', begin);
        const std::size_t limit = lineBreak == std::string_view::npos ? text.size() : lineBreak;
        const std::size_t end = fit(text, style, width, begin, limit);
        lines.push_back({begin, end});
        if (end == limit) {
            if (lineBreak == std::string_view::npos)
                return lines;
            begin = limit + 1;
        } else {
            begin = text[end] == ' ' ? end + 1 : end;
        }
    }
}

} // namespace tolm::gui
