#pragma once
// Points and rectangles in logical pixels unless a name says device; y grows downwards.

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

namespace tolm::gui {

struct Point {
    float x = 0.0f;
    float y = 0.0f;

    friend constexpr bool operator==(Point, Point) = default;
    friend constexpr Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
    friend constexpr Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
};

// Left and top edges belong to it, right and bottom ones do not. Empty when a side is not positive.
struct Rect {
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    friend constexpr bool operator==(const Rect&, const Rect&) = default;

    constexpr float right() const { return x + width; }
    constexpr float bottom() const { return y + height; }
    constexpr Point origin() const { return {x, y}; }
    constexpr Point centre() const { return {x + width / 2, y + height / 2}; }
    constexpr bool isEmpty() const { return !(width > 0.0f && height > 0.0f); }
    constexpr float area() const { return isEmpty() ? 0.0f : width * height; }

    constexpr bool contains(Point p) const
    {
        return p.x >= x && p.x < right() && p.y >= y && p.y < bottom();
    }
    constexpr bool intersects(const Rect& o) const
    {
        return !isEmpty() && !o.isEmpty() && x < o.right() && o.x < right() && y < o.bottom() &&
               o.y < bottom();
    }
    constexpr Rect moved(Point by) const { return {x + by.x, y + by.y, width, height}; }
    // Smaller by `d` on every side; a negative `d` makes it larger.
    constexpr Rect inset(float d) const { return {x + d, y + d, width - 2 * d, height - 2 * d}; }
    constexpr Rect inset(float dx, float dy) const
    {
        return {x + dx, y + dy, width - 2 * dx, height - 2 * dy};
    }
    constexpr Rect intersection(const Rect& o) const
    {
        const float left = std::max(x, o.x);
        const float top = std::max(y, o.y);
        const Rect r{left, top, std::min(right(), o.right()) - left,
                     std::min(bottom(), o.bottom()) - top};
        return r.isEmpty() ? Rect{} : r;
    }
    // The smallest rectangle around both; an empty one adds nothing.
    constexpr Rect united(const Rect& o) const
    {
        if (isEmpty())
            return o;
        if (o.isEmpty())
            return *this;
        const float left = std::min(x, o.x);
        const float top = std::min(y, o.y);
        return {left, top, std::max(right(), o.right()) - left,
                std::max(bottom(), o.bottom()) - top};
    }
    // Cut off one side; what remains stays in this rectangle.
    constexpr Rect removeFromTop(float h)
    {
        const Rect cut{x, y, width, h};
        y += h;
        height -= h;
        return cut;
    }
    constexpr Rect removeFromLeft(float w)
    {
        const Rect cut{x, y, w, height};
        x += w;
        width -= w;
        return cut;
    }
};

// What has to be painted again: a few rectangles that do not overlap. Rectangles are merged when
// they overlap or when one around both is no larger than the two, and when there is no more room.
class DirtyRegion {
public:
    static constexpr std::size_t kCapacity = 16;

    void add(Rect rect);
    void clear() { count_ = 0; }
    bool isEmpty() const { return count_ == 0; }
    std::span<const Rect> rects() const { return {rects_.data(), count_}; }

private:
    void removeAt(std::size_t i) { rects_[i] = rects_[--count_]; }
    std::size_t cheapestMerge(const Rect& with) const;

    std::array<Rect, kCapacity> rects_{};
    std::size_t count_ = 0;
};

} // namespace tolm::gui
