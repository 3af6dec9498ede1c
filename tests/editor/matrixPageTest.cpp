// The matrix page under a mouse and keys.

#include "EditorRig.h"
#include "editor/CMatrixPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class MatrixPage : public ::testing::Test {
protected:
    EditorRig rig{Page::matrix};

    MatrixPage()
    {
        for (int row = 0; row < kMatrixRows; ++row)
            fill(row, 0.0f, 0.5f, 0.0f);
    }

    void fill(int row, float source, float amount, float destination)
    {
        rig.set(kModSource1 + row, source);
        rig.set(kModAmount1 + row, amount);
        rig.set(kModDestination1 + row, destination);
        rig.port.takeCalls();
    }
    static std::string nameOf(const char* column, int row)
    {
        return std::string("Matrix ") + column + " " + std::to_string(row + 1);
    }
    gui::Point cell(const char* column, int row) { return rig.middle(nameOf(column, row)); }
    void choose(const char* column, int row, std::string_view entry)
    {
        rig.choose(nameOf(column, row), entry);
    }
    void focusOn(const char* column, int row) { rig.focusOn(nameOf(column, row)); }
    bool hasFocus(const char* column, int row) { return rig.find(nameOf(column, row))->hasFocus(); }
};

// The bar is 152 pixels with 3 free at either end: 73 are 100 %.
TEST_F(MatrixPage, anAmountFollowsThePointerSidewaysAndIsOneStepOfUndo)
{
    fill(2, 13.0f, 0.5f, 5.0f);
    const gui::Point middle = cell("amount", 2);
    rig.press(middle);
    rig.move({middle.x + 20.0f, middle.y - 60.0f});
    rig.move({middle.x + 36.5f, middle.y + 40.0f});
    EXPECT_NEAR(rig.value(162), 0.75f, 0.001f);
    EXPECT_EQ(rig.editor.context().text(162), "+50 %");
    rig.move({middle.x + 36.5f + 29.2f, middle.y}, kShift);
    EXPECT_NEAR(rig.value(162), 0.75f + 0.2f / 8.0f, 0.001f);
    rig.move({middle.x - 400.0f, middle.y});
    rig.release({middle.x - 400.0f, middle.y});
    EXPECT_EQ(rig.value(162), 0.0f);
    EXPECT_THAT(rig.port.takeCalls(), Each(StartsWith("setParameterQuiet 162 ")));
    EXPECT_EQ(rig.undoAll(), 1);
    EXPECT_EQ(rig.value(162), 0.5f);
}

TEST_F(MatrixPage, anAmountIsTypedTurnedAndReset)
{
    fill(4, 1.0f, 0.5f, 3.0f);
    const gui::Point at = cell("amount", 4);
    rig.press(at, kLeft, {}, 2);
    rig.release(at);
    rig.enter("-40");
    EXPECT_NEAR(rig.value(164), 0.3f, 1e-6f);
    rig.wheel(at, 1.0f);
    rig.wheel(at, 2.0f);
    rig.wait(1.0);
    EXPECT_NEAR(rig.value(164), 0.36f, 1e-5f);
    rig.undo();
    EXPECT_NEAR(rig.value(164), 0.3f, 1e-6f) << "turns in a row are one step";
    focusOn("amount", 4);
    rig.keys("Delete");
    EXPECT_EQ(rig.value(164), 0.5f);
}

TEST_F(MatrixPage, aChoiceIsFoundByTypingAndOfferedFirstInTheNextEmptyRow)
{
    choose("source", 2, "lfo3*mw");
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("setParameterQuiet 130 18"));
    choose("source", 9, "");
    EXPECT_EQ(rig.value(137), 18.0f);
    rig.click(cell("source", 9));
    rig.keys("Up"); // the one before in the menu: the row is not empty any more
    rig.keys("Enter");
    EXPECT_EQ(rig.value(137), 17.0f);
    choose("voices", 0, "odd");
    EXPECT_EQ(rig.value(224), 25.0f);
    choose("voices", 23, "");
    EXPECT_EQ(rig.value(247), 25.0f);
    EXPECT_EQ(rig.undoAll(), 5);
}

// Ids from the menu's table; the row is noted before the sub-menu sends its position.
TEST_F(MatrixPage, aDestinationGoesThroughItsSubMenu)
{
    const std::pair<const char*, float> cases[] = {
        {"osc 1 semi", 11.0f}, {"spike hard", 85.0f}, {"mm amount 24", 84.0f}, {"fx dry", 86.0f}};
    for (const auto& [typed, id] : cases) {
        SCOPED_TRACE(typed);
        choose("destination", 7, typed);
        EXPECT_EQ(rig.value(199), id);
        EXPECT_THAT(rig.port.takeCalls(),
                    ElementsAre(StartsWith("setParameter 199 "), "updateHostDisplay"));
    }
    rig.click(cell("destination", 7));
    rig.keys("Home Enter");
    EXPECT_EQ(rig.value(199), 0.0f) << "no destination comes first";
    EXPECT_EQ(rig.undoAll(), 5);
}

TEST_F(MatrixPage, aRowIsDraggedOntoAnotherAndScalingRowsFollow)
{
    fill(0, 3.0f, 0.9f, 62.0f); // MM Amount 2
    fill(1, 13.0f, 0.7f, 5.0f);
    rig.dragTo(cell("row", 1), cell("row", 16));
    EXPECT_EQ(rig.value(128 + 16), 13.0f);
    EXPECT_EQ(rig.value(160 + 16), 0.7f);
    EXPECT_EQ(rig.value(192 + 16), 5.0f);
    EXPECT_EQ(rig.value(129), 0.0f);
    EXPECT_EQ(rig.value(192), 77.0f) << "MM Amount 17";
    EXPECT_EQ(rig.undoAll(), 1);
    EXPECT_EQ(rig.value(192), 62.0f);

    rig.dragTo(cell("row", 1), {20.0f, 20.0f});
    EXPECT_EQ(rig.value(129), 13.0f) << "dropped beside the matrix";
    EXPECT_EQ(rig.undoAll(), 0);
}

TEST_F(MatrixPage, rowsAreClearedAndTidied)
{
    fill(3, 13.0f, 0.7f, 5.0f);
    fill(6, 1.0f, 0.8f, 3.0f);
    fill(8, 2.0f, 0.6f, 0.0f); // no destination
    rig.click("Tidy");
    EXPECT_EQ(rig.value(128), 1.0f);
    EXPECT_EQ(rig.value(129), 13.0f);
    EXPECT_EQ(rig.value(136), 0.0f);
    EXPECT_THAT(rig.port.takeCalls(), Contains("reapplyProgram"));

    rig.click(cell("source", 0), kRight);
    rig.enter("clear");
    EXPECT_EQ(rig.value(128), 0.0f);
    EXPECT_EQ(rig.value(160), 0.5f);
    focusOn("row", 1);
    rig.keys("Delete");
    EXPECT_EQ(rig.value(129), 0.0f);
    EXPECT_EQ(rig.undoAll(), 3);
}

TEST_F(MatrixPage, keysReachEveryCell)
{
    fill(11, 1.0f, 0.5f, 3.0f);
    rig.frame().setKeyboardMode(true);
    focusOn("row", 11);
    rig.keys("Tab");
    EXPECT_TRUE(hasFocus("source", 11));
    rig.keys("Right"); // Velocity is followed by Note #
    EXPECT_EQ(rig.value(139), 2.0f);
    rig.keys("Down");
    EXPECT_TRUE(hasFocus("source", 12));
    rig.keys("Up Alt+Down");
    EXPECT_EQ(rig.value(140), 2.0f) << "the row went down with the focus";
    EXPECT_EQ(rig.value(139), 0.0f);
    rig.keys("Tab Left");
    EXPECT_NEAR(rig.value(172), 0.49f, 1e-5f);
}

TEST_F(MatrixPage, aKnobShowsAtOnceHowFarARowMovesIt)
{
    fill(0, 13.0f, 0.5f, 5.0f); // Filter Cutoff
    rig.wait(1.0);
    rig.editor.context().actions().controlChanged(kModAmount1, 0.75f);
    rig.editor.context().tellValue(kModAmount1);
    const gui::Rect knob = rig.place("Filter cutoff");
    const auto covers = [&](const gui::Rect& rect) { return rect.intersection(knob) == knob; };
    EXPECT_THAT(rig.painted(), Contains(::testing::Truly(covers)));
    EXPECT_FLOAT_EQ(rig.editor.context().modulationOf(kFilterCutoff), 0.5f);
}

TEST_F(MatrixPage, theTickShowsWhatARowAddsAndPaintsOnlyItsCell)
{
    fill(0, 13.0f, 0.75f, 5.0f); // +50 %
    auto& amount = *rig.find<CMatrixAmount>(nameOf("amount", 0));
    EditorMeters meters;
    meters.rowSource.fill(1.0f);
    EXPECT_THAT(rig.paintedBy(meters), IsEmpty());
    EXPECT_FALSE(amount.tick()) << "no note sounds";
    meters.voices = 1;
    for (const gui::Rect& rect : rig.paintedBy(meters))
        EXPECT_TRUE(!pagePlace(Page::matrix).intersects(rect) ||
                    amount.boundsInFrame().intersection(rect) == rect);
    ASSERT_TRUE(amount.tick());
    EXPECT_NEAR(*amount.tick(), 76.0f + 36.5f, 0.01f);
    meters.rowSource[0] = -0.5f;
    EXPECT_FALSE(rig.paintedBy(meters).empty());
    EXPECT_NEAR(*amount.tick(), 76.0f - 18.25f, 0.01f);
}

} // namespace
} // namespace tolm::test
