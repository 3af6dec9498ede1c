#pragma once
// Breaking text into lines by its drawn width.

#include "gui/Font.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tolm::gui {

// Bytes begin..end of the text; a line break or a space that a wrap has used up belongs to none.
struct TextLine {
    std::size_t begin = 0;
    std::size_t end = 0;

    friend bool operator==(const TextLine&, const TextLine&) = default;
};

// Breaks at '\n', and at spaces so that no line is wider than `width`; a word that is wider alone
// breaks between characters. At least one line, also for empty text.
std::vector<TextLine> wrapText(std::string_view utf8, const TextStyle& style, float width);

// The height of a line of body text.
inline float lineHeight(const TextStyle& style)
{
    return style.size * 1.4f;
}

} // namespace tolm::gui
