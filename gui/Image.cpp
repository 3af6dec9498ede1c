#include "gui/Image.h"

#include <algorithm>

namespace tolm::gui {

Image::Image(int width, int height)
    : width_(std::clamp(width, 0, kMaxSide)),
      height_(std::clamp(height, 0, kMaxSide)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_))
{
}

std::span<std::uint32_t> Image::row(int y)
{
    const auto width = static_cast<std::size_t>(width_);
    return std::span(pixels_).subspan(static_cast<std::size_t>(y) * width, width);
}

std::span<const std::uint32_t> Image::row(int y) const
{
    const auto width = static_cast<std::size_t>(width_);
    return std::span(pixels_).subspan(static_cast<std::size_t>(y) * width, width);
}

} // namespace tolm::gui
