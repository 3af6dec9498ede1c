#include "tests/gui/canvasRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace tolm::gui {

namespace {

using testing::Each;
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

void put32(Bytes& bytes, std::size_t at, std::uint32_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
}

Bytes bitmap(int width, int height, int bits, std::size_t pixelBytes)
{
    Bytes bytes(54 + pixelBytes);
    bytes[0] = 'B';
    bytes[1] = 'M';
    put32(bytes, 10, 54);
    put32(bytes, 14, 40);
    put32(bytes, 18, static_cast<std::uint32_t>(width));
    put32(bytes, 22, static_cast<std::uint32_t>(height));
    bytes[26] = 1;
    bytes[28] = static_cast<std::uint8_t>(bits);
    for (std::size_t i = 0; i < pixelBytes; ++i)
        bytes[54 + i] = static_cast<std::uint8_t>(i + 1);
    return bytes;
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
    const Bytes huge = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0,    0,    0,   13,  'I', 'H',
                        'D',  'R', 0,   0,   0xEA, 0x60, 0,    0,    0xEA, 0x60, 8,   6,   0,   0,
                        0,    0,   0,   0,   0,    0,    0,    0,    0,    'I',  'D', 'A', 'T'};
    EXPECT_TRUE(decodePng(huge).isEmpty());
    EXPECT_EQ(decodePng(encodePng(Image(Image::kMaxSide, 1))).width(), Image::kMaxSide);
}

TEST(Bmp, readsBothDepthsAndDirections)
{
    const Bytes bottomUp = bitmap(2, 2, 24, 16); // rows padded to 8 bytes
    const Image image = decodeBmp(bottomUp);
    ASSERT_EQ(image.width(), 2);
    EXPECT_EQ(image.row(1)[0], 0xFF030201u);
    EXPECT_EQ(image.row(1)[1], 0xFF060504u);
    EXPECT_EQ(image.row(0)[0], 0xFF0B0A09u);
    EXPECT_EQ(decodeBmp(bitmap(2, -2, 24, 16)).row(0)[0], 0xFF030201u);

    Bytes withAlpha = bitmap(1, 2, 32, 8);
    withAlpha[54 + 3] = 0;
    EXPECT_EQ(decodeBmp(withAlpha).row(1)[0], 0u) << "premultiplied";
    withAlpha[54 + 7] = 0;
    EXPECT_EQ(decodeBmp(withAlpha).row(1)[0], 0xFF030201u) << "no alpha at all is opaque";
}

TEST(Bmp, liesAboutSizesGiveEmptyPictures)
{
    const int cases[][2] = {{3, 2}, {2, 3}, {0, 2}, {-2, 2}, {5000, 1}, {1, -5000}, {2, INT32_MIN}};
    for (const auto& [width, height] : cases)
        EXPECT_TRUE(decodeBmp(bitmap(width, height, 24, 16)).isEmpty()) << width << ' ' << height;
    EXPECT_TRUE(decodeBmp(bitmap(2, 2, 8, 16)).isEmpty());
    const Bytes good = bitmap(2, 2, 24, 16);
    Bytes compressed = good;
    compressed[30] = 1;
    EXPECT_TRUE(decodeBmp(compressed).isEmpty());
    Bytes farAway = good;
    put32(farAway, 10, 0xFFFFFFF0u);
    EXPECT_TRUE(decodeBmp(farAway).isEmpty());
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_TRUE(decodeBmp(std::span(good).first(length)).isEmpty());
}

TEST(Canvas, picturesKeepTheirMeanWhenScaledAndBlendByOpacity)
{
    Image board(64, 64);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            board.row(y)[static_cast<std::size_t>(x)] =
                (x + y) % 2 != 0 ? 0xFFFFFFFFu : 0xFF000000u;
    EXPECT_THAT(scaleImage(board, 16, 16).pixels(), Each(0xFF808080u));
    Image flat(3, 2);
    std::fill(flat.pixels().begin(), flat.pixels().end(), 0xFF123456u);
    for (const auto& [w, h] : {std::pair{17, 1}, {1, 9}, {2, 2}, {40, 40}})
        EXPECT_THAT(scaleImage(flat, w, h).pixels(), Each(0xFF123456u)) << w << ' ' << h;

    CanvasRig rig;
    rig.canvas.fillRect({0, 0, 32, 32}, Color::rgb(0));
    rig.canvas.image(board, {8, 8, 16, 16}, 0.5f);
    EXPECT_EQ(rig.at(10, 10), 0xFF404040u);
    EXPECT_EQ(rig.at(7, 8), 0xFF000000u);
    EXPECT_EQ(rig.at(24, 23), 0xFF000000u);
    rig.canvas.image(board, {-20, -20, 64, 64});
    EXPECT_EQ(rig.at(0, 0), board.row(20)[20]);
}

} // namespace

} // namespace tolm::gui
