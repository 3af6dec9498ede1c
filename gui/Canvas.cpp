#include "gui/Canvas.h"

#include "gui/Raster.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

// Float arithmetic leaves edges that lie on a pixel's a little beside it.
constexpr float kSlack = 1.0f / 256.0f;

float rounded(float v)
{
    return std::floor(v + 0.5f);
}

// The rectangle that a path is, if it is one with edges along the axes.
bool asRect(const Path& path, Rect& rect)
{
    const auto elements = path.elements();
    if (elements.size() != 5 || elements[0].verb != Path::Verb::move ||
        elements[4].verb != Path::Verb::close)
        return false;
    Point p[4];
    for (std::size_t i = 0; i < 4; ++i) {
        if (i > 0 && elements[i].verb != Path::Verb::line)
            return false;
        p[i] = elements[i].points[0];
    }
    const bool rowsFirst =
        p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
    const bool columnsFirst =
        p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
    rect = path.bounds();
    return rowsFirst || columnsFirst;
}

// The opposite way round, so that it cuts a hole.
void addHole(Path& path, const Rect& r, float radius)
{
    constexpr float kQuarter = 1.57079632679f;
    if (!(radius > 0.0f)) {
        path.moveTo(r.origin()).lineTo({r.x, r.bottom()}).lineTo({r.right(), r.bottom()});
        path.lineTo({r.right(), r.y}).close();
        return;
    }
    const Rect centres = r.inset(radius);
    path.arc(centres.origin(), radius, 3 * kQuarter, 2 * kQuarter);
    path.arc({centres.x, centres.bottom()}, radius, 2 * kQuarter, kQuarter);
    path.arc({centres.right(), centres.bottom()}, radius, kQuarter, 0.0f);
    path.arc({centres.right(), centres.y}, radius, 4 * kQuarter, 3 * kQuarter).close();
}

} // namespace

Canvas::Canvas(Image& target, GlyphCache& glyphs, float scale)
    : target_(target),
      glyphs_(glyphs),
      scale_(scale > 0.0f ? scale : 1.0f),
      raster_(std::make_unique<Raster>())
{
    states_.push_back(
        {{},
         {0.0f, 0.0f, static_cast<float>(target.width()), static_cast<float>(target.height())},
         1.0f});
}

Canvas::~Canvas() = default;

void Canvas::save()
{
    states_.push_back(state());
}

void Canvas::restore()
{
    if (states_.size() > 1)
        states_.pop_back();
}

void Canvas::translate(Point by)
{
    Point& offset = states_.back().offset;
    offset = {offset.x + by.x * scale_, offset.y + by.y * scale_};
}

void Canvas::clip(const Rect& rect)
{
    const Point topLeft = toDevice(rect.origin());
    const Point bottomRight = toDevice({rect.right(), rect.bottom()});
    const float left = std::floor(topLeft.x + kSlack);
    const float top = std::floor(topLeft.y + kSlack);
    const Rect outer{left, top, std::ceil(bottomRight.x - kSlack) - left,
                     std::ceil(bottomRight.y - kSlack) - top};
    Rect& clip = states_.back().clip;
    clip = rect.isEmpty() ? Rect{} : clip.intersection(outer);
}

void Canvas::fade(float opacity)
{
    states_.back().opacity *= std::clamp(opacity, 0.0f, 1.0f);
}

Color Canvas::faded(Color color) const
{
    return color.withAlpha(state().opacity * static_cast<float>(color.a) / 255.0f);
}

Paint Canvas::faded(Paint paint) const
{
    paint.color = faded(paint.color);
    for (std::size_t i = 0; i < paint.stopCount; ++i)
        paint.stops[i].color = faded(paint.stops[i].color);
    return paint;
}

Rect Canvas::clipBounds() const
{
    const Rect& clip = state().clip;
    const Point offset = state().offset;
    return {(clip.x - offset.x) / scale_, (clip.y - offset.y) / scale_, clip.width / scale_,
            clip.height / scale_};
}

float Canvas::snapX(float x) const
{
    return (rounded(x * scale_ + state().offset.x) - state().offset.x) / scale_;
}

float Canvas::snapY(float y) const
{
    return (rounded(y * scale_ + state().offset.y) - state().offset.y) / scale_;
}

Rect Canvas::snap(const Rect& rect) const
{
    const float left = snapX(rect.x);
    const float top = snapY(rect.y);
    const float pixel = 1.0f / scale_;
    Rect snapped{left, top, snapX(rect.right()) - left, snapY(rect.bottom()) - top};
    // What is there stays visible.
    if (rect.width > 0.0f)
        snapped.width = std::max(snapped.width, pixel);
    if (rect.height > 0.0f)
        snapped.height = std::max(snapped.height, pixel);
    return snapped;
}

Point Canvas::toDevice(Point p) const
{
    return {p.x * scale_ + state().offset.x, p.y * scale_ + state().offset.y};
}

Transform Canvas::transform() const
{
    return {scale_, state().offset.x, state().offset.y};
}

DeviceRect Canvas::deviceClip() const
{
    const Rect& clip = state().clip;
    return {static_cast<int>(clip.x), static_cast<int>(clip.y), static_cast<int>(clip.right()),
            static_cast<int>(clip.bottom())};
}

bool Canvas::misses(const Rect& logical) const
{
    const Rect& clip = state().clip;
    const Point topLeft = toDevice(logical.origin());
    const Point bottomRight = toDevice({logical.right(), logical.bottom()});
    return clip.isEmpty() || !(topLeft.x < clip.right()) || !(topLeft.y < clip.bottom()) ||
           !(bottomRight.x > clip.x) || !(bottomRight.y > clip.y);
}

void Canvas::fill(const Path& path, const Paint& paint)
{
    Rect rect;
    if (asRect(path, rect)) {
        fillRect(rect, paint);
        return;
    }
    if (path.isEmpty() || misses(path.bounds()))
        return;
    Polygons polygons;
    flatten(path, transform(), polygons);
    raster_->fill(target_, deviceClip(), polygons, Shader(faded(paint), transform()));
}

void Canvas::fillRect(const Rect& rect, const Paint& paint)
{
    if (rect.isEmpty() || misses(rect))
        return;
    const Transform t = transform();
    Raster::fillRect(target_, deviceClip(), t.apply(rect.origin()),
                     t.apply({rect.right(), rect.bottom()}), Shader(faded(paint), t));
}

void Canvas::fillRoundRect(const Rect& rect, float radius, const Paint& paint)
{
    if (!rect.isEmpty() && !misses(rect))
        fill(Path::roundRect(rect, radius), paint);
}

void Canvas::stroke(const Path& path, const Stroke& stroke, const Paint& paint)
{
    // Mitres reach farther out than half the width.
    const Rect reach = path.bounds().inset(-stroke.width * 2.0f);
    if (path.isEmpty() || !(stroke.width > 0.0f) || misses(reach))
        return;
    Polygons lines;
    flatten(path, transform(), lines);
    Polygons outline;
    outlineStroke(lines, static_cast<double>(stroke.width) * scale_, stroke.cap, outline);
    raster_->fill(target_, deviceClip(), outline, Shader(faded(paint), transform()));
}

void Canvas::strokeRoundRect(const Rect& rect, float radius, float width, const Paint& paint)
{
    if (rect.isEmpty() || !(width > 0.0f) || misses(rect))
        return;
    const Rect inner = rect.inset(width);
    if (inner.isEmpty()) {
        fillRoundRect(rect, radius, paint);
        return;
    }
    const float corner = std::min(radius, std::min(rect.width, rect.height) / 2);
    Path path = Path::roundRect(rect, corner);
    addHole(path, inner, corner - width);
    fill(path, paint);
}

void Canvas::line(Point from, Point to, float width, const Paint& paint)
{
    if (from.x == to.x)
        fillRect({from.x - width / 2, std::min(from.y, to.y), width, std::abs(to.y - from.y)},
                 paint);
    else if (from.y == to.y)
        fillRect({std::min(from.x, to.x), from.y - width / 2, std::abs(to.x - from.x), width},
                 paint);
    else
        stroke(Path::line(from, to), {width, LineCap::butt}, paint);
}

} // namespace tolm::gui
