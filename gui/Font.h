#pragma once
// The embedded typeface, as outlines, and the cache of drawn glyphs. Font data is constant and
// shared; every window has a cache of its own.

#include "gui/Path.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace tolm::gui {

enum class FontWeight : std::uint8_t { medium, semiBold };

struct TextStyle {
    float size = 10.5f; // logical pixels per em
    FontWeight weight = FontWeight::medium;
    float tracking = 0.0f;      // added after every glyph, logical pixels
    bool tabularDigits = false; // all digits equally wide, for read-outs
};

// Heights in ems, upwards positive.
struct FontMetrics {
    float ascent = 0.0f;
    float descent = 0.0f; // negative
    float capHeight = 0.0f;
    float xHeight = 0.0f;
};

FontMetrics fontMetrics(FontWeight weight);
// With kerning and tracking, in logical pixels.
float measureText(std::string_view utf8, const TextStyle& style);
// The next code point from position `at`, which moves on by at least one byte; U+FFFD for broken
// bytes. `at` must be inside the text.
char32_t nextCodePoint(std::string_view utf8, std::size_t& at);

// Coverage masks of glyphs, keyed by weight, device size, glyph and quarter-pixel phase. Bounded:
// the least recently drawn go first.
class GlyphCache {
public:
    GlyphCache();
    ~GlyphCache();
    GlyphCache(const GlyphCache&) = delete;
    GlyphCache& operator=(const GlyphCache&) = delete;

private:
    friend class Canvas;
    struct Store;
    std::unique_ptr<Store> store_;
};

} // namespace tolm::gui
