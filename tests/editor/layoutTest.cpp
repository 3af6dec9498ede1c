// The layout against the catalogue: nothing that a player can set is left without a control, and
// nothing lies outside its page or over a neighbour.

#include "editor/layout.h"
#include "editor/actions.h"
#include "editor/effectRows.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <set>

namespace tolm::test {
namespace {

// Parameters whose control is a view of its own: steps, voices, the effects' order, wheel,
// category.
bool hasAViewOfItsOwn(int id)
{
    return (id >= kArpNote1 && id < kArpVelocity1 + kArpSteps) ||
           (id >= kVoice1 && id < kVoice1 + 8) ||
           (id >= kEffectOrder1 && id < kEffectOrder1 + kEffectSlots) || id == kModWheel ||
           id == kPatchCategory;
}

// Rows 25 to 32 of the matrix are stored and read by nothing.
bool isBeyondTheMatrix(int id)
{
    return id >= kModSource1 && id < kArpNote1 && (id - kModSource1) % 32 >= kMatrixRows;
}

TEST(Layout, everyParameterOfAPlayerHasAControl)
{
    std::set<int> controlled;
    for (const ControlRow& row : controlRows())
        controlled.insert(parameterOfTag(row.tag));
    for (const ControlRow& row : kEffectControls)
        controlled.insert(parameterOfTag(row.tag));
    for (int id = 0; id < kStoredParameterCount; ++id) {
        const ParamRow& parameter = kCatalogue[static_cast<std::size_t>(id)];
        if (parameter.control == Control::none || hasAViewOfItsOwn(id) || isBeyondTheMatrix(id))
            continue;
        EXPECT_TRUE(controlled.contains(id)) << id << ' ' << parameter.name;
    }
}

TEST(Layout, controlsLieInsideTheirPageAndApart)
{
    for (const ControlRow& row : controlRows()) {
        const gui::Rect page = pagePlace(row.page);
        const gui::Rect inside{0.0f, 0.0f, page.width, page.height};
        EXPECT_EQ(row.place.intersection(inside), row.place) << row.spoken;
        for (const ControlRow& other : controlRows())
            if (&other != &row && other.page == row.page) {
                EXPECT_TRUE(row.place.intersection(other.place).isEmpty())
                    << row.spoken << " and " << other.spoken;
            }
    }
}

} // namespace
} // namespace tolm::test
