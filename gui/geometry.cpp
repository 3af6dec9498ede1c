#include "gui/geometry.h"

#include <limits>

namespace tolm::gui {

namespace {

bool belongTogether(const Rect& a, const Rect& b)
{
    return a.intersects(b) || a.united(b).area() <= a.area() + b.area();
}

} // namespace

void DirtyRegion::add(Rect rect)
{
    if (rect.isEmpty())
        return;
    // A merged rectangle may reach others, so the search begins anew after every merge.
    for (std::size_t i = 0; i < count_;) {
        if (belongTogether(rects_[i], rect)) {
            rect = rect.united(rects_[i]);
            removeAt(i);
            i = 0;
        } else {
            ++i;
        }
    }
    if (count_ == kCapacity) {
        const std::size_t nearest = cheapestMerge(rect);
        rect = rect.united(rects_[nearest]);
        removeAt(nearest);
        add(rect);
        return;
    }
    rects_[count_++] = rect;
}

std::size_t DirtyRegion::cheapestMerge(const Rect& with) const
{
    std::size_t best = 0;
    float leastGrowth = std::numeric_limits<float>::max();
    for (std::size_t i = 0; i < count_; ++i) {
        const float growth = rects_[i].united(with).area() - rects_[i].area();
        if (growth < leastGrowth) {
            leastGrowth = growth;
            best = i;
        }
    }
    return best;
}

} // namespace tolm::gui
