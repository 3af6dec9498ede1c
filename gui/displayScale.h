#pragma once
// How large a display wants its windows.

#include "gui/geometry.h"

#include <optional>
#include <string_view>

namespace tolm::gui {

inline constexpr float kLeastScale = 0.75f;
inline constexpr float kMostScale = 2.5f;

// To the nearest quarter within the limits; 1 for what is no number.
float roundedScale(float scale);
// The value of "Xft.dpi" among a display's resources, a line "name:value" each.
std::optional<float> dpiOf(std::string_view resources);
// Rounded, then quarter by quarter less until `size` fits into 90 % of the screen.
float fittingScale(float wanted, Point size, Point screenPixels);

} // namespace tolm::gui
