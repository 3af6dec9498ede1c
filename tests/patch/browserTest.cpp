// The browser: what the list holds, and which program each action selects.

#include "patch/browser.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace tolm {
namespace {

class Browser : public ::testing::Test {
protected:
    Browser()
    {
        const std::vector<ProgramRecord> empty(kProgramCount);
        store = std::make_unique<ProgramStore>(
            std::span<const ProgramRecord, kProgramCount>(empty.data(), kProgramCount),
            ProgramRecord{});
        for (int p = 0; p < kProgramCount; ++p)
            store->setName(p, "Program " + std::to_string(p));
    }
    void put(int program, const char* name, float category)
    {
        store->setName(program, name);
        store->setValue(program, 322, category);
    }
    std::vector<int> listed() const
    {
        std::vector<int> programs;
        for (int program : browser.presetListIndex)
            if (program >= 0)
                programs.push_back(program);
        return programs;
    }

    std::unique_ptr<ProgramStore> store;
    PresetBrowser browser;
};

using Programs = std::vector<int>;

TEST_F(Browser, bankListShowsNumberedNamesInOrder)
{
    EXPECT_EQ(rebuildPresetList(browser, *store, 1, 130), std::nullopt);
    EXPECT_EQ(browser.selected, 2);
    ASSERT_EQ(listed().size(), 128u);
    EXPECT_EQ(listed().front(), 128);
    EXPECT_EQ(listed().back(), 255);
    EXPECT_EQ(presetLabel(browser, *store, 0), "001: Program 128");
    EXPECT_EQ(presetLabel(browser, *store, 127), "128: Program 255");
    EXPECT_EQ(presetLabel(browser, *store, 128), "");
    EXPECT_EQ(presetLabel(browser, *store, -1), "");
    EXPECT_EQ(rebuildPresetList(browser, *store, 2, 130), 256); // the list's first is taken
    EXPECT_EQ(browser.selected, 0);
}

TEST_F(Browser, categoryListIsSortedByNameOverAllBanks)
{
    put(300, "Aeon", 8.0f);
    put(7, "Warm", 8.0001f);
    put(200, "aeon", 8.9f);
    put(383, "Zen", 8.0f);
    put(2, "\xC3\x84ther", 8.0f); // byte-wise: above all ASCII
    put(3, "Aaa", 9.0f);
    put(4, "Aab", 7.999f);
    ASSERT_TRUE(chooseCategory(browser, 8));
    EXPECT_EQ(rebuildPresetList(browser, *store, 0, 3), 300);
    EXPECT_EQ(listed(), (Programs{300, 7, 383, 200, 2}));
    EXPECT_EQ(presetLabel(browser, *store, 1), "Warm");
    EXPECT_EQ(presetLabel(browser, *store, 5), "");
    EXPECT_EQ(rebuildPresetList(browser, *store, 0, 383), std::nullopt);
    EXPECT_EQ(browser.selected, 2);
}

TEST_F(Browser, emptyAndOverfullCategoriesAreBounded)
{
    for (int position : {-1, 14, 1000})
        EXPECT_FALSE(chooseCategory(browser, position));
    ASSERT_TRUE(chooseCategory(browser, 13));
    EXPECT_EQ(rebuildPresetList(browser, *store, 0, 3), std::nullopt);
    EXPECT_TRUE(listed().empty());
    EXPECT_EQ(nextPreset(browser), std::nullopt);
    EXPECT_EQ(previousPreset(browser), std::nullopt);
    for (int p = 0; p < kProgramCount; ++p)
        store->setValue(p, 322, p % 2 ? 13.0f : 0.0f);
    EXPECT_EQ(rebuildPresetList(browser, *store, 0, 0), 1);
    ASSERT_EQ(listed().size(), 128u);
    for (int program : listed())
        EXPECT_LE(program, 255); // the first 128 in program order
}

TEST_F(Browser, steppingStopsAtTheEndsOfTheList)
{
    for (int p : {5, 6, 7})
        put(p, p == 6 ? "a" : "b", 1.0f);
    ASSERT_TRUE(chooseCategory(browser, 1));
    rebuildPresetList(browser, *store, 0, 6);
    EXPECT_EQ(previousPreset(browser), std::nullopt);
    EXPECT_EQ(nextPreset(browser), 5);
    EXPECT_EQ(nextPreset(browser), 7);
    EXPECT_EQ(nextPreset(browser), std::nullopt);
    EXPECT_EQ(browser.selected, 2);
    EXPECT_EQ(previousPreset(browser), 5);
    EXPECT_EQ(choosePreset(browser, 2), 7);
    for (int position : {3, 127, 128, -1, std::numeric_limits<int>::max()})
        EXPECT_EQ(choosePreset(browser, position), std::nullopt) << position;
    EXPECT_EQ(browser.selected, 2);

    chooseCategory(browser, 0);
    rebuildPresetList(browser, *store, 2, 383);
    EXPECT_EQ(nextPreset(browser), std::nullopt);
    EXPECT_EQ(previousPreset(browser), 382);
}

TEST_F(Browser, bankControlHasThreePositions)
{
    const std::pair<float, int> rows[] = {{0.0f, 0},  {0.4f, 0},         {0.5f, 1}, {0.4996f, 1},
                                          {0.99f, 1}, {0.9996f, 2},      {1.0f, 2}, {7.0f, 2},
                                          {-5.0f, 0}, {std::nanf(""), 0}};
    for (auto [value, bank] : rows)
        EXPECT_EQ(bankFromControl(value), bank) << value;
}

} // namespace
} // namespace tolm
