// Windows bitmaps, as pictures of programs come in them.

#include "gui/Image.h"
#include "gui/blend.h"

#include <algorithm>

namespace tolm::gui {

namespace {

constexpr std::size_t kHeaders = 54;
constexpr std::uint32_t kUncompressed = 0;

std::uint32_t u16(const std::uint8_t* p)
{
    return p[0] | static_cast<std::uint32_t>(p[1]) << 8;
}
std::uint32_t u32(const std::uint8_t* p)
{
    return u16(p) | u16(p + 2) << 16;
}

} // namespace

Image decodeBmp(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() < kHeaders || bytes[0] != 'B' || bytes[1] != 'M')
        return {};
    const std::size_t start = u32(&bytes[10]);
    const auto width = static_cast<std::int32_t>(u32(&bytes[18]));
    const auto signedHeight = static_cast<std::int64_t>(static_cast<std::int32_t>(u32(&bytes[22])));
    const std::uint32_t bits = u16(&bytes[28]);
    // Negative heights begin at the top.
    const std::int64_t height = signedHeight < 0 ? -signedHeight : signedHeight;
    if (width < 1 || width > Image::kMaxSide || height < 1 || height > Image::kMaxSide ||
        (bits != 24 && bits != 32) || u32(&bytes[30]) != kUncompressed)
        return {};
    const std::size_t pixelBytes = bits / 8;
    const std::size_t rowBytes = (static_cast<std::size_t>(width) * pixelBytes + 3) / 4 * 4;
    const std::size_t allBytes = rowBytes * static_cast<std::size_t>(height);
    if (start < kHeaders || start > bytes.size() || bytes.size() - start < allBytes)
        return {};

    Image image(width, static_cast<int>(height));
    const auto pixels = bytes.subspan(start, allBytes);
    // The fourth byte is alpha only where somebody wrote one.
    bool hasAlpha = false;
    for (std::size_t i = 3; bits == 32 && i < allBytes; i += 4)
        hasAlpha = hasAlpha || pixels[i] != 0;
    for (int y = 0; y < image.height(); ++y) {
        const int stored = signedHeight < 0 ? y : image.height() - 1 - y;
        const std::uint8_t* from = pixels.data() + static_cast<std::size_t>(stored) * rowBytes;
        for (std::uint32_t& pixel : image.row(y)) {
            pixel =
                premultiplied({from[2], from[1], from[0], hasAlpha ? from[3] : std::uint8_t{255}});
            from += pixelBytes;
        }
    }
    return image;
}

} // namespace tolm::gui
