// Clip, translation, snapping, and the region of what must be painted again.

#include "tests/gui/canvasRig.h"
#include "tests/gui/primitives.h"

#include <gtest/gtest.h>

namespace tolm::gui {

namespace {

TEST(Canvas, clipsNarrowRoundOutwardsAndComeBackWithRestore)
{
    CanvasRig rig(32, 32, 1.5f);
    rig.canvas.save();
    rig.canvas.clip({3, 3, 5, 5}); // 4.5 .. 12 in device pixels
    rig.canvas.clip({0, 0, 100, 6});
    rig.canvas.fillRect({-50, -50, 500, 500}, kWhite);
    EXPECT_EQ(rig.painted(), (12 - 4) * (9 - 4));
    EXPECT_EQ(rig.alphaAt(4, 4), 255);
    EXPECT_NEAR(rig.canvas.clipBounds().x, 4 / 1.5, 1e-5);
    rig.canvas.clip({20, 20, 5, 5});
    EXPECT_TRUE(rig.canvas.clipBounds().isEmpty());
    rig.canvas.restore();
    rig.canvas.restore();
    rig.canvas.fill(Path::circle({10, 10}, 100), kWhite);
    EXPECT_EQ(rig.painted(), 32 * 32);
}

TEST(Canvas, everyPrimitiveHonoursTheClipAndLooksTheSameInsideIt)
{
    using namespace sheet;
    constexpr int kSide = 200;
    const auto draw = [](Canvas& canvas) {
        panel(canvas, {4, 4, 192, 112}, "OSCILLATOR 1", kAmber);
        knob(canvas, {38, 62}, 40, 0.7f, false, 0.15f, kAmber, "Detune");
        button(canvas, {76, 34, 56, 18}, "Sync", true, kAmber);
        button(canvas, {76, 58, 110, 18}, "Lowpass 24 dB  ▾", false, kTeal);
        canvas.line({142, 50}, {198, 36}, 1.0f, kText);
        curves(canvas, {6, 126, 190, 58});
        canvas.textIn("A name that is too long", {76, 90, 60, 16}, {10.5f}, kSecondary);
    };
    CanvasRig whole(kSide, kSide);
    draw(whole.canvas);
    const float cuts[] = {0, 37, 101, 162, 200};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            const Rect tile{cuts[i], cuts[j], cuts[i + 1] - cuts[i], cuts[j + 1] - cuts[j]};
            CanvasRig part(kSide, kSide);
            part.canvas.clip(tile);
            draw(part.canvas);
            for (int y = 0; y < kSide; ++y)
                for (int x = 0; x < kSide; ++x) {
                    const bool inside =
                        tile.contains({static_cast<float>(x), static_cast<float>(y)});
                    ASSERT_EQ(part.at(x, y), inside ? whole.at(x, y) : 0) << x << ' ' << y;
                }
        }
}

TEST(Canvas, snappedEdgesAreCrispAtEveryScaleAndTranslation)
{
    for (float scale : {0.75f, 1.0f, 1.25f, 1.5f, 1.75f, 2.0f, 2.5f}) {
        SCOPED_TRACE(scale);
        CanvasRig rig(64, 64, scale);
        rig.canvas.translate({1.3f, 2.7f});
        rig.canvas.fillRect(rig.canvas.snap({3.3f, 4.1f, 9.6f, 0.1f}), kWhite);
        rig.canvas.fillRoundRect(rig.canvas.snap({3.3f, 8.1f, 9.6f, 7.3f}), 0.0f, kWhite);
        EXPECT_GT(rig.painted(), 0);
        EXPECT_NEAR(rig.area(), rig.painted(), 1e-9);
        const float x = rig.canvas.snapX(7.77f);
        EXPECT_LE(std::abs(x - 7.77f), 0.5f / scale + 1e-4f);
        EXPECT_FLOAT_EQ(rig.canvas.snapX(x), x);
    }
}

TEST(DirtyRegion, keepsEverythingItWasGivenInFewRectangles)
{
    DirtyRegion region;
    std::vector<Rect> given;
    unsigned seed = 1;
    const auto next = [&seed](unsigned range) {
        seed = seed * 1664525u + 1013904223u;
        return static_cast<float>((seed >> 8) % range);
    };
    for (int i = 0; i < 200; ++i) {
        given.push_back({next(1000), next(700), 1 + next(30), 1 + next(30)});
        region.add(given.back());
        ASSERT_LE(region.rects().size(), DirtyRegion::kCapacity);
    }
    for (const Rect& g : given) {
        const auto covers = [&g](const Rect& r) { return r.united(g) == r; };
        EXPECT_TRUE(std::any_of(region.rects().begin(), region.rects().end(), covers));
    }
    for (std::size_t i = 0; i < region.rects().size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_FALSE(region.rects()[i].intersects(region.rects()[j]));
}

} // namespace

} // namespace tolm::gui
