// The window as hosts call it, on a machine without a display.

#include "SynthRig.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tolm::test {
namespace {

class EditorWindow : public ::testing::Test {
protected:
    std::intptr_t call(vst2::EffectOpcode opcode, std::intptr_t value = 0, void* pointer = nullptr)
    {
        vst2::AEffect* const effect = rig_.synth->effect();
        return effect->dispatcher(effect, opcode, 0, value, pointer, 0.0f);
    }
    SynthRig rig_;
};

TEST_F(EditorWindow, isAnnouncedAndItsSizeKnownBeforeItOpens)
{
    EXPECT_NE(rig_.synth->effect()->flags & vst2::effFlagsHasEditor, 0);
    vst2::ERect* rect = nullptr;
    ASSERT_EQ(call(vst2::effEditGetRect, 0, &rect), 1);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rect->left, 0);
    EXPECT_EQ(rect->top, 0);
    EXPECT_GE(rect->right, 840);
    EXPECT_NEAR(static_cast<double>(rect->right) / rect->bottom, 1120.0 / 720.0, 0.01);
}

TEST_F(EditorWindow, withoutADisplayItFailsAndHarmsNothing)
{
    ASSERT_EQ(unsetenv("DISPLAY"), 0);
    int parent = 0;
    for (int i = 0; i < 3; ++i) {
        call(vst2::effEditIdle);
        EXPECT_EQ(call(vst2::effEditOpen, 0, nullptr), 0);
        EXPECT_EQ(call(vst2::effEditOpen, 0, &parent), 0);
        call(vst2::effEditIdle);
        call(vst2::effEditClose);
    }
    // A note to the user is not taken for shown.
    EXPECT_FALSE(rig_.synth->core().editor()->show("Info", "Nobody reads this."));
}

} // namespace
} // namespace tolm::test
