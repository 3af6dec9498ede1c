#pragma once
// An outline of lines and curves, in the coordinates of whoever draws it.

#include "gui/geometry.h"

#include <span>
#include <vector>

namespace tolm::gui {

class Path {
public:
    enum class Verb : unsigned char { move, line, cubic, close };
    // A cubic takes three points (two controls, end), move and line one, close none.
    struct Element {
        Verb verb = Verb::move;
        Point points[3];
    };

    Path& moveTo(Point p);
    Path& lineTo(Point p);
    Path& cubicTo(Point control1, Point control2, Point end);
    Path& close();
    // Angles in radians, 0 to the right, growing clockwise. Connects with a line when the path has
    // a current point.
    Path& arc(Point centre, float radius, float fromAngle, float toAngle);

    static Path rect(const Rect& r);
    // The radius is limited to half of the shorter side.
    static Path roundRect(const Rect& r, float radius);
    static Path circle(Point centre, float radius);
    static Path line(Point from, Point to);
    static Path polyline(std::span<const Point> points);

    std::span<const Element> elements() const { return elements_; }
    bool isEmpty() const { return elements_.empty(); }
    // Of all points, controls included.
    Rect bounds() const;

private:
    std::vector<Element> elements_;
};

} // namespace tolm::gui
