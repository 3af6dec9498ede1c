#include "gui/Paint.h"

namespace tolm::gui {

namespace {

Paint gradient(Paint::Kind kind, std::initializer_list<GradientStop> stops)
{
    Paint paint(stops.size() == 0 ? Color{0, 0, 0, 0} : stops.begin()->color);
    paint.kind = stops.size() == 0 ? Paint::Kind::solid : kind;
    for (const GradientStop& stop : stops)
        if (paint.stopCount < Paint::kMaxStops)
            paint.stops[paint.stopCount++] = stop;
    return paint;
}

} // namespace

Paint Paint::linear(Point from, Point to, std::initializer_list<GradientStop> stops)
{
    Paint paint = gradient(Kind::linear, stops);
    paint.from = from;
    paint.to = to;
    return paint;
}

Paint Paint::radial(Point centre, float radius, std::initializer_list<GradientStop> stops)
{
    Paint paint = gradient(Kind::radial, stops);
    paint.from = centre;
    paint.radius = radius;
    return paint;
}

} // namespace tolm::gui
