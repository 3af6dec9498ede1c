// The browser: what it lists, what the keys do, and what it stores.

#include "EditorRig.h"
#include "editor/CBrowser.h"

#include <gtest/gtest.h>

namespace tolm::test {
namespace {

struct BrowserRig : EditorRig {
    BrowserRig()
    {
        editor.context().toggleBrowser();
        wait();
    }
    gui::Rect row(int index)
    {
        return browser.names().rowPlace(index).moved(browser.names().boundsInFrame().origin());
    }
    CBrowser& browser = *find<CBrowser>("Browser");
    CBrowserModel& model = browser.model();
};

TEST(Browser, coversThePagesAndTakesKeysWhileItIsOpen)
{
    BrowserRig rig;
    EXPECT_TRUE(rig.browser.isShowing());
    EXPECT_FALSE(rig.find("Filter cutoff")->isShowing());
    EXPECT_TRUE(rig.window->keysWanted());
    EXPECT_TRUE(rig.keys("Escape"));
    EXPECT_FALSE(rig.browser.isShowing());
    EXPECT_TRUE(rig.find("Filter cutoff")->isShowing());
    EXPECT_FALSE(rig.window->keysWanted());
    EXPECT_FALSE(rig.keys("Space")) << "the host's again";
    rig.click("Program ");
    EXPECT_TRUE(rig.browser.isShowing());
    EXPECT_TRUE(rig.keys("Enter"));
    EXPECT_FALSE(rig.browser.isShowing());
    rig.editor.context().toggleBrowser();
    rig.editor.close();
    rig.open();
    EXPECT_FALSE(rig.find("Browser")->isShowing());
}

TEST(Browser, arrowKeysPlayThroughTheList)
{
    BrowserRig rig;
    rig.keys("Down");
    EXPECT_EQ(rig.port.currentProgram(), 1);
    rig.keys("PageDown");
    EXPECT_EQ(rig.port.currentProgram(), 33);
    rig.keys("Up");
    EXPECT_EQ(rig.port.currentProgram(), 32);
    // A press on the keys below takes the focus; the arrows still belong to the browser.
    rig.click({600.0f, 700.0f});
    rig.keys("Left");
    EXPECT_EQ(rig.port.currentProgram(), 0);
    rig.keys("Up");
    EXPECT_EQ(rig.port.currentProgram(), 0);
}

TEST(Browser, listsBanksAndCategoriesAsThePlugInDoes)
{
    BrowserRig rig;
    rig.model.showBank(2);
    EXPECT_EQ(rig.port.currentBank(), 2);
    EXPECT_EQ(rig.model.rows().size(), 128u);
    EXPECT_EQ(rig.model.rows().front().program, 256);
    rig.model.showCategory(2);
    ASSERT_FALSE(rig.model.rows().empty());
    for (const auto& row : rig.model.rows())
        EXPECT_FLOAT_EQ(rig.port.record(row.program).values[kPatchCategory], 2.0f) << row.label;
    // From a category back to a bank: its filter goes.
    rig.model.showBank(0);
    EXPECT_EQ(rig.model.category(), 0);
    EXPECT_EQ(rig.model.rows().front().program, 0);
}

TEST(Browser, followsTheProgramThatTheHostChooses)
{
    BrowserRig rig;
    rig.port.setProgram(200);
    rig.wait();
    EXPECT_EQ(rig.model.currentRow(), 72);
    rig.click("Next program");
    EXPECT_EQ(rig.port.currentProgram(), 201);
    // A category without the program gives way; the program stays.
    rig.model.showCategory(4);
    int other = 0;
    while (rig.port.record(other).values[kPatchCategory] == 4.0f)
        ++other;
    rig.port.setProgram(other);
    rig.wait();
    EXPECT_EQ(rig.port.currentProgram(), other);
    EXPECT_EQ(rig.model.category(), 0);
    EXPECT_EQ(rig.model.currentRow(), other);
    // So it is when the window opens.
    rig.editor.close();
    rig.port.setProgram(300);
    rig.open();
    EXPECT_EQ(rig.port.currentProgram(), 300);
    rig.click("Previous program");
    EXPECT_EQ(rig.port.currentProgram(), 299);
}

TEST(Browser, typingSearchesAllBanks)
{
    BrowserRig rig;
    rig.port.setProgram(300);
    rig.port.setProgramName("Zyxqv Lantern");
    rig.port.setProgram(0);
    rig.wait();
    rig.type("lantern zyx");
    ASSERT_EQ(rig.model.rows().size(), 1u);
    EXPECT_EQ(rig.port.currentProgram(), 0) << "found is not chosen";
    rig.keys("Down");
    EXPECT_EQ(rig.port.currentProgram(), 300);
    for (int i = 0; i < 11; ++i)
        rig.keys("Backspace");
    EXPECT_EQ(rig.model.rows().size(), 128u);
}

TEST(Browser, aPressChoosesAndAStarIsKept)
{
    BrowserRig rig;
    rig.click(rig.row(70).centre());
    EXPECT_EQ(rig.port.currentProgram(), 70);
    rig.click({rig.row(70).right() - 6.0f, rig.row(70).centre().y});
    EXPECT_EQ(rig.port.userFiles["favourites.txt"], rig.programName() + "\n");
    rig.model.showFavourites(true);
    ASSERT_EQ(rig.model.rows().size(), 1u);
    EXPECT_EQ(rig.model.rows().front().program, 70);
}

TEST(Browser, aDescriptionBelongsToTheProgramItWasTypedFor)
{
    BrowserRig rig;
    const std::string other = rig.port.record(1).description.data();
    gui::TextEdit& field = rig.browser.descriptionField();
    rig.click(field.boundsInFrame().centre());
    field.selectAll();
    rig.type("Slow strings.");
    // Choosing another program ends the typing first.
    rig.click(rig.row(1).centre());
    EXPECT_EQ(rig.port.currentProgram(), 1);
    EXPECT_STREQ(rig.port.record(0).description.data(), "Slow strings.");
    EXPECT_EQ(rig.port.record(1).description.data(), other);
    EXPECT_EQ(field.text(), other);
    EXPECT_TRUE(rig.undo());
    EXPECT_STRNE(rig.port.record(0).description.data(), "Slow strings.");
}

} // namespace
} // namespace tolm::test
