#pragma once
// A rectangle of the window that draws itself and takes input. A view owns its children. All calls
// come from the thread that pumps the window.

#include "gui/Canvas.h"
#include "gui/events.h"
#include "gui/geometry.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tolm::gui {

class Frame;

enum class Cursor : unsigned char { arrow, hand, text, resizeVertical, resizeHorizontal, move };

class View {
public:
    explicit View(Rect bounds = {}) : bounds_(bounds) {}
    // Leaves no pointer to itself in the frame.
    virtual ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    // In the parent's coordinates; the view's own begin at its top left corner.
    const Rect& bounds() const { return bounds_; }
    Rect localBounds() const { return {0.0f, 0.0f, bounds_.width, bounds_.height}; }
    void setBounds(Rect bounds);
    Point toFrame(Point local) const;
    Point fromFrame(Point inFrame) const;
    Rect boundsInFrame() const;

    View* parent() const { return parent_; }
    // Null while the view is in no window.
    Frame* frame() const { return frame_; }
    const std::vector<std::unique_ptr<View>>& children() const { return children_; }
    template <class T>
    T& add(std::unique_ptr<T> child)
    {
        T& added = *child;
        adopt(std::move(child));
        return added;
    }
    template <class T, class... Arguments>
    T& emplace(Arguments&&... arguments)
    {
        return add(std::make_unique<T>(std::forward<Arguments>(arguments)...));
    }
    // Hands the child back; the caller decides when it goes. Null when it is no child.
    std::unique_ptr<View> remove(View& child);

    bool isVisible() const { return visible_; }
    void setVisible(bool visible);
    // Visible together with all its parents, and in a window.
    bool isShowing() const;
    // A view that is not enabled, or inside one that is not, gets no input.
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled);
    bool isInside(const View& ancestor) const;
    bool hasFocus() const;
    bool isHovered() const;
    // 1 under the pointer, 0 elsewhere; moves between them for a moment where showsHover().
    float hoverLight() const;

    // Asks to be painted at the next chance: all of it, or a part in own coordinates.
    void invalidate();
    void invalidate(const Rect& local);

    // Paints itself below its children; the canvas is translated and clipped to the view.
    virtual void draw(Canvas&) {}
    // Topmost visible view under the point (own coordinates), or null.
    virtual View* hitTest(Point local);

    // True when handled; else the event goes on to the parent, in its coordinates. A handled press
    // captures the mouse: moves and the release come to this view wherever the pointer is.
    virtual bool mouseDown(const MouseEvent&) { return false; }
    virtual void mouseDragged(const MouseEvent&) {}
    virtual void mouseUp(const MouseEvent&) {}
    // Without a button held; only to the view under the pointer.
    virtual void mouseMoved(const MouseEvent&) {}
    virtual void mouseEntered() {}
    virtual void mouseLeft() {}
    // The capture was taken away, as when the window closes in mid-drag: end what was begun.
    virtual void captureLost() {}
    virtual bool mouseWheel(const WheelEvent&) { return false; }
    // To the focused view first, then its parents.
    virtual bool keyDown(const KeyEvent&) { return false; }
    // Can be reached with the Tab key, in the order of the tree.
    virtual bool acceptsFocus() const { return false; }
    virtual void focusChanged(bool /*focused*/) {}
    // Once a pump while it has asked for it through Frame::animate; false ends the animation.
    virtual bool animate(double /*nowSeconds*/) { return false; }

    // Looks otherwise under the pointer: painted again while hoverLight() moves.
    virtual bool showsHover() const { return false; }
    // Shown after the pointer has rested; empty for none.
    virtual std::string tooltip() const { return {}; }
    virtual Cursor cursor() const { return Cursor::arrow; }
    // What a screen reader would say.
    virtual std::string spokenName() const { return {}; }

protected:
    virtual void boundsChanged() {}
    // Between two colours, as far as the pointer is on the view.
    Color hoverColor(Color resting, Color pointed) const;

private:
    friend class Frame;
    void adopt(std::unique_ptr<View> child);
    void enter(Frame* frame);
    void releaseAll();
    bool takesInput() const;
    void paint(Canvas& canvas);

    Rect bounds_;
    View* parent_ = nullptr;
    Frame* frame_ = nullptr;
    std::vector<std::unique_ptr<View>> children_;
    bool visible_ = true;
    bool enabled_ = true;
};

} // namespace tolm::gui
