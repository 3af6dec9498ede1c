// How the store is filled and ordered, and where its texts end.

#include "patch/programStore.h"

#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tolm {
namespace {

using Bank = std::vector<ProgramRecord>;

void setName(ProgramRecord& record, const std::string& name)
{
    record.name.fill('\0');
    std::copy(name.begin(), name.end(), record.name.begin());
}

// Names that run backwards, and the number of each record as its volume.
Bank reversedBank()
{
    Bank bank(kProgramCount);
    for (int p = 0; p < kProgramCount; ++p) {
        ProgramRecord& record = bank[static_cast<std::size_t>(p)];
        record.values.fill(5.0f);
        setName(record, "Sound " + std::to_string(999 - p));
        record.values[kVolume] = static_cast<float>(p);
    }
    return bank;
}

ProgramRecord initPatch()
{
    ProgramRecord record;
    setName(record, "Init Patch");
    record.values[kVolume] = 1000.0f;
    return record;
}

ProgramStore storeOf(const Bank& bank)
{
    return {std::span<const ProgramRecord, kProgramCount>(bank), initPatch()};
}

TEST(ProgramStore, sortsThreeGroupsKeepsTheLastElevenPlacesAndResetsEffectOrders)
{
    const ProgramStore store = storeOf(reversedBank());
    const int groups[][2] = {{0, 128}, {128, 256}, {256, 373}};
    for (const auto& [first, last] : groups)
        for (int p = first; p < last; ++p) {
            EXPECT_EQ(store.value(p, kVolume), static_cast<float>(first + last - 1 - p)) << p;
        }
    for (int p = 373; p < 383; ++p)
        EXPECT_EQ(store.value(p, kVolume), static_cast<float>(p));
    EXPECT_EQ(store.name(383), "Init Patch");
    EXPECT_EQ(store.value(383, kVolume), 1000.0f);
    for (int p = 0; p < kProgramCount; ++p)
        for (int slot = 0; slot < kEffectSlots; ++slot)
            ASSERT_EQ(store.value(p, kEffectOrder1 + slot), static_cast<float>(slot));
}

TEST(ProgramStore, stripsMarksBeforeItSortsAndPutsDashesLast)
{
    Bank bank = reversedBank();
    setName(bank[1], "-b");
    setName(bank[2], "+-a");
    setName(bank[3], "~tilde");
    setName(bank[5], "+Abc");
    setName(bank[100], "++Twice");
    setName(bank[200], "+");
    bank[300].name.fill('+'); // no terminator at all
    setName(bank[375], "+Template One");
    const ProgramStore store = storeOf(bank);
    const std::pair<int, std::string> names[] = {
        {0, "+Twice"}, // only one mark is taken off
        {1, "Abc"},
        {125, "~tilde"},
        {126, "-a"},
        {127, "-b"},
        {128, ""},
        {256, std::string(31, '+')},
        {375, "Template One"},
    };
    for (const auto& [program, name] : names)
        EXPECT_EQ(store.name(program), name);
    EXPECT_EQ(store.value(1, kVolume), 5.0f);
}

// Whatever the pieces, exactly one of two different names comes first, and the order is a chain.
TEST(ProgramStore, orderOfNamesIsTotal)
{
    std::vector<std::string> names{""};
    for (std::size_t i = 0; names.size() < 4 + 16 + 64; ++i) // all of up to three letters
        for (const char letter : {'-', '+', 'A', '\xe4'})
            names.push_back(names[i] + letter);
    std::sort(names.begin(), names.end(), programNameLess);
    for (std::size_t a = 0; a < names.size(); ++a)
        for (std::size_t b = 0; b < names.size(); ++b)
            ASSERT_EQ(programNameLess(names[a], names[b]), a < b) << names[a] << ' ' << names[b];
    EXPECT_TRUE(programNameLess("a", "\xc3\xa4")); // bytes count as unsigned, as strcmp has it
}

TEST(ProgramStore, textsNeverLeaveTheirFields)
{
    ProgramStore store = storeOf(reversedBank());
    store.setDescription(0, "kept");
    store.setName(0, std::string(600, 'n'));
    EXPECT_EQ(store.name(0), std::string(31, 'n'));
    EXPECT_EQ(store.description(0), "kept");
    const float before = store.value(0, 0);
    store.setDescription(0, std::string(600, 'd'));
    EXPECT_EQ(store.description(0), std::string(479, 'd'));
    EXPECT_EQ(store.value(0, 0), before);
    store.setName(0, "x");
    for (std::size_t i = 1; i < 32; ++i)
        EXPECT_EQ(store.record(0).name[i], '\0') << i;
    store.record(1).name.fill('f');
    EXPECT_EQ(store.name(1).size(), 32u);
}

} // namespace
} // namespace tolm
