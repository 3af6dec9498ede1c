#pragma once
// The effects' cards: what each kind of effect is called, which parameters it has and where they
// stand. Places are logical pixels from the top left corner of the card.

#include "editor/layout.h"
#include "plugin/catalogue.h"

#include <array>

namespace tolm {

inline constexpr float kEffectCardWidth = 160.0f;
inline constexpr int kEffectKinds = 6; // numbers that the order slots hold

struct EffectRow {
    const char* title;
    int onId;
    int firstId; // the type; the others follow
    int lastId;
    Accent accent;
    bool hasTallPicture; // three knobs leave room for it
};

inline constexpr std::array<EffectRow, kEffectKinds> kEffectRows = {{
    {"DISTORTION", kDistOn, kDistType, kDistAmount, Accent::filter, true},
    {"EQ 1", kEq1On, kEq1Type, kEq1Type + 3, Accent::osc2, true},
    {"EQ 2", kEq2On, kEq2Type, kEq2Gain, Accent::osc2, true},
    {"PHASER", kPhaserOn, kPhaserType, kPhaserType + 5, Accent::modulation, false},
    {"DELAY", kDelayOn, kDelayType, kDelayRateRight, Accent::osc1, false},
    {"REVERB", kReverbOn, kReverbType, kReverbType + 5, Accent::value, false},
}};

namespace effectLayout {

inline constexpr gui::Rect kSwitch{120, 9, 30, 14};
inline constexpr gui::Rect kType{10, 32, 140, 20};

constexpr gui::Rect knobPlace(float column, int row)
{
    return {9.0f + 48.0f * column, 122.0f + 55.0f * static_cast<float>(row), 46, 53};
}

constexpr ControlRow toggle(int id, const char* spoken, Accent accent)
{
    return {Page::effects,
            id,
            ControlKind::toggle,
            kSwitch,
            "ON",
            spoken,
            "Puts the effect into the signal",
            accent};
}
constexpr ControlRow type(int id, const char* spoken, Accent accent)
{
    return {Page::effects, id, ControlKind::menu, kType, "", spoken, "What kind of it", accent};
}
constexpr ControlRow knob(int id, float column, int row, const char* label, const char* spoken,
                          const char* tooltip, Accent accent)
{
    return {Page::effects, id,     ControlKind::knob, knobPlace(column, row),
            label,         spoken, tooltip,           accent};
}

} // namespace effectLayout

// clang-format off
inline constexpr auto kEffectControls = std::to_array<ControlRow>({
    effectLayout::toggle(kDistOn, "Distortion on", Accent::filter),
    effectLayout::type(kDistType, "Distortion type", Accent::filter),
    effectLayout::knob(kDistColour, 0, 1, "Colour", "Distortion colour", "Corner of the tone filter", Accent::filter),
    effectLayout::knob(kDistDrive, 1, 1, "Drive", "Distortion drive", "Level into the shaper", Accent::filter),
    effectLayout::knob(kDistAmount, 2, 1, "Amount", "Distortion amount", "From dry to distorted", Accent::filter),

    effectLayout::toggle(kEq1On, "Equaliser 1 on", Accent::osc2),
    effectLayout::type(kEq1Type, "Equaliser 1 type", Accent::osc2),
    effectLayout::knob(kEq1Type + 1, 0, 1, "Freq", "Equaliser 1 frequency", "Middle or corner of the band", Accent::osc2),
    effectLayout::knob(kEq1Type + 2, 1, 1, "Q", "Equaliser 1 Q", "Narrowness of a peak; shelves have none", Accent::osc2),
    effectLayout::knob(kEq1Type + 3, 2, 1, "Gain", "Equaliser 1 gain", "Boost or cut", Accent::osc2),

    effectLayout::toggle(kEq2On, "Equaliser 2 on", Accent::osc2),
    effectLayout::type(kEq2Type, "Equaliser 2 type", Accent::osc2),
    effectLayout::knob(kEq2Type + 1, 0, 1, "Freq", "Equaliser 2 frequency", "Middle or corner of the band", Accent::osc2),
    effectLayout::knob(kEq2Type + 2, 1, 1, "Q", "Equaliser 2 Q", "Narrowness of a peak; shelves have none", Accent::osc2),
    effectLayout::knob(kEq2Gain, 2, 1, "Gain", "Equaliser 2 gain", "Boost or cut", Accent::osc2),

    effectLayout::toggle(kPhaserOn, "Phaser on", Accent::modulation),
    effectLayout::type(kPhaserType, "Phaser type", Accent::modulation),
    effectLayout::knob(kPhaserType + 1, 0, 0, "Rate", "Phaser rate", "Speed of the sweep", Accent::modulation),
    effectLayout::knob(kPhaserType + 2, 1, 0, "Freq", "Phaser frequency", "Middle of the sweep", Accent::modulation),
    effectLayout::knob(kPhaserType + 5, 2, 0, "Depth", "Phaser depth", "Width of the sweep", Accent::modulation),
    effectLayout::knob(kPhaserType + 3, 0.36f, 1, "Feedback", "Phaser feedback", "Sharpness of the notches", Accent::modulation),
    effectLayout::knob(kPhaserType + 4, 1.64f, 1, "Amount", "Phaser amount", "From dry to effect", Accent::modulation),

    effectLayout::toggle(kDelayOn, "Delay on", Accent::osc1),
    effectLayout::type(kDelayType, "Delay type", Accent::osc1),
    effectLayout::knob(kDelayRateLeft, 0, 0, "Time L", "Delay time left", "Note length of the left echo", Accent::osc1),
    effectLayout::knob(kDelayRateRight, 1, 0, "Time R", "Delay time right", "Note length of the right echo", Accent::osc1),
    effectLayout::knob(kDelayType + 1, 2, 0, "Colour", "Delay colour", "Darker or thinner echoes", Accent::osc1),
    effectLayout::knob(kDelayType + 2, 0.36f, 1, "Feedback", "Delay feedback", "How much of an echo comes again", Accent::osc1),
    effectLayout::knob(kDelayType + 3, 1.64f, 1, "Amount", "Delay amount", "Level of the echoes", Accent::osc1),

    effectLayout::toggle(kReverbOn, "Reverb on", Accent::value),
    effectLayout::type(kReverbType, "Reverb type", Accent::value),
    effectLayout::knob(kReverbType + 4, 0, 0, "Predelay", "Reverb predelay", "Time before the room answers", Accent::value),
    effectLayout::knob(kReverbType + 2, 1, 0, "Decay", "Reverb decay", "Time to die away", Accent::value),
    effectLayout::knob(kReverbType + 1, 2, 0, "Damp", "Reverb damping", "How fast highs die away", Accent::value),
    effectLayout::knob(kReverbType + 5, 0.36f, 1, "Low Cut", "Reverb low cut", "Lows kept out of the room", Accent::value),
    effectLayout::knob(kReverbType + 3, 1.64f, 1, "Amount", "Reverb amount", "Level of the room", Accent::value),
});
// clang-format on

} // namespace tolm
