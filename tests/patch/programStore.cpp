// How the store is filled, and what threads may do with it.

#include "patch/programStore.h"

#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <thread>
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
        setName(bank[static_cast<std::size_t>(p)], "Sound " + std::to_string(999 - p));
        bank[static_cast<std::size_t>(p)].values[kVolume] = static_cast<float>(p);
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

TEST(ProgramStore, sortsThreeGroupsAndKeepsTheLastElevenPlaces)
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
}

TEST(ProgramStore, stripsMarksBeforeItSorts)
{
    Bank bank = reversedBank();
    setName(bank[5], "+Abc");
    setName(bank[200], "+");
    setName(bank[375], "+Template One");
    setName(bank[100], "++Twice");
    bank[300].name.fill('+'); // no terminator at all
    const ProgramStore store = storeOf(bank);
    EXPECT_EQ(store.name(0), "+Twice"); // only one mark is taken off
    EXPECT_EQ(store.name(1), "Abc");
    EXPECT_EQ(store.value(1, kVolume), 5.0f);
    EXPECT_EQ(store.name(128), "");
    EXPECT_EQ(store.name(375), "Template One");
    EXPECT_EQ(store.name(256), std::string(31, '+'));
}

TEST(ProgramStore, putsDashedNamesBehindAllOthers)
{
    Bank bank = reversedBank();
    setName(bank[1], "-b");
    setName(bank[2], "+-a");
    setName(bank[3], "~tilde");
    const ProgramStore store = storeOf(bank);
    EXPECT_EQ(store.name(125), "~tilde");
    EXPECT_EQ(store.name(126), "-a");
    EXPECT_EQ(store.name(127), "-b");
}

TEST(ProgramStore, resetsEveryEffectOrder)
{
    Bank bank = reversedBank();
    for (ProgramRecord& record : bank)
        for (int slot = 0; slot < kEffectSlots; ++slot)
            record.values[static_cast<std::size_t>(kEffectOrder1 + slot)] = 5.0f;
    const ProgramStore store = storeOf(bank);
    for (int p = 0; p < kProgramCount; ++p)
        for (int slot = 0; slot < kEffectSlots; ++slot)
            ASSERT_EQ(store.value(p, kEffectOrder1 + slot), static_cast<float>(slot));
}

TEST(ProgramStore, orderOfNamesIsAStrictWeakOrder)
{
    std::mt19937 random(7);
    std::vector<std::string> names{"", "-", "--", "a", "-a", "\x7f", "\xc3\xa4"};
    for (int i = 0; i < 60; ++i) {
        std::string name;
        for (unsigned n = random() % 4; n > 0; --n)
            name += "-+Aa"[random() % 4];
        names.push_back(name);
    }
    for (const std::string& a : names) {
        EXPECT_FALSE(programNameLess(a, a)) << a;
        for (const std::string& b : names) {
            EXPECT_FALSE(programNameLess(a, b) && programNameLess(b, a)) << a << " " << b;
            if (a != b) {
                EXPECT_TRUE(programNameLess(a, b) || programNameLess(b, a)) << a << " " << b;
            }
            for (const std::string& c : names)
                ASSERT_TRUE(!programNameLess(a, b) || !programNameLess(b, c) ||
                            programNameLess(a, c));
        }
    }
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

TEST(ProgramStore, valuesMayBeSharedByThreads)
{
    ProgramStore store = storeOf(reversedBank());
    store.setValue(3, kFilterCutoff, 0.25f);
    std::thread writer([&store] {
        for (int i = 0; i < 20000; ++i)
            store.setValue(3, kFilterCutoff, i % 2 ? 0.75f : 0.25f);
    });
    std::set<float> seen;
    for (int i = 0; i < 20000; ++i)
        seen.insert(store.value(3, kFilterCutoff));
    writer.join();
    seen.erase(0.25f);
    seen.erase(0.75f);
    EXPECT_TRUE(seen.empty());
    EXPECT_EQ(store.value(3, kFilterCutoff), 0.75f);
}

} // namespace
} // namespace tolm
