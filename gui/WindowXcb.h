#pragma once
// The window on X11: a child of the host's window, or one of its own. Everything it knows of the
// display comes through its own connection.

#include "gui/ClickCounter.h"
#include "gui/Window.h"
#include "gui/XcbClipboard.h"
#include "gui/XcbConnection.h"
#include "gui/XcbKeyboard.h"
#include "gui/XcbSurface.h"

#include <array>
#include <memory>
#include <optional>

namespace tolm::gui {

class WindowXcb final : public Window, private FrameHost {
public:
    // Null when there is no display or the parent is no window. Parent 0 makes a window of its own.
    static std::unique_ptr<WindowXcb> open(xcb_window_t parent, Point size, float scale,
                                           const char* title);
    ~WindowXcb() override;

    Frame& frame() override { return *frame_; }
    void pump() override;
    const Image& picture() const override { return image_; }
    void setScale(float scale) override;
    bool isAlive() const override { return alive_; }

    xcb_window_t id() const { return window_; }
    bool sharesMemory() const { return surface_->sharesMemory(); }

private:
    static constexpr std::size_t kCursorCount = 6;

    WindowXcb(std::unique_ptr<XcbConnection> connection, Point size, float scale);
    bool create(xcb_window_t parent, const PixelFormat& format, const char* title);
    void setProperties(xcb_window_t parent, const char* title);
    void fixSize();

    double now() const override;
    void wantKeys(bool want) override;
    void setCursor(Cursor cursor) override;
    void copyToClipboard(const std::string& utf8) override;
    void pasteFromClipboard(std::function<void(const std::string& utf8)> receive) override;

    void readEvents();
    void handle(const xcb_generic_event_t& event);
    void handleWindowEvent(const xcb_generic_event_t& event);
    void handleError(const xcb_generic_error_t& error);
    void handleButton(const xcb_button_press_event_t& event, bool pressed);
    void handleMotion(const xcb_motion_notify_event_t& event);
    void handleCrossing(const xcb_enter_notify_event_t& event, bool entered);
    void handleKey(const xcb_key_press_event_t& event);
    void addWheel(const xcb_button_press_event_t& event);
    void flushMotion();
    void flushWheel();
    void expose(const Rect& device);
    void exposeAll();
    void paint();

    void selectEvents() const;
    void takeFocus();
    void giveFocusBack();
    xcb_cursor_t cursorFor(Cursor cursor);
    Point logical(int x, int y) const;

    std::unique_ptr<XcbConnection> connection_;
    xcb_window_t window_ = 0;
    xcb_window_t parent_ = 0;
    xcb_colormap_t colormap_ = 0;
    std::unique_ptr<XcbSurface> surface_;
    std::unique_ptr<XcbClipboard> clipboard_;
    XcbKeyboard keyboard_;
    ClickCounter clicks_;
    std::array<xcb_cursor_t, kCursorCount> cursors_{};
    Cursor cursor_ = Cursor::arrow;
    xcb_timestamp_t time_ = XCB_CURRENT_TIME; // of the last event that the user caused
    xcb_window_t focusBefore_ = 0;
    std::uint8_t revertBefore_ = 0;
    bool keysWanted_ = false;
    bool hasFocus_ = false;  // as the server has told
    bool tookFocus_ = false; // and owes it to focusBefore_
    bool alive_ = false;
    bool mapped_ = false;
    bool pumping_ = false;
    std::optional<MouseEvent> motion_; // merged, not yet handed on
    std::optional<WheelEvent> wheel_;  // summed, not yet handed on
    DirtyRegion exposed_;              // device pixels that only have to be copied
    float scale_;
    Image image_;
    GlyphCache glyphs_;
    std::unique_ptr<Frame> frame_; // last: views that go may still ask the host
};

} // namespace tolm::gui
