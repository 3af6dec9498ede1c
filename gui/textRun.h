#pragma once
// Text as glyphs with their places: what measuring and drawing share.

#include "gui/fontData.h"

#include <string_view>

namespace tolm::gui {

// Calls use(glyph, x) for each glyph with its place in logical pixels; answers the advance of all.
// `use` answers false to stop early.
template <class Use>
float layOut(std::string_view utf8, const TextStyle& style, Use use)
{
    const FontFace& face = fontFace(style.weight);
    float x = 0.0f;
    int before = -1;
    for (std::size_t at = 0; at < utf8.size();) {
        char32_t character = nextCodePoint(utf8, at);
        if (style.tabularDigits && character >= U'0' && character <= U'9')
            character += FontFace::kTabularZero - U'0';
        const int glyph = face.find(character);
        if (glyph < 0)
            break;
        if (before >= 0)
            x += face.kerning(before, glyph) * style.size;
        if (!use(glyph, x))
            break;
        x += face.advance(glyph) * style.size + style.tracking;
        before = glyph;
    }
    return x;
}

} // namespace tolm::gui
