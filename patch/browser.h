#pragma once
// The preset browser: the list of one bank's programs or of a category's, and stepping through it.
// A program number that an action answers is to be selected with the plug-in's setProgram.

#include "patch/programStore.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace tolm {

inline constexpr int kPresetListSize = 128;
inline constexpr int kCategoryCount = 14; // 0 is none, and "Show All" as a filter

struct PresetBrowser {
    int categoryFilter = 0; // 0 shows one bank, 1..13 a category of all banks
    std::array<std::int16_t, kPresetListSize> presetListIndex{}; // programs, -1: empty
    int selected = 0;                                            // list position

    PresetBrowser() { presetListIndex.fill(-1); }
};

// Refills the list and selects the current program's entry. When it has none, the first entry is
// selected, and its program is the answer.
std::optional<int> rebuildPresetList(PresetBrowser& browser, const ProgramStore& store,
                                     int currentBank, int currentProgram);

// What the list shows at a position: "001: Name" for a bank, the bare name for a category, nothing
// for an empty entry.
std::string presetLabel(const PresetBrowser& browser, const ProgramStore& store, int position);

// Positions outside the list and empty entries are ignored.
std::optional<int> choosePreset(PresetBrowser& browser, int position);
std::optional<int> previousPreset(PresetBrowser& browser);
std::optional<int> nextPreset(PresetBrowser& browser);

// The bank 0..2 that the three-position control's value 0..1 stands for.
int bankFromControl(float value);
// Takes a menu position 0..13; false for others, which change nothing. Rebuild the list after it.
bool chooseCategory(PresetBrowser& browser, int position);

} // namespace tolm
