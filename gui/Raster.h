#pragma once
// Anti-aliased filling of polygons into an image, by area coverage, with non-zero winding.

#include "gui/Image.h"
#include "gui/polygon.h"
#include "gui/shader.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tolm::gui {

// A glyph's coverage. `left` and `top` say where its first pixel lies from the origin.
struct Mask {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> coverages;
};

class Raster {
public:
    Raster();
    ~Raster();
    Raster(const Raster&) = delete;
    Raster& operator=(const Raster&) = delete;

    // `clip` lies within the image.
    void fill(Image& image, const DeviceRect& clip, const Polygons& polygons, const Shader& shader);
    // Edges in device pixels; they need not be whole.
    static void fillRect(Image& image, const DeviceRect& clip, DevicePoint topLeft,
                         DevicePoint bottomRight, const Shader& shader);
    // Light colours are painted a little bolder than their coverage.
    static void fillMask(Image& image, const DeviceRect& clip, const Mask& mask, int x, int y,
                         Color color);
    // At most 1024 pixels wide and high; the rest is cut off.
    Mask mask(const Polygons& polygons);

private:
    struct Scan;
    std::unique_ptr<Scan> scan_;
};

} // namespace tolm::gui
