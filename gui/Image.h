#pragma once
// A picture in memory: 32-bit pixels, bytes B G R A, premultiplied alpha, rows from top to bottom.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace tolm::gui {

class Image {
public:
    static constexpr int kMaxSide = 4096;

    Image() = default;
    // Transparent black. Sides are clamped to 0..kMaxSide.
    Image(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    bool isEmpty() const { return pixels_.empty(); }
    // One pixel is blue | green << 8 | red << 16 | alpha << 24. `y` must be inside.
    std::span<std::uint32_t> row(int y);
    std::span<const std::uint32_t> row(int y) const;
    std::span<const std::uint32_t> pixels() const { return pixels_; }
    std::span<std::uint32_t> pixels() { return pixels_; }
    friend bool operator==(const Image&, const Image&) = default;

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint32_t> pixels_;
};

// Damaged, unsupported or oversized (a side over Image::kMaxSide) data gives an empty image.
Image decodePng(std::span<const std::uint8_t> bytes);
std::vector<std::uint8_t> encodePng(const Image& image);
// False when the file cannot be written; then there is none.
bool writePng(const Image& image, const std::filesystem::path& path);

} // namespace tolm::gui
