// Who gets which mouse, wheel and key event.

#include "gui/Frame.h"
#include "gui/FrameWatch.h"

#include <cstdint>
#include <utility>

namespace tolm::gui {

namespace {

template <class Event>
Event inside(const View& view, const Event& inFrame)
{
    Event event = inFrame;
    event.position = view.fromFrame(inFrame.position);
    return event;
}

} // namespace

View* Frame::target(Point inFrame)
{
    if (const Overlay* top = topOverlay())
        return top->view->hitTest(inFrame - top->view->bounds().origin());
    return content_->hitTest(inFrame);
}

void Frame::dropCapture()
{
    if (View* const lost = std::exchange(capture_, nullptr))
        lost->captureLost();
}

// --- mouse -----------------------------------------------------------------------------------

void Frame::mouseDown(MouseEvent event)
{
    pointer_ = event.position;
    pointerInside_ = true;
    hideTooltip();
    if (capture_ != nullptr) {
        if (event.button != captureButton_)
            return;    // one drag at a time
        dropCapture(); // its release got lost
    }
    overlayTookPress_ = false;
    if (dismissedByPressAt(event.position))
        return;
    View* const pressed = target(event.position);
    hover(pressed);
    focusByPress(pressed);
    routeMouseDown(pressed, event);
}

// A press beside a menu only closes it; beside a modal box it does nothing.
bool Frame::dismissedByPressAt(Point inFrame)
{
    Overlay* const top = topOverlay();
    if (top == nullptr || target(inFrame) != nullptr)
        return false;
    if (top->options.modal)
        return true;
    View& view = *top->view;
    const auto dismissed = std::move(top->options.dismissed);
    dismissOverlay(view);
    if (dismissed)
        dismissed();
    return true;
}

void Frame::focusByPress(View* pressed)
{
    View* wants = pressed;
    while (wants != nullptr && !(wants->acceptsFocus() && wants->takesInput()))
        wants = wants->parent();
    // A press on a menu's or a box's ground leaves the focus where it is.
    if (wants != nullptr || topOverlay() == nullptr)
        setFocus(wants);
}

bool Frame::routeMouseDown(View* first, const MouseEvent& event)
{
    for (Watch at(*this, first); at.view() != nullptr; at.moveTo(at.view()->parent())) {
        if (!at.view()->takesInput())
            continue;
        const std::size_t overlaysBefore = overlays_.size();
        const bool handled = at.view()->mouseDown(inside(*at.view(), event));
        if (at.view() == nullptr)
            return true;
        if (!handled)
            continue;
        if (overlays_.size() > overlaysBefore) {
            overlayTookPress_ = true;
            at.view()->captureLost();
        } else if (at.view()->isShowing() && at.view()->takesInput()) {
            capture_ = at.view();
            captureButton_ = event.button;
        }
        return true;
    }
    return false;
}

void Frame::mouseMoved(MouseEvent event)
{
    const bool moved = !(event.position == pointer_);
    pointer_ = event.position;
    // While a button is held, moves come from outside of the window too.
    pointerInside_ = Rect{0.0f, 0.0f, size_.x, size_.y}.contains(pointer_);
    if (moved)
        restingSince_ = host_.now();
    if (capture_ != nullptr) {
        capture_->mouseDragged(inside(*capture_, event));
        return;
    }
    hover(target(event.position));
    if (hovered_ != nullptr && hovered_->takesInput())
        hovered_->mouseMoved(inside(*hovered_, event));
}

void Frame::mouseUp(MouseEvent event)
{
    pointer_ = event.position;
    if (capture_ != nullptr) {
        if (event.button != captureButton_)
            return;
        View* const view = std::exchange(capture_, nullptr);
        hoverStale_ = true;
        view->mouseUp(inside(*view, event));
        return;
    }
    if (!std::exchange(overlayTookPress_, false))
        return;
    if (View* const view = target(event.position); view != nullptr && view->takesInput())
        view->mouseUp(inside(*view, event));
}

void Frame::mouseLeft()
{
    pointerInside_ = false;
    if (capture_ == nullptr)
        hover(nullptr);
    hideTooltip();
}

void Frame::mouseWheel(WheelEvent event)
{
    pointer_ = event.position;
    hideTooltip();
    if (capture_ != nullptr)
        return;
    for (Watch at(*this, target(event.position)); at.view() != nullptr;
         at.moveTo(at.view()->parent())) {
        if (!at.view()->takesInput())
            continue;
        const bool handled = at.view()->mouseWheel(inside(*at.view(), event));
        if (handled || at.view() == nullptr)
            return;
    }
}

void Frame::hover(View* view)
{
    if (view == hovered_)
        return;
    hideTooltip();
    tooltipSpent_ = false;
    restingSince_ = host_.now();
    View* const before = hovered_;
    const float lightBefore = before != nullptr ? hoverLight(*before) : 0.0f;
    const float light = view != nullptr ? hoverLight(*view) : 0.0f;
    hovered_ = view;
    startHoverFade(before, lightBefore);
    startHoverFade(view, light);
    if (before != nullptr)
        before->mouseLeft();
    if (hovered_ != view)
        return;
    host_.setCursor(view != nullptr && view->takesInput() ? view->cursor() : Cursor::arrow);
    if (view != nullptr)
        view->mouseEntered();
}

// Views have come, gone or moved under a resting pointer.
void Frame::hoverAgain()
{
    hoverStale_ = false;
    if (capture_ == nullptr)
        hover(pointerInside_ ? target(pointer_) : nullptr);
}

// --- keys ------------------------------------------------------------------------------------

bool Frame::keyDown(const KeyEvent& event)
{
    hideTooltip();
    const Overlay* const top = topOverlay();
    View* first = focus_;
    bool modal = false;
    if (top != nullptr) {
        modal = top->options.modal;
        if (first == nullptr || !first->isInside(*top->view))
            first = top->view.get();
    }
    if (routeKey(first, event))
        return true;
    if (event.key == Key::tab && (keyboardMode_ || topOverlay() != nullptr)) {
        moveFocus(!event.modifiers.shift);
        return true;
    }
    return modal;
}

bool Frame::routeKey(View* first, const KeyEvent& event)
{
    for (Watch at(*this, first); at.view() != nullptr; at.moveTo(at.view()->parent()))
        if (at.view()->takesInput() && (at.view()->keyDown(event) || at.view() == nullptr))
            return true;
    return false;
}

} // namespace tolm::gui
