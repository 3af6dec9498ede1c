#include "gui/Raster.h"

#include "gui/blend.h"

#include <agg2/agg_rasterizer_scanline_aa.h>
#include <agg2/agg_scanline_p.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tolm::gui {

struct Raster::Scan {
    agg::rasterizer_scanline_aa<> rasterizer;
    agg::scanline_p8 line;

    // Calls use(y, span) for every run within the rows of `clip`. Lines are cut at `bounds`, which
    // moves them by fractions of a pixel; as they must not depend on the clip, that is larger.
    template <class Use>
    void sweep(const Polygons& polygons, const DeviceRect& bounds, const DeviceRect& clip, Use use)
    {
        rasterizer.clip_box(bounds.left, bounds.top, bounds.right, bounds.bottom);
        for (const Polygons::Chain& chain : polygons.chains())
            for (std::size_t i = chain.begin; i < chain.end; ++i) {
                const DevicePoint p = polygons.points()[i];
                i == chain.begin ? rasterizer.move_to_d(p.x, p.y) : rasterizer.line_to_d(p.x, p.y);
            }
        if (!rasterizer.rewind_scanlines() || rasterizer.max_y() < clip.top)
            return;
        rasterizer.navigate_scanline(std::max(clip.top, rasterizer.min_y()));
        line.reset(rasterizer.min_x(), rasterizer.max_x());
        while (rasterizer.sweep_scanline(line) && line.y() < clip.bottom) {
            auto span = line.begin();
            for (unsigned left = line.num_spans(); left > 0; --left, ++span)
                use(line.y(), *span);
        }
    }
};

namespace {

using Span = agg::scanline_p8::span;

// Where a span lies within the clip. Polygons that touch the clip's right edge leave cells without
// area just outside of it.
struct Piece {
    int x = 0;
    int skipped = 0;
    int length = 0;
};

Piece clipped(const Span& span, const DeviceRect& clip)
{
    const int length = std::abs(static_cast<int>(span.len));
    const int left = std::max<int>(span.x, clip.left);
    const int right = std::min<int>(span.x + length, clip.right);
    return {left, left - span.x, right - left};
}

std::span<std::uint32_t> part(Image& image, int x, int y, int length)
{
    return image.row(y).subspan(static_cast<std::size_t>(x), static_cast<std::size_t>(length));
}

// How much of pixel `i` lies between two edges in 1/256 pixels: 0..256.
int overlap(int i, int from, int to)
{
    return std::clamp(std::min(to, (i + 1) * 256) - std::max(from, i * 256), 0, 256);
}

int in256(double v)
{
    constexpr double kFarthest = 1 << 22;
    return std::isnan(v)
               ? 0
               : static_cast<int>(std::floor(std::clamp(v, -kFarthest, kFarthest) * 256.0 + 0.5));
}

// Light text on a dark ground looks thinner than it is, because coverage is mixed in sRGB; the
// lighter the colour, the more its half-covered pixels are raised: by up to a tenth of full.
class Contrast {
public:
    explicit Contrast(Color color)
    {
        const int luma = (color.r * 54 + color.g * 183 + color.b * 19) >> 8;
        raise_ = static_cast<std::uint32_t>(luma * 2 * 65536 / (5 * 255 * 255));
    }
    std::uint32_t apply(std::uint32_t coverage) const
    {
        return coverage + (coverage * (255 - coverage) * raise_ >> 16);
    }

private:
    std::uint32_t raise_ = 0;
};

} // namespace

Raster::Raster() : scan_(std::make_unique<Scan>()) {}
Raster::~Raster() = default;

void Raster::fill(Image& image, const DeviceRect& clip, const Polygons& polygons,
                  const Shader& shader)
{
    if (clip.isEmpty() || shader.isInvisible())
        return;
    const DeviceRect bounds{0, 0, image.width(), image.height()};
    scan_->sweep(polygons, bounds, clip, [&](int y, const Span& span) {
        const Piece piece = clipped(span, clip);
        if (piece.length <= 0)
            return;
        const auto row = part(image, piece.x, y, piece.length);
        if (span.len < 0)
            shader.run(row, piece.x, y, std::uint32_t{*span.covers});
        else
            shader.run(row, piece.x, y, span.covers + piece.skipped);
    });
}

void Raster::fillRect(Image& image, const DeviceRect& clip, DevicePoint topLeft,
                      DevicePoint bottomRight, const Shader& shader)
{
    const int left = in256(topLeft.x);
    const int top = in256(topLeft.y);
    const int right = in256(bottomRight.x);
    const int bottom = in256(bottomRight.y);
    const int firstX = std::max(left >> 8, clip.left);
    const int endX = std::min((right + 255) >> 8, clip.right);
    const int endY = std::min((bottom + 255) >> 8, clip.bottom);
    if (firstX >= endX || shader.isInvisible())
        return;
    // Whole pixels in the middle; what sticks out on either side has one column each.
    const int wholeX = std::clamp((left + 255) >> 8, firstX, endX);
    const int wholeEnd = std::clamp(right >> 8, wholeX, endX);
    for (int y = std::max(top >> 8, clip.top); y < endY; ++y) {
        const int high = overlap(y, top, bottom);
        const auto run = [&](int from, int to, int wide) {
            const auto coverage = static_cast<std::uint32_t>(wide * high * 255 >> 16);
            if (from < to && coverage > 0)
                shader.run(part(image, from, y, to - from), from, y, coverage);
        };
        run(firstX, wholeX, overlap(firstX, left, right));
        run(wholeX, wholeEnd, 256);
        run(wholeEnd, endX, overlap(wholeEnd, left, right));
    }
}

void Raster::fillMask(Image& image, const DeviceRect& clip, const Mask& mask, int x, int y,
                      Color color)
{
    const int left = std::max(x + mask.left, clip.left);
    const int right = std::min(x + mask.left + mask.width, clip.right);
    const int top = std::max(y + mask.top, clip.top);
    const int bottom = std::min(y + mask.top + mask.height, clip.bottom);
    if (left >= right || top >= bottom || color.a == 0)
        return;
    const Contrast contrast(color);
    const std::uint32_t source = premultiplied(color);
    for (int row = top; row < bottom; ++row) {
        const std::uint8_t* coverage =
            mask.coverages.data() + (row - y - mask.top) * mask.width + (left - x - mask.left);
        for (std::uint32_t& pixel : part(image, left, row, right - left)) {
            if (*coverage != 0)
                pixel = over(pixel, scaledPixel(source, contrast.apply(*coverage)));
            ++coverage;
        }
    }
}

Mask Raster::mask(const Polygons& polygons)
{
    constexpr int kFarthest = 512;
    Mask mask;
    DevicePoint low{kFarthest, kFarthest};
    DevicePoint high{-kFarthest, -kFarthest};
    for (const DevicePoint& p : polygons.points()) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    const DeviceRect box{std::max(-kFarthest, static_cast<int>(std::floor(low.x))),
                         std::max(-kFarthest, static_cast<int>(std::floor(low.y))),
                         std::min(kFarthest, static_cast<int>(std::ceil(high.x))),
                         std::min(kFarthest, static_cast<int>(std::ceil(high.y)))};
    if (box.isEmpty())
        return mask;
    mask.left = box.left;
    mask.top = box.top;
    mask.width = box.right - box.left;
    mask.height = box.bottom - box.top;
    mask.coverages.assign(
        static_cast<std::size_t>(mask.width) * static_cast<std::size_t>(mask.height), 0);
    scan_->sweep(polygons, box, box, [&](int y, const Span& span) {
        const Piece piece = clipped(span, box);
        if (piece.length <= 0)
            return;
        std::uint8_t* to =
            mask.coverages.data() + (y - box.top) * mask.width + (piece.x - box.left);
        if (span.len < 0)
            std::fill_n(to, piece.length, *span.covers);
        else
            std::copy_n(span.covers + piece.skipped, piece.length, to);
    });
    return mask;
}

} // namespace tolm::gui
