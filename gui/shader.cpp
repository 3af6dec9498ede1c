#include "gui/shader.h"

#include "gui/blend.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

// Bayer's ordered dither (1973): thresholds of 8 x 8 pixels, spread over 2..254.
constexpr auto kThresholds = [] {
    std::array<std::array<std::uint32_t, 8>, 8> table{};
    for (unsigned y = 0; y < 8; ++y)
        for (unsigned x = 0; x < 8; ++x) {
            unsigned value = 0;
            for (unsigned bit = 0; bit < 3; ++bit) {
                const unsigned xb = x >> bit & 1;
                const unsigned yb = y >> bit & 1;
                value |= ((xb ^ yb) << 1 | yb) << (4 - 2 * bit);
            }
            table[y][x] = value * 4 + 2;
        }
    return table;
}();

constexpr double kFullScale = 256.0;

std::uint16_t widened(double lane)
{
    return static_cast<std::uint16_t>(lane * kFullScale + 0.5);
}

struct Premultiplied {
    double b, g, r, a; // 0..255
};

Premultiplied premultipliedExactly(Color c)
{
    const double k = c.a / 255.0;
    return {c.b * k, c.g * k, c.r * k, static_cast<double>(c.a)};
}

double between(double from, double to, double t)
{
    return from + (to - from) * t;
}

// The stops' colour at `t`, 0..1.
Premultiplied colorAt(const Paint& paint, double t)
{
    const auto& stops = paint.stops;
    std::size_t next = 0;
    while (next < paint.stopCount && stops[next].offset <= t)
        ++next;
    if (next == 0)
        return premultipliedExactly(stops[0].color);
    if (next == paint.stopCount)
        return premultipliedExactly(stops[next - 1].color);
    const double from = stops[next - 1].offset;
    const double width = stops[next].offset - from;
    const double k = width > 0.0 ? (t - from) / width : 1.0;
    const Premultiplied p = premultipliedExactly(stops[next - 1].color);
    const Premultiplied q = premultipliedExactly(stops[next].color);
    return {between(p.b, q.b, k), between(p.g, q.g, k), between(p.r, q.r, k), between(p.a, q.a, k)};
}

// One lane of a wide colour over a pixel's lane, dithered. Rounds down before the threshold, so
// that nothing exceeds the lane and a full alpha stays full.
std::uint32_t dithered(std::uint32_t below, std::uint32_t lane, std::uint32_t coverage,
                       std::uint32_t clear, std::uint32_t threshold)
{
    return (below * clear / 255 + lane * coverage / 255 + threshold) >> 8;
}

// Entries for a gradient so many device pixels long: two a pixel, so that the dither and not the
// ramp decides.
int rampSizeFor(double length, int most)
{
    constexpr int kLeast = 16;
    return 2.0 * length < most ? std::max(kLeast, static_cast<int>(2.0 * length)) : most;
}

} // namespace

Shader::Shader(const Paint& paint, const Transform& transform)
{
    if (paint.kind == Paint::Kind::solid || paint.stopCount == 0) {
        pixel_ = premultiplied(paint.color);
        return;
    }
    const DevicePoint from = transform.apply(paint.from);
    if (paint.kind == Paint::Kind::linear) {
        const DevicePoint to = transform.apply(paint.to);
        const double dx = to.x - from.x;
        const double dy = to.y - from.y;
        const double square = dx * dx + dy * dy;
        // A gradient without length is all last colour.
        rampSize_ = rampSizeFor(std::sqrt(square), kLongestRamp);
        const double perPixel = square > 1e-9 ? (rampSize_ - 1) / square : 0.0;
        stepX_ = dx * perPixel;
        stepY_ = dy * perPixel;
        originX_ = perPixel > 0.0 ? (0.5 - from.x) * stepX_ + (0.5 - from.y) * stepY_ + 0.5
                                  : static_cast<double>(rampSize_);
    } else {
        const double radius = paint.radius * transform.scale;
        radial_ = true;
        originX_ = from.x - 0.5;
        originY_ = from.y - 0.5;
        rampSize_ = rampSizeFor(radius, kLongestRamp);
        stepX_ = radius > 1e-6 ? (rampSize_ - 1) / radius : 1e9;
    }
    if (!std::isfinite(stepX_) || !std::isfinite(stepY_) || !std::isfinite(originX_) ||
        !std::isfinite(originY_)) {
        pixel_ = 0;
        return;
    }
    solid_ = false;
    fillRamp(paint);
}

void Shader::fillRamp(const Paint& paint)
{
    opaque_ = true;
    for (std::size_t i = 0; i < paint.stopCount; ++i)
        opaque_ = opaque_ && paint.stops[i].color.a == 255;
    for (int i = 0; i < rampSize_; ++i) {
        const Premultiplied c = colorAt(paint, static_cast<double>(i) / (rampSize_ - 1));
        ramp_[static_cast<std::size_t>(i)] = {widened(c.b), widened(c.g), widened(c.r),
                                              widened(c.a)};
    }
}

const Shader::Wide& Shader::wideAt(int x, int y) const
{
    double position = 0.0;
    if (radial_) {
        const double dx = x - originX_;
        const double dy = y - originY_;
        position = std::sqrt(dx * dx + dy * dy) * stepX_ + 0.5;
    } else {
        position = originX_ + x * stepX_ + y * stepY_;
    }
    return ramp_[static_cast<std::size_t>(std::clamp(position, 0.0, rampSize_ - 1.0))];
}

template <class CoverageAt>
void Shader::shade(std::span<std::uint32_t> row, int x, int y, CoverageAt coverageAt) const
{
    const auto& thresholds = kThresholds[static_cast<std::size_t>(y & 7)];
    const bool alongRows = !radial_ && stepX_ == 0.0;
    const Wide* wide = &wideAt(x, y);
    for (std::size_t i = 0; i < row.size(); ++i) {
        const int at = x + static_cast<int>(i);
        if (!alongRows)
            wide = &wideAt(at, y);
        const std::uint32_t coverage = coverageAt(i);
        const std::uint32_t threshold = thresholds[static_cast<std::size_t>(at & 7)];
        const std::uint32_t clear = 255 * 256 - wide->a * coverage / 255;
        const std::uint32_t d = row[i];
        row[i] = dithered(d & 255, wide->b, coverage, clear, threshold) |
                 dithered(d >> 8 & 255, wide->g, coverage, clear, threshold) << 8 |
                 dithered(d >> 16 & 255, wide->r, coverage, clear, threshold) << 16 |
                 dithered(d >> 24, wide->a, coverage, clear, threshold) << 24;
    }
}

void Shader::run(std::span<std::uint32_t> row, int x, int y, std::uint32_t coverage) const
{
    if (!solid_) {
        // Rows of one opaque colour repeat their dither every eight pixels.
        if (opaque_ && coverage == 255 && !radial_ && stepX_ == 0.0 && row.size() > 8) {
            shade(row.first(8), x, y, [](std::size_t) { return 255u; });
            for (std::size_t i = 8; i < row.size(); ++i)
                row[i] = row[i - 8];
            return;
        }
        shade(row, x, y, [coverage](std::size_t) { return coverage; });
        return;
    }
    const std::uint32_t source = coverage == 255 ? pixel_ : scaledPixel(pixel_, coverage);
    if (source >> 24 == 255) {
        std::fill(row.begin(), row.end(), source);
        return;
    }
    for (std::uint32_t& pixel : row)
        pixel = over(pixel, source);
}

void Shader::run(std::span<std::uint32_t> row, int x, int y, const std::uint8_t* coverages) const
{
    if (!solid_) {
        shade(row, x, y, [coverages](std::size_t i) { return std::uint32_t{coverages[i]}; });
        return;
    }
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = over(row[i], scaledPixel(pixel_, coverages[i]));
}

} // namespace tolm::gui
