#include "gui/XcbConnection.h"

#include <bit>
#include <cstring>

namespace tolm::gui {

namespace {

constexpr std::array<const char*, static_cast<std::size_t>(XcbAtom::count)> kAtomNames = {
    "CLIPBOARD",    "UTF8_STRING",  "TARGETS",          "INCR",        "TOLM_CLIPBOARD",
    "_XEMBED_INFO", "WM_PROTOCOLS", "WM_DELETE_WINDOW", "_NET_WM_NAME"};

} // namespace

XcbConnection::XcbConnection()
{
    int number = 0;
    connection_ = xcb_connect(nullptr, &number);
    if (isBroken())
        return;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; number > 0 && screens.rem > 1; --number)
        xcb_screen_next(&screens);
    screen_ = screens.data;
    fetchAtoms();
}

XcbConnection::~XcbConnection()
{
    xcb_disconnect(connection_);
}

void XcbConnection::fetchAtoms()
{
    std::array<xcb_intern_atom_cookie_t, kAtomNames.size()> cookies{};
    for (std::size_t i = 0; i < cookies.size(); ++i)
        cookies[i] = xcb_intern_atom(
            connection_, 0, static_cast<std::uint16_t>(std::strlen(kAtomNames[i])), kAtomNames[i]);
    for (std::size_t i = 0; i < cookies.size(); ++i)
        if (const auto reply = owned(xcb_intern_atom_reply(connection_, cookies[i], nullptr)))
            atoms_[i] = reply->atom;
}

void XcbConnection::selectScreen(xcb_window_t root)
{
    for (auto it = xcb_setup_roots_iterator(xcb_get_setup(connection_)); it.rem > 0;
         xcb_screen_next(&it))
        if (it.data->root == root)
            screen_ = it.data;
}

std::optional<PixelFormat> XcbConnection::formatFor(xcb_window_t parent)
{
    const auto attributesCookie = xcb_get_window_attributes(connection_, parent);
    const auto geometryCookie = xcb_get_geometry(connection_, parent);
    const auto attributes =
        owned(xcb_get_window_attributes_reply(connection_, attributesCookie, nullptr));
    const auto geometry = owned(xcb_get_geometry_reply(connection_, geometryCookie, nullptr));
    if (!attributes || !geometry || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
        return std::nullopt;
    selectScreen(geometry->root);
    if (const auto own = formatOf(attributes->visual))
        return own;
    return formatForTopLevel();
}

std::optional<PixelFormat> XcbConnection::formatForTopLevel() const
{
    const auto root = formatOf(screen_->root_visual);
    if (root && root->isPlain())
        return root;
    std::optional<PixelFormat> other = root;
    for (auto depth = xcb_screen_allowed_depths_iterator(screen_); depth.rem > 0;
         xcb_depth_next(&depth))
        for (auto type = xcb_depth_visuals_iterator(depth.data); type.rem > 0;
             xcb_visualtype_next(&type)) {
            const auto format = describe(*type.data, depth.data->depth);
            if (format && format->isPlain())
                return format;
            if (!other)
                other = format;
        }
    return other;
}

std::optional<PixelFormat> XcbConnection::formatOf(xcb_visualid_t visual) const
{
    for (auto depth = xcb_screen_allowed_depths_iterator(screen_); depth.rem > 0;
         xcb_depth_next(&depth))
        for (auto type = xcb_depth_visuals_iterator(depth.data); type.rem > 0;
             xcb_visualtype_next(&type))
            if (type.data->visual_id == visual)
                return describe(*type.data, depth.data->depth);
    return std::nullopt;
}

std::optional<PixelFormat> XcbConnection::describe(const xcb_visualtype_t& type,
                                                   std::uint8_t depth) const
{
    if (type._class != XCB_VISUAL_CLASS_TRUE_COLOR)
        return std::nullopt;
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    PixelFormat format{type.visual_id,  depth,         0, false, type.red_mask,
                       type.green_mask, type.blue_mask};
    for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem > 0; xcb_format_next(&it))
        if (it.data->depth == depth && it.data->scanline_pad == 32)
            format.bitsPerPixel = it.data->bits_per_pixel;
    if (format.bitsPerPixel != 16 && format.bitsPerPixel != 32)
        return std::nullopt;
    const bool serverIsLittle = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    format.swapped = serverIsLittle != (std::endian::native == std::endian::little);
    return format;
}

} // namespace tolm::gui
