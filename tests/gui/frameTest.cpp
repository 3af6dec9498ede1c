#include "tests/gui/frameRig.h"

#include <gmock/gmock.h>

namespace tolm::gui {

namespace {

using testing::Each;

class Frames : public FrameTest {
protected:
    Frames() : FrameTest({400.0f, 300.0f}) {}

    const Point inside{115.0f, 125.0f}; // of the inner view
    Recorder& outer = frame.content().emplace<Recorder>(Rect{100.0f, 100.0f, 200.0f, 100.0f});
    Recorder& inner = outer.emplace<Recorder>(Rect{10.0f, 20.0f, 50.0f, 50.0f});

    Recorder& overlay(bool modal, Rect bounds = {300.0f, 200.0f, 80.0f, 80.0f})
    {
        Frame::OverlayOptions options;
        options.modal = modal;
        options.dismissed = [this] { ++dismissals; };
        return static_cast<Recorder&>(
            frame.showOverlay(std::make_unique<Recorder>(bounds), std::move(options)));
    }
    int dismissals = 0;
};

TEST_F(Frames, eventsGoToTheTopmostViewAndUpUntilOneTakesThem)
{
    hands.press(inside);
    EXPECT_EQ(inner.take(), "entered, down 5,5");
    EXPECT_EQ(outer.take(), "");
    hands.release(inside);

    inner.takesPresses = false;
    hands.press(inside);
    EXPECT_EQ(outer.take(), "down 15,25");
    EXPECT_EQ(frame.captured(), &outer);
    hands.release({0.0f, 0.0f});
    hands.wheel(inside, 1.0f);
    EXPECT_EQ(outer.take(), "up, wheel");

    inner.setVisible(false);
    hands.press(inside);
    EXPECT_EQ(inner.take(), "up, down 5,5, wheel, left");
}

TEST_F(Frames, aPressKeepsTheMouseUntilItsOwnButtonIsReleased)
{
    hands.press(inside);
    hands.click({395.0f, 5.0f}, MouseButton::right);
    EXPECT_EQ(frame.captured(), &inner);
    hands.release({395.0f, 5.0f});
    EXPECT_EQ(inner.take(), "entered, down 5,5, drag 285,-115, up");
    hands.wait(0.0);
    EXPECT_EQ(inner.take(), "left") << "hovering stood still during the drag";

    // The release got lost, as when another program took the mouse.
    hands.press(inside);
    inner.take();
    hands.press(inside);
    EXPECT_EQ(inner.take(), "lost, down 5,5");
}

TEST_F(Frames, viewsThatAreDisabledHiddenRemovedOrGoneGetNothingMore)
{
    inner.focusable = true;
    hands.press(inside);
    inner.take();
    inner.setEnabled(false);
    EXPECT_EQ(inner.take(), "lost, blur, left");
    hands.release(inside);
    hands.press(inside);
    EXPECT_EQ(frame.captured(), &outer);
    hands.release(inside);

    inner.setEnabled(true);
    hands.press(inside);
    inner.take();
    auto removed = outer.remove(inner);
    EXPECT_EQ(static_cast<Recorder&>(*removed).take(), "lost, blur, left");
    EXPECT_EQ(removed->frame(), nullptr);
    hands.move({116.0f, 125.0f});
    hands.release({116.0f, 125.0f});
    EXPECT_EQ(static_cast<Recorder&>(*removed).take(), "");
    removed.reset();

    // Destroyed with its parent in mid-drag.
    auto& next = outer.emplace<Recorder>(Rect{10.0f, 20.0f, 50.0f, 50.0f});
    hands.press(inside);
    ASSERT_EQ(frame.captured(), &next);
    frame.content().remove(outer).reset();
    EXPECT_EQ(frame.captured(), nullptr);
    EXPECT_EQ(frame.hovered(), nullptr);
    hands.move({120.0f, 130.0f});
    hands.release({120.0f, 130.0f});
    hands.wait(1.0);
}

TEST_F(Frames, aHandlerMayRemoveTheViewInWhichItRuns)
{
    // A view that deletes itself and says that it did not handle the press.
    class Vanishing final : public View {
    public:
        using View::View;
        bool mouseDown(const MouseEvent&) override
        {
            parent()->remove(*this).reset();
            return false;
        }
    };
    outer.emplace<Vanishing>(Rect{100.0f, 0.0f, 50.0f, 50.0f});
    hands.press({210.0f, 110.0f});
    EXPECT_EQ(frame.captured(), nullptr);
    EXPECT_EQ(outer.children().size(), 1u);

    inner.onPress = [this] { frame.discard(outer.remove(inner)); };
    hands.press(inside);
    EXPECT_EQ(frame.captured(), nullptr) << "what has left cannot hold the mouse";
    EXPECT_EQ(inner.take(), "entered, down 5,5, left") << "it lives until the end of the pump";
    hands.wait(0.0);
}

TEST_F(Frames, aPressBesideAMenuOnlyClosesItAndBesideABoxDoesNothing)
{
    auto& menu = overlay(false);
    hands.press({310.0f, 210.0f});
    hands.release({310.0f, 210.0f});
    EXPECT_EQ(menu.take(), "entered, down 10,10, up");
    hands.press(inside);
    EXPECT_FALSE(frame.hasOverlay());
    EXPECT_EQ(dismissals, 1);
    EXPECT_EQ(inner.take(), "");
    hands.release(inside);
    hands.wait(0.0);

    auto& box = overlay(true);
    hands.press(inside);
    hands.wheel(inside, 1.0f);
    hands.move({116.0f, 125.0f});
    EXPECT_TRUE(frame.hasOverlay());
    EXPECT_EQ(outer.take(), "");
    EXPECT_TRUE(hands.keys("Down")) << "a box swallows keys";
    frame.dismissOverlay(box);
    EXPECT_EQ(dismissals, 1) << "who takes it down himself knows";
    overlay(true);
    overlay(false);
    frame.dismissAllOverlays();
    EXPECT_EQ(dismissals, 3);
}

TEST_F(Frames, anOverlayEndsTheDragAndTakesTheRelease)
{
    Recorder* menu = nullptr;
    inner.onPress = [&] { menu = &overlay(false, {110.0f, 120.0f, 80.0f, 80.0f}); };
    hands.press(inside);
    EXPECT_EQ(frame.captured(), nullptr);
    EXPECT_EQ(inner.take(), "entered, down 5,5, lost");
    hands.move({120.0f, 140.0f});
    hands.release({120.0f, 140.0f});
    EXPECT_EQ(menu->take(), "entered, up");

    // It closes itself in its own handler and lives until the pump ends.
    menu->onPress = [&] { frame.dismissOverlay(*menu); };
    hands.press({120.0f, 140.0f});
    EXPECT_FALSE(frame.hasOverlay());
    EXPECT_EQ(menu->seen.front(), "down 10,20");
    hands.wait(0.0);
}

TEST_F(Frames, theFocusWalksInOrderAndComesBackAfterABox)
{
    outer.focusable = inner.focusable = true;
    auto& last = frame.content().emplace<Recorder>(Rect{0.0f, 0.0f, 10.0f, 10.0f});
    last.focusable = true;
    EXPECT_FALSE(hands.keys("Tab")) << "keys stay with the host";
    frame.setKeyboardMode(true);
    EXPECT_TRUE(window.keysWanted());
    std::vector<View*> order;
    for (int i = 0; i < 4; ++i) {
        hands.keys("Tab");
        order.push_back(frame.focus());
    }
    EXPECT_THAT(order, testing::ElementsAre(&outer, &inner, &last, &outer));
    hands.keys("Shift+Tab");
    EXPECT_EQ(frame.focus(), &last);

    last.takesKeys = false;
    hands.type("x");
    EXPECT_EQ(last.seen.back(), "key x");
    auto& box = overlay(true);
    box.focusable = true;
    frame.setFocus(&box);
    hands.type("y");
    EXPECT_EQ(box.seen.back(), "key y");
    hands.keys("Tab");
    EXPECT_EQ(frame.focus(), &box) << "the focus stays inside";
    frame.dismissOverlay(box);
    EXPECT_EQ(frame.focus(), &last);
    frame.setKeyboardMode(false);
    EXPECT_FALSE(window.keysWanted());

    frame.requestKeys(inner, true);
    EXPECT_TRUE(window.keysWanted());
    frame.content().remove(outer).reset();
    EXPECT_FALSE(window.keysWanted()) << "who has gone wants nothing";
}

TEST_F(Frames, aTooltipComesAfterARestAndGoesWithAPress)
{
    outer.hint = "Cutoff";
    hands.move(inside);
    hands.wait(0.5);
    hands.move({116.0f, 125.0f});
    hands.wait(0.5);
    const Image without = window.picture();
    hands.wait(0.2);
    EXPECT_NE(window.picture(), without) << "the parent's words, 0.6 s after the last move";
    EXPECT_FALSE(frame.hasOverlay());
    hands.press({116.0f, 125.0f});
    EXPECT_EQ(inner.seen.back(), "down 6,5") << "it takes no input";
    hands.release({116.0f, 125.0f});
    hands.wait(0.0);
    EXPECT_EQ(window.picture(), without);
    hands.wait(2.0);
    EXPECT_EQ(window.picture(), without) << "once per visit";
}

TEST_F(Frames, onlyWhatIsDirtyIsPaintedAndOnlyOnce)
{
    class Filled final : public View {
    public:
        using View::View;
        int draws = 0;
        void draw(Canvas& canvas) override
        {
            ++draws;
            canvas.fillRect(localBounds().inset(-50.0f), Color::rgb(0xFF0000));
        }
    };
    auto& a = frame.content().emplace<Filled>(Rect{0.0f, 0.0f, 20.0f, 20.0f});
    auto& b = frame.content().emplace<Filled>(Rect{380.0f, 280.0f, 20.0f, 20.0f});
    window.pump();
    window.pump();
    EXPECT_EQ(a.draws, 1);
    a.invalidate();
    window.pump();
    EXPECT_EQ(a.draws, 2);
    EXPECT_EQ(b.draws, 1);
    EXPECT_EQ(window.picture().row(19)[19], 0xFFFF0000u);
    EXPECT_EQ(window.picture().row(20)[20], 0xFF14171Cu) << "nothing is drawn outside of a view";
    EXPECT_FALSE(frame.isDirty());
    EXPECT_THAT(window.picture().pixels().subspan(0, 400), Each(testing::Ge(0xFF000000u)));
    a.setBounds({10.0f, 10.0f, 20.0f, 20.0f});
    window.pump();
    EXPECT_EQ(window.picture().row(5)[5], 0xFF14171Cu) << "where it was is painted again";
}

} // namespace

} // namespace tolm::gui
