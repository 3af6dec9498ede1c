#pragma once
// A connection of our own to the display, and what has to be known of it. Errors arrive as events
// or replies on this connection only; nothing here ends the process.

#include "gui/geometry.h"
#include "gui/xcbReply.h"

#include <array>
#include <cstdint>
#include <optional>

namespace tolm::gui {

// How a window's pixels are stored. Channels are masks of a pixel value.
struct PixelFormat {
    xcb_visualid_t visual = 0;
    std::uint8_t depth = 0;
    std::uint8_t bitsPerPixel = 0;
    bool swapped = false; // the server's byte order is not ours
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;

    // The same as an Image's pixels, apart from alpha.
    bool isPlain() const
    {
        return bitsPerPixel == 32 && !swapped && red == 0xFF0000 && green == 0xFF00 && blue == 0xFF;
    }
};

enum class XcbAtom : std::size_t {
    clipboard,
    utf8String,
    targets,
    incr,
    clipboardProperty,
    xembedInfo,
    wmProtocols,
    wmDeleteWindow,
    netWmName,
    count,
};

class XcbConnection {
public:
    XcbConnection();
    ~XcbConnection();
    XcbConnection(const XcbConnection&) = delete;
    XcbConnection& operator=(const XcbConnection&) = delete;

    xcb_connection_t* get() const { return connection_; }
    bool isBroken() const { return xcb_connection_has_error(connection_) != 0; }
    const xcb_screen_t& screen() const { return *screen_; }
    xcb_atom_t atom(XcbAtom which) const { return atoms_[static_cast<std::size_t>(which)]; }

    // The parent's own format when it has true colours; else that of any visual which has, plain
    // ones first. Nothing when the window does not exist, or no visual will do.
    std::optional<PixelFormat> formatFor(xcb_window_t parent);
    std::optional<PixelFormat> formatForTopLevel() const;

private:
    std::optional<PixelFormat> formatOf(xcb_visualid_t visual) const;
    std::optional<PixelFormat> describe(const xcb_visualtype_t& type, std::uint8_t depth) const;
    void selectScreen(xcb_window_t root);
    void fetchAtoms();

    xcb_connection_t* connection_;
    xcb_screen_t* screen_ = nullptr;
    std::array<xcb_atom_t, static_cast<std::size_t>(XcbAtom::count)> atoms_{};
};

} // namespace tolm::gui
