#pragma once
// One window: a frame, its picture in memory, and the system's window that shows it. No threads of
// its own: everything happens inside pump(), on its caller's thread.

#include "gui/Frame.h"
#include "gui/Image.h"

#include <memory>

namespace tolm::gui {

// The native parent's handle as hosts pass it (an X11 window id on Linux).
using NativeHandle = void*;

class Window {
public:
    virtual ~Window() = default;

    virtual Frame& frame() = 0;
    // Handles waiting events, runs what is due, paints and shows what changed. Never waits.
    virtual void pump() = 0;
    // The picture as it was last painted.
    virtual const Image& picture() const = 0;
    // Changes the scale and the window's own size.
    virtual void setScale(float scale) = 0;
    // False once the system's window is gone, as when the host destroyed the parent first.
    virtual bool isAlive() const = 0;
};

// A child of `parent`, or with null a window of its own. Null when there is no display, or the
// parent is no window. `size` is logical.
std::unique_ptr<Window> openWindow(NativeHandle parent, Point size, float scale, const char* title);

// The scale that the display asks for: 0.75 to 2.5 in quarters, limited so that `size` fits into
// 90 % of the screen; 1 when unknown.
float displayScale(Point size);

// A picture only, with a clock that tests move.
class HeadlessWindow final : public Window, private FrameHost {
public:
    HeadlessWindow(Point size, float scale);

    Frame& frame() override { return frame_; }
    void pump() override;
    const Image& picture() const override { return image_; }
    void setScale(float scale) override;
    bool isAlive() const override { return true; }

    void advance(double seconds) { now_ += seconds; }
    bool keysWanted() const { return keysWanted_; }
    const std::string& clipboard() const { return clipboard_; }
    Cursor cursor() const { return cursor_; }

private:
    double now() const override { return now_; }
    void wantKeys(bool want) override { keysWanted_ = want; }
    void setCursor(Cursor cursor) override { cursor_ = cursor; }
    void copyToClipboard(const std::string& utf8) override { clipboard_ = utf8; }
    void pasteFromClipboard(std::function<void(const std::string& utf8)> receive) override
    {
        receive(clipboard_);
    }

    double now_ = 0.0;
    bool keysWanted_ = false;
    Cursor cursor_ = Cursor::arrow;
    std::string clipboard_;
    Image image_;
    GlyphCache glyphs_;
    Frame frame_; // last: views that go may still ask the host
};

} // namespace tolm::gui
