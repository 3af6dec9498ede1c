#pragma once
// What views draw on: an Image seen through a transform and a clip. Coordinates are logical; the
// canvas knows the scale. Nothing is drawn outside the clip.

#include "gui/Font.h"
#include "gui/Image.h"
#include "gui/Paint.h"
#include "gui/Path.h"
#include "gui/geometry.h"

#include <memory>
#include <string_view>
#include <vector>

namespace tolm::gui {

class Raster;
struct DeviceRect;
struct Transform;

enum class Align : unsigned char { left, centre, right };

class Canvas {
public:
    // Draws into `target` (which outlives the canvas) at `scale` device pixels per logical one.
    Canvas(Image& target, GlyphCache& glyphs, float scale);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    void save();
    // Without a matching save nothing happens.
    void restore();
    void translate(Point by);
    // Narrows the clip to its intersection with `rect`, edges rounded outwards to device pixels.
    void clip(const Rect& rect);
    // Everything is drawn with this share of its alpha, on top of earlier calls.
    void fade(float opacity);
    // The clip in logical coordinates of the current transform, to skip what cannot be seen.
    Rect clipBounds() const;
    float scale() const { return scale_; }

    // The nearest logical coordinate that lies on a device pixel's edge, for crisp edges. Separate
    // for each axis, because the translation may put the origin between pixels.
    float snapX(float x) const;
    float snapY(float y) const;
    Rect snap(const Rect& rect) const;

    // Non-zero winding. Axis-aligned snapped rectangles take a fast way.
    void fill(const Path& path, const Paint& paint);
    void fillRect(const Rect& rect, const Paint& paint);
    void fillRoundRect(const Rect& rect, float radius, const Paint& paint);
    void stroke(const Path& path, const Stroke& stroke, const Paint& paint);
    // A frame of `width` inside the rectangle's edge.
    void strokeRoundRect(const Rect& rect, float radius, float width, const Paint& paint);
    void line(Point from, Point to, float width, const Paint& paint);

    // One line of UTF-8 text; `baseline` is rounded to a device row. Unknown characters and broken
    // bytes draw a box. Returns the advance.
    float text(std::string_view utf8, Point baseline, const TextStyle& style, Color color);
    // Centred vertically by the capital height, cut with an ellipsis when it does not fit.
    void textIn(std::string_view utf8, const Rect& box, const TextStyle& style, Color color,
                Align align = Align::left);
    float textWidth(std::string_view utf8, const TextStyle& style) const;

private:
    struct State {
        Point offset; // device pixels
        Rect clip;    // device pixels, whole
        float opacity = 1.0f;
    };

    Point toDevice(Point p) const;
    Transform transform() const;
    DeviceRect deviceClip() const;
    bool misses(const Rect& logical) const;
    Color faded(Color color) const;
    Paint faded(Paint paint) const;
    const State& state() const { return states_.back(); }

    Image& target_;
    GlyphCache& glyphs_;
    float scale_;
    std::vector<State> states_;
    std::unique_ptr<Raster> raster_;
};

} // namespace tolm::gui
