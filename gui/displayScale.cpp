#include "gui/displayScale.h"

#include "gui/Window.h"
#include "gui/xcbReply.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace tolm::gui {

namespace {

constexpr float kStep = 0.25f;
constexpr float kScreenShare = 0.9f;
constexpr float kDotsPerInchAtScaleOne = 96.0f;
constexpr std::uint32_t kMaxResourceWords = 64 * 1024 / 4;

std::optional<float> number(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(begin);
    float value = 0.0f;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string resourcesOf(xcb_connection_t* connection, xcb_window_t root)
{
    const auto reply = owned(
        xcb_get_property_reply(connection,
                               xcb_get_property(connection, 0, root, XCB_ATOM_RESOURCE_MANAGER,
                                                XCB_ATOM_STRING, 0, kMaxResourceWords),
                               nullptr));
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

} // namespace

float roundedScale(float scale)
{
    if (!std::isfinite(scale))
        return 1.0f;
    return std::clamp(std::round(scale / kStep) * kStep, kLeastScale, kMostScale);
}

std::optional<float> dpiOf(std::string_view resources)
{
    constexpr std::string_view kName = "Xft.dpi:";
    for (std::size_t begin = 0; begin < resources.size();) {
        const std::size_t end = std::min(resources.find('\n', begin), resources.size());
        const std::string_view line = resources.substr(begin, end - begin);
        if (line.starts_with(kName))
            return number(line.substr(kName.size()));
        begin = end + 1;
    }
    return std::nullopt;
}

float fittingScale(float wanted, Point size, Point screen)
{
    float scale = roundedScale(wanted);
    while (scale > kLeastScale &&
           (size.x * scale > screen.x * kScreenShare || size.y * scale > screen.y * kScreenShare))
        scale -= kStep;
    return scale;
}

float displayScale(Point size)
{
    if (const char* wish = std::getenv("TOLM_SCALE"))
        if (const auto scale = number(wish))
            return roundedScale(*scale);
    int screenNumber = 0;
    const std::unique_ptr<xcb_connection_t, Disconnect> connection(
        xcb_connect(nullptr, &screenNumber));
    if (xcb_connection_has_error(connection.get()) != 0)
        return 1.0f;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
    for (; screenNumber > 0 && screens.rem > 1; --screenNumber)
        xcb_screen_next(&screens);
    const xcb_screen_t& screen = *screens.data;
    const float dpi =
        dpiOf(resourcesOf(connection.get(), screen.root)).value_or(kDotsPerInchAtScaleOne);
    return fittingScale(
        dpi / kDotsPerInchAtScaleOne, size,
        {static_cast<float>(screen.width_in_pixels), static_cast<float>(screen.height_in_pixels)});
}

} // namespace tolm::gui
