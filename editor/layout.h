#pragma once
// Where everything stands: one row per panel and one per control. Places are logical pixels from
// the top left corner of the row's page.

#include "editor/theme.h"
#include "gui/geometry.h"

#include <cstdint>
#include <span>

namespace tolm {

inline constexpr gui::Point kWindowSize{1120.0f, 720.0f};

// A part of the window that is shown and hidden as one.
enum class Page : std::uint8_t {
    header,
    voice, // always visible: oscillators, filter, envelopes, voices
    modulation,
    matrix,
    arpeggiator,
    effects,
    keyboard,
};
inline constexpr int kPageCount = 7;

// Where a page lies in the window. The four pages of the lower pane share one place.
gui::Rect pagePlace(Page page);

enum class ControlKind : std::uint8_t {
    knob,
    bigKnob,
    toggle,   // on and off, its label inside
    segments, // a few named positions side by side
    shapes,   // the same, drawn as waveforms
    menu,     // a field with the chosen entry
    stepper,  // two arrows: previous and next
    number,   // a value as text, dragged up and down
    matrixField,
    matrixAmount,
};

struct ControlRow {
    Page page;
    int tag;
    ControlKind kind;
    gui::Rect place;
    const char* label; // short, beside or below the control; "" for none
    const char* spoken;
    const char* tooltip;
    Accent accent;
};

struct PanelRow {
    Page page;
    gui::Rect place;
    const char* title;
    Accent accent;
};

// Displays and other views that are no single parameter have their place here too.
struct DisplayPlaces {
    gui::Rect waves[2];
    gui::Rect filter;
    gui::Rect envelopes[3]; // amplitude, filter, modulation
    gui::Rect lfos[3];
    gui::Rect voiceSwitches; // eight in a row
    gui::Rect modulationList;
    gui::Rect matrixTidy;
    gui::Rect arpPatterns;
    gui::Rect arpTools;
    gui::Rect arpHint;
    gui::Rect arpSteps; // the whole panel
};
extern const DisplayPlaces kDisplayPlaces;

std::span<const ControlRow> controlRows();
std::span<const PanelRow> panelRows();

} // namespace tolm
