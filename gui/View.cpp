#include "gui/View.h"

#include "gui/Frame.h"

#include <algorithm>

namespace tolm::gui {

View::~View()
{
    if (frame_ != nullptr)
        frame_->forget(*this);
}

void View::setBounds(Rect bounds)
{
    if (bounds == bounds_)
        return;
    invalidate();
    const bool resized = bounds.width != bounds_.width || bounds.height != bounds_.height;
    bounds_ = bounds;
    if (resized)
        boundsChanged();
    invalidate();
    if (frame_ != nullptr)
        frame_->hoverStale_ = true;
}

Point View::toFrame(Point local) const
{
    for (const View* at = this; at != nullptr; at = at->parent_)
        local = local + at->bounds_.origin();
    return local;
}

Point View::fromFrame(Point inFrame) const
{
    return inFrame - toFrame({});
}

Rect View::boundsInFrame() const
{
    return localBounds().moved(toFrame({}));
}

void View::adopt(std::unique_ptr<View> child)
{
    View& added = *child;
    added.parent_ = this;
    children_.push_back(std::move(child));
    if (frame_ != nullptr)
        added.enter(frame_);
    added.invalidate();
}

std::unique_ptr<View> View::remove(View& child)
{
    const auto isChild = [&child](const auto& owned) { return owned.get() == &child; };
    if (std::none_of(children_.begin(), children_.end(), isChild))
        return nullptr;
    child.invalidate();
    child.enter(nullptr);
    // Handlers called on the way out may have changed the list.
    const auto found = std::find_if(children_.begin(), children_.end(), isChild);
    if (found == children_.end())
        return nullptr;
    std::unique_ptr<View> removed = std::move(*found);
    children_.erase(found);
    removed->parent_ = nullptr;
    return removed;
}

void View::enter(Frame* frame)
{
    if (frame == nullptr)
        releaseAll();
    if (frame_ != nullptr && frame_ != frame)
        frame_->forget(*this);
    frame_ = frame;
    for (std::size_t i = 0; i < children_.size(); ++i)
        children_[i]->enter(frame);
}

// Ends whatever the view and those inside it were doing.
void View::releaseAll()
{
    if (frame_ == nullptr)
        return;
    Frame& frame = *frame_;
    frame.release(*this);
    frame.hoverStale_ = true;
}

void View::setVisible(bool visible)
{
    if (visible == visible_)
        return;
    invalidate();
    visible_ = visible;
    if (!visible)
        releaseAll();
    invalidate();
    if (frame_ != nullptr)
        frame_->hoverStale_ = true;
}

bool View::isShowing() const
{
    for (const View* at = this; at != nullptr; at = at->parent_)
        if (!at->visible_)
            return false;
    return frame_ != nullptr;
}

void View::setEnabled(bool enabled)
{
    if (enabled == enabled_)
        return;
    enabled_ = enabled;
    if (!enabled)
        releaseAll();
    invalidate();
}

bool View::isInside(const View& ancestor) const
{
    for (const View* at = this; at != nullptr; at = at->parent_)
        if (at == &ancestor)
            return true;
    return false;
}

bool View::takesInput() const
{
    for (const View* at = this; at != nullptr; at = at->parent_)
        if (!at->enabled_)
            return false;
    return true;
}

bool View::hasFocus() const
{
    return frame_ != nullptr && frame_->focus() == this;
}

bool View::isHovered() const
{
    return frame_ != nullptr && frame_->hovered() == this;
}

float View::hoverLight() const
{
    return frame_ != nullptr ? frame_->hoverLight(*this) : 0.0f;
}

Color View::hoverColor(Color resting, Color pointed) const
{
    return mix(resting, pointed, hoverLight());
}

void View::invalidate()
{
    invalidate(localBounds());
}

void View::invalidate(const Rect& local)
{
    if (!isShowing())
        return;
    Rect rect = local;
    for (const View* at = this; at != nullptr; at = at->parent_)
        rect = rect.intersection(at->localBounds()).moved(at->bounds_.origin());
    frame_->invalidate(rect);
}

View* View::hitTest(Point local)
{
    if (!visible_ || !localBounds().contains(local))
        return nullptr;
    for (auto child = children_.rbegin(); child != children_.rend(); ++child)
        if (View* hit = (*child)->hitTest(local - (*child)->bounds_.origin()))
            return hit;
    return this;
}

void View::paint(Canvas& canvas)
{
    if (!visible_ || bounds_.isEmpty())
        return;
    canvas.save();
    canvas.translate(bounds_.origin());
    canvas.clip(localBounds());
    if (!canvas.clipBounds().isEmpty()) {
        draw(canvas);
        for (const auto& child : children_)
            child->paint(canvas);
    }
    canvas.restore();
}

} // namespace tolm::gui
