#include "gui/fontData.h"
#include "tests/gui/canvasRig.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

extern "C" {
extern const std::uint8_t tolmFont[];
extern const std::uint8_t tolmFontEnd[];
}

namespace tolm::gui {

namespace {

std::u32string decoded(std::string_view text)
{
    std::u32string out;
    for (std::size_t at = 0; at < text.size();)
        out += nextCodePoint(text, at);
    return out;
}

TEST(Utf8, brokenBytesBecomeOneMarkEachAndTheRestIsRead)
{
    EXPECT_EQ(decoded("aß€😀"), U"aß€😀");
    EXPECT_EQ(decoded("\xC3"), U"\uFFFD");
    EXPECT_EQ(decoded("\xE2\x82z"), U"\uFFFD\uFFFDz");
    EXPECT_EQ(decoded("\xC0\xAF"), U"\uFFFD\uFFFD") << "overlong";
    EXPECT_EQ(decoded("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD") << "surrogate";
    EXPECT_EQ(decoded("\xF4\x90\x80\x80"), U"\uFFFD\uFFFD\uFFFD\uFFFD") << "beyond the last";
    EXPECT_EQ(decoded("\xF8\xFF"), U"\uFFFD\uFFFD");
}

TEST(Text, garbageOfEveryKindDrawsBoxesInsideTheClip)
{
    CanvasRig rig(64, 32);
    std::string bytes;
    for (int i = 1; i < 3000; ++i)
        bytes += static_cast<char>(i * 167 + i / 7);
    EXPECT_GT(rig.canvas.text(bytes, {2, 20}, {10}, kWhite), 1000.0f);
    rig.canvas.textIn(bytes, {2, 2, 30, 12}, {10}, kWhite);
    CanvasRig unknown;
    unknown.canvas.text("中", {4, 20}, {16}, kWhite);
    EXPECT_GT(unknown.painted(), 20);
}

TEST(Text, widthsGrowWithSizeKernAndTabulate)
{
    const TextStyle style{10};
    EXPECT_FLOAT_EQ(measureText("Filter", {20}), 2 * measureText("Filter", style));
    EXPECT_LT(measureText("AV", style), measureText("A", style) + measureText("V", style) - 0.2f);
    EXPECT_FLOAT_EQ(measureText("ÄV", style) - measureText("Ä", style),
                    measureText("AV", style) - measureText("A", style));
    EXPECT_NE(measureText("111", style), measureText("000", style));
    const TextStyle tabular{10, FontWeight::medium, 0.0f, true};
    for (const char* digits : {"111", "208", "947", "365"})
        EXPECT_FLOAT_EQ(measureText(digits, tabular), measureText("000", tabular));
    EXPECT_GT(measureText("Filter", {10, FontWeight::semiBold}), measureText("Filter", style));
    EXPECT_FLOAT_EQ(measureText("ab", {10, FontWeight::medium, 1}), measureText("ab", style) + 2);
    EXPECT_EQ(measureText("", style), 0);
}

TEST(Text, everyCharacterOfTheTablesIsThereInBothWeights)
{
    for (FontWeight weight : {FontWeight::medium, FontWeight::semiBold}) {
        const FontFace& face = fontFace(weight);
        const int box = face.find(FontFace::kBox);
        const auto expectGlyph = [&](char32_t c) {
            const int glyph = face.find(c);
            EXPECT_NE(glyph, box) << static_cast<unsigned>(c);
            EXPECT_GT(face.advance(glyph), 0.0f);
        };
        for (char32_t c = 0x20; c < 0x180; ++c)
            if ((c < 0x7F || c >= 0xA0) && c != 0x149) // deprecated; the typeface has none
                expectGlyph(c);
        for (char32_t c : U"–—‘’“”•…→←↑↓−∞")
            if (c != 0)
                expectGlyph(c);
        EXPECT_EQ(face.find(0x4E2D), box);
    }
    EXPECT_NEAR(fontMetrics(FontWeight::medium).capHeight, 0.727f, 0.01f);
    EXPECT_LT(fontMetrics(FontWeight::medium).descent, 0.0f);
}

TEST(Text, whatDoesNotFitIsCutWithAnEllipsisInsideItsBox)
{
    for (Align align : {Align::left, Align::centre, Align::right}) {
        CanvasRig rig(100, 20);
        rig.canvas.textIn("A name that is much too long", {10, 2, 60, 16}, {10}, kWhite, align);
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 100; ++x) {
                const bool mayHaveInk = x >= 9 && x <= 70;
                ASSERT_TRUE(mayHaveInk || rig.at(x, y) == 0) << x;
            }
        EXPECT_GT(rig.painted(), 100);
    }
}

TEST(Text, aSmallCacheForgetsButDrawsTheSame)
{
    CanvasRig fresh(200, 40);
    fresh.canvas.text("Glyphs", {3, 30}, {30.5f}, kWhite);
    CanvasRig used(200, 40);
    used.canvas.save();
    // Far more masks than the cache holds.
    for (int size = 20; size < 96; ++size)
        used.canvas.text("ABCDEFGHIJKLMNOPQRSTUVWXYZ", {0, 30}, {static_cast<float>(size)}, kWhite);
    std::fill(used.image.pixels().begin(), used.image.pixels().end(), 0u);
    used.canvas.text("Glyphs", {3, 30}, {30.5f}, kWhite);
    EXPECT_EQ(used.image, fresh.image);
}

TEST(FontFile, damagedFilesLeaveEmptyFacesOrSoundOnes)
{
    const std::vector<std::uint8_t> good(tolmFont, tolmFontEnd);
    ASSERT_GT(FontFile(good).semiBold.glyphCount(), 300);
    for (std::size_t length :
         {0ul, 7ul, 19ul, 20ul, 33ul, 2000ul, good.size() / 2, good.size() - 1}) {
        const std::vector<std::uint8_t> cut(good.begin(), good.begin() + static_cast<long>(length));
        EXPECT_EQ(FontFile(cut).semiBold.glyphCount(), 0) << length;
    }
    // Whatever a changed byte does, all glyphs of an accepted face can be drawn.
    for (std::size_t at = 8; at < good.size(); at = at * 9 / 8 + 1) {
        std::vector<std::uint8_t> bad = good;
        bad[at] ^= 0xFF;
        const FontFile file(bad);
        for (int glyph = 0; glyph < file.medium.glyphCount(); ++glyph)
            file.medium.outline(glyph);
    }
}

} // namespace

} // namespace tolm::gui
