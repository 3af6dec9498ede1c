#pragma once
// Colours a run of pixels with a paint. Gradients are computed with eight more bits than a pixel
// has and brought down with an 8 x 8 ordered dither.

#include "gui/Paint.h"
#include "gui/polygon.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tolm::gui {

class Shader {
public:
    Shader(const Paint& paint, const Transform& transform);

    // Nothing it paints can be seen.
    bool isInvisible() const { return solid_ && pixel_ == 0; }
    // Paints row[0..] which lies at (x, y) in the image, with one coverage for all, 0..255.
    void run(std::span<std::uint32_t> row, int x, int y, std::uint32_t coverage) const;
    // The same with a coverage for each pixel.
    void run(std::span<std::uint32_t> row, int x, int y, const std::uint8_t* coverages) const;

private:
    // Premultiplied, 0..255 * 256.
    struct Wide {
        std::uint16_t b, g, r, a;
    };
    static constexpr int kLongestRamp = 256;

    void fillRamp(const Paint& paint);
    const Wide& wideAt(int x, int y) const;
    template <class CoverageAt>
    void shade(std::span<std::uint32_t> row, int x, int y, CoverageAt coverageAt) const;

    bool solid_ = true;
    bool radial_ = false;
    bool opaque_ = false;
    std::uint32_t pixel_ = 0;
    // Ramp position of a pixel: linear originX + x stepX + y stepY, radial the distance from
    // (originX, originY) times stepX.
    double originX_ = 0.0;
    double originY_ = 0.0;
    double stepX_ = 0.0;
    double stepY_ = 0.0;
    int rampSize_ = kLongestRamp;
    std::array<Wide, kLongestRamp> ramp_;
};

} // namespace tolm::gui
