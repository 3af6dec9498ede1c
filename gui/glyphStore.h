#pragma once
// What a GlyphCache holds.

#include "gui/Font.h"
#include "gui/Raster.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <unordered_map>

namespace tolm::gui {

inline constexpr int kGlyphSizeSteps = 64; // of a device pixel, for sizes
inline constexpr int kGlyphPhases = 4;     // of a device pixel, for places

struct GlyphCache::Store {
    static constexpr std::size_t kMostBytes = 1 << 20;

    // `deviceSize` in 1/kGlyphSizeSteps pixels per em, `phase` in 1/kGlyphPhases pixels to the
    // right. Good until the next call.
    const Mask& mask(FontWeight weight, int deviceSize, int glyph, int phase, Raster& raster);

    struct Entry {
        std::uint64_t key = 0;
        Mask mask;
    };
    std::list<Entry> byUse; // the latest first
    std::unordered_map<std::uint64_t, std::list<Entry>::iterator> byKey;
    std::size_t bytes = 0;
};

} // namespace tolm::gui
