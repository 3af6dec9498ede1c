// The browser: what it lists, what the keys do, and what it stores.

#include "EditorRig.h"
#include "editor/CBrowser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

struct BrowserRig : EditorRig {
    BrowserRig()
    {
        browser = find<CBrowser>("Browser");
        editor.context().toggleBrowser();
        idle();
        port.takeCalls();
    }
    std::string current() const { return port.record(port.currentProgram()).name.data(); }
    CBrowser* browser = nullptr;
};

TEST(Browser, coversThePagesAndTakesKeysWhileItIsOpen)
{
    BrowserRig rig;
    EXPECT_TRUE(rig.browser->isShowing());
    EXPECT_FALSE(rig.find("Filter cutoff")->isShowing());
    EXPECT_TRUE(rig.window->keysWanted());
    EXPECT_TRUE(rig.key(gui::Key::escape));
    EXPECT_FALSE(rig.browser->isShowing());
    EXPECT_TRUE(rig.find("Filter cutoff")->isShowing());
    EXPECT_FALSE(rig.window->keysWanted());
    EXPECT_FALSE(rig.key(gui::Key::space)); // the host's again
    rig.click(*rig.find("Program "));
    EXPECT_TRUE(rig.browser->isShowing());
    EXPECT_TRUE(rig.key(gui::Key::enter));
    EXPECT_FALSE(rig.browser->isShowing());
    rig.editor.context().toggleBrowser();
    rig.editor.close();
    rig.open();
    EXPECT_FALSE(rig.find("Browser")->isShowing());
}

TEST(Browser, arrowKeysPlayThroughTheList)
{
    BrowserRig rig;
    rig.key(gui::Key::down);
    EXPECT_THAT(rig.port.takeCalls(), Contains("choosePreset 1"));
    rig.key(gui::Key::pageDown);
    EXPECT_EQ(rig.port.currentProgram(), 33);
    rig.key(gui::Key::up);
    EXPECT_EQ(rig.port.currentProgram(), 32);
    // A press on the keys below takes the focus; the arrows still belong to the browser.
    rig.click({600.0f, 700.0f});
    rig.idle();
    rig.key(gui::Key::left);
    EXPECT_EQ(rig.port.currentProgram(), 0);
    rig.key(gui::Key::up);
    EXPECT_EQ(rig.port.currentProgram(), 0);
}

TEST(Browser, listsBanksAndCategoriesAsThePlugInDoes)
{
    BrowserRig rig;
    rig.browser->model().showBank(2);
    EXPECT_THAT(rig.port.takeCalls(), Contains("chooseBank 1"));
    EXPECT_EQ(rig.browser->model().rows().size(), 128u);
    EXPECT_EQ(rig.browser->model().rows().front().program, 256);
    rig.browser->model().showCategory(2);
    EXPECT_THAT(rig.port.takeCalls(), Contains("chooseCategory 2"));
    ASSERT_FALSE(rig.browser->model().rows().empty());
    for (const auto& row : rig.browser->model().rows())
        EXPECT_FLOAT_EQ(rig.port.record(row.program).values[kPatchCategory], 2.0f) << row.label;
    // From a category back to a bank: its filter goes.
    rig.browser->model().showBank(0);
    EXPECT_EQ(rig.browser->model().category(), 0);
    EXPECT_EQ(rig.browser->model().rows().front().program, 0);
}

TEST(Browser, followsTheProgramThatTheHostChooses)
{
    BrowserRig rig;
    rig.port.setProgram(200);
    rig.idle();
    EXPECT_EQ(rig.browser->model().currentRow(), 72);
    rig.click(*rig.find("Next program"));
    EXPECT_EQ(rig.port.currentProgram(), 201);
    // A category without the program gives way; the program stays.
    rig.browser->model().showCategory(4);
    int other = 0;
    while (rig.port.record(other).values[kPatchCategory] == 4.0f)
        ++other;
    rig.port.setProgram(other);
    rig.idle();
    EXPECT_EQ(rig.port.currentProgram(), other);
    EXPECT_EQ(rig.browser->model().category(), 0);
    EXPECT_EQ(rig.browser->model().currentRow(), other);
    // So it is when the window opens.
    rig.editor.close();
    rig.port.setProgram(300);
    rig.open();
    EXPECT_EQ(rig.port.currentProgram(), 300);
    rig.click(*rig.find("Previous program"));
    EXPECT_EQ(rig.port.currentProgram(), 299);
}

TEST(Browser, typingSearchesAllBanks)
{
    BrowserRig rig;
    ProgramRecord rare = rig.port.record(300);
    constexpr std::string_view kName = "Zyxqv Lantern";
    rare.name.fill('\0');
    std::copy(kName.begin(), kName.end(), rare.name.begin());
    rig.port.replaceProgram(300, rare);
    rig.idle();
    rig.type("lantern zyx");
    ASSERT_EQ(rig.browser->model().rows().size(), 1u);
    EXPECT_EQ(rig.port.currentProgram(), 0); // found is not chosen
    rig.key(gui::Key::down);
    EXPECT_EQ(rig.port.currentProgram(), 300);
    EXPECT_THAT(rig.port.takeCalls(), Contains("setProgram 300"));
    for (int i = 0; i < 11; ++i)
        rig.key(gui::Key::backspace);
    EXPECT_EQ(rig.browser->model().rows().size(), 128u);
}

TEST(Browser, aPressChoosesAndAStarIsKept)
{
    BrowserRig rig;
    const gui::Point origin = rig.browser->names().boundsInFrame().origin();
    const gui::Rect row = rig.browser->names().rowPlace(70).moved(origin);
    rig.click(row.centre());
    EXPECT_EQ(rig.port.currentProgram(), 70);
    const std::string name = rig.current();
    rig.click({row.right() - 6.0f, row.centre().y});
    EXPECT_EQ(rig.port.userFiles["favourites.txt"], name + "\n");
    rig.browser->model().showFavourites(true);
    ASSERT_EQ(rig.browser->model().rows().size(), 1u);
    EXPECT_EQ(rig.browser->model().rows().front().program, 70);
}

TEST(Browser, aDescriptionBelongsToTheProgramItWasTypedFor)
{
    BrowserRig rig;
    const std::string other = rig.port.record(1).description.data();
    rig.click(rig.browser->descriptionField());
    rig.browser->descriptionField().selectAll();
    rig.type("Slow strings.");
    // Choosing another program ends the typing first.
    const gui::Point origin = rig.browser->names().boundsInFrame().origin();
    rig.click(rig.browser->names().rowPlace(1).moved(origin).centre());
    EXPECT_EQ(rig.port.currentProgram(), 1);
    EXPECT_STREQ(rig.port.record(0).description.data(), "Slow strings.");
    EXPECT_EQ(rig.port.record(1).description.data(), other);
    EXPECT_EQ(rig.browser->descriptionField().text(), other);
    EXPECT_TRUE(rig.editor.context().history().undo());
    EXPECT_STRNE(rig.port.record(0).description.data(), "Slow strings.");
}

} // namespace
} // namespace tolm::test
