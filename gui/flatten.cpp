// The curves of a path as straight pieces.

#include "gui/polygon.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr double kFarthest = 1 << 20; // fits 24.8 bits with room for differences
constexpr double kTolerance = 0.05;
constexpr int kMostPieces = 200;

double nearby(double v)
{
    return std::isnan(v) ? 0.0 : std::clamp(v, -kFarthest, kFarthest);
}

// How far the middle control of three lies from the even spacing.
double bend(DevicePoint a, DevicePoint b, DevicePoint c)
{
    const double dx = a.x - 2 * b.x + c.x;
    const double dy = a.y - 2 * b.y + c.y;
    return std::sqrt(dx * dx + dy * dy);
}

// Wang's bound for the pieces that keep a cubic within the tolerance.
int pieceCount(DevicePoint p0, DevicePoint p1, DevicePoint p2, DevicePoint p3)
{
    const double most = std::max(bend(p0, p1, p2), bend(p1, p2, p3));
    const double pieces = std::ceil(std::sqrt(0.75 * most / kTolerance));
    return pieces < kMostPieces ? std::max(1, static_cast<int>(pieces)) : kMostPieces;
}

} // namespace

void Polygons::clear()
{
    points_.clear();
    chains_.clear();
}

void Polygons::begin(DevicePoint p)
{
    chains_.push_back({points_.size(), points_.size(), false});
    add(p);
}

void Polygons::add(DevicePoint p)
{
    points_.push_back({nearby(p.x), nearby(p.y)});
    chains_.back().end = points_.size();
}

void flattenCubic(DevicePoint from, DevicePoint c1, DevicePoint c2, DevicePoint to, Polygons& out)
{
    for (DevicePoint* p : {&from, &c1, &c2, &to})
        *p = {nearby(p->x), nearby(p->y)};
    const int pieces = pieceCount(from, c1, c2, to);
    for (int i = 1; i < pieces; ++i) {
        const double t = static_cast<double>(i) / pieces;
        const double u = 1.0 - t;
        const double w0 = u * u * u;
        const double w1 = 3.0 * u * u * t;
        const double w2 = 3.0 * u * t * t;
        const double w3 = t * t * t;
        out.add({w0 * from.x + w1 * c1.x + w2 * c2.x + w3 * to.x,
                 w0 * from.y + w1 * c1.y + w2 * c2.y + w3 * to.y});
    }
    out.add(to);
}

void flatten(const Path& path, const Transform& transform, Polygons& out)
{
    DevicePoint start;
    DevicePoint at;
    bool open = false;
    const auto ensureOpen = [&] {
        if (!open)
            out.begin(at);
        open = true;
    };
    for (const Path::Element& e : path.elements()) {
        switch (e.verb) {
        case Path::Verb::move:
            start = at = transform.apply(e.points[0]);
            open = false;
            break;
        case Path::Verb::line:
            ensureOpen();
            at = transform.apply(e.points[0]);
            out.add(at);
            break;
        case Path::Verb::cubic: {
            ensureOpen();
            const DevicePoint end = transform.apply(e.points[2]);
            flattenCubic(at, transform.apply(e.points[0]), transform.apply(e.points[1]), end, out);
            at = end;
            break;
        }
        case Path::Verb::close:
            if (open)
                out.close();
            at = start;
            open = false;
            break;
        }
    }
}

} // namespace tolm::gui
