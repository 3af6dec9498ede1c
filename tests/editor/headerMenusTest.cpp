// The header's menus, as a hand uses them: opened by a press, an entry found by typing its words.

#include "EditorRig.h"
#include "editor/recordText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

struct MenuRig : EditorRig {
    void program(std::string_view entry) { choose("Program menu", entry); }
    void settings(std::string_view entry) { choose("Settings", entry); }
    bool isInitial(int number) const
    {
        return sameRecord(port.record(number), port.initialRecord());
    }
    bool isFactory(int number) const
    {
        return sameRecord(port.record(number), port.factoryRecord(number));
    }
};

TEST(ProgramMenu, initsAndRevertsAndAllOfItCanBeUndone)
{
    MenuRig rig;
    rig.program("init this");
    EXPECT_TRUE(rig.isInitial(0));
    rig.port.setProgram(41);
    rig.change(kVolume, 0.01f);
    rig.program("revert to");
    EXPECT_TRUE(rig.isFactory(41));
    EXPECT_TRUE(rig.isInitial(0));
    rig.click("Undo");
    EXPECT_FLOAT_EQ(rig.value(kVolume), 0.01f);
}

TEST(ProgramMenu, revertsTheWholeBankOnlyWhenAskedTwice)
{
    MenuRig rig;
    for (const int changed : {0, 200, 383})
        rig.port.replaceProgram(changed, rig.port.factoryRecord(1));
    rig.program("revert all");
    rig.keys("Escape");
    EXPECT_FALSE(rig.isFactory(200));
    rig.program("revert all");
    rig.keys("Enter");
    for (int program = 0; program < kProgramCount; ++program)
        ASSERT_TRUE(rig.isFactory(program)) << program;
    rig.click("Undo");
    for (const int changed : {0, 200, 383})
        EXPECT_FALSE(rig.isFactory(changed)) << changed;
}

TEST(ProgramMenu, renamesInPlaceOfTheField)
{
    MenuRig rig;
    rig.program("rename");
    EXPECT_TRUE(rig.window->keysWanted());
    rig.enter("Quiet Harbour");
    EXPECT_EQ(rig.programName(), "Quiet Harbour");
    EXPECT_FALSE(rig.window->keysWanted());
    rig.program("rename");
    rig.type("Nothing");
    rig.keys("Escape");
    EXPECT_EQ(rig.programName(), "Quiet Harbour");
    // No name is longer than its place in a program.
    rig.program("rename");
    rig.enter(std::string(60, 'w'));
    EXPECT_EQ(rig.programName(), std::string(sizeof(ProgramRecord::name) - 1, 'w'));
}

TEST(ProgramMenu, copiesTextThatPastesIntoAnotherProgram)
{
    MenuRig rig;
    rig.program("copy program");
    EXPECT_THAT(rig.window->clipboard(), HasSubstr(rig.programName()));
    rig.port.setProgram(40);
    rig.program("paste");
    EXPECT_TRUE(sameRecord(rig.port.record(40), rig.port.record(0)));
    // What is no program is refused with a word.
    rig.frame().host().copyToClipboard("anything");
    rig.program("paste");
    EXPECT_TRUE(rig.frame().hasOverlay());
}

TEST(ProgramMenu, asksForFiles)
{
    MenuRig rig;
    const char* entries[] = {"load bank", "save bank", "load program", "save program"};
    for (int mode = 0; mode < 4; ++mode) {
        rig.program(entries[mode]);
        EXPECT_THAT(rig.port.takeCalls(), Contains("fileDialog " + std::to_string(mode)));
    }
}

TEST(SettingsMenu, changesAreKeptAndTakeEffect)
{
    MenuRig rig;
    rig.settings("resets the control");
    rig.settings("keys move");
    EXPECT_FALSE(rig.editor.context().doubleClickTypes);
    EXPECT_TRUE(rig.window->keysWanted());
    rig.settings("200");
    EXPECT_EQ(rig.window->picture().width(), 2240);
    rig.editor.close();
    rig.open();
    EXPECT_TRUE(rig.frame().keyboardMode());
    EXPECT_FALSE(rig.editor.context().doubleClickTypes);
}

TEST(SettingsMenu, forgetsOneControllerOrAll)
{
    MenuRig rig;
    rig.port.controllers = {{20, kFilterCutoff}, {21, kVolume}};
    rig.settings("CC 20");
    EXPECT_THAT(rig.port.takeCalls(), Contains("forget 28"));
    rig.settings("forget all");
    rig.keys("Escape");
    EXPECT_THAT(rig.port.takeCalls(), Not(Contains("forgetAll")));
    rig.settings("forget all");
    rig.keys("Enter");
    EXPECT_THAT(rig.port.takeCalls(), Contains("forgetAll"));
}

} // namespace
} // namespace tolm::test
