// What a player reads: names and descriptions.

#include "factoryBank.h"
#include "patch/soundTextRules.h"
#include "plugin/menus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <sstream>

namespace tolm {
namespace {

constexpr std::size_t kShortestName = 4;
constexpr std::size_t kLongestName = 20; // hosts cut at 24
constexpr std::size_t kMostWords = 3;
constexpr std::size_t kShortestDescription = 40;
constexpr std::size_t kLongestDescription = 160;

bool isLower(char c)
{
    return std::islower(static_cast<unsigned char>(c)) != 0;
}

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    });
    return text;
}

std::vector<std::string> wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

// Small words inside a name stay small, as in titles.
bool isTitleCase(const std::vector<std::string>& words)
{
    const std::set<std::string> small = {"of", "on", "in", "and", "the", "at", "to", "for", "a"};
    for (std::size_t i = 0; i < words.size(); ++i)
        if (isLower(words[i].front()) && (i == 0 || !small.contains(words[i])))
            return false;
    return true;
}

bool isPlain(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; }) &&
           text.find("  ") == std::string::npos;
}

TEST(FactoryNames, areUniqueWhateverTheCase)
{
    std::set<std::string> names;
    for (const StudiedSound& sound : factoryStudy().sounds)
        EXPECT_TRUE(names.insert(lowered(sound.name)).second) << sound.name;
}

TEST(FactoryNames, areShortTitles)
{
    for (const Sound& sound : factorySounds()) {
        const std::string name(withoutMark(nameOf(sound.record)));
        SCOPED_TRACE(name);
        EXPECT_GE(name.size(), kShortestName);
        EXPECT_LE(name.size(), kLongestName);
        EXPECT_TRUE(isPlain(name));
        const std::vector<std::string> words = wordsOf(name);
        EXPECT_LE(words.size(), kMostWords);
        EXPECT_TRUE(isTitleCase(words));
        for (const char* category : kCategoryNames)
            EXPECT_NE(name, category);
    }
}

TEST(FactoryNames, comeWithADescriptionOfASentenceOrTwo)
{
    for (const Sound& sound : factorySounds()) {
        SCOPED_TRACE(sound.record.name.data());
        const std::string description = sound.record.description.data();
        EXPECT_GE(description.size(), kShortestDescription);
        EXPECT_LE(description.size(), kLongestDescription);
        EXPECT_TRUE(isPlain(description));
    }
}

} // namespace
} // namespace tolm
