// Strokes as outlines. Round joins and caps are found by halving angles, which needs square roots
// only: every processor rounds those alike.

#include "gui/polygon.h"

#include <cmath>

namespace tolm::gui {

namespace {

constexpr double kTolerance = 0.05;     // device pixels between an arc and its chords
constexpr double kNearlyStraight = 0.9; // cosine of a turn that is mitred on both sides
constexpr double kMitreLimit = 4.0;     // mitre length over width; beyond it the corner is cut

using Vector = DevicePoint;

Vector operator+(Vector a, Vector b)
{
    return {a.x + b.x, a.y + b.y};
}
Vector operator*(Vector a, double k)
{
    return {a.x * k, a.y * k};
}
double dot(Vector a, Vector b)
{
    return a.x * b.x + a.y * b.y;
}
double cross(Vector a, Vector b)
{
    return a.x * b.y - a.y * b.x;
}

struct Corner {
    DevicePoint at;
    Vector direction;    // unit, to the next corner
    double length = 0.0; // to the next corner
};

class Stroker {
public:
    Stroker(double width, LineCap cap, Polygons& out)
        : half_(width / 2), round_(cap == LineCap::round), out_(out)
    {
    }

    void stroke(const Polygons& lines, const Polygons::Chain& chain)
    {
        collect(lines, chain);
        const std::size_t count = corners_.size();
        if (count == 0)
            return;
        if (count == 1) {
            if (round_)
                roundDot(corners_[0].at);
            return;
        }
        if (closed_) {
            side(0, count, 1.0);
            side(0, count, -1.0);
        } else {
            band(count);
        }
    }

private:
    // Drops points that coincide and finds the directions between the rest.
    void collect(const Polygons& lines, const Polygons::Chain& chain)
    {
        corners_.clear();
        for (std::size_t i = chain.begin; i < chain.end; ++i)
            push(lines.points()[i]);
        closed_ = chain.closed;
        if (closed_ && corners_.size() > 1 && !leads(corners_.back(), corners_.front().at))
            corners_.pop_back();
        // A closed chain of two corners is a line there and back.
        if (corners_.size() < 3)
            closed_ = false;
    }
    void push(DevicePoint p)
    {
        if (corners_.empty() || leads(corners_.back(), p))
            corners_.push_back({p, {}, 0.0});
    }
    static bool leads(Corner& from, DevicePoint to)
    {
        const Vector d{to.x - from.at.x, to.y - from.at.y};
        const double length = std::sqrt(dot(d, d));
        if (length < 1e-3)
            return false;
        from.direction = d * (1.0 / length);
        from.length = length;
        return true;
    }

    void put(DevicePoint p)
    {
        if (started_)
            out_.add(p);
        else
            out_.begin(p);
        started_ = true;
    }

    // From the left of `a` to that of `b` around `centre`, both unit normals, without the first.
    void arc(DevicePoint centre, Vector a, Vector b, int depth)
    {
        const Vector sum = a + b;
        const double length = std::sqrt(dot(sum, sum));
        // Half the sum's length is the cosine of half the angle.
        if (depth == 0 || half_ * (1.0 - length / 2) < kTolerance || length < 1e-6) {
            put(centre + b * half_);
            return;
        }
        const Vector middle = sum * (1.0 / length);
        arc(centre, a, middle, depth - 1);
        arc(centre, middle, b, depth - 1);
    }

    void roundDot(DevicePoint centre)
    {
        started_ = false;
        const Vector turns[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}};
        for (int i = 0; i < 4; ++i)
            arc(centre, turns[i], turns[i + 1], 6);
        out_.close();
    }

    // The corner where direction `in` (lasting lengthIn) turns into `to`, walked with the outline
    // on the left of the movement.
    void join(DevicePoint at, Vector in, double lengthIn, Vector to, double lengthOut)
    {
        const Vector a{in.y, -in.x};
        const Vector b{to.y, -to.x};
        const double cosine = dot(in, to);
        const double room = half_ / 2;
        if (cosine > kNearlyStraight && lengthIn > room && lengthOut > room) {
            put(at + (a + b) * (half_ / (1.0 + cosine)));
            return;
        }
        put(at + a * half_);
        if (cross(in, to) <= 0.0) { // the inner side: by way of the corner itself
            put(at);
            put(at + b * half_);
        } else if (round_) {
            arc(at, a, b, 6);
        } else {
            // The square of mitre over width is 2 / (1 + cosine).
            if (2.0 < kMitreLimit * kMitreLimit * (1.0 + cosine))
                put(at + (a + b) * (half_ / (1.0 + cosine)));
            put(at + b * half_);
        }
    }

    void cap(DevicePoint at, Vector outwards)
    {
        const Vector left{outwards.y, -outwards.x};
        put(at + left * half_);
        if (round_) {
            arc(at, left, outwards, 6);
            arc(at, outwards, left * -1.0, 6);
        } else {
            put(at + left * -half_);
        }
    }

    void forwardJoin(std::size_t before, std::size_t i)
    {
        join(corners_[i].at, corners_[before].direction, corners_[before].length,
             corners_[i].direction, corners_[i].length);
    }
    void backwardJoin(std::size_t before, std::size_t i)
    {
        join(corners_[i].at, corners_[i].direction * -1.0, corners_[i].length,
             corners_[before].direction * -1.0, corners_[before].length);
    }

    // One side of a closed chain, forwards or (-1) backwards.
    void side(std::size_t begin, std::size_t end, double way)
    {
        started_ = false;
        const std::size_t count = end - begin;
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t i = way > 0 ? k : count - 1 - k;
            const std::size_t before = (i + count - 1) % count;
            way > 0 ? forwardJoin(before, i) : backwardJoin(before, i);
        }
        out_.close();
    }

    // An open chain: there on one side, a cap, back on the other, a cap.
    void band(std::size_t count)
    {
        started_ = false;
        for (std::size_t i = 1; i + 1 < count; ++i)
            forwardJoin(i - 1, i);
        cap(corners_[count - 1].at, corners_[count - 2].direction);
        for (std::size_t i = count - 2; i > 0; --i)
            backwardJoin(i - 1, i);
        cap(corners_[0].at, corners_[0].direction * -1.0);
        out_.close();
    }

    double half_;
    bool round_;
    Polygons& out_;
    std::vector<Corner> corners_;
    bool closed_ = false;
    bool started_ = false;
};

} // namespace

void outlineStroke(const Polygons& lines, double width, LineCap cap, Polygons& out)
{
    if (!(width > 0.0))
        return;
    Stroker stroker(width, cap, out);
    for (const Polygons::Chain& chain : lines.chains())
        stroker.stroke(lines, chain);
}

} // namespace tolm::gui
