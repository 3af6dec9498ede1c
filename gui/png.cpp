// PNG files in memory, read and written by libpng.

#include "gui/Image.h"
#include "gui/blend.h"

#include <png.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <system_error>

namespace tolm::gui {

namespace {

// libpng's simplified interface, released on every way out.
struct Png {
    png_image image{};

    Png() { image.version = PNG_IMAGE_VERSION; }
    ~Png() { png_image_free(&image); }
    Png(const Png&) = delete;
    Png& operator=(const Png&) = delete;
};

std::uint32_t straightened(std::uint32_t pixel)
{
    const std::uint32_t alpha = pixel >> 24;
    if (alpha == 0 || alpha == 255)
        return alpha == 0 ? 0 : pixel;
    const auto lane = [&](unsigned shift) {
        const std::uint32_t v = ((pixel >> shift & 255) * 255 + alpha / 2) / alpha;
        return std::min(v, 255u) << shift;
    };
    return lane(0) | lane(8) | lane(16) | alpha << 24;
}

} // namespace

Image decodePng(std::span<const std::uint8_t> bytes)
{
    Png png;
    if (bytes.empty() || !png_image_begin_read_from_memory(&png.image, bytes.data(), bytes.size()))
        return {};
    constexpr auto kMost = static_cast<png_uint_32>(Image::kMaxSide);
    if (png.image.width > kMost || png.image.height > kMost)
        return {};
    png.image.format = PNG_FORMAT_BGRA;
    Image image(static_cast<int>(png.image.width), static_cast<int>(png.image.height));
    if (!png_image_finish_read(&png.image, nullptr, image.pixels().data(), 0, nullptr))
        return {};
    for (std::uint32_t& pixel : image.pixels())
        pixel = premultiplied(
            {static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 8),
             static_cast<std::uint8_t>(pixel), static_cast<std::uint8_t>(pixel >> 24)});
    return image;
}

std::vector<std::uint8_t> encodePng(const Image& image)
{
    if (image.isEmpty())
        return {};
    std::vector<std::uint32_t> straight(image.pixels().size());
    std::transform(image.pixels().begin(), image.pixels().end(), straight.begin(), straightened);
    Png png;
    png.image.width = static_cast<png_uint_32>(image.width());
    png.image.height = static_cast<png_uint_32>(image.height());
    png.image.format = PNG_FORMAT_BGRA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png.image);
    std::vector<std::uint8_t> bytes(size);
    if (!png_image_write_to_memory(&png.image, bytes.data(), &size, 0, straight.data(), 0, nullptr))
        return {};
    bytes.resize(size);
    return bytes;
}

bool writePng(const Image& image, const std::filesystem::path& path)
{
    const std::vector<std::uint8_t> bytes = encodePng(image);
    if (bytes.empty())
        return false;
    std::ofstream file(path, std::ios::binary);
    if (!file)
        return false;
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (file)
        return true;
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return false;
}

} // namespace tolm::gui
