#pragma once
// The look of the window, an instrument panel at night: dark panels, one accent per function, the
// same letters everywhere. Colours are sRGB, sizes logical pixels.

#include "gui/Color.h"
#include "gui/Font.h"
#include "gui/Style.h"

#include <array>
#include <cstdint>

namespace tolm {

// What an accent stands for; a panel has one.
enum class Accent : std::uint8_t { osc1, osc2, filter, value, modulation, rhythm, neutral };

namespace theme {

using gui::Color;

inline constexpr Color kBack = Color::rgb(0x14171C);
inline constexpr Color kPanelTop = Color::rgb(0x222730);
inline constexpr Color kPanelBottom = Color::rgb(0x1A1E25);
inline constexpr Color kEdge = Color::rgb(0x2E3440);
inline constexpr Color kWell = Color::rgb(0x0F1216);
inline constexpr Color kText = Color::rgb(0xE6EAF0);
inline constexpr Color kSecondary = Color::rgb(0x99A2B2);
inline constexpr Color kFaint = Color::rgb(0x5C6472);
inline constexpr Color kTrack = Color::rgb(0x333A46);
inline constexpr Color kKnobTop = Color::rgb(0x434B59);
inline constexpr Color kKnobBottom = Color::rgb(0x272C35);
inline constexpr Color kModulation = Color::rgb(0xB48CFF);
inline constexpr Color kWarning = Color::rgb(0xFF7A90);

inline constexpr Color color(Accent accent)
{
    constexpr std::array<Color, 7> kColors = {
        Color::rgb(0xFFB454), Color::rgb(0x4FD6BE), Color::rgb(0xFF7A90), Color::rgb(0x6CA8FF),
        kModulation,          Color::rgb(0xA6DA5E), Color::rgb(0xC3CAD6),
    };
    return kColors[static_cast<std::size_t>(accent)];
}

inline constexpr gui::TextStyle kTitle{10.5f, gui::FontWeight::semiBold, 0.9f, false};
inline constexpr gui::TextStyle kLabel{9.5f, gui::FontWeight::medium, 0.0f, true};
inline constexpr gui::TextStyle kField{11.0f, gui::FontWeight::medium, 0.0f, true};
inline constexpr gui::TextStyle kSmallTitle{9.5f, gui::FontWeight::semiBold, 0.6f, false};
inline constexpr gui::TextStyle kProduct{17.0f, gui::FontWeight::semiBold, 0.4f, false};

inline constexpr float kPanelRadius = 7.0f;
inline constexpr float kControlRadius = 4.0f;
inline constexpr float kWellRadius = 5.0f;

// Everything of the toolkit that has a look of its own follows.
inline gui::Style overlayStyle()
{
    return {};
}

} // namespace theme
} // namespace tolm
