// Paths, strokes and gradients: areas against geometry, colours against arithmetic.

#include "tests/gui/canvasRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

namespace tolm::gui {

namespace {

constexpr float kPi = std::numbers::pi_v<float>;

TEST(Canvas, filledAndStrokedAreasAreWhatGeometrySays)
{
    const Path square =
        Path().moveTo({8, 8}).lineTo({24, 8}).lineTo({24, 24}).lineTo({8, 24}).close();
    struct Case {
        const char* name;
        double area;
        std::function<void(Canvas&)> draw;
    };
    const auto fill = [](const Path& path) { return [path](Canvas& c) { c.fill(path, kWhite); }; };
    const auto stroke = [](const Path& path, float width, LineCap cap = LineCap::butt) {
        return [path, width, cap](Canvas& c) { c.stroke(path, {width, cap}, kWhite); };
    };
    const auto rectangle = [](const Rect& rect) {
        return [rect](Canvas& c) { c.fillRect(rect, kWhite); };
    };
    const Case cases[] = {
        {"circle", kPi * 100, fill(Path::circle({16.3f, 16.1f}, 10))},
        {"round rectangle", 20 * 12 - (4 - kPi) * 9,
         [](Canvas& c) {
             c.fillRoundRect({5.4f, 6.2f, 20, 12}, 3, kWhite);
         }},
        {"rectangle between pixels", 10.5 * 7.25, rectangle({3.25f, 4.5f, 10.5f, 7.25f})},
        {"sliver within a pixel", 0.5 * 8, rectangle({3.25f, 4, 0.5f, 8})},
        {"ring", kPi * (12.0 * 12 - 9 * 9), stroke(Path::circle({16, 16}, 10.5f), 3)},
        {"round caps", 80 + kPi * 4, stroke(Path::line({6, 16}, {26, 16}), 4, LineCap::round)},
        {"butt caps, slanted", 5 * std::sqrt(200.0), stroke(Path::line({8, 8}, {18, 18}), 5)},
        {"mitred square", 20 * 20 - 12 * 12, stroke(square, 4)},
        {"frame", 20 * 16 - 16 * 12 - (4 - kPi) * (25 - 9),
         [](Canvas& c) {
             c.strokeRoundRect({4, 4, 20, 16}, 5, 2, kWhite);
         }},
        {"round dot", kPi * 9, stroke(Path::line({9, 9}, {9, 9}), 6, LineCap::round)},
    };
    for (const Case& k : cases) {
        CanvasRig rig;
        k.draw(rig.canvas);
        EXPECT_NEAR(rig.area(), k.area, 0.012 * k.area + 0.05) << k.name;
    }
}

TEST(Canvas, nothingBreaksOnNumbersThatAreNone)
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kHuge = std::numeric_limits<float>::max();
    for (float v : {kNan, kHuge, -kHuge, std::numeric_limits<float>::infinity()}) {
        CanvasRig rig;
        rig.canvas.fill(Path().moveTo({v, 3}).lineTo({9, v}).cubicTo({v, v}, {3, v}, {1, 2}),
                        kWhite);
        rig.canvas.stroke(Path().moveTo({2, 3}).lineTo({9, v}).lineTo({v, 1}), {v}, kWhite);
        rig.canvas.stroke(Path().moveTo({2, 3}).lineTo({9, v}), {2, LineCap::round}, kWhite);
        rig.canvas.fillRoundRect({v, 1, 5, v}, v, Paint::linear({v, 0}, {0, v}, kWhite, kWhite));
        rig.canvas.fillRect({1, 1, v, v}, Paint::radial({v, v}, v, {{v, kWhite}, {v, kWhite}}));
        rig.canvas.text("x", {v, v}, {10}, kWhite);
        rig.canvas.text("x", {3, 9}, {v}, kWhite);
        rig.canvas.textIn("x", {v, v, v, v}, {10}, kWhite, Align::centre);
        rig.canvas.clip({v, 0, v, 9});
        rig.canvas.translate({v, v});
        rig.canvas.fillRect({1, 1, 9, 9}, kWhite);
    }
}

TEST(Canvas, ditheredGradientsStayWithinAStepAndKeepTheirMean)
{
    const Color from = Color::rgb(0x222730);
    const Color to = Color::rgb(0x1A1E25);
    CanvasRig rig(64, 64);
    rig.canvas.fillRect({0, 0, 64, 64}, Paint::linear({0, 0}, {0, 64}, from, to));
    for (int y = 0; y < 64; ++y) {
        double sum = 0.0;
        const double exact = 0x22 + (0x1A - 0x22) * (y + 0.5) / 64;
        for (int x = 0; x < 64; ++x) {
            ASSERT_EQ(rig.alphaAt(x, y), 255);
            const double red = static_cast<double>(rig.at(x, y) >> 16 & 255);
            EXPECT_LT(std::abs(red - exact), 1.05) << x << ' ' << y;
            sum += red;
        }
        // Eight thresholds a row leave an eighth of a step, and their mean another.
        EXPECT_NEAR(sum / 64, exact, 0.3) << y;
    }
    EXPECT_NE(rig.at(0, 5), rig.at(1, 5)) << "no dither";
}

TEST(Canvas, gradientsEndInTheirStopsAndBlendOverWhatIsBelow)
{
    CanvasRig rig;
    const Color below = Color::rgb(0x405060);
    rig.canvas.fillRect({0, 0, 32, 32}, below);
    rig.canvas.fillRect({0, 0, 32, 32}, Paint::radial({16, 16}, 8,
                                                      {{0.0f, Color::rgb(0xFF0000)},
                                                       {0.5f, Color::rgb(0xFF0000)},
                                                       {1.0f, Color{255, 0, 0, 0}}}));
    EXPECT_EQ(rig.at(16, 16), 0xFFFF0000u);
    EXPECT_EQ(rig.at(0, 0), 0xFF405060u);
    EXPECT_GT(rig.at(16, 10) >> 16 & 255, 0x50u);
    rig.canvas.fillRect({0, 0, 32, 32}, Paint::linear({4, 4}, {4, 4}, below, kWhite));
    EXPECT_EQ(rig.at(3, 3), 0xFFFFFFFFu) << "a gradient without length is its last colour";
    rig.canvas.fillRect({0, 0, 1, 1}, Color{0, 0, 0, 128});
    EXPECT_EQ(rig.at(0, 0), 0xFF7F7F7Fu);
}

} // namespace

} // namespace tolm::gui
