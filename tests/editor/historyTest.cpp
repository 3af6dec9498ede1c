// Undo, redo, comparison and the commands about whole programs.

#include "ActionsRig.h"
#include "editor/Comparison.h"
#include "editor/matrixRows.h"
#include "editor/programActions.h"
#include "editor/recordText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;

// How often something can be done.
std::size_t repeated(const std::function<bool()>& step)
{
    std::size_t count = 0;
    while (step())
        ++count;
    return count;
}

// One change of any kind that the window knows.
void editAtRandom(ActionsRig& rig, std::mt19937& random)
{
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto unit = [&] { return static_cast<float>(below(1000)) / 999.0f; };
    const std::function<void()> edits[] = {
        [&] { rig.actions.controlChanged(kTagMatrixTidy, 1.0f); },
        [&] { rig.actions.controlChanged(kTagArpPattern, static_cast<float>(below(3))); },
        [&] {
            rig.actions.openDestinationMenu(below(kMatrixRows));
            rig.actions.controlChanged(kTagDestinations1 + below(8), static_cast<float>(below(12)));
        },
        [&] { rig.actions.descriptionChanged("Text " + std::to_string(below(1000))); },
        [&] { renameProgram(rig.port, rig.history, "Name " + std::to_string(below(1000))); },
        [&] { moveMatrixRow(rig.port, rig.history, below(kMatrixRows), below(kMatrixRows)); },
        [&] { moveEffect(rig.port, rig.history, below(kEffectSlots), below(kEffectSlots)); },
        [&] { rig.actions.controlChanged(kTagBendUp, unit()); },
        [&] {
            rig.actions.controlChanged(kModSource1 + below(kModVoices1 + kMatrixRows - kModSource1),
                                       static_cast<float>(below(26)));
        },
        [&] { // a drag, through which other values pass
            rig.actions.beginGesture(kArpNote1);
            for (int i = 0; i < 5; ++i)
                rig.actions.controlChanged(kArpNote1 + below(kArpSteps), unit());
            rig.actions.endGesture(kArpNote1);
        },
        [&] { (below(4) == 0 ? initProgram : revertProgram)(rig.port, rig.history); },
        [&] { rig.actions.controlChanged(below(kStoredParameterCount), unit()); },
    };
    edits[below(static_cast<int>(std::size(edits)))]();
}

TEST(EditHistory, twoHundredEditsUndoneLeaveTheProgramAsItWasToTheByte)
{
    for (unsigned seed = 1; seed <= 5; ++seed) {
        SCOPED_TRACE(seed);
        ActionsRig rig;
        std::mt19937 random(seed);
        const int program = static_cast<int>(seed) * 61;
        rig.port.setProgram(program);
        const ProgramRecord before = rig.port.record(program);
        const int bend = rig.port.bendUpRange();
        for (int i = 0; i < 200; ++i)
            editAtRandom(rig, random);
        const ProgramRecord after = rig.port.record(program);
        const int bendAfter = rig.port.bendUpRange();

        const std::size_t steps = repeated([&] { return rig.history.undo(); });
        EXPECT_GT(steps, 100u);
        EXPECT_TRUE(sameRecord(rig.port.record(program), before));
        EXPECT_EQ(rig.port.bendUpRange(), bend);
        EXPECT_EQ(repeated([&] { return rig.history.redo(); }), steps);
        EXPECT_TRUE(sameRecord(rig.port.record(program), after));
        EXPECT_EQ(rig.port.bendUpRange(), bendAfter);
    }
}

TEST(EditHistory, keepsOnlyWhatChangedAndANewEditEndsRedo)
{
    ActionsRig rig;
    rig.port.OfflinePort::setParameter(kVolume, 0.5f);
    rig.change(kVolume, 0.5f);
    EXPECT_FALSE(rig.history.canUndo()) << "nothing changed";
    rig.change(kVolume, 0.25f);
    rig.change(kVolume, 0.75f);
    EXPECT_TRUE(rig.history.undo());
    EXPECT_EQ(rig.port.value(kVolume), 0.25f);
    EXPECT_EQ(rig.history.redoLabel(), "Volume");
    rig.change(kArpSwing, 0.9f);
    EXPECT_FALSE(rig.history.canRedo());
    EXPECT_EQ(rig.history.undoLabel(), "Arp Swing");
    // What automation did in between is not taken back.
    rig.port.OfflinePort::setParameter(kFilterCutoff, 0.125f);
    rig.history.undo();
    rig.history.undo();
    EXPECT_EQ(rig.port.value(kFilterCutoff), 0.125f);
    EXPECT_EQ(rig.port.value(kVolume), 0.5f);
    EXPECT_FALSE(rig.history.undo());

    rig.history.begin("Drag");
    rig.history.noteValue(kVolume);
    EXPECT_FALSE(rig.history.redo()) << "in the middle of a drag";
    rig.history.end();
    rig.history.end(); // once too often
    rig.history.noteValue(kVolume);
    EXPECT_TRUE(rig.history.canRedo());

    for (std::size_t i = 0; i < EditHistory::kDepth + 50; ++i)
        rig.change(kVolume, static_cast<float>(i % 2));
    EXPECT_EQ(repeated([&] { return rig.history.undo(); }), EditHistory::kDepth);
}

TEST(EditHistory, aStepOfAnotherProgramSelectsItFirst)
{
    ActionsRig rig;
    rig.port.setProgram(10);
    const float before = rig.port.value(kVolume);
    rig.change(kVolume, before / 2.0f);
    rig.port.setProgram(20);
    const ProgramRecord other = rig.port.record(20);
    EXPECT_TRUE(rig.history.undo());
    EXPECT_EQ(rig.port.currentProgram(), 10);
    EXPECT_EQ(rig.port.value(kVolume), before);
    EXPECT_TRUE(sameRecord(rig.port.record(20), other));
    rig.history.clear();
    EXPECT_FALSE(rig.history.redo());
}

TEST(EditHistory, undoingIsToldToTheHostLikeTheEdit)
{
    ActionsRig rig;
    rig.port.OfflinePort::setParameter(kVolume, 0.5f);
    rig.port.OfflinePort::setParameter(kArpMode, 3.0f);
    rig.change(kVolume, 1.0f);
    rig.change(kArpMode, 1.0f);
    rig.port.takeCalls();
    rig.history.undo();
    rig.history.undo();
    EXPECT_THAT(rig.port.takeCalls(),
                ElementsAre("softAllNotesOff", "resetArpStep", "setParameter 125 3", "beginEdit 74",
                            "setParameterAutomated 74 0.5", "endEdit 74"));
}

TEST(Comparison, marksChangesAndPlaysTheLoadedSoundInTurns)
{
    ActionsRig rig;
    Comparison comparison(rig.port, rig.history);
    EXPECT_FALSE(comparison.isCurrentChanged());
    comparison.toggle();
    EXPECT_FALSE(rig.history.canUndo()) << "nothing to compare";
    const float loaded = rig.port.value(kFilterCutoff);
    const float changed = loaded / 2.0f + 0.1f;
    rig.change(kFilterCutoff, changed);
    EXPECT_TRUE(comparison.isCurrentChanged());
    EXPECT_FALSE(comparison.isChanged(1));

    comparison.toggle();
    EXPECT_EQ(rig.port.value(kFilterCutoff), loaded);
    EXPECT_TRUE(comparison.showsLoaded());
    rig.change(kVolume, 0.01f); // on the loaded sound: the changed one is only an undo away
    EXPECT_FALSE(comparison.showsLoaded());
    rig.history.undo();
    EXPECT_TRUE(comparison.showsLoaded());
    rig.history.undo();
    EXPECT_EQ(rig.port.value(kFilterCutoff), changed);

    comparison.takeCurrent();
    EXPECT_FALSE(comparison.isCurrentChanged());
    rig.change(kFilterCutoff, loaded);
    EXPECT_TRUE(comparison.isCurrentChanged());
    comparison.takeAll();
    EXPECT_FALSE(comparison.isCurrentChanged());
}

TEST(Programs, onlyOneWholeProgramIsPasted)
{
    ActionsRig rig;
    const std::string text = *programText(rig.port.record(7));
    const std::string two = text + text.substr(text.find("[[program]]"));
    const ProgramRecord before = rig.port.record(0);
    for (const std::string& rubbish : {std::string(), std::string("hello"), two, text + text,
                                       text.substr(0, text.size() / 2) + "\x01",
                                       std::string(100000, '['), std::string("\0\0", 2)})
        EXPECT_FALSE(pasteText(rig.port, rig.history, rubbish));
    EXPECT_TRUE(sameRecord(rig.port.record(0), before));
    EXPECT_TRUE(pasteText(rig.port, rig.history, text));
    EXPECT_TRUE(sameRecord(rig.port.record(0), rig.port.record(7)));
}

TEST(Programs, everyPatternSurvivesCopyAndPasteAndRubbishIsRefused)
{
    ActionsRig rig;
    std::mt19937 random(3);
    ArpPattern pattern;
    for (float& value : pattern.values)
        value = static_cast<float>(random() % 100000) / 99999.0f;
    pattern.set(kArpMode, 5.0f);
    const std::string text = patternText(pattern);
    EXPECT_EQ(readPattern(text), pattern);
    EXPECT_TRUE(pasteText(rig.port, rig.history, text));
    EXPECT_EQ(currentPattern(rig.port), pattern);
    EXPECT_TRUE(rig.history.undo());

    const auto with = [&](std::string_view from, std::string_view to) {
        std::string changed = text;
        changed.replace(changed.find(from), from.size(), to);
        return changed;
    };
    for (const std::string& rubbish :
         {with("mode 5", "mode 7"), with("mode 5", "mode -1"), with("mode 5", "mode 5 5"),
          with("steps ", "steps nan "), with("steps ", "steps 1.5 "), with("swing", "swung"),
          with("notes 0", "notes 2"), with("Tolm", "Olm"), text.substr(0, text.size() - 12),
          text + "more", std::string()})
        EXPECT_FALSE(readPattern(rubbish)) << rubbish.substr(0, 120);
    std::string windows = text; // line ends of another system
    for (std::size_t at = 0; (at = windows.find('\n', at)) != std::string::npos; at += 2)
        windows.insert(at, 1, '\r');
    EXPECT_EQ(readPattern(windows), pattern);
}

} // namespace
} // namespace tolm::test
