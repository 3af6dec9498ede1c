#pragma once
// Single parameters in the readable form: their keys, their ranges and the words for values that
// are easier to read than a number.

#include "plugin/menus.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tolm {

// Whether the parameter is written under its own name. The others are lists (matrix, steps, effect
// order) or reserved.
bool hasOwnKey(int id);
// The parameter of a key, or -1.
int idOfKey(std::string_view key);
// The largest value that a text may give; the smallest is 0.
float largestValue(int id);
bool isToggle(int id);

// The value that words stand for at this parameter.
std::optional<float> valueOfWords(int id, std::string_view words);
// The words that stand for exactly this value; empty when only a number does.
std::string wordsOfValue(int id, float value);

std::optional<int> menuIdOf(std::span<const MenuEntry> menu, std::string_view name);
std::optional<int> voiceMaskIdOf(std::string_view name);

// Effects by kind 0..5.
inline constexpr const char* kEffectNames[] = {"Distortion", "EQ-1",  "EQ-2",
                                               "Phaser",     "Delay", "Reverb"};

} // namespace tolm
