// Overlays, focus, the work of a pump, and painting. The routing of input stands in FrameInput.cpp.

#include "gui/Frame.h"

#include "gui/Tooltip.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr double kTooltipRestSeconds = 0.6;
constexpr double kHoverSeconds = 0.08;

void collectFocusable(View& root, std::vector<View*>& found)
{
    if (!root.isVisible() || !root.isEnabled())
        return;
    if (root.acceptsFocus())
        found.push_back(&root);
    for (const auto& child : root.children())
        collectFocusable(*child, found);
}

} // namespace

Frame::Frame(FrameHost& host, Point size, float scale)
    : host_(host),
      size_(size),
      scale_(scale),
      content_(std::make_unique<View>(Rect{0.0f, 0.0f, size.x, size.y})),
      restingSince_(host.now())
{
    content_->enter(this);
    invalidate(content_->bounds());
}

Frame::~Frame()
{
    dropCapture();
    // What views do while they go must find a frame that is still whole.
    while (!overlays_.empty())
        graveyard_.push_back(takeOverlay(overlays_.size() - 1));
    graveyard_.clear();
    content_->enter(nullptr);
    content_.reset();
}

void Frame::setScale(float scale)
{
    scale_ = scale;
    invalidate({0.0f, 0.0f, size_.x, size_.y});
}

// --- views that go ---------------------------------------------------------------------------

void Frame::release(View& view)
{
    if (capture_ != nullptr && capture_->isInside(view))
        dropCapture();
    if (focus_ != nullptr && focus_->isInside(view))
        setFocus(nullptr);
    if (hovered_ != nullptr && hovered_->isInside(view))
        hover(nullptr);
}

void Frame::forget(View& view)
{
    std::replace(watched_.begin(), watched_.end(), &view, static_cast<View*>(nullptr));
    for (View** held : {&capture_, &hovered_, &focus_, &tooltip_})
        if (*held == &view)
            *held = nullptr;
    // The list is walked while handlers run: holes are closed afterwards.
    std::replace(animated_.begin(), animated_.end(), &view, static_cast<View*>(nullptr));
    std::erase_if(hoverFades_, [&view](const HoverFade& fade) { return fade.view == &view; });
    for (Overlay& overlay : overlays_)
        if (overlay.focusBefore == &view)
            overlay.focusBefore = nullptr;
    if (std::erase(keyTakers_, &view) != 0)
        updateKeys();
}

void Frame::discard(std::unique_ptr<View> view)
{
    if (view)
        graveyard_.push_back(std::move(view));
}

// --- overlays --------------------------------------------------------------------------------

View& Frame::showOverlay(std::unique_ptr<View> overlay, OverlayOptions options)
{
    View& shown = *overlay;
    if (options.takesInput) {
        hideTooltip();
        overlayTookPress_ = capture_ != nullptr || overlayTookPress_;
        dropCapture();
    }
    overlays_.push_back({std::move(overlay), std::move(options), focus_});
    shown.enter(this);
    shown.invalidate();
    hoverStale_ = true;
    return shown;
}

std::unique_ptr<View> Frame::takeOverlay(std::size_t index)
{
    View& view = *overlays_[index].view;
    view.invalidate();
    view.enter(nullptr);
    // Handlers called on the way out may have shown or dismissed others.
    const auto found = std::find_if(overlays_.begin(), overlays_.end(),
                                    [&view](const Overlay& o) { return o.view.get() == &view; });
    if (found == overlays_.end())
        return nullptr;
    Overlay gone = std::move(*found);
    overlays_.erase(found);
    hoverStale_ = true;
    if (focus_ == nullptr && gone.focusBefore != nullptr && gone.focusBefore->isShowing())
        setFocus(gone.focusBefore);
    return std::move(gone.view);
}

void Frame::dismissOverlay(View& overlay)
{
    for (std::size_t i = 0; i < overlays_.size(); ++i)
        if (overlays_[i].view.get() == &overlay) {
            discard(takeOverlay(i));
            return;
        }
}

void Frame::dismissAllOverlays()
{
    hideTooltip();
    // From the top, those that were there at the call: a handler may show a new one.
    for (std::size_t left = overlays_.size(); left > 0 && !overlays_.empty(); --left) {
        const std::size_t top = std::min(left, overlays_.size()) - 1;
        const auto dismissed = std::move(overlays_[top].options.dismissed);
        discard(takeOverlay(top));
        if (dismissed)
            dismissed();
    }
}

bool Frame::hasOverlay() const
{
    return std::any_of(overlays_.begin(), overlays_.end(),
                       [](const Overlay& o) { return o.options.takesInput; });
}

Frame::Overlay* Frame::topOverlay()
{
    const auto top = std::find_if(overlays_.rbegin(), overlays_.rend(),
                                  [](const Overlay& o) { return o.options.takesInput; });
    return top == overlays_.rend() ? nullptr : &*top;
}

// --- focus and keys --------------------------------------------------------------------------

void Frame::setFocus(View* view)
{
    if (view == focus_ || (view != nullptr && view->frame() != this))
        return;
    View* const before = focus_;
    focus_ = view;
    if (before != nullptr) {
        before->invalidate();
        before->focusChanged(false);
    }
    if (focus_ != nullptr && focus_ == view) {
        focus_->invalidate();
        focus_->focusChanged(true);
    }
}

void Frame::setKeyboardMode(bool on)
{
    keyboardMode_ = on;
    updateKeys();
    if (focus_ != nullptr)
        focus_->invalidate();
}

void Frame::requestKeys(View& view, bool want)
{
    std::erase(keyTakers_, &view);
    if (want)
        keyTakers_.push_back(&view);
    updateKeys();
}

void Frame::updateKeys()
{
    host_.wantKeys(keyboardMode_ || !keyTakers_.empty());
}

void Frame::moveFocus(bool forwards)
{
    const Overlay* top = topOverlay();
    std::vector<View*> order;
    collectFocusable(top != nullptr ? *top->view : *content_, order);
    if (order.empty())
        return;
    const auto at = std::find(order.begin(), order.end(), focus_);
    const std::size_t count = order.size();
    std::size_t next = forwards ? 0 : count - 1;
    if (at != order.end()) {
        const auto index = static_cast<std::size_t>(at - order.begin());
        next = (index + (forwards ? 1 : count - 1)) % count;
    }
    setFocus(order[next]);
}

// --- the work of a pump ----------------------------------------------------------------------

void Frame::animate(View& view)
{
    if (view.frame() == this &&
        std::find(animated_.begin(), animated_.end(), &view) == animated_.end())
        animated_.push_back(&view);
}

void Frame::tick()
{
    const double now = host_.now();
    runAnimations(now);
    if (hoverStale_)
        hoverAgain();
    runHoverFades(now);
    tickTooltip(now);
    // A view's destructor may discard others.
    while (!graveyard_.empty())
        std::exchange(graveyard_, {}).clear();
}

void Frame::runAnimations(double now)
{
    for (std::size_t i = 0; i < animated_.size(); ++i) {
        View* const view = animated_[i];
        if (view != nullptr && !view->animate(now) && animated_[i] == view)
            animated_[i] = nullptr;
    }
    std::erase(animated_, nullptr);
}

float Frame::hoverLight(const View& view) const
{
    const float aim = hovered_ == &view ? 1.0f : 0.0f;
    for (const HoverFade& fade : hoverFades_)
        if (fade.view == &view) {
            const auto moved = static_cast<float>((host_.now() - fade.since) / kHoverSeconds);
            return std::clamp(aim > 0.5f ? fade.from + moved : fade.from - moved, 0.0f, 1.0f);
        }
    return aim;
}

void Frame::startHoverFade(View* view, float from)
{
    if (view == nullptr || !view->showsHover())
        return;
    std::erase_if(hoverFades_, [view](const HoverFade& fade) { return fade.view == view; });
    hoverFades_.push_back({view, from, host_.now()});
}

void Frame::runHoverFades(double now)
{
    for (const HoverFade& fade : hoverFades_)
        fade.view->invalidate();
    // Each was painted once more when its time was over.
    std::erase_if(hoverFades_,
                  [now](const HoverFade& fade) { return now - fade.since >= kHoverSeconds; });
}

void Frame::tickTooltip(double now)
{
    if (tooltip_ != nullptr || tooltipSpent_ || hovered_ == nullptr || capture_ != nullptr ||
        !pointerInside_ || now - restingSince_ < kTooltipRestSeconds)
        return;
    tooltipSpent_ = true;
    for (const View* at = hovered_; at != nullptr; at = at->parent()) {
        const std::string text = at->tooltip();
        if (text.empty())
            continue;
        showTooltip(text, at->boundsInFrame());
        return;
    }
}

void Frame::showTooltip(const std::string& text, const Rect& anchor)
{
    auto tooltip = std::make_unique<Tooltip>(style_, text);
    tooltip->setBounds(tooltip->placed(anchor, pointer_, size_));
    OverlayOptions options;
    options.takesInput = false;
    tooltip_ = &showOverlay(std::move(tooltip), std::move(options));
}

void Frame::hideTooltip()
{
    tooltipSpent_ = true;
    if (tooltip_ != nullptr)
        dismissOverlay(*tooltip_);
}

// --- painting --------------------------------------------------------------------------------

std::vector<Rect> Frame::paint(Image& image, GlyphCache& glyphs)
{
    const DirtyRegion dirty = std::exchange(dirty_, {});
    const Rect whole{0.0f, 0.0f, static_cast<float>(image.width()),
                     static_cast<float>(image.height())};
    std::vector<Rect> changed;
    for (const Rect& rect : dirty.rects()) {
        const float left = std::floor(rect.x * scale_);
        const float top = std::floor(rect.y * scale_);
        const Rect device = Rect{left, top, std::ceil(rect.right() * scale_) - left,
                                 std::ceil(rect.bottom() * scale_) - top}
                                .intersection(whole);
        if (device.isEmpty())
            continue;
        paintOne(image, glyphs, rect);
        changed.push_back(device);
    }
    return changed;
}

void Frame::paintOne(Image& image, GlyphCache& glyphs, const Rect& rect)
{
    Canvas canvas(image, glyphs, scale_);
    canvas.clip(rect);
    // Overlays may let through what is below them, so each part begins from the ground.
    canvas.fillRect(rect.inset(-1.0f), style_.back);
    content_->paint(canvas);
    for (const Overlay& overlay : overlays_)
        overlay.view->paint(canvas);
}

} // namespace tolm::gui
