#pragma once
// Paths as chains of straight lines in device pixels: what the rasteriser eats.

#include "gui/Paint.h"
#include "gui/Path.h"

#include <cstddef>
#include <vector>

namespace tolm::gui {

struct DevicePoint {
    double x = 0.0;
    double y = 0.0;
};

struct DeviceRect { // whole pixels; right and bottom are outside
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool isEmpty() const { return right <= left || bottom <= top; }
};

// From logical to device coordinates.
struct Transform {
    double scale = 1.0;
    double x = 0.0;
    double y = 0.0;

    DevicePoint apply(Point p) const { return {p.x * scale + x, p.y * scale + y}; }
};

class Polygons {
public:
    struct Chain {
        std::size_t begin = 0;
        std::size_t end = 0;
        bool closed = false;
    };

    void clear();
    void begin(DevicePoint p);
    // Points that are no numbers or lie far outside are brought near.
    void add(DevicePoint p);
    void close() { chains_.back().closed = true; }

    const std::vector<Chain>& chains() const { return chains_; }
    const std::vector<DevicePoint>& points() const { return points_; }

private:
    std::vector<DevicePoint> points_;
    std::vector<Chain> chains_;
};

// Appends the path; curves become lines that stay within a twentieth of a device pixel.
void flatten(const Path& path, const Transform& transform, Polygons& out);
// One cubic from `from`, without its first point.
void flattenCubic(DevicePoint from, DevicePoint c1, DevicePoint c2, DevicePoint to, Polygons& out);
// Appends the outline of the lines drawn with a pen `width` device pixels wide, to be filled with
// non-zero winding.
void outlineStroke(const Polygons& lines, double width, LineCap cap, Polygons& out);

} // namespace tolm::gui
