#include "gui/Path.h"

#include "gui/sine.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr float kTurn = static_cast<float>(2.0 * kPi);
constexpr float kQuarter = static_cast<float>(0.5 * kPi);

Point polar(Point centre, double radius, Direction d)
{
    return {static_cast<float>(centre.x + radius * d.x),
            static_cast<float>(centre.y + radius * d.y)};
}
// The point, moved along the tangent that points clockwise.
Point alongTangent(Point centre, double radius, Direction d, double length)
{
    return {static_cast<float>(centre.x + radius * d.x - length * d.y),
            static_cast<float>(centre.y + radius * d.y + length * d.x)};
}

} // namespace

Path& Path::moveTo(Point p)
{
    elements_.push_back({Verb::move, {p, {}, {}}});
    return *this;
}

Path& Path::lineTo(Point p)
{
    elements_.push_back({isEmpty() ? Verb::move : Verb::line, {p, {}, {}}});
    return *this;
}

Path& Path::cubicTo(Point control1, Point control2, Point end)
{
    if (isEmpty())
        moveTo(control1);
    elements_.push_back({Verb::cubic, {control1, control2, end}});
    return *this;
}

Path& Path::close()
{
    if (!isEmpty() && elements_.back().verb != Verb::close)
        elements_.push_back({Verb::close, {}});
    return *this;
}

Path& Path::arc(Point centre, float radius, float fromAngle, float toAngle)
{
    if (!std::isfinite(fromAngle) || !std::isfinite(toAngle))
        return *this;
    const double sweep =
        std::clamp(static_cast<double>(toAngle) - fromAngle, -2.0 * kPi - 1e-6, 2.0 * kPi + 1e-6);
    const int pieces =
        std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (0.5 * kPi) - 1e-6)));
    const double step = sweep / pieces;
    // Handles that make a cubic touch the circle at the middle of a piece.
    const Direction quarterStep = directionOf(step / 4.0);
    const double handle = 4.0 / 3.0 * quarterStep.y / quarterStep.x * radius;

    Direction at = directionOf(fromAngle);
    const bool begins = isEmpty() || elements_.back().verb == Verb::close;
    const Point start = polar(centre, radius, at);
    begins ? moveTo(start) : lineTo(start);
    for (int i = 1; i <= pieces; ++i) {
        const Direction next = directionOf(fromAngle + step * i);
        cubicTo(alongTangent(centre, radius, at, handle),
                alongTangent(centre, radius, next, -handle), polar(centre, radius, next));
        at = next;
    }
    return *this;
}

Path Path::rect(const Rect& r)
{
    Path path;
    path.moveTo(r.origin()).lineTo({r.right(), r.y}).lineTo({r.right(), r.bottom()});
    return std::move(path.lineTo({r.x, r.bottom()}).close());
}

Path Path::roundRect(const Rect& r, float radius)
{
    const float corner = std::min(radius, std::min(r.width, r.height) / 2);
    if (!(corner > 0.0f))
        return rect(r);
    const float left = r.x + corner;
    const float right = r.right() - corner;
    const float top = r.y + corner;
    const float bottom = r.bottom() - corner;
    Path path;
    path.arc({left, top}, corner, 2 * kQuarter, 3 * kQuarter);
    path.arc({right, top}, corner, 3 * kQuarter, 4 * kQuarter);
    path.arc({right, bottom}, corner, 0.0f, kQuarter);
    path.arc({left, bottom}, corner, kQuarter, 2 * kQuarter);
    return std::move(path.close());
}

Path Path::circle(Point centre, float radius)
{
    Path path;
    return std::move(path.arc(centre, radius, 0.0f, kTurn).close());
}

Path Path::line(Point from, Point to)
{
    Path path;
    return std::move(path.moveTo(from).lineTo(to));
}

Path Path::polyline(std::span<const Point> points)
{
    Path path;
    for (const Point& p : points)
        path.lineTo(p);
    return path;
}

Rect Path::bounds() const
{
    constexpr int kPointsOf[] = {1, 1, 3, 0};
    bool any = false;
    Point low;
    Point high;
    for (const Element& element : elements_)
        for (int i = 0; i < kPointsOf[static_cast<int>(element.verb)]; ++i) {
            const Point p = element.points[i];
            low = any ? Point{std::min(low.x, p.x), std::min(low.y, p.y)} : p;
            high = any ? Point{std::max(high.x, p.x), std::max(high.y, p.y)} : p;
            any = true;
        }
    return {low.x, low.y, high.x - low.x, high.y - low.y};
}

} // namespace tolm::gui
