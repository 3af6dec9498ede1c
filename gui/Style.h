#pragma once
// The look of overlays and of what controls share: one place for colours, letters and corners.

#include "gui/Color.h"
#include "gui/Font.h"

namespace tolm::gui {

struct Style {
    Color back = Color::rgb(0x14171C);
    Color panelTop = Color::rgb(0x222730); // panels are a vertical gradient
    Color panelBottom = Color::rgb(0x1A1E25);
    Color edge = Color::rgb(0x2E3440);
    Color well = Color::rgb(0x0F1216); // fields and lists
    Color track = Color::rgb(0x333A46);
    Color text = Color::rgb(0xE6EAF0);
    Color secondaryText = Color::rgb(0x99A2B2);
    Color disabledText = Color::rgb(0x5C6472);
    Color accent = Color::rgb(0x6CA8FF);
    Color warning = Color::rgb(0xFF7A90);
    Color shade = Color::rgb(0x000000).withAlpha(0.45f); // over the window behind a modal box

    TextStyle title{10.5f, FontWeight::semiBold, 0.9f, false};
    TextStyle label{9.5f, FontWeight::medium, 0.0f, false};
    TextStyle field{11.0f, FontWeight::medium, 0.0f, false};

    float panelRadius = 7.0f;
    float controlRadius = 4.0f;
    float wellRadius = 5.0f;
    float margin = 12.0f; // the least distance between an overlay and the window's edge
    float grid = 4.0f;
};

} // namespace tolm::gui
