// The header's menus, as a hand uses them: opened by a press, an entry found by typing its words.

#include "EditorRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

struct MenuRig : EditorRig {
    void choose(std::string_view menu, const std::string& entry)
    {
        click(*find(menu));
        type(entry);
        key(gui::Key::enter);
    }
    void program(const std::string& entry) { choose("Program menu", entry); }
    void settings(const std::string& entry) { choose("Settings", entry); }
    std::string name() const { return port.record(port.currentProgram()).name.data(); }
    bool isFactory(int number) const
    {
        return port.record(number).values == port.factoryRecord(number).values;
    }
};

TEST(ProgramMenu, initsAndRevertsAndAllOfItCanBeUndone)
{
    MenuRig rig;
    const std::string factory = rig.name();
    rig.program("init this");
    EXPECT_EQ(rig.port.record(0).values, rig.port.initialRecord().values);
    rig.program("revert to");
    EXPECT_TRUE(rig.isFactory(0));
    EXPECT_EQ(rig.name(), factory);
    rig.click(*rig.find("Undo"));
    EXPECT_EQ(rig.port.record(0).values, rig.port.initialRecord().values);
}

TEST(ProgramMenu, revertsTheWholeBankOnlyWhenAskedTwice)
{
    MenuRig rig;
    for (const int changed : {0, 200, 383}) {
        ProgramRecord record = rig.port.record(changed);
        record.values[kVolume] = record.values[kVolume] > 0.5f ? 0.25f : 0.75f;
        rig.port.replaceProgram(changed, record);
    }
    rig.program("revert all");
    rig.key(gui::Key::escape);
    EXPECT_FALSE(rig.isFactory(200));
    rig.program("revert all");
    rig.key(gui::Key::enter);
    for (const int changed : {0, 200, 383})
        EXPECT_TRUE(rig.isFactory(changed)) << changed;
    rig.click(*rig.find("Undo"));
    EXPECT_FALSE(rig.isFactory(383));
}

TEST(ProgramMenu, renamesInPlaceOfTheField)
{
    MenuRig rig;
    const std::string before = rig.name();
    rig.program("rename");
    EXPECT_TRUE(rig.window->keysWanted());
    rig.type("Quiet Harbour");
    rig.key(gui::Key::enter);
    EXPECT_EQ(rig.name(), "Quiet Harbour");
    EXPECT_FALSE(rig.window->keysWanted());
    rig.program("rename");
    rig.type("Nothing");
    rig.key(gui::Key::escape);
    EXPECT_EQ(rig.name(), "Quiet Harbour");
    // No name is longer than its place in a program.
    rig.program("rename");
    rig.type(std::string(60, 'w'));
    rig.key(gui::Key::enter);
    EXPECT_EQ(rig.name(), std::string(sizeof(ProgramRecord::name) - 1, 'w'));
}

TEST(ProgramMenu, copiesTextThatPastesIntoAnotherProgram)
{
    MenuRig rig;
    rig.program("copy program");
    EXPECT_THAT(rig.window->clipboard(), HasSubstr(rig.name()));
    const auto copied = rig.port.record(0).values;
    rig.port.setProgram(40);
    rig.program("paste");
    EXPECT_EQ(rig.port.record(40).values, copied);
    // What is no program is refused with a word, and changes nothing.
    rig.window->frame().host().copyToClipboard("anything");
    rig.port.setProgram(41);
    rig.program("paste");
    EXPECT_TRUE(rig.frame().hasOverlay());
    EXPECT_TRUE(rig.isFactory(41));
}

TEST(ProgramMenu, asksForFiles)
{
    MenuRig rig;
    const std::pair<const char*, const char*> entries[] = {{"load bank", "fileDialog 0"},
                                                           {"save bank", "fileDialog 1"},
                                                           {"load program", "fileDialog 2"},
                                                           {"save program", "fileDialog 3"}};
    for (const auto& [entry, call] : entries) {
        rig.port.takeCalls();
        rig.program(entry);
        EXPECT_THAT(rig.port.takeCalls(), Contains(call));
    }
}

TEST(SettingsMenu, changesAreKeptAndTakeEffect)
{
    MenuRig rig;
    rig.settings("resets the control");
    rig.settings("keys move");
    EXPECT_FALSE(rig.editor.context().doubleClickTypes);
    EXPECT_TRUE(rig.frame().keyboardMode());
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
    rig.key(gui::Key::escape);
    EXPECT_THAT(rig.port.takeCalls(), Not(Contains("forgetAll")));
    rig.settings("forget all");
    rig.key(gui::Key::enter);
    EXPECT_THAT(rig.port.takeCalls(), Contains("forgetAll"));
}

} // namespace
} // namespace tolm::test
