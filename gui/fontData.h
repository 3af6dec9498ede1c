#pragma once
// The embedded outlines, read in place. The file, little-endian, is
//   "TolmFont", u16 units per em, u16 weights, u32 size of each weight's block, the blocks;
// a block is
//   i16 ascent, descent, capital height, x height; u16 glyphs, u16 kerning pairs;
//   per glyph   u16 character (ascending), u16 advance, u16 character whose kerning it shares or 0,
//               u32 offset of its outline;
//   per pair    u16 left, u16 right character (ascending), i16 units added between them;
//   outlines    runs of verb << 6 | count, 0 at the end; verb 1 move, 2 line, 3 cubic; points as
//               differences, zigzag numbers of seven bits a byte, y upwards.
// tools/fontGen writes it.

#include "gui/Font.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tolm::gui {

// One weight.
class FontFace {
public:
    using Bytes = std::span<const std::uint8_t>;

    static constexpr char32_t kBox = 0xFFFD;         // for characters that are missing
    static constexpr char32_t kTabularZero = 0xE000; // and nine more

    FontFace() = default;
    // Checks all of it; when something points out of the block, the face stays empty.
    FontFace(Bytes block, int unitsPerEm);

    int glyphCount() const { return glyphCount_; }
    FontMetrics metrics() const { return metrics_; }
    // The glyph's index; that of the box for an unknown character. Negative in an empty face.
    int find(char32_t character) const;
    // In ems.
    float advance(int glyph) const;
    float kerning(int left, int right) const;
    // In ems from the baseline, y downwards as on canvases.
    Path outline(int glyph) const;

private:
    const std::uint8_t* glyphRow(int glyph) const;
    bool isSound() const;

    Bytes block_;
    Bytes outlines_;
    FontMetrics metrics_;
    float em_ = 1.0f; // of one unit
    int glyphCount_ = 0;
    int pairCount_ = 0;
    int box_ = -1;
};

// Both weights of a file; empty faces when it is damaged.
struct FontFile {
    explicit FontFile(FontFace::Bytes file);
    FontFace medium;
    FontFace semiBold;
};

const FontFace& fontFace(FontWeight weight);

} // namespace tolm::gui
