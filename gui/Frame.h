#pragma once
// The root of a window's views: routes input, knows who has the mouse and the focus, keeps overlays
// (menus, sheets, messages, tooltips) above the content, and paints what is dirty. Independent of
// any system; a Window feeds it.

#include "gui/Style.h"
#include "gui/View.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tolm::gui {

// What a frame asks of its window.
class FrameHost {
public:
    virtual ~FrameHost() = default;
    // Seconds on a steady clock; tests move it by hand.
    virtual double now() const = 0;
    // Keys are taken from the host only while this is on.
    virtual void wantKeys(bool want) = 0;
    virtual void setCursor(Cursor cursor) = 0;
    virtual void copyToClipboard(const std::string& utf8) = 0;
    // Answers at once or later, or never when nobody has text.
    virtual void pasteFromClipboard(std::function<void(const std::string& utf8)> receive) = 0;
};

class Frame {
public:
    // `size` is logical and fixed; `scale` device pixels per logical one.
    Frame(FrameHost& host, Point size, float scale);
    // Ends drags and focus first: views may still commit what was being typed.
    ~Frame();
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    FrameHost& host() { return host_; }
    Point size() const { return size_; }
    float scale() const { return scale_; }
    // Everything is painted again.
    void setScale(float scale);
    // The view that fills the frame; owns the content.
    View& content() { return *content_; }
    // What overlays look like. Set it before the first of them is shown.
    const Style& style() const { return style_; }
    void setStyle(const Style& style) { style_ = style; }

    // Shows a view above all others, its bounds in frame coordinates. A modal one takes all input
    // until it goes; otherwise a press outside of it dismisses it and does nothing else. A mouse
    // capture ends when an overlay with input appears; the release then goes to the view under the
    // pointer, so that a menu can be used with one press.
    struct OverlayOptions {
        bool modal = false;
        bool takesInput = true; // false: a tooltip
        // Called after it went by a press outside or by dismissAllOverlays, not by dismissOverlay.
        std::function<void()> dismissed;
    };
    View& showOverlay(std::unique_ptr<View> overlay, OverlayOptions options);
    // Takes it down. It lives on until the end of the pump, so that a handler inside it may call
    // this. Other views are ignored.
    void dismissOverlay(View& overlay);
    void dismissAllOverlays();
    // One that takes input, that is no tooltip.
    bool hasOverlay() const;
    // Takes a view that was removed from its parent and destroys it at the end of the pump, for
    // handlers that remove the view in which they run.
    void discard(std::unique_ptr<View> view);

    void setFocus(View* view);
    View* focus() const { return focus_; }
    View* hovered() const { return hovered_; }
    // See View::hoverLight.
    float hoverLight(const View& view) const;
    View* captured() const { return capture_; }
    // Keyboard mode: Tab and arrow keys move and change controls; off, keys stay with the host
    // unless a view with text asks for them.
    void setKeyboardMode(bool on);
    bool keyboardMode() const { return keyboardMode_; }
    // For as long as the view wants, or until it leaves the frame.
    void requestKeys(View& view, bool want);
    // From now on the view's animate() is called once a pump, until it answers false.
    void animate(View& view);

    // Input, frame coordinates (logical).
    void mouseDown(MouseEvent event);
    void mouseMoved(MouseEvent event);
    void mouseUp(MouseEvent event);
    void mouseLeft();
    void mouseWheel(WheelEvent event);
    // False when nobody wanted it: it belongs to the host.
    bool keyDown(const KeyEvent& event);

    // After the input of a pump: runs animations and the tooltip's clock, empties the
    // graveyard.
    void tick();
    void invalidate(const Rect& rect) { dirty_.add(rect); }
    bool isDirty() const { return !dirty_.isEmpty(); }
    // Paints the dirty parts into the image (which has the frame's device size) and answers which
    // device rectangles changed.
    std::vector<Rect> paint(Image& image, GlyphCache& glyphs);

private:
    friend class View;
    struct Overlay {
        std::unique_ptr<View> view;
        OverlayOptions options;
        View* focusBefore = nullptr;
    };
    // How the pointer's light comes to a view or leaves it.
    struct HoverFade {
        View* view;
        float from;
        double since;
    };
    // A pointer to a view that becomes null when the view leaves the frame, as handlers may cause.
    class Watch;

    // The view is leaving: it ends what it was doing, then nothing here points to it.
    void release(View& view);
    void forget(View& view);
    View* target(Point inFrame);
    // The topmost overlay with input, or null.
    Overlay* topOverlay();
    bool dismissedByPressAt(Point inFrame);
    bool routeMouseDown(View* first, const MouseEvent& event);
    void focusByPress(View* pressed);
    bool routeKey(View* first, const KeyEvent& event);
    std::unique_ptr<View> takeOverlay(std::size_t index);
    void dropCapture();
    void hover(View* view);
    void hoverAgain();
    void startHoverFade(View* view, float from);
    void runHoverFades(double now);
    void tickTooltip(double now);
    void showTooltip(const std::string& text, const Rect& anchor);
    void hideTooltip();
    void runAnimations(double now);
    void moveFocus(bool forwards);
    void updateKeys();
    void paintOne(Image& image, GlyphCache& glyphs, const Rect& rect);

    FrameHost& host_;
    Point size_;
    float scale_;
    Style style_;
    std::unique_ptr<View> content_;
    std::vector<Overlay> overlays_;
    std::vector<std::unique_ptr<View>> graveyard_;
    std::vector<View*> animated_;
    std::vector<HoverFade> hoverFades_;
    std::vector<View*> keyTakers_;
    DirtyRegion dirty_;
    std::vector<View*> watched_; // one for each running Watch
    View* capture_ = nullptr;
    View* hovered_ = nullptr;
    View* focus_ = nullptr;
    View* tooltip_ = nullptr;
    MouseButton captureButton_ = MouseButton::none;
    double restingSince_ = 0.0;
    Point pointer_;
    bool pointerInside_ = false;
    bool hoverStale_ = false;
    bool tooltipSpent_ = false;     // not again before the pointer leaves the view
    bool overlayTookPress_ = false; // its release goes to whatever is under the pointer
    bool keyboardMode_ = false;
};

} // namespace tolm::gui
