#include "host/window/ParentWindow.h"

#include "host/Failure.h"

#include <array>
#include <cstdlib>
#include <cstring>

namespace tolm {

namespace {

template <class T>
std::unique_ptr<T, decltype(&std::free)> owned(T* memory)
{
    return {memory, &std::free};
}

std::optional<xcb_visualid_t> visualOf(const xcb_screen_t* screen, int wantedDepth)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0;
         xcb_depth_next(&depth))
        for (auto type = xcb_depth_visuals_iterator(depth.data); type.rem > 0;
             xcb_visualtype_next(&type))
            if (depth.data->depth == wantedDepth &&
                type.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR)
                return type.data->visual_id;
    return std::nullopt;
}

} // namespace

ParentWindow::ParentWindow(int width, int height, int depth)
    : connection_(xcb_connect(nullptr, nullptr)), width_(width), height_(height)
{
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw Failure("no X display: set DISPLAY, or start Xvfb");
    }
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    const auto visual = visualOf(screen_, depth);
    if (!visual) {
        xcb_disconnect(connection_);
        throw Failure("the display has no visual of depth " + std::to_string(depth));
    }
    const xcb_colormap_t colormap = xcb_generate_id(connection_);
    xcb_create_colormap(connection_, XCB_COLORMAP_ALLOC_NONE, colormap, screen_->root, *visual);
    window_ = xcb_generate_id(connection_);
    // Hosts listen for the same keys as the user types to them.
    const std::array<std::uint32_t, 4> values = {0xFF804020, 0, XCB_EVENT_MASK_KEY_PRESS, colormap};
    xcb_create_window(connection_, static_cast<std::uint8_t>(depth), window_, screen_->root, 0, 0,
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, *visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
    xcb_map_window(connection_, window_);
    sync();
}

ParentWindow::~ParentWindow()
{
    xcb_disconnect(connection_);
}

void ParentWindow::sync() const
{
    owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void ParentWindow::destroy()
{
    xcb_destroy_window(connection_, window_);
    window_ = 0;
    sync();
}

void ParentWindow::unmapAndMap()
{
    xcb_unmap_window(connection_, window_);
    sync();
    xcb_map_window(connection_, window_);
    sync();
}

void ParentWindow::resize(int width, int height)
{
    width_ = width;
    height_ = height;
    const std::array<std::uint32_t, 2> size = {static_cast<std::uint32_t>(width),
                                               static_cast<std::uint32_t>(height)};
    xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         size.data());
    sync();
}

xcb_window_t ParentWindow::child() const
{
    const auto tree =
        owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window_), nullptr));
    if (!tree || xcb_query_tree_children_length(tree.get()) == 0)
        return 0;
    return xcb_query_tree_children(tree.get())[0];
}

std::uint8_t ParentWindow::childDepth() const
{
    const auto geometry =
        owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, child()), nullptr));
    return geometry ? geometry->depth : 0;
}

Screenshot ParentWindow::shot() const
{
    const auto image = owned(xcb_get_image_reply(
        connection_,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, 0, 0,
                      static_cast<std::uint16_t>(width_), static_cast<std::uint16_t>(height_), ~0u),
        nullptr));
    Screenshot shot;
    if (!image)
        return shot;
    shot.width = width_;
    shot.height = height_;
    shot.pixels.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    const std::size_t bytes = shot.pixels.size() * 4;
    if (static_cast<std::size_t>(xcb_get_image_data_length(image.get())) < bytes)
        return {};
    std::memcpy(shot.pixels.data(), xcb_get_image_data(image.get()), bytes);
    return shot;
}

// --- the user --------------------------------------------------------------------------------

template <class Event>
void ParentWindow::send(Event event, std::uint32_t mask)
{
    std::array<char, 32> bytes{};
    event.event = child();
    event.root = screen_->root;
    event.same_screen = 1;
    std::memcpy(bytes.data(), &event, sizeof event);
    xcb_send_event(connection_, 0, event.event, mask, bytes.data());
    sync();
}

void ParentWindow::sendButton(std::uint8_t type, int x, int y, int button, std::uint32_t timeMs)
{
    xcb_button_press_event_t event{};
    event.response_type = type;
    event.detail = static_cast<xcb_button_t>(button);
    event.event_x = static_cast<std::int16_t>(x);
    event.event_y = static_cast<std::int16_t>(y);
    event.time = timeMs;
    send(event, XCB_EVENT_MASK_NO_EVENT);
}

void ParentWindow::press(int x, int y, int button, std::uint32_t timeMs)
{
    sendButton(XCB_BUTTON_PRESS, x, y, button, timeMs);
}

void ParentWindow::release(int x, int y, int button)
{
    sendButton(XCB_BUTTON_RELEASE, x, y, button, 0);
}

void ParentWindow::move(int x, int y)
{
    xcb_motion_notify_event_t event{};
    event.response_type = XCB_MOTION_NOTIFY;
    event.event_x = static_cast<std::int16_t>(x);
    event.event_y = static_cast<std::int16_t>(y);
    send(event, XCB_EVENT_MASK_NO_EVENT);
}

void ParentWindow::key(int code, std::uint16_t state)
{
    xcb_key_press_event_t event{};
    event.response_type = XCB_KEY_PRESS;
    event.detail = static_cast<xcb_keycode_t>(code);
    event.state = state;
    send(event, XCB_EVENT_MASK_KEY_PRESS);
}

int ParentWindow::codeOf(std::uint32_t symbol) const
{
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    const int count = setup->max_keycode - setup->min_keycode + 1;
    const auto map = owned(xcb_get_keyboard_mapping_reply(
        connection_,
        xcb_get_keyboard_mapping(connection_, setup->min_keycode, static_cast<std::uint8_t>(count)),
        nullptr));
    if (!map)
        return 0;
    const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(map.get());
    for (int i = 0; i < count; ++i)
        if (symbols[i * map->keysyms_per_keycode] == symbol)
            return setup->min_keycode + i;
    return 0;
}

std::uint32_t ParentWindow::childEventMask() const
{
    // Of all clients: the window inside belongs to another one.
    const auto attributes = owned(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, child()), nullptr));
    return attributes ? attributes->all_event_masks : 0;
}

xcb_window_t ParentWindow::focus() const
{
    const auto focus =
        owned(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return focus ? focus->focus : 0;
}

void ParentWindow::setFocus(xcb_window_t window)
{
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    sync();
}

void ParentWindow::setResources(const char* text)
{
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, screen_->root,
                        XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(std::strlen(text)), text);
    sync();
}

} // namespace tolm
