#pragma once
// Tells double clicks from single ones. A third press begins anew.

#include "gui/events.h"

#include <cmath>
#include <cstdint>

namespace tolm::gui {

class ClickCounter {
public:
    static constexpr std::uint32_t kMaxIntervalMs = 400;
    static constexpr float kMaxDistance = 4.0f; // logical pixels on each axis

    // 1 or 2. The server's time wraps around after 49 days, which the difference survives.
    int press(MouseButton button, Point at, std::uint32_t timeMs)
    {
        const bool again = button == button_ && timeMs - timeMs_ <= kMaxIntervalMs &&
                           std::abs(at.x - at_.x) <= kMaxDistance &&
                           std::abs(at.y - at_.y) <= kMaxDistance;
        button_ = again ? MouseButton::none : button;
        at_ = at;
        timeMs_ = timeMs;
        return again ? 2 : 1;
    }

private:
    MouseButton button_ = MouseButton::none;
    Point at_;
    std::uint32_t timeMs_ = 0;
};

} // namespace tolm::gui
