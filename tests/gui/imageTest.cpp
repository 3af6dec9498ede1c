#include "gui/Image.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace tolm::gui {

namespace {

using Bytes = std::vector<std::uint8_t>;

// Opaque and clear pixels and one between, which survives premultiplication exactly.
Image pattern(int width, int height)
{
    Image image(width, height);
    std::uint32_t i = 0;
    for (std::uint32_t& pixel : image.pixels()) {
        ++i;
        pixel = i % 7 == 0 ? 0 : i % 5 == 0 ? 0x80008040u : 0xFF000000u | (i * 2654435761u >> 8);
    }
    return image;
}

TEST(Png, picturesComeBackAsTheyWere)
{
    const Image image = pattern(23, 17);
    EXPECT_EQ(decodePng(encodePng(image)), image);
    EXPECT_TRUE(encodePng(Image()).empty());

    const auto path = std::filesystem::path(TOLM_BUILD_DIR) / "guiImageTest.png";
    ASSERT_TRUE(writePng(image, path));
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(decodePng(bytes), image);
    std::filesystem::remove(path);
    EXPECT_FALSE(writePng(image, path / "no" / "such.png"));
}

TEST(Png, damagedAndOversizedFilesGiveEmptyPictures)
{
    const Bytes good = encodePng(pattern(40, 30));
    for (std::size_t length = 0; length < good.size() - 12; length += 11)
        EXPECT_TRUE(decodePng(std::span(good).first(length)).isEmpty()) << length;
    for (std::size_t at = 0; at < good.size(); ++at) {
        Bytes bad = good;
        bad[at] ^= 0x55;
        const Image image = decodePng(bad);
        EXPECT_TRUE(image.isEmpty() || image.width() == 40) << at;
    }
    // A header that claims 60,000 x 60,000, with its right check sum.
    const Bytes huge = {0x89, 'P',  'N',  'G',  13,   10,   26, 10, 0,    0,    0,   13,  'I', 'H',
                        'D',  'R',  0,    0,    0xEA, 0x60, 0,  0,  0xEA, 0x60, 8,   6,   0,   0,
                        0,    0x80, 0xD2, 0x75, 0x42, 0,    0,  0,  0,    'I',  'D', 'A', 'T'};
    EXPECT_TRUE(decodePng(huge).isEmpty());
    EXPECT_EQ(decodePng(encodePng(Image(Image::kMaxSide, 1))).width(), Image::kMaxSide);
}

} // namespace

} // namespace tolm::gui
