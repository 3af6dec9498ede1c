// The arpeggiator page under a mouse and keys, and how it reads steps.

#include "EditorRig.h"
#include "editor/CArpMainMM.h"
#include "editor/CArpMainMMPatterns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

TEST(ArpSteps, readAsTheModePlaysThem)
{
    const struct {
        StepReading reading;
        float stored;
        const char* text;
    } kCases[] = {
        {StepReading::note, 0.0f, "---"},        {StepReading::note, 0.0078f, "---"},
        {StepReading::note, 1.0f / 128, "C-1"},  {StepReading::note, 2.0f / 128, "C#1"},
        {StepReading::note, 12.0f / 128, "B-1"}, {StepReading::note, 13.0f / 128, "C-2"},
        {StepReading::note, 44.5f / 128, "G-4"}, {StepReading::note, 127.0f / 128, "F#11"},
        {StepReading::note, 1.0f, "Tie"},        {StepReading::finger, 0.12f, "---"},
        {StepReading::finger, 0.125f, "2nd"},    {StepReading::finger, 0.25f, "3rd"},
        {StepReading::finger, 0.999f, "8th"},    {StepReading::finger, 1.0f, "9th"},
        {StepReading::velocity, 0.0f, "---"},    {StepReading::velocity, 0.00001f, "---"},
        {StepReading::velocity, 0.5f, "63"},     {StepReading::velocity, 1.0f, "127"},
    };
    for (const auto& one : kCases)
        EXPECT_EQ(stepText(one.reading, one.stored), one.text) << one.stored;
    EXPECT_EQ(stepReadout(StepReading::note, 0, 1.0f / 128), "01: C-1  +0 st");
    EXPECT_EQ(stepReadout(StepReading::note, 31, 1.0f), "32: Tie");
    EXPECT_EQ(secondReading(arpMode(5.0f)), StepReading::finger);
    EXPECT_EQ(secondReading(arpMode(6.0f)), StepReading::note);
    for (const float mode : {0.0f, 1.0f, 2.0f, 3.0f, 4.0f, -7.0f, 99.0f})
        EXPECT_EQ(secondReading(arpMode(mode)), StepReading::velocity) << mode;
}

TEST(ArpSteps, everyNumberSurvivesItsValueAndItsText)
{
    for (const StepReading reading :
         {StepReading::note, StepReading::finger, StepReading::velocity})
        for (int number = 0; number <= largestNumber(reading); ++number) {
            const float value = stepValue(reading, number);
            EXPECT_EQ(stepNumber(reading, value), number);
            EXPECT_EQ(numberFromText(reading, stepText(reading, value)), number) << number;
        }
    for (int steps = 1; steps <= kArpSteps; ++steps) { // as the engine counts, either precision
        EXPECT_EQ(static_cast<int>(arpStepCountValue(steps) * 31.0f) + 1, steps);
        EXPECT_EQ(static_cast<int>(static_cast<double>(arpStepCountValue(steps)) * 31.0) + 1,
                  steps);
    }
    EXPECT_EQ(numberFromText(StepReading::note, " tie "), 128);
    EXPECT_EQ(numberFromText(StepReading::note, "+7"), 8);
    EXPECT_EQ(numberFromText(StepReading::finger, "4TH"), 3);
    for (const char* text : {"", "H-2", "127", "-1", "C-12", "+"})
        EXPECT_FALSE(numberFromText(StepReading::note, text)) << text;
    EXPECT_FALSE(numberFromText(StepReading::velocity, "128"));
    EXPECT_FALSE(numberFromText(StepReading::finger, "10"));
}

class ArpPage : public ::testing::Test {
protected:
    EditorRig rig{Page::arpeggiator};
    CArpMainMMLane& notes = *rig.find<CArpMainMMLane>("Arpeggiator notes");
    CArpMainMMLane& second = *rig.find<CArpMainMMLane>("Arpeggiator velocities");
    CArpPatternMenu& menu = *rig.find<CArpPatternMenu>("Arpeggiator pattern");

    ArpPage()
    {
        for (int step = 0; step < kArpSteps; ++step) {
            rig.set(kArpNote1 + step, 1.0f / 128.0f);
            rig.set(kArpVelocity1 + step, 0.0f);
        }
        rig.set(kArpMode, 0.0f);
        rig.port.takeCalls();
    }
    static gui::Point at(const CArpMainMMLane& lane, int step, int number)
    {
        return lane.toFrame({lane.column(step).centre().x, lane.heightOf(number)});
    }
    // A drag through places, in one gesture.
    void stroke(const std::vector<gui::Point>& places, gui::MouseButton button = kLeft,
                gui::Modifiers modifiers = {})
    {
        rig.press(places.front(), button, modifiers);
        for (const gui::Point& place : places)
            rig.move(place, modifiers);
        rig.release(places.back(), button);
    }
    void chooseTool(std::string_view name) { rig.choose("Arpeggiator pattern commands", name); }
    std::string steps() { return rig.editor.context().text(kArpStepCount); }
};

TEST_F(ArpPage, aQuickStrokePaintsEveryStepAndIsOneStepOfUndo)
{
    stroke({at(notes, 3, 1), at(notes, 6, 13), at(notes, 8, 13)});
    EXPECT_THAT(rig.port.takeCalls(),
                ElementsAre("setParameterQuiet 260 0.0390625", "setParameterQuiet 261 0.0703125",
                            "setParameterQuiet 262 0.101562", "setParameterQuiet 263 0.101562",
                            "setParameterQuiet 264 0.101562"));
    EXPECT_EQ(rig.undoAll(), 1);
    EXPECT_EQ(rig.value(262), 1.0f / 128.0f);
    // Closing the window ends a stroke, too.
    rig.press(at(notes, 3, 13));
    rig.editor.close();
    EXPECT_EQ(rig.undoAll(), 1);
    EXPECT_EQ(rig.value(259), 1.0f / 128.0f);
}

TEST_F(ArpPage, shiftDrawsAStraightLineThatCanBecomeShorterAgain)
{
    stroke({at(second, 2, 127), at(second, 20, 27), at(second, 12, 27)}, kLeft, kShift);
    for (int step = 2; step <= 12; ++step)
        EXPECT_NEAR(rig.value(kArpVelocity1 + step) * 127, 127 - 10 * (step - 2), 1) << step;
    for (const int step : {1, 13, 20})
        EXPECT_EQ(rig.value(kArpVelocity1 + step), 0.0f) << step;
    EXPECT_EQ(rig.undoAll(), 1);
}

TEST_F(ArpPage, theRightButtonResetsWhatItCrosses)
{
    const float initial = rig.editor.context().defaultValue(kArpVelocity1);
    ASSERT_GT(initial, 0.0f);
    stroke({at(second, 9, 10), at(second, 5, 90)}, kRight);
    for (int step = 4; step <= 10; ++step)
        EXPECT_EQ(rig.value(kArpVelocity1 + step), step >= 5 && step <= 9 ? initial : 0.0f);
    EXPECT_EQ(rig.undoAll(), 1);
}

TEST_F(ArpPage, rowsPaintWhatTheModeReads)
{
    const auto paint = [&](float mode, CArpMainMMLane& lane, int step, int number) {
        rig.set(kArpMode, mode);
        rig.click(at(lane, step, number));
        return rig.value((&lane == &notes ? kArpNote1 : kArpVelocity1) + step);
    };
    EXPECT_EQ(paint(0.0f, notes, 0, 0), 0.0f); // a rest
    EXPECT_EQ(paint(0.0f, notes, 1, kTieNumber), 1.0f);
    EXPECT_EQ(paint(0.0f, notes, 2, 25), 25.0f / 128.0f);
    EXPECT_EQ(paint(5.0f, second, 4, 3), 0.375f); // fingers
    EXPECT_EQ(paint(6.0f, second, 5, 20), 20.0f / 128.0f);
    EXPECT_EQ(paint(6.0f, second, 6, kTieNumber), 1.0f);
    EXPECT_EQ(rig.editor.context().text(kArpMode), "Mode: Duophonic");
    EXPECT_FALSE(rig.find("Arpeggiator velocity mix")->isEnabled());
    rig.set(kArpMode, 3.0f);
    EXPECT_TRUE(rig.find("Arpeggiator velocity mix")->isEnabled());
}

TEST_F(ArpPage, theWheelMovesOneStepAndShowsNotesAboveTheRange)
{
    const gui::Point third = at(notes, 2, 5);
    rig.wheel(third, 1.0f);
    rig.wheel(third, 1.0f);
    for (int turn = 0; turn < 4; ++turn)
        rig.wheel(third, 1.0f, kShift);
    EXPECT_EQ(rig.value(258), 51.0f / 128.0f);
    EXPECT_GT(notes.heightOf(51), notes.heightOf(kTieNumber)) << "still below the ties";
    rig.wait(1.0);
    rig.wheel(third, -1.0f);
    rig.wait(1.0);
    EXPECT_EQ(rig.undoAll(), 2);
    EXPECT_THAT(rig.port.takeCalls(), Contains("setParameterQuiet 258 0.0234375"));
}

TEST_F(ArpPage, theRulerSetsTheLength)
{
    const auto& ruler = *rig.find("Arpeggiator length");
    const auto number = [&](int step) {
        return ruler.toFrame({notes.column(step - 1).centre().x, 5.0f});
    };
    rig.press(number(8));
    EXPECT_EQ(steps(), "8 steps");
    rig.move(number(12));
    rig.release(number(12));
    EXPECT_EQ(steps(), "12 steps");
    const gui::Point edge = ruler.toFrame({notes.column(12).x + 3.0f, 10.0f});
    rig.press(edge);
    EXPECT_EQ(steps(), "12 steps") << "taken by its handle";
    rig.move({edge.x + 21.0f, edge.y});
    rig.release({edge.x + 21.0f, edge.y});
    EXPECT_EQ(steps(), "13 steps");
    rig.wheel(number(4), -1.0f);
    rig.wheel(number(4), -1.0f);
    rig.wait(1.0);
    EXPECT_EQ(steps(), "11 steps");
    EXPECT_THAT(rig.port.takeCalls(), Each(StartsWith("setParameterQuiet 320 ")));
    EXPECT_EQ(rig.undoAll(), 3);
}

TEST_F(ArpPage, keysMoveChangeTypeAndReset)
{
    rig.frame().setKeyboardMode(true);
    rig.frame().setFocus(&notes);
    rig.keys("Home Right Up");
    EXPECT_EQ(rig.value(257), 2.0f / 128.0f);
    rig.keys("PageUp");
    EXPECT_EQ(rig.value(257), 14.0f / 128.0f);
    rig.keys("Enter");
    rig.enter("g#3");
    EXPECT_EQ(rig.value(257), 33.0f / 128.0f);
    rig.frame().setFocus(&notes);
    rig.keys("Delete");
    EXPECT_EQ(rig.value(257), rig.editor.context().defaultValue(257));
}

TEST_F(ArpPage, patternsAreChosenCopiedPastedAndTurned)
{
    rig.click("Arpeggiator pattern");
    rig.keys("End Enter");
    EXPECT_FLOAT_EQ(rig.value(kArpRate), 0.2f) << "the last of the table";
    EXPECT_THAT(rig.port.takeCalls(), Contains("softAllNotesOff"));
    EXPECT_EQ(menu.shownPattern(), 2);
    chooseTool("copy");
    rig.click(at(notes, 0, 7));
    EXPECT_EQ(menu.shownPattern(), 0);
    chooseTool("one step later"); // of 1 + int(0.2 * 31) = 7 steps
    EXPECT_EQ(rig.value(257), 7.0f / 128.0f);
    chooseTool("paste");
    EXPECT_FLOAT_EQ(rig.value(257), 0.2f);
    EXPECT_EQ(menu.shownPattern(), 2);
    EXPECT_EQ(rig.undoAll(), 4);
}

TEST_F(ArpPage, aClipboardWithoutAPatternChangesNothing)
{
    rig.frame().host().copyToClipboard("[[program]]\nname = \"Other\"\n");
    chooseTool("paste");
    EXPECT_THAT(rig.port.takeCalls(), IsEmpty());
}

} // namespace
} // namespace tolm::test
