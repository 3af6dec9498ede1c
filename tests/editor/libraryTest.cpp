// Finding programs and remembering what the user likes.

#include "FakeEditorPort.h"
#include "editor/Favourites.h"
#include "editor/PresetSearch.h"
#include "editor/Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void describe(OfflinePort& port, int program, const char* name, const char* description,
              float category)
{
    port.setProgram(program);
    port.setProgramName(name);
    port.setDescription(description);
    port.OfflinePort::setParameter(kPatchCategory, category);
}

TEST(PresetSearch, ranksNamesOverCategoriesOverDescriptions)
{
    OfflinePort port;
    describe(port, 0, "Zyx", "A quintuple qqq sound", 0.0f);
    describe(port, 50, "Aqqq", "", 0.0f);
    describe(port, 100, "Some Qqq", "", 0.0f);
    describe(port, 200, "Qqq Later", "", 0.0f);
    describe(port, 300, "QQQ", "", 0.0f);
    describe(port, 301, "Other", "xqqqx", 0.0f);
    PresetSearch search;
    EXPECT_THAT(search.find("qqq"), IsEmpty()) << "nothing was read yet";
    search.read(port);
    EXPECT_THAT(search.find("qqq"), ElementsAre(300, 200, 100, 50, 0, 301));
    EXPECT_THAT(search.find(" QUINTuple  qqq "), ElementsAre(0));
    EXPECT_THAT(search.find("qqq some"), ElementsAre(100));
    EXPECT_THAT(search.find("qqq nowhereatall"), IsEmpty());
    EXPECT_EQ(search.find("").size(), static_cast<std::size_t>(kProgramCount));

    describe(port, 5, "Plain", "", 12.000001f);
    describe(port, 6, "Broken", "", 1.0e30f);
    search.read(port);
    const std::vector<int> textures = search.find("textures plain");
    EXPECT_THAT(textures, ElementsAre(5));
}

TEST(Favourites, surviveTheWindowSortingAndDamage)
{
    FakeEditorPort port;
    {
        Favourites favourites(port);
        favourites.set("Glass Bell", true);
        favourites.set("Round Anchor", true);
        favourites.set("", true);
        favourites.set("two\nlines", true);
        favourites.set(std::string(40, 'x'), true);
    }
    EXPECT_EQ(port.userFiles["favourites.txt"], "Glass Bell\nRound Anchor\n");
    Favourites favourites(port);
    Favourites elsewhere(port);
    elsewhere.set("From Elsewhere", true);
    favourites.set("Glass Bell", false);
    EXPECT_TRUE(favourites.has("From Elsewhere")) << "another instance's favourite was lost";
    EXPECT_FALSE(favourites.has("Glass Bell"));

    port.userFiles["favourites.txt"] =
        std::string("\n\x01\x02\nGood\n") + std::string(100, 'y') + "\nGood\nLast";
    const Favourites damaged(port);
    EXPECT_EQ(damaged.count(), 2u);
    EXPECT_TRUE(damaged.has("Good") && damaged.has("Last"));
    port.userFiles["favourites.txt"].clear();
    for (int i = 0; i < 5000; ++i)
        port.userFiles["favourites.txt"].append("n").append(std::to_string(i)).append("\n");
    EXPECT_EQ(Favourites(port).count(), Favourites::kMost);
}

TEST(Settings, comeBackAsTheyWereAndDamageGivesDefaults)
{
    FakeEditorPort port;
    EXPECT_EQ(loadSettings(port), Settings{});
    Settings settings;
    settings.scalePercent = 150;
    settings.doubleClick = DoubleClick::reset;
    settings.keyboardMode = true;
    for (int i = 0; i < 12; ++i)
        settings.useFolder("/sounds/with blanks " + std::to_string(i));
    settings.useFolder("/sounds/with blanks 7");
    settings.useFolder(settings.recentFolders[3]); // one of its own
    settings.useFolder("bad\nfolder");
    EXPECT_EQ(settings.recentFolders.size(), 8u);
    EXPECT_EQ(settings.recentFolders[1], "/sounds/with blanks 7");
    saveSettings(port, settings);
    EXPECT_EQ(loadSettings(port), settings);

    EXPECT_EQ(readSettings("scale 9999\nscale 12x\nscale\ndouble-click twice\nkeyboard maybe\n"
                           "folder \nunknown thing\n\n \nscale -75"),
              Settings{});
    Settings half;
    half.scalePercent = 200;
    EXPECT_EQ(readSettings("scale 200\nkeyb"), half);
}

} // namespace
} // namespace tolm::test
