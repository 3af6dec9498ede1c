// The effects page: what its controls send, and the order by dragging.

#include "EditorRig.h"
#include "editor/CTolmFxBox.h"
#include "editor/CTolmFxPictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;

struct EffectRig : EditorRig {
    EffectRig()
    {
        editor.showPage(Page::effects);
        setOrder({0, 1, 2, 3, 4, 5});
        box = dynamic_cast<CTolmFxBox*>(find("DISTORTION card")->parent());
        port.takeCalls();
    }
    void setOrder(std::array<int, 6> kinds)
    {
        for (int slot = 0; slot < 6; ++slot)
            port.setParameter(kEffectOrder1 + slot,
                              static_cast<float>(kinds[static_cast<std::size_t>(slot)]));
        idle();
    }
    std::vector<int> order() const
    {
        std::vector<int> kinds;
        for (int slot = 0; slot < 6; ++slot)
            kinds.push_back(static_cast<int>(port.value(kEffectOrder1 + slot)));
        return kinds;
    }
    std::vector<int> cards() const
    {
        std::vector<int> kinds;
        for (int slot = 0; slot < 6; ++slot)
            kinds.push_back(box->cardAt(slot)->kind());
        return kinds;
    }
    gui::Point title(int slot) const
    {
        return box->slotPlace(slot).origin() + box->boundsInFrame().origin() +
               gui::Point{60.0f, 14.0f};
    }

    CTolmFxBox* box = nullptr;
};

TEST(EffectBox, hasAControlForEveryParameterOfTheEffects)
{
    std::set<int> ids;
    for (const ControlRow& row : kEffectControls)
        EXPECT_TRUE(ids.insert(row.tag).second) << row.tag;
    for (int id = kPhaserType; id <= kEq2Gain; ++id)
        EXPECT_EQ(ids.count(id), id == 105 ? 0u : 1u) << id;
    for (int id = kPhaserOn; id <= kEq2On; ++id)
        EXPECT_EQ(ids.count(id), 1u) << id;
}

TEST(EffectBox, switchesTheEffectOfItsCard)
{
    EffectRig rig;
    const std::pair<const char*, int> switches[] = {
        {"Phaser on", 116},     {"Delay on", 117},       {"Reverb on", 118},
        {"Distortion on", 119}, {"Equaliser 1 on", 120}, {"Equaliser 2 on", 121}};
    for (const auto& [name, id] : switches) {
        const bool on = rig.port.value(id) > 0.0f;
        rig.click(*rig.find(name));
        EXPECT_EQ(rig.port.value(id) > 0.0f, !on) << name;
    }
}

TEST(EffectBox, aDraggedTitleMovesTheEffectInOneStep)
{
    EffectRig rig;
    rig.press(rig.title(0));
    rig.drag(rig.title(2));
    rig.idle();
    EXPECT_THAT(rig.order(), ElementsAre(0, 1, 2, 3, 4, 5)); // only a preview so far
    EXPECT_LT(rig.box->cardAt(1)->bounds().x, rig.box->slotPlace(1).x);
    rig.drag(rig.title(3));
    rig.release(rig.title(3));
    EXPECT_THAT(rig.order(), ElementsAre(1, 2, 3, 0, 4, 5));
    EXPECT_THAT(rig.cards(), ElementsAre(1, 2, 3, 0, 4, 5));
    EXPECT_TRUE(rig.editor.context().history().undo());
    EXPECT_THAT(rig.order(), ElementsAre(0, 1, 2, 3, 4, 5));

    // A drag that is broken off, and a press that moves nothing.
    rig.press(rig.title(5));
    rig.drag(rig.title(0));
    rig.editor.showPage(Page::modulation);
    EXPECT_THAT(rig.order(), ElementsAre(0, 1, 2, 3, 4, 5));
    rig.release(rig.title(0));
    rig.editor.showPage(Page::effects);
    const unsigned before = rig.editor.context().history().changes();
    rig.click(rig.title(4));
    EXPECT_EQ(rig.editor.context().history().changes(), before);
}

TEST(EffectBox, followsOrdersOfAnyKind)
{
    EffectRig rig;
    rig.setOrder({5, 4, 3, 2, 1, 0});
    EXPECT_THAT(rig.cards(), ElementsAre(5, 4, 3, 2, 1, 0));
    rig.setOrder({3, 3, 3, 9, -1, 0}); // one effect three times, two slots without
    EXPECT_THAT(rig.cards(), ElementsAre(3, 3, 3, -1, -1, 0));
    rig.press(rig.title(5));
    rig.drag(rig.title(0));
    rig.release(rig.title(0));
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
