// What moves by itself: the light under the pointer and menus that come into sight.

#include "gui/Menu.h"
#include "gui/MenuPanel.h"
#include "gui/PushButton.h"
#include "tests/gui/frameRig.h"

#include <gtest/gtest.h>

namespace tolm::gui {

namespace {

constexpr double kHoverSeconds = 0.08;
constexpr double kMenuSeconds = 0.06;

class Fades : public testing::Test {
protected:
    HeadlessWindow window{{400.0f, 300.0f}, 1.0f};
    Frame& frame = window.frame();
    PushButton& first = button(20.0f);
    PushButton& second = button(120.0f);

    PushButton& button(float x)
    {
        return frame.content().emplace<PushButton>(Rect{x, 20.0f, 80.0f, 30.0f}, "Go", [] {});
    }
    void pointAt(const View& view)
    {
        MouseEvent event;
        event.position = view.boundsInFrame().centre();
        frame.mouseMoved(event);
        window.pump();
    }
    void wait(double seconds)
    {
        window.advance(seconds);
        window.pump();
    }
    std::uint32_t pixel(Point at) const
    {
        return window.picture().row(static_cast<int>(at.y))[static_cast<std::size_t>(at.x)];
    }
};

TEST_F(Fades, theLightFollowsThePointerAndTurnsBackWhereItIs)
{
    window.pump();
    const Point corner = first.boundsInFrame().origin() + Point{8.0f, 8.0f};
    const std::uint32_t resting = pixel(corner);
    pointAt(first);
    EXPECT_EQ(first.hoverLight(), 0.0f);
    wait(kHoverSeconds / 2);
    EXPECT_NEAR(first.hoverLight(), 0.5f, 1e-5f);
    const std::uint32_t half = pixel(corner);
    EXPECT_NE(half, resting);
    pointAt(second);
    EXPECT_NEAR(first.hoverLight(), 0.5f, 1e-5f);
    wait(kHoverSeconds / 4);
    EXPECT_NEAR(first.hoverLight(), 0.25f, 1e-5f);
    EXPECT_NEAR(second.hoverLight(), 0.25f, 1e-5f);
    wait(kHoverSeconds);
    EXPECT_EQ(first.hoverLight(), 0.0f);
    EXPECT_EQ(second.hoverLight(), 1.0f);
    EXPECT_EQ(pixel(corner), resting);
    window.advance(1.0);
    frame.tick();
    EXPECT_FALSE(frame.isDirty()) << "nothing is painted when the light has arrived";
}

TEST_F(Fades, aViewMayGoWhileItFades)
{
    pointAt(first);
    wait(kHoverSeconds / 4);
    frame.content().remove(first).reset();
    wait(kHoverSeconds / 4);
    EXPECT_EQ(frame.hovered(), &frame.content());
}

TEST_F(Fades, menusComeIntoSight)
{
    window.pump();
    MenuRequest request;
    request.entries = {{1, "Saw", {}, false, true, {}, {}}};
    request.anchor = {200.0f, 100.0f, 60.0f, 20.0f};
    Menu& menu = Menu::show(frame, std::move(request));
    const Point inside = menu.panel(0).boundsInFrame().origin() + Point{3.0f, 12.0f};
    const std::uint32_t before = pixel(inside);
    window.pump();
    EXPECT_EQ(pixel(inside), before);
    wait(kMenuSeconds / 2);
    const std::uint32_t half = pixel(inside);
    wait(kMenuSeconds);
    const std::uint32_t whole = pixel(inside);
    EXPECT_NE(half, before);
    EXPECT_NE(half, whole);
    window.advance(1.0);
    frame.tick();
    EXPECT_FALSE(frame.isDirty());
}

} // namespace

} // namespace tolm::gui
