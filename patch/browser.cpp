// The browser's list.

#include "patch/browser.h"

#include "patch/chunkRecord.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <cstdio>

namespace tolm {

namespace {

// Answers how many entries are in use.
int listBank(PresetBrowser& browser, int bank)
{
    for (int k = 0; k < kBankSize; ++k)
        browser.presetListIndex[static_cast<std::size_t>(k)] =
            static_cast<std::int16_t>(bank * kBankSize + k);
    return kBankSize;
}

int listCategory(PresetBrowser& browser, const ProgramStore& store)
{
    int count = 0;
    for (int program = 0; program < kProgramCount && count < kPresetListSize; ++program)
        if (truncated(store.value(program, kPatchCategory)) == browser.categoryFilter)
            browser.presetListIndex[static_cast<std::size_t>(count++)] =
                static_cast<std::int16_t>(program);
    // Equal names keep the order of their programs.
    std::stable_sort(browser.presetListIndex.begin(), browser.presetListIndex.begin() + count,
                     [&](int a, int b) { return store.name(a) < store.name(b); });
    return count;
}

int programAt(const PresetBrowser& browser, int position)
{
    if (position < 0 || position >= kPresetListSize)
        return -1;
    return browser.presetListIndex[static_cast<std::size_t>(position)];
}

} // namespace

std::optional<int> rebuildPresetList(PresetBrowser& browser, const ProgramStore& store,
                                     int currentBank, int currentProgram)
{
    browser.presetListIndex.fill(-1);
    const int count =
        browser.categoryFilter == 0 ? listBank(browser, currentBank) : listCategory(browser, store);
    const auto begin = browser.presetListIndex.begin();
    const auto found = std::find(begin, begin + count, currentProgram);
    if (found != begin + count) {
        browser.selected = static_cast<int>(found - begin);
        return std::nullopt;
    }
    browser.selected = 0;
    return choosePreset(browser, 0);
}

std::string presetLabel(const PresetBrowser& browser, const ProgramStore& store, int position)
{
    const int program = programAt(browser, position);
    if (program < 0)
        return {};
    std::string name(store.name(program));
    if (browser.categoryFilter != 0)
        return name;
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "%.03d: ", position + 1);
    return number.data() + name;
}

std::optional<int> choosePreset(PresetBrowser& browser, int position)
{
    const int program = programAt(browser, position);
    if (program < 0)
        return std::nullopt;
    browser.selected = position;
    return program;
}

std::optional<int> previousPreset(PresetBrowser& browser)
{
    return choosePreset(browser, browser.selected - 1);
}

std::optional<int> nextPreset(PresetBrowser& browser)
{
    return choosePreset(browser, browser.selected + 1);
}

int bankFromControl(float value)
{
    return std::clamp(truncated(value + 0.001f + value), 0, kBankCount - 1);
}

bool chooseCategory(PresetBrowser& browser, int position)
{
    if (position < 0 || position >= kCategoryCount)
        return false;
    browser.categoryFilter = position;
    return true;
}

} // namespace tolm
