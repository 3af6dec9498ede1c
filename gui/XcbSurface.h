#pragma once
// Puts parts of a picture on a window: through memory shared with the server where it allows that,
// else by sending the pixels in slices.

#include "gui/Image.h"
#include "gui/XcbConnection.h"

#include <cstdint>
#include <span>
#include <vector>
#include <xcb/shm.h>

namespace tolm::gui {

class XcbSurface {
public:
    XcbSurface(XcbConnection& connection, xcb_window_t window, const PixelFormat& format);
    // Its segment goes with the connection; the window may be gone already.
    ~XcbSurface();
    XcbSurface(const XcbSurface&) = delete;
    XcbSurface& operator=(const XcbSurface&) = delete;

    // For pictures of this size from now on.
    void resize(int width, int height);
    // Device rectangles of whole pixels inside the picture.
    void show(const Image& image, std::span<const Rect> rects);
    // The server still reads what was shown last: the shared pixels must not change.
    bool isBusy() const { return busy_; }
    bool sharesMemory() const { return pixels_ != nullptr; }
    // True when the event told that the server has finished.
    bool handle(const xcb_generic_event_t& event);
    // An error of a shared put: memory is not shared any more.
    void handleError(const xcb_generic_error_t& error);

private:
    struct Area {
        int x, y, width, height;
    };

    bool attach(std::size_t bytes);
    void detach();
    void showShared(const Image& image, std::span<const Rect> rects);
    void showSlices(const Image& image, const Area& area);
    void convertRow(std::span<const std::uint32_t> from, std::uint8_t* to) const;

    XcbConnection& connection_;
    xcb_window_t window_;
    PixelFormat format_;
    xcb_gcontext_t gc_;
    std::uint8_t shmFirstEvent_ = 0;
    std::uint8_t shmMajor_ = 0;
    bool shmAllowed_ = false;
    bool busy_ = false;
    int width_ = 0;
    int height_ = 0;
    xcb_shm_seg_t segment_ = 0;
    std::uint32_t* pixels_ = nullptr;
    std::vector<std::uint8_t> slice_;
};

} // namespace tolm::gui
