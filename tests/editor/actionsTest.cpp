// Every action of the window by its tag: which call with which number reaches the plug-in.

#include "ActionsRig.h"
#include "editor/matrixRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Calls = std::vector<std::string>;

TEST(Actions, parametersOfTheHostAreAutomatedAndAllOthersAreNot)
{
    ActionsRig rig;
    EXPECT_THAT(rig.change(28, 0.25f),
                ElementsAre("beginEdit 28", "setParameterAutomated 28 0.25", "endEdit 28"));
    EXPECT_THAT(rig.change(110, 1.0f),
                ElementsAre("beginEdit 110", "setParameterAutomated 110 1", "endEdit 110"));
    // Beyond the host's ids nothing is said about edits.
    EXPECT_THAT(rig.change(111, 0.5f), ElementsAre("setParameterAutomated 111 0.5"));
    EXPECT_THAT(rig.change(113, 1.0f), ElementsAre("setParameterAutomated 113 1"));
    EXPECT_THAT(rig.change(124, 1.0f), ElementsAre("setParameterAutomated 124 1"));
    for (const int tag : {127, 160, 183, 191, 256, 319, 320, 321, 322, 323, 328})
        EXPECT_THAT(rig.change(tag, 0.5f),
                    ElementsAre("setParameterQuiet " + std::to_string(tag) + " 0.5"));
    // Rows 25 to 32 have no menus.
    EXPECT_THAT(rig.change(152, 3.0f), ElementsAre("setParameterQuiet 152 3"));
    EXPECT_THAT(rig.change(216, 3.0f), ElementsAre("setParameterQuiet 216 3"));
    EXPECT_THAT(rig.change(346, 0.75f), ElementsAre("setParameterAutomated 346 0.75"));
}

TEST(Actions, menusStoreIdsAndNotPositions)
{
    ActionsRig rig;
    struct Case {
        int tag;
        float position;
        Calls calls;
    };
    const Case cases[] = {
        {126, 1, {"setParameterQuiet 126 1"}},   // Lowpass 24dB
        {126, 2, {"setParameterQuiet 126 17"}},  // LP Ladder 12dB
        {126, 4, {}},                            // a line between entries
        {126, 20, {"setParameterQuiet 126 15"}}, // HP12/LP12 Split
        {126, 21, {}},
        {125, 0, {"softAllNotesOff", "resetArpStep", "setParameterQuiet 125 3"}},
        {125, 6, {"softAllNotesOff", "resetArpStep", "setParameterQuiet 125 1"}},
        {125, 7, {}},
        {115, 1, {"setParameterQuiet 115 1", "softAllNotesOff", "resetArpStep"}},
        {128, 6, {"setParameterQuiet 128 7"}},   // Const
        {151, 25, {"setParameterQuiet 151 22"}}, // Amp Env
        {128, 26, {}},
        {192, 1, {"setParameterQuiet 192 11"}},  // Osc 1 Semi
        {215, 94, {"setParameterQuiet 215 86"}}, // FX Dry/Wet
        {215, -1, {}},
        {224, 15, {"setParameterQuiet 224 18"}}, // 3+4
        {247, 26, {"setParameterQuiet 247 26"}}, // Even
        {329, 69, {"beginEdit 4", "setParameterAutomated 4 0.539062", "endEdit 4"}},
        {330, 32, {"beginEdit 9", "setParameterAutomated 9 0.25", "endEdit 9"}},
        {331, 3, {"choosePreset 3"}},
        {331, -1, {}},
        {332, 1, {"previousPreset"}},
        {332, -1, {}},
        {349, 1, {"nextPreset"}},
        {349, 0, {}},
        {351, 8, {"chooseCategory 8"}},
        {352, 0.5f, {"chooseBank 0.5"}},
        {355, 0, {"fileDialog 0"}}, // load a bank
        {355, 1, {"fileDialog 1"}},
        {356, 0, {"fileDialog 2"}}, // load a program
        {356, 1, {"fileDialog 3"}},
        {356, 2, {}},
        {340, 1.0f, {"setBendUpRange 64"}},
        {340, 0.03f, {"setBendUpRange 1"}},
        {341, 0.5f, {"setBendDownRange 32"}},
        {350, 1.0f, {}},
        {-1, 1.0f, {}},
        {99999, 1.0f, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.tag) + " at " + std::to_string(c.position));
        Calls calls = rig.change(c.tag, c.position);
        if (c.calls.empty()) // an edit without a change is no harm
            std::erase_if(calls, [](const std::string& call) {
                return call.starts_with("beginEdit") || call.starts_with("endEdit");
            });
        EXPECT_EQ(calls, c.calls);
    }
    EXPECT_EQ(rig.port.rememberedMatrixSource(), 22);
    EXPECT_EQ(rig.port.rememberedVoiceMask(), 26);
    EXPECT_THAT(rig.change(28, std::numeric_limits<float>::quiet_NaN()), IsEmpty());
    EXPECT_THAT(rig.change(126, std::numeric_limits<float>::infinity()), IsEmpty());
}

TEST(Actions, steppersStopAtTheirEndsAndStepOverLines)
{
    ActionsRig rig;
    rig.port.OfflinePort::setParameter(kOsc1Wave, 68.0f / 128.0f);
    rig.change(335, -1.0f);
    EXPECT_EQ(rig.port.oscillatorWave(1), 69);
    rig.change(335, -1.0f);
    EXPECT_EQ(rig.port.oscillatorWave(1), 69);
    rig.change(335, 1.0f);
    EXPECT_EQ(rig.port.oscillatorWave(1), 68);
    rig.change(335, 0.0f); // neither way
    EXPECT_THAT(rig.view.waves, ElementsAre(169, 169, 168, 168));
    rig.port.OfflinePort::setParameter(kOsc2Wave, 1.0f / 128.0f);
    rig.change(336, 1.0f);
    rig.change(336, 1.0f);
    EXPECT_EQ(rig.port.value(kOsc2Wave), 0.0f);
    EXPECT_EQ(rig.view.waves.back(), 200);

    const auto stepped = [&](float from, float direction) {
        rig.port.OfflinePort::setParameter(kFilterType, from);
        rig.change(342, direction);
        return rig.port.value(kFilterType);
    };
    EXPECT_EQ(stepped(0.0f, 1.0f), 0.0f);
    EXPECT_EQ(stepped(0.0f, -1.0f), 1.0f);
    EXPECT_EQ(stepped(7.0f, -1.0f), 8.0f); // over the first line
    EXPECT_EQ(stepped(8.0f, 1.0f), 7.0f);
    EXPECT_EQ(stepped(3.0f, -1.0f), 2.0f);
    EXPECT_EQ(stepped(16.0f, 1.0f), 5.0f);
    EXPECT_EQ(stepped(15.0f, -1.0f), 15.0f);
    EXPECT_EQ(stepped(5.0f, 0.5f), 5.0f);
    EXPECT_EQ(rig.view.filterTypes, 8);
}

TEST(Actions, pagesFollowTheirSwitches)
{
    ActionsRig rig;
    const std::pair<float, int> pages[] = {{0.0f, 0},  {0.00002f, 1}, {0.33f, 1}, {0.34f, 2},
                                           {0.66f, 2}, {0.67f, 3},    {1.0f, 3}};
    for (const auto& [value, page] : pages) {
        rig.change(343, value);
        EXPECT_EQ(rig.view.shown.effectPage, page) << value;
    }
    rig.change(345, 1.0f);
    rig.change(338, 1.0f);
    EXPECT_TRUE(rig.view.shown.secondView);
    EXPECT_FALSE(rig.view.shown.pane[0]);
    EXPECT_TRUE(rig.view.shown.pane[1]);
    rig.change(345, 0.0f);
    EXPECT_FALSE(rig.view.shown.secondView);
    EXPECT_THAT(rig.port.takeCalls(), IsEmpty());
}

TEST(Actions, theLearnMenuActsOnItsControl)
{
    ActionsRig rig;
    EXPECT_THAT(rig.change(357, 0.0f), IsEmpty()) << "no control was noted";
    rig.actions.openLearnMenu(28);
    EXPECT_THAT(rig.change(357, 0.0f), ElementsAre("armLearn 28"));
    EXPECT_THAT(rig.change(357, 1.0f), ElementsAre("forget 28"));
    rig.actions.openLearnMenu(335); // a stepper stands for its parameter
    EXPECT_THAT(rig.change(357, 0.0f), ElementsAre("armLearn 4"));
    EXPECT_THAT(rig.change(357, -1.0f), IsEmpty());
}

TEST(Actions, destinationSubMenusCutTheTableInEight)
{
    ActionsRig rig;
    // First entry of each group and the id that it stores: Osc 1 Semi, Noise Level, Mod Attack,
    // Filter Env, Breath Curve, LFO 1 Rate, MM Amount 1, Pitch Semi.
    const int firstIds[] = {11, 27, 57, 6, 96, 34, 61, 1};
    for (int group = 0; group < 8; ++group) {
        rig.actions.openDestinationMenu(group);
        EXPECT_THAT(rig.change(1000 + group, 0.0f),
                    ElementsAre("setParameter " + std::to_string(192 + group) + " " +
                                    std::to_string(firstIds[group]),
                                "updateHostDisplay"));
    }
    rig.actions.openDestinationMenu(23);
    rig.change(1006, 5.0f);
    EXPECT_EQ(rig.port.value(215), 66.0f); // MM Amount 6
    EXPECT_THAT(rig.change(1007, 8.0f), IsEmpty());
    EXPECT_THAT(rig.change(1000, -1.0f), IsEmpty());
    rig.actions.openDestinationMenu(24);
    EXPECT_THAT(rig.change(1000, 0.0f), IsEmpty());
    EXPECT_EQ(rig.view.refreshes, 9);
}

TEST(Actions, aPatternIsSetFromItsLastStepToItsFirst)
{
    ActionsRig rig;
    EXPECT_THAT(rig.change(354, 0.0f), ElementsAre("softAllNotesOff", "updateHostDisplay"));
    const Calls calls = rig.change(354, 2.0f);
    ASSERT_EQ(calls.size(), 1 + 1 + 64 + 5 + 1);
    EXPECT_EQ(calls.front(), "softAllNotesOff");
    EXPECT_EQ(calls[1], "setParameter 125 6");
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(calls[static_cast<std::size_t>(2 + i)],
                  "setParameter " + std::to_string(319 - i) + " 0.2");
    EXPECT_THAT(Calls(calls.begin() + 66, calls.end()),
                ElementsAre("setParameter 320 0.2", "setParameter 114 0.2", "setParameter 71 0.2",
                            "setParameter 72 0.2", "setParameter 73 0.2", "updateHostDisplay"));
    EXPECT_EQ(rig.view.arpModes, 1);
    EXPECT_EQ(rig.view.refreshes, 2);
    EXPECT_THAT(rig.change(354, 3.0f), IsEmpty());
    EXPECT_TRUE(rig.history.undo());
    EXPECT_NE(rig.port.value(kArpSwing), 0.2f);
}

MatrixRowValues row(float source, float destination, float amount = 0.75f)
{
    return {source, amount, destination, 0.0f};
}

TEST(Matrix, tidyingSortsBySourceAndEndsWithUnusedRows)
{
    MatrixRows rows{};
    rows[0] = row(13, 5);
    rows[1] = row(1.000001f, 3);
    rows[2] = row(0, 5, 1.0f);
    rows[3] = row(1, 2);
    rows[4] = row(7, 0, 0.1f);
    tidyMatrix(rows);
    EXPECT_EQ(rows[0], row(1, 2));
    EXPECT_EQ(rows[1], row(1.000001f, 3));
    EXPECT_EQ(rows[2], row(13, 5));
    for (std::size_t i = 3; i < rows.size(); ++i)
        EXPECT_EQ(rows[i], MatrixRowValues{}) << i;
}

TEST(Matrix, aScaledRowKeepsItsNumberWhenTidied)
{
    MatrixRows rows{};
    rows[0] = row(25, 66); // scales row 6
    rows[3] = row(2, 1);
    rows[5] = row(24, 5);
    rows[7] = row(1, 8);
    tidyMatrix(rows);
    EXPECT_EQ(rows[0], row(1, 8));
    EXPECT_EQ(rows[1], row(2, 1));
    EXPECT_EQ(rows[2], row(25, 66));
    EXPECT_EQ(rows[5], row(24, 5));
}

TEST(Matrix, exchangedRowsTakeTheRowsThatScaleThemAlong)
{
    MatrixRows rows{};
    rows[0] = row(25, 63); // scales row 3
    rows[1] = row(3, 64);  // scales row 4
    rows[2] = row(1, 5);
    rows[3] = row(2, 6);
    MatrixRows moved = rows;
    exchangeMatrixRows(moved, 2, 3);
    EXPECT_EQ(moved[3], row(1, 5));
    EXPECT_EQ(amountTarget(moved[0]), 3);
    EXPECT_EQ(amountTarget(moved[1]), 2);
    exchangeMatrixRows(moved, 0, 3); // a scaling row changes places with the one it scales
    EXPECT_EQ(amountTarget(moved[3]), 0);
    exchangeMatrixRows(moved, 3, 0);
    exchangeMatrixRows(moved, 3, 2);
    EXPECT_EQ(moved, rows);
    exchangeMatrixRows(moved, -1, 24);
    EXPECT_EQ(moved, rows);
}

TEST(Matrix, tidyingFromTheWindowStoresAndAppliesAgain)
{
    ActionsRig rig;
    for (int i = 0; i < 24; ++i)
        for (const int id : {128, 160, 192, 224})
            rig.port.OfflinePort::setParameter(id + i, id == 160 ? 0.5f : 0.0f);
    rig.port.OfflinePort::setParameter(128, 13.0f); // LFO 1 before Velocity
    rig.port.OfflinePort::setParameter(192, 5.0f);
    rig.port.OfflinePort::setParameter(129, 1.0f);
    rig.port.OfflinePort::setParameter(193, 5.0f);
    rig.port.OfflinePort::setParameter(194, 9.0f); // a destination without a source
    EXPECT_THAT(rig.change(353, 1.0f),
                ElementsAre("setParameterQuiet 128 1", "setParameterQuiet 129 13",
                            "setParameterQuiet 194 0", "reapplyProgram"));
    EXPECT_EQ(rig.view.refreshes, 1);
}

TEST(Actions, aGestureIsOneEditForTheHostAndOneStepOfUndo)
{
    ActionsRig rig;
    const float before = rig.port.value(28);
    rig.port.takeCalls();
    rig.actions.beginGesture(28);
    rig.actions.controlChanged(28, 0.1f);
    rig.actions.controlChanged(28, 0.2f);
    rig.actions.controlChanged(29, 0.3f); // another control meanwhile
    rig.actions.endGesture(28);
    rig.actions.endGesture(28); // too often
    EXPECT_THAT(rig.port.takeCalls(),
                ElementsAre("beginEdit 28", "setParameterAutomated 28 0.1",
                            "setParameterAutomated 28 0.2", "beginEdit 29",
                            "setParameterAutomated 29 0.3", "endEdit 29", "endEdit 28"));
    EXPECT_EQ(rig.history.undoLabel(), "Filter Cutoff");
    ASSERT_TRUE(rig.history.undo());
    EXPECT_EQ(rig.port.value(28), before);
    EXPECT_FALSE(rig.history.canUndo());
}

} // namespace
} // namespace tolm::test
