// The effects page: what its controls send, and the order by dragging.

#include "EditorRig.h"
#include "editor/CTolmFxBox.h"
#include "editor/CTolmFxPictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;

struct EffectRig : EditorRig {
    EffectRig() : EditorRig(Page::effects) { setOrder({0, 1, 2, 3, 4, 5}); }
    void setOrder(const std::vector<int>& kinds)
    {
        for (int slot = 0; slot < 6; ++slot)
            set(kEffectOrder1 + slot, static_cast<float>(kinds[static_cast<std::size_t>(slot)]));
    }
    std::vector<int> order() const
    {
        std::vector<int> kinds;
        for (int slot = 0; slot < 6; ++slot)
            kinds.push_back(static_cast<int>(value(kEffectOrder1 + slot)));
        return kinds;
    }
    std::vector<int> cards() const
    {
        std::vector<int> kinds;
        for (int slot = 0; slot < 6; ++slot)
            kinds.push_back(box.cardAt(slot)->kind());
        return kinds;
    }
    gui::Point title(int slot) const
    {
        return box.toFrame(box.slotPlace(slot).origin() + gui::Point{60.0f, 14.0f});
    }

    CTolmFxBox& box = dynamic_cast<CTolmFxBox&>(*find("DISTORTION card")->parent());
};

TEST(EffectBox, switchesAnEffectOnItsCard)
{
    EffectRig rig;
    const float before = rig.value(kPhaserOn);
    rig.click("Phaser on");
    EXPECT_EQ(rig.value(kPhaserOn), 1.0f - before);
}

TEST(EffectBox, aDraggedTitleMovesTheEffectInOneStep)
{
    EffectRig rig;
    rig.press(rig.title(0));
    rig.move(rig.title(2));
    rig.wait();
    EXPECT_THAT(rig.order(), ElementsAre(0, 1, 2, 3, 4, 5)) << "only a preview so far";
    EXPECT_LT(rig.box.cardAt(1)->bounds().x, rig.box.slotPlace(1).x);
    rig.move(rig.title(3));
    rig.release(rig.title(3));
    EXPECT_THAT(rig.order(), ElementsAre(1, 2, 3, 0, 4, 5));
    EXPECT_THAT(rig.cards(), ElementsAre(1, 2, 3, 0, 4, 5));
    rig.dragTo(rig.title(5), rig.title(1));
    EXPECT_THAT(rig.order(), ElementsAre(1, 5, 2, 3, 0, 4));
    EXPECT_EQ(rig.undoAll(), 2);
    EXPECT_THAT(rig.order(), ElementsAre(0, 1, 2, 3, 4, 5));

    // A drag that is broken off, and a press that moves nothing.
    rig.press(rig.title(5));
    rig.move(rig.title(0));
    rig.editor.showPage(Page::modulation);
    rig.release(rig.title(0));
    rig.editor.showPage(Page::effects);
    rig.click(rig.title(4));
    EXPECT_THAT(rig.order(), ElementsAre(0, 1, 2, 3, 4, 5));
    EXPECT_FALSE(rig.undo());
}

TEST(EffectBox, followsOrdersOfAnyKind)
{
    EffectRig rig;
    rig.setOrder({5, 4, 3, 2, 1, 0});
    EXPECT_THAT(rig.cards(), ElementsAre(5, 4, 3, 2, 1, 0));
    rig.setOrder({3, 3, 3, 9, -1, 0}); // one effect three times, two slots without
    EXPECT_THAT(rig.cards(), ElementsAre(3, 3, 3, -1, -1, 0));
    rig.dragTo(rig.title(5), rig.title(0));
    EXPECT_THAT(rig.cards(), ElementsAre(0, 3, 3, 3, -1, -1));
}

TEST(EffectPictures, showWhatTheFormulasGive)
{
    // No distortion turns silence into sound; the clipper leaves the negative side alone.
    for (int type = 0; type <= 8; ++type)
        EXPECT_NEAR(shapedSample(static_cast<float>(type) / 8.0f, 0.5f, 0.0f), 0.0f, 1e-4f) << type;
    EXPECT_FLOAT_EQ(shapedSample(1.0f, 1.0f, -0.5f), -0.5f);
    EXPECT_LT(shapedSample(1.0f, 1.0f, 0.5f), 0.05f);
    // A peak reaches its gain at its middle (100 Hz), shelves on their side.
    EXPECT_NEAR(equaliserDecibels(0.0f, 1.0f / 3.0f, 0.5f, 1.0f, 100.0f), 10.0f, 0.01f);
    EXPECT_NEAR(equaliserDecibels(0.5f, 1.0f / 3.0f, 0.5f, 0.0f, 1.0f), -10.0f, 0.1f);
    EXPECT_NEAR(equaliserDecibels(0.5f, 1.0f / 3.0f, 0.5f, 0.0f, 20000.0f), 0.0f, 0.1f);
    EXPECT_NEAR(equaliserDecibels(1.0f, 1.0f / 3.0f, 0.5f, 1.0f, 20000.0f), 10.0f, 0.1f);
    for (const float type : {0.0f, 0.5f, 1.0f})
        EXPECT_NEAR(equaliserDecibels(type, 0.7f, 0.9f, 0.5f, 440.0f), 0.0f, 1e-4f);
}

} // namespace
} // namespace tolm::test
