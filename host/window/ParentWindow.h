#pragma once
// A host's window on X11, into which a plug-in puts its own: what a test needs to look at it and to
// play the user. It has a connection of its own, as hosts do.

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace tolm {

struct Screenshot {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; // 0xAARRGGBB
};

class ParentWindow {
public:
    // `depth` 24 or 32. Throws Failure without a display, or without a visual of this depth.
    ParentWindow(int width, int height, int depth);
    ~ParentWindow();
    ParentWindow(const ParentWindow&) = delete;
    ParentWindow& operator=(const ParentWindow&) = delete;

    xcb_window_t id() const { return window_; }
    void* handle() const { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(window_)); }
    // The first window inside, 0 for none.
    xcb_window_t child() const;
    std::uint8_t childDepth() const;
    // Everything that was asked for until now has been done by the server.
    void sync() const;
    // The window goes, with all inside of it.
    void destroy();
    void unmapAndMap();
    void resize(int width, int height);

    // What is on the screen. Empty when the window is gone or the server refuses.
    Screenshot shot() const;
    // Input for the child, as the server would send it; positions in device pixels.
    void press(int x, int y, int button = 1, std::uint32_t timeMs = 0);
    void release(int x, int y, int button = 1);
    void move(int x, int y);
    void key(int code, std::uint16_t state = 0);
    // The first key code that carries this symbol, 0 for none.
    int codeOf(std::uint32_t symbol) const;
    std::uint32_t childEventMask() const;
    xcb_window_t focus() const;
    void setFocus(xcb_window_t window);
    // Resources of the display, kept by the server's root window.
    void setResources(const char* text);

private:
    template <class Event>
    void send(Event event, std::uint32_t mask);
    void sendButton(std::uint8_t type, int x, int y, int button, std::uint32_t timeMs);

    xcb_connection_t* connection_;
    xcb_screen_t* screen_ = nullptr;
    xcb_window_t window_ = 0;
    int width_;
    int height_;
};

} // namespace tolm
