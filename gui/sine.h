#pragma once
// Sine and cosine from plain arithmetic, so that the same angle gives the same pixels with every C
// library and processor.

namespace tolm::gui {

struct Direction {
    double x = 1.0; // cosine
    double y = 0.0; // sine
};

// Any finite angle up to some thousand turns, in radians; errors stay under 1e-9.
Direction directionOf(double angle);

} // namespace tolm::gui
