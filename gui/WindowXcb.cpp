// Opening, closing and showing. What the server sends is handled in WindowXcbEvents.cpp.

#include "gui/WindowXcb.h"

#include <chrono>
#include <cmath>
#include <cstring>

namespace tolm::gui {

namespace {

// Glyphs of the server's cursor font, in the order of Cursor; 0 is the parent's own.
constexpr std::array<std::uint16_t, 6> kCursorGlyphs = {0, 60, 152, 116, 108, 52};
constexpr std::uint32_t kWindowEvents =
    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
    XCB_EVENT_MASK_LEAVE_WINDOW;
// Selected only while somebody here types: as long as a child selects keys, the host gets none
// while the pointer is over it.
constexpr std::uint32_t kKeyEvents = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE;

Image imageFor(Point size, float scale)
{
    return {static_cast<int>(std::lround(size.x * scale)),
            static_cast<int>(std::lround(size.y * scale))};
}

} // namespace

std::unique_ptr<Window> openWindow(NativeHandle parent, Point size, float scale, const char* title)
{
    return WindowXcb::open(static_cast<xcb_window_t>(reinterpret_cast<std::uintptr_t>(parent)),
                           size, scale, title);
}

std::unique_ptr<WindowXcb> WindowXcb::open(xcb_window_t parent, Point size, float scale,
                                           const char* title)
{
    auto connection = std::make_unique<XcbConnection>();
    if (connection->isBroken())
        return nullptr;
    const auto format =
        parent != 0 ? connection->formatFor(parent) : connection->formatForTopLevel();
    if (!format)
        return nullptr;
    std::unique_ptr<WindowXcb> window(new WindowXcb(std::move(connection), size, scale));
    if (window->image_.isEmpty() || !window->create(parent, *format, title))
        return nullptr;
    return window;
}

WindowXcb::WindowXcb(std::unique_ptr<XcbConnection> connection, Point size, float scale)
    : connection_(std::move(connection)),
      scale_(scale),
      image_(imageFor(size, scale)),
      frame_(new Frame(*this, size, scale))
{
}

WindowXcb::~WindowXcb()
{
    frame_.reset();
    surface_.reset();
    if (alive_ && !connection_->isBroken()) {
        giveFocusBack();
        xcb_destroy_window(connection_->get(), window_);
        xcb_flush(connection_->get());
    }
}

bool WindowXcb::create(xcb_window_t parent, const PixelFormat& format, const char* title)
{
    xcb_connection_t* const c = connection_->get();
    parent_ = parent;
    const xcb_window_t above = parent != 0 ? parent : connection_->screen().root;
    window_ = xcb_generate_id(c);
    colormap_ = xcb_generate_id(c);
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, colormap_, above, format.visual);
    // Border and colours of our own: a depth other than the parent's is refused without them.
    const std::array<std::uint32_t, 5> values = {XCB_BACK_PIXMAP_NONE, 0, XCB_GRAVITY_NORTH_WEST,
                                                 kWindowEvents, colormap_};
    const auto cookie = xcb_create_window_checked(
        c, format.depth, window_, above, 0, 0, static_cast<std::uint16_t>(image_.width()),
        static_cast<std::uint16_t>(image_.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        format.visual,
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_EVENT_MASK |
            XCB_CW_COLORMAP,
        values.data());
    if (owned(xcb_request_check(c, cookie)) || connection_->isBroken())
        return false;
    setProperties(parent, title);
    surface_ = std::make_unique<XcbSurface>(*connection_, window_, format);
    surface_->resize(image_.width(), image_.height());
    clipboard_ = std::make_unique<XcbClipboard>(*connection_, window_);
    keyboard_.read(c);
    // At once: there are hosts that never map what was put into their window.
    xcb_map_window(c, window_);
    xcb_flush(c);
    alive_ = !connection_->isBroken();
    return alive_;
}

void WindowXcb::setProperties(xcb_window_t parent, const char* title)
{
    xcb_connection_t* const c = connection_->get();
    if (parent != 0) {
        const std::array<std::uint32_t, 2> versionAndMapped = {0, 1};
        const xcb_atom_t xembed = connection_->atom(XcbAtom::xembedInfo);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, xembed, xembed, 32, 2,
                            versionAndMapped.data());
        return;
    }
    const xcb_atom_t deletes = connection_->atom(XcbAtom::wmDeleteWindow);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, connection_->atom(XcbAtom::wmProtocols),
                        XCB_ATOM_ATOM, 32, 1, &deletes);
    const auto length = static_cast<std::uint32_t>(title != nullptr ? std::strlen(title) : 0);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, connection_->atom(XcbAtom::netWmName),
                        connection_->atom(XcbAtom::utf8String), 8, length, title);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        length, title);
    fixSize();
}

// A window of its own cannot be dragged to another size: the scale gives it.
void WindowXcb::fixSize()
{
    constexpr std::uint32_t kMinAndMaxSize = 1u << 4 | 1u << 5;
    std::array<std::uint32_t, 18> hints{};
    hints[0] = kMinAndMaxSize;
    hints[5] = hints[7] = static_cast<std::uint32_t>(image_.width());
    hints[6] = hints[8] = static_cast<std::uint32_t>(image_.height());
    xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, window_,
                        XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(),
                        hints.data());
}

void WindowXcb::setScale(float scale)
{
    if (scale == scale_)
        return;
    Image image = imageFor(frame_->size(), scale);
    if (image.isEmpty())
        return;
    scale_ = scale;
    image_ = std::move(image);
    frame_->setScale(scale);
    exposed_.clear();
    if (!alive_)
        return;
    surface_->resize(image_.width(), image_.height());
    if (parent_ == 0)
        fixSize();
    const std::array<std::uint32_t, 2> size = {static_cast<std::uint32_t>(image_.width()),
                                               static_cast<std::uint32_t>(image_.height())};
    xcb_configure_window(connection_->get(), window_,
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size.data());
    xcb_flush(connection_->get());
}

// --- the work of a pump ----------------------------------------------------------------------

void WindowXcb::pump()
{
    // A handler may call the host, and the host may pump.
    if (pumping_)
        return;
    pumping_ = true;
    if (alive_)
        readEvents();
    frame_->tick();
    if (alive_) {
        clipboard_->tick(now());
        paint();
        alive_ = !connection_->isBroken();
    }
    pumping_ = false;
}

void WindowXcb::paint()
{
    if (mapped_ && !surface_->isBusy() && (frame_->isDirty() || !exposed_.isEmpty())) {
        if (frame_->isDirty())
            for (const Rect& painted : frame_->paint(image_, glyphs_))
                expose(painted);
        surface_->show(image_, exposed_.rects());
        exposed_.clear();
    }
    xcb_flush(connection_->get());
}

void WindowXcb::expose(const Rect& device)
{
    exposed_.add(device.intersection(
        {0.0f, 0.0f, static_cast<float>(image_.width()), static_cast<float>(image_.height())}));
}

void WindowXcb::exposeAll()
{
    expose({0.0f, 0.0f, static_cast<float>(image_.width()), static_cast<float>(image_.height())});
}

// --- what the frame asks for -----------------------------------------------------------------

double WindowXcb::now() const
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceStart).count();
}

void WindowXcb::selectEvents() const
{
    const std::uint32_t mask = kWindowEvents | (keysWanted_ ? kKeyEvents : 0);
    xcb_change_window_attributes(connection_->get(), window_, XCB_CW_EVENT_MASK, &mask);
}

void WindowXcb::wantKeys(bool want)
{
    if (want == keysWanted_)
        return;
    keysWanted_ = want;
    if (!alive_)
        return;
    selectEvents();
    if (want)
        takeFocus();
    else
        giveFocusBack();
}

// The server may ignore or refuse this, as while a parent is not mapped: only its events tell
// whether the focus is here, and the next press asks again.
void WindowXcb::takeFocus()
{
    if (hasFocus_ || !mapped_)
        return;
    xcb_connection_t* const c = connection_->get();
    const auto focus = owned(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    if (!focus || focus->focus == window_)
        return;
    focusBefore_ = focus->focus;
    revertBefore_ = focus->revert_to;
    xcb_set_input_focus(c, XCB_INPUT_FOCUS_PARENT, window_, time_);
    tookFocus_ = true;
}

// Only what is still ours: the user may have gone elsewhere meanwhile.
void WindowXcb::giveFocusBack()
{
    hasFocus_ = false;
    if (!std::exchange(tookFocus_, false))
        return;
    xcb_connection_t* const c = connection_->get();
    const auto focus = owned(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    if (focus && focus->focus == window_)
        xcb_set_input_focus(c, revertBefore_, focusBefore_, XCB_CURRENT_TIME);
}

void WindowXcb::setCursor(Cursor cursor)
{
    if (cursor == cursor_ || !alive_)
        return;
    cursor_ = cursor;
    const std::uint32_t id = cursorFor(cursor);
    xcb_change_window_attributes(connection_->get(), window_, XCB_CW_CURSOR, &id);
}

xcb_cursor_t WindowXcb::cursorFor(Cursor cursor)
{
    constexpr std::string_view kFontName = "cursor";
    const auto index = static_cast<std::size_t>(cursor);
    const std::uint16_t glyph = kCursorGlyphs[index];
    xcb_connection_t* const c = connection_->get();
    if (glyph == 0 || cursors_[index] != 0)
        return cursors_[index];
    const xcb_font_t font = xcb_generate_id(c);
    xcb_open_font(c, font, kFontName.size(), kFontName.data());
    cursors_[index] = xcb_generate_id(c);
    // A glyph's mask follows it in the font. Black with a white edge.
    xcb_create_glyph_cursor(c, cursors_[index], font, font, glyph,
                            static_cast<std::uint16_t>(glyph + 1), 0, 0, 0, 0xFFFF, 0xFFFF, 0xFFFF);
    xcb_close_font(c, font);
    return cursors_[index];
}

void WindowXcb::copyToClipboard(const std::string& utf8)
{
    if (alive_)
        clipboard_->copy(utf8, time_);
}

void WindowXcb::pasteFromClipboard(std::function<void(const std::string& utf8)> receive)
{
    if (alive_)
        clipboard_->paste(std::move(receive), time_, now());
}

} // namespace tolm::gui
