// What the X server sends, as input for the frame.

#include "gui/WindowXcb.h"

#include <array>
#include <utility>

namespace tolm::gui {

namespace {

// More in one pump than any hand can cause: the rest waits for the next one.
constexpr int kMaxEventsPerPump = 4096;

template <class Event>
const Event& as(const xcb_generic_event_t& event)
{
    return reinterpret_cast<const Event&>(event);
}

MouseButton buttonOf(xcb_button_t detail)
{
    constexpr std::array kButtons = {MouseButton::none, MouseButton::left, MouseButton::middle,
                                     MouseButton::right};
    return detail < kButtons.size() ? kButtons[detail] : MouseButton::none;
}

bool isWheel(xcb_button_t detail)
{
    return detail >= 4 && detail <= 7;
}

} // namespace

Point WindowXcb::logical(int x, int y) const
{
    return {static_cast<float>(x) / scale_, static_cast<float>(y) / scale_};
}

void WindowXcb::readEvents()
{
    for (int i = 0; i < kMaxEventsPerPump && alive_; ++i) {
        const auto event = owned(xcb_poll_for_event(connection_->get()));
        if (!event)
            break;
        handle(*event);
    }
    flushMotion();
    flushWheel();
    alive_ = alive_ && !connection_->isBroken();
}

void WindowXcb::handle(const xcb_generic_event_t& event)
{
    const int type = event.response_type & 0x7F; // the high bit marks what a client has sent
    if (type == 0) {
        handleError(as<xcb_generic_error_t>(event));
        return;
    }
    if (surface_->handle(event))
        return;
    // Moves and turns are merged as long as nothing else comes between.
    if (type != XCB_MOTION_NOTIFY)
        flushMotion();
    if (type != XCB_BUTTON_PRESS && type != XCB_BUTTON_RELEASE)
        flushWheel();
    switch (type) {
    case XCB_MOTION_NOTIFY:
        handleMotion(as<xcb_motion_notify_event_t>(event));
        break;
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
        handleButton(as<xcb_button_press_event_t>(event), type == XCB_BUTTON_PRESS);
        break;
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY:
        handleCrossing(as<xcb_enter_notify_event_t>(event), type == XCB_ENTER_NOTIFY);
        break;
    case XCB_KEY_PRESS:
        handleKey(as<xcb_key_press_event_t>(event));
        break;
    default:
        if (!clipboard_->handle(event))
            handleWindowEvent(event);
        break;
    }
}

void WindowXcb::handleWindowEvent(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7F) {
    case XCB_EXPOSE: {
        const auto& e = as<xcb_expose_event_t>(event);
        expose({static_cast<float>(e.x), static_cast<float>(e.y), static_cast<float>(e.width),
                static_cast<float>(e.height)});
        break;
    }
    case XCB_MAP_NOTIFY:
        if (as<xcb_map_notify_event_t>(event).window != window_)
            break;
        mapped_ = true;
        exposeAll();
        if (keysWanted_)
            takeFocus();
        break;
    case XCB_UNMAP_NOTIFY:
        if (as<xcb_unmap_notify_event_t>(event).window == window_)
            mapped_ = false;
        break;
    case XCB_DESTROY_NOTIFY:
        if (as<xcb_destroy_notify_event_t>(event).window == window_)
            alive_ = false;
        break;
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT: {
        const auto& e = as<xcb_focus_in_event_t>(event);
        // A grab, as of a host's shortcut, only borrows it; "pointer" tells of another's focus.
        if (e.mode == XCB_NOTIFY_MODE_NORMAL && e.detail != XCB_NOTIFY_DETAIL_POINTER)
            hasFocus_ = (e.response_type & 0x7F) == XCB_FOCUS_IN;
        break;
    }
    case XCB_MAPPING_NOTIFY:
        keyboard_.read(connection_->get());
        break;
    case XCB_CLIENT_MESSAGE: {
        const auto& e = as<xcb_client_message_event_t>(event);
        if (parent_ == 0 && e.type == connection_->atom(XcbAtom::wmProtocols) && e.format == 32 &&
            e.data.data32[0] == connection_->atom(XcbAtom::wmDeleteWindow)) {
            xcb_destroy_window(connection_->get(), window_);
            alive_ = false;
        }
        break;
    }
    default:
        break;
    }
}

void WindowXcb::handleError(const xcb_generic_error_t& error)
{
    const bool noSuch = error.error_code == XCB_WINDOW || error.error_code == XCB_DRAWABLE;
    if (noSuch && error.resource_id == window_) {
        alive_ = false;
        return;
    }
    const bool shared = surface_->sharesMemory();
    surface_->handleError(error);
    if (shared && !surface_->sharesMemory())
        exposeAll();
}

// --- mouse -----------------------------------------------------------------------------------

void WindowXcb::handleMotion(const xcb_motion_notify_event_t& event)
{
    time_ = event.time;
    MouseEvent moved;
    moved.position = logical(event.event_x, event.event_y);
    moved.modifiers = modifiersOf(event.state);
    moved.timeMs = event.time;
    motion_ = moved;
}

void WindowXcb::flushMotion()
{
    if (const auto motion = std::exchange(motion_, std::nullopt))
        frame_->mouseMoved(*motion);
}

void WindowXcb::handleButton(const xcb_button_press_event_t& event, bool pressed)
{
    time_ = event.time;
    if (isWheel(event.detail)) {
        if (pressed) // the release follows at once and means nothing
            addWheel(event);
        return;
    }
    flushWheel();
    MouseEvent mouse;
    mouse.button = buttonOf(event.detail);
    if (mouse.button == MouseButton::none)
        return;
    mouse.position = logical(event.event_x, event.event_y);
    mouse.modifiers = modifiersOf(event.state);
    mouse.timeMs = event.time;
    if (!pressed) {
        frame_->mouseUp(mouse);
        return;
    }
    mouse.clicks = clicks_.press(mouse.button, mouse.position, event.time);
    if (keysWanted_)
        takeFocus();
    frame_->mouseDown(mouse);
}

void WindowXcb::addWheel(const xcb_button_press_event_t& event)
{
    const bool up = event.detail == XCB_BUTTON_INDEX_4 || event.detail == 7;
    WheelEvent wheel;
    wheel.position = logical(event.event_x, event.event_y);
    wheel.modifiers = modifiersOf(event.state);
    wheel.timeMs = event.time;
    if (wheel_ && (wheel_->modifiers != wheel.modifiers || !(wheel_->position == wheel.position)))
        flushWheel();
    wheel.steps = (wheel_ ? wheel_->steps : 0.0f) + (up ? 1.0f : -1.0f);
    wheel_ = wheel;
}

void WindowXcb::flushWheel()
{
    if (const auto wheel = std::exchange(wheel_, std::nullopt); wheel && wheel->steps != 0.0f)
        frame_->mouseWheel(*wheel);
}

void WindowXcb::handleCrossing(const xcb_enter_notify_event_t& event, bool entered)
{
    time_ = event.time;
    if (!entered) {
        frame_->mouseLeft();
        return;
    }
    MouseEvent moved;
    moved.position = logical(event.event_x, event.event_y);
    moved.modifiers = modifiersOf(event.state);
    moved.timeMs = event.time;
    frame_->mouseMoved(moved);
}

// --- keys ------------------------------------------------------------------------------------

void WindowXcb::handleKey(const xcb_key_press_event_t& event)
{
    time_ = event.time;
    const auto key = keyboard_.translate(event.detail, event.state);
    if ((key && frame_->keyDown(*key)) || parent_ == 0)
        return;
    // Nobody here wanted it: the host may.
    xcb_key_press_event_t passed = event;
    passed.event = parent_;
    xcb_send_event(connection_->get(), 1, parent_, XCB_EVENT_MASK_KEY_PRESS,
                   reinterpret_cast<const char*>(&passed));
}

} // namespace tolm::gui
