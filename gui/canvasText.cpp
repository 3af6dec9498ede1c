// Text on a canvas: one line, or one cut to fit a box.

#include "gui/Canvas.h"
#include "gui/Raster.h"
#include "gui/glyphStore.h"
#include "gui/textRun.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace tolm::gui {

namespace {

constexpr float kLargestCached = 96.0f; // device pixels per em; larger glyphs are drawn as paths
constexpr std::string_view kEllipsis = "…";

// The longest beginning that fits with an ellipsis behind it.
std::string shortened(std::string_view utf8, const TextStyle& style, float width)
{
    const float room = width - measureText(kEllipsis, style);
    std::size_t fitting = 0;
    for (std::size_t at = 0; at < utf8.size();) {
        nextCodePoint(utf8, at);
        if (measureText(utf8.substr(0, at), style) - style.tracking > room)
            break;
        fitting = at;
    }
    while (fitting > 0 && utf8[fitting - 1] == ' ')
        --fitting;
    return std::string(utf8.substr(0, fitting)) + std::string(kEllipsis);
}

} // namespace

float Canvas::text(std::string_view utf8, Point baseline, const TextStyle& style, Color color)
{
    color = faded(color);
    const float deviceSize = style.size * scale_;
    const Rect& clip = state().clip;
    const Point start = toDevice(baseline);
    const float row = std::floor(start.y + 0.5f);
    const bool unseen = color.a == 0 || !(deviceSize > 0.5f) || clip.isEmpty() ||
                        !(row - 2 * deviceSize < clip.bottom()) || !(row + deviceSize > clip.y);
    if (unseen)
        return measureText(utf8, style);

    const int steps = static_cast<int>(std::min(deviceSize, 4096.0f) * kGlyphSizeSteps + 0.5f);
    const DeviceRect bounds = deviceClip();
    return layOut(utf8, style, [&](int glyph, float logicalX) {
        const float x = start.x + logicalX * scale_;
        if (!(x > clip.x - 3 * deviceSize) || !(x < clip.right() + deviceSize))
            return true;
        if (deviceSize > kLargestCached) {
            Polygons polygons;
            flatten(fontFace(style.weight).outline(glyph), {deviceSize, x, row}, polygons);
            raster_->fill(target_, bounds, polygons, Shader(color, {}));
            return true;
        }
        const int quarters = static_cast<int>(std::floor(x * kGlyphPhases + 0.5f));
        const Mask& mask = glyphs_.store_->mask(style.weight, steps, glyph, quarters & 3, *raster_);
        Raster::fillMask(target_, bounds, mask, quarters >> 2, static_cast<int>(row), color);
        return true;
    });
}

void Canvas::textIn(std::string_view utf8, const Rect& box, const TextStyle& style, Color color,
                    Align align)
{
    if (misses(box.inset(-style.size)))
        return;
    // The tracking behind the last glyph is no part of what is seen.
    float width = measureText(utf8, style) - (utf8.empty() ? 0.0f : style.tracking);
    std::string cut;
    constexpr float kSlack = 0.05f;
    if (width > box.width + kSlack) {
        cut = shortened(utf8, style, box.width);
        utf8 = cut;
        width = measureText(utf8, style) - style.tracking;
    }
    const float free = box.width - width;
    const float x = align == Align::left ? 0.0f : align == Align::centre ? free / 2 : free;
    const float capHeight = fontMetrics(style.weight).capHeight * style.size;
    text(utf8, {box.x + x, box.centre().y + capHeight / 2}, style, color);
}

float Canvas::textWidth(std::string_view utf8, const TextStyle& style) const
{
    return measureText(utf8, style);
}

} // namespace tolm::gui
