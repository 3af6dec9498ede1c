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
    for (const int tag : {28, 110})
        EXPECT_THAT(rig.change(tag, 0.25f),
                    ElementsAre("beginEdit " + std::to_string(tag),
                                "setParameterAutomated " + std::to_string(tag) + " 0.25",
                                "endEdit " + std::to_string(tag)));
    // Beyond the host's ids nothing is said about edits.
    for (const int tag : {111, 113, 124, 346})
        EXPECT_THAT(rig.change(tag, 0.5f),
                    ElementsAre("setParameterAutomated " + std::to_string(tag) + " 0.5"));
    // Rows 25 to 32 of the matrix have no menus.
    for (const int tag : {127, 152, 160, 183, 191, 216, 256, 319, 323, 328})
        EXPECT_THAT(rig.change(tag, 3.0f),
                    ElementsAre("setParameterQuiet " + std::to_string(tag) + " 3"));
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
        {126, 2, {"setParameterQuiet 126 17"}},  // LP Ladder 12dB
        {126, 4, {}},                            // a line between entries
        {126, 20, {"setParameterQuiet 126 15"}}, // HP12/LP12 Split
        {125, 0, {"softAllNotesOff", "resetArpStep", "setParameterQuiet 125 3"}},
        {115, 1, {"setParameterQuiet 115 1", "softAllNotesOff", "resetArpStep"}},
        {151, 6, {"setParameterQuiet 151 7"}}, // Const
        {128, 26, {}},
        {215, 94, {"setParameterQuiet 215 86"}}, // FX Dry/Wet
        {215, -1, {}},
        {247, 26, {"setParameterQuiet 247 26"}}, // Even
        {329, 69, {"beginEdit 4", "setParameterAutomated 4 0.539062", "endEdit 4"}},
        {355, 1, {"fileDialog 1"}},
        {356, 1, {"fileDialog 3"}},
        {356, 2, {}},
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
    EXPECT_EQ(rig.port.rememberedMatrixSource(), 7);
    EXPECT_EQ(rig.port.rememberedVoiceMask(), 26);
    EXPECT_THAT(rig.change(28, std::numeric_limits<float>::quiet_NaN()), IsEmpty());
    EXPECT_THAT(rig.change(126, std::numeric_limits<float>::infinity()), IsEmpty());
}

TEST(Actions, programsAndBendRangesAreChosenByPosition)
{
    ActionsRig rig;
    const auto programAfter = [&](int tag, float value) {
        rig.change(tag, value);
        return rig.port.currentProgram();
    };
    EXPECT_EQ(programAfter(331, 3.0f), 3); // of the list
    EXPECT_EQ(programAfter(331, -1.0f), 3);
    EXPECT_EQ(programAfter(332, 1.0f), 2); // previous
    EXPECT_EQ(programAfter(349, 1.0f), 3); // next
    EXPECT_EQ(programAfter(349, 0.0f), 3);
    EXPECT_EQ(programAfter(352, 0.5f), 128); // a bank
    rig.change(351, 8.0f);
    EXPECT_EQ(rig.port.browser().categoryFilter, 8);
    rig.change(340, 1.0f);
    EXPECT_EQ(rig.port.bendUpRange(), 64);
    rig.change(341, 0.03f);
    EXPECT_EQ(rig.port.bendDownRange(), 1);
}

TEST(Actions, steppersStopAtTheirEndsAndStepOverLines)
{
    ActionsRig rig;
    const auto stepped = [&](int id, float from, int stepper, float direction) {
        rig.port.OfflinePort::setParameter(id, from);
        rig.change(stepper, direction);
        return rig.port.value(id);
    };
    constexpr float kWave = 1.0f / 128.0f;
    EXPECT_EQ(stepped(kOsc1Wave, 68 * kWave, 335, -1.0f), 69 * kWave);
    EXPECT_EQ(stepped(kOsc1Wave, 69 * kWave, 335, -1.0f), 69 * kWave);
    EXPECT_EQ(stepped(kOsc1Wave, 68 * kWave, 335, 0.0f), 68 * kWave) << "neither way";
    EXPECT_EQ(stepped(kOsc2Wave, kWave, 336, 1.0f), 0.0f);
    EXPECT_EQ(stepped(kOsc2Wave, 0.0f, 336, 1.0f), 0.0f);
    EXPECT_THAT(rig.view.waves, ElementsAre(169, 169, 168, 200, 200));

    const float filters[][3] = {{0, 1, 0},    {0, -1, 1},  {3, -1, 2},
                                {16, 1, 5},   {7, -1, 8},  {8, 1, 7}, // over the first line
                                {15, -1, 15}, {5, 0.5f, 5}};
    for (const auto& [from, direction, type] : filters)
        EXPECT_EQ(stepped(kFilterType, from, 342, direction), type) << from;
    EXPECT_EQ(rig.view.filterTypes, 8);
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
    // The first of each: Osc 1 Semi, Noise Level, Mod Attack, Filter Env, Breath Curve, LFO 1 Rate,
    // MM Amount 1, Pitch Semi.
    const int firstIds[] = {11, 27, 57, 6, 96, 34, 61, 1};
    for (int group = 0; group < 8; ++group) {
        rig.actions.openDestinationMenu(group);
        EXPECT_THAT(rig.change(1000 + group, 0.0f),
                    ElementsAre("setParameter " + std::to_string(192 + group) + " " +
                                    std::to_string(firstIds[group]),
                                "updateHostDisplay"));
    }
    EXPECT_THAT(rig.change(1007, 8.0f), IsEmpty()) << "beyond the last group";
    EXPECT_THAT(rig.change(1000, -1.0f), IsEmpty());
    rig.actions.openDestinationMenu(24);
    EXPECT_THAT(rig.change(1000, 0.0f), IsEmpty());
    EXPECT_EQ(rig.view.refreshes, 8);
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

TEST(Matrix, tidyingSortsRowsAndLeavesThoseThatAreScaledWhereTheyAre)
{
    MatrixRows rows{};
    rows[0] = row(25, 66); // scales row 6
    rows[1] = row(13, 5);
    rows[2] = row(1.000001f, 3);
    rows[3] = row(1, 2);
    rows[5] = row(24, 5);
    rows[7] = row(0, 5, 1.0f); // unused
    rows[8] = row(7, 0, 0.1f);
    tidyMatrix(rows);
    const MatrixRows tidy = {row(1, 2), row(1.000001f, 3), row(13, 5), row(25, 66), {}, row(24, 5)};
    EXPECT_EQ(rows, tidy);
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
