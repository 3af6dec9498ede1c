#include "gui/glyphStore.h"

#include "gui/fontData.h"

namespace tolm::gui {

namespace {

Mask drawGlyph(FontWeight weight, int deviceSize, int glyph, int phase, Raster& raster)
{
    const double size = static_cast<double>(deviceSize) / kGlyphSizeSteps;
    Polygons polygons;
    flatten(fontFace(weight).outline(glyph), {size, static_cast<double>(phase) / kGlyphPhases, 0.0},
            polygons);
    return raster.mask(polygons);
}

} // namespace

GlyphCache::GlyphCache() : store_(std::make_unique<Store>()) {}
GlyphCache::~GlyphCache() = default;

const Mask& GlyphCache::Store::mask(FontWeight weight, int deviceSize, int glyph, int phase,
                                    Raster& raster)
{
    const std::uint64_t key =
        static_cast<std::uint64_t>(weight) << 56 | static_cast<std::uint64_t>(deviceSize) << 24 |
        static_cast<std::uint64_t>(glyph) << 4 | static_cast<std::uint64_t>(phase);
    if (const auto found = byKey.find(key); found != byKey.end()) {
        byUse.splice(byUse.begin(), byUse, found->second);
        return byUse.front().mask;
    }
    byUse.push_front({key, drawGlyph(weight, deviceSize, glyph, phase, raster)});
    byKey[key] = byUse.begin();
    constexpr std::size_t kEntryBytes = sizeof(Entry) + 64; // about what lists and maps add
    bytes += kEntryBytes + byUse.front().mask.coverages.size();
    while (bytes > kMostBytes && byUse.size() > 1) {
        bytes -= kEntryBytes + byUse.back().mask.coverages.size();
        byKey.erase(byUse.back().key);
        byUse.pop_back();
    }
    return byUse.front().mask;
}

} // namespace tolm::gui
