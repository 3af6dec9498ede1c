// Clicks, drags, keys and scales: the parts of input that need no window.

#include "gui/ClickCounter.h"
#include "gui/DragGesture.h"
#include "gui/XcbKeyboard.h"
#include "gui/displayScale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tolm::gui {

namespace {

struct Recorded final : DragListener {
    std::string calls;
    float value = 0.5f;
    void gestureBegan() override { calls += "<"; }
    void gestureMoved(float next) override
    {
        calls += ".";
        value = next;
    }
    void gestureEnded() override { calls += ">"; }
};

MouseEvent at(float y, bool shift = false)
{
    return {{10.0f, y}, MouseButton::left, {shift, false, false}, 1, 0};
}

TEST(DragGestures, turnTheWholeRangeIn160PixelsAndFinelyWithShift)
{
    Recorded control;
    DragGesture gesture(control);
    EXPECT_EQ(gesture.press(at(100.0f), 0.0f), DragGesture::Press::drag);
    gesture.drag(at(20.0f));
    EXPECT_FLOAT_EQ(control.value, 0.5f);
    gesture.drag(at(4.0f, true));
    EXPECT_FLOAT_EQ(control.value, 0.5f + 0.1f / 8.0f);
    gesture.drag(at(-500.0f));
    EXPECT_EQ(control.value, 1.0f);
    gesture.drag(at(-484.0f));
    EXPECT_FLOAT_EQ(control.value, 0.9f) << "the way beyond the end is not walked back";
    gesture.end();
    gesture.end();
    gesture.drag(at(0.0f));
    EXPECT_EQ(control.calls, "<....>");
}

TEST(DragGestures, clicksForOtherThingsBeginNone)
{
    Recorded control;
    DragGesture gesture(control);
    MouseEvent event = at(0.0f);
    event.clicks = 2;
    EXPECT_EQ(gesture.press(event, 0.3f), DragGesture::Press::doubleClick);
    event.modifiers.control = true;
    EXPECT_EQ(gesture.press(event, 0.3f), DragGesture::Press::controlClick);
    EXPECT_EQ(control.calls, "");
}

TEST(DragGestures, wheelTurnsAreOneGestureUntilTheyRest)
{
    Recorded control;
    DragGesture gesture(control);
    const auto turn = [](float steps, bool shift) {
        return WheelEvent{{}, steps, {shift, false, false}, 0};
    };
    gesture.wheel(turn(2.0f, false), 0.5f, 10.0);
    EXPECT_FLOAT_EQ(control.value, 0.54f);
    EXPECT_TRUE(gesture.tick(10.2));
    gesture.wheel(turn(-1.0f, true), 0.54f, 10.2);
    EXPECT_FLOAT_EQ(control.value, 0.538f);
    EXPECT_TRUE(gesture.tick(10.45));
    EXPECT_FALSE(gesture.tick(10.51));
    EXPECT_EQ(control.calls, "<..>");
    gesture.wheel(turn(1.0f, false), 0.5f, 11.0, 1.0f / 3.0f);
    EXPECT_FLOAT_EQ(control.value, 0.5f + 1.0f / 3.0f);
    // A press in between closes the turn and begins anew.
    gesture.press(at(0.0f), 0.5f);
    gesture.end();
    EXPECT_EQ(control.calls, "<..><.><>");
}

TEST(Clicks, countToTwoNearbyAndInTimeAlsoWhenTheClockWraps)
{
    ClickCounter clicks;
    const auto left = MouseButton::left;
    EXPECT_EQ(clicks.press(left, {5.0f, 5.0f}, 0xFFFFFF80u), 1);
    EXPECT_EQ(clicks.press(left, {8.0f, 5.0f}, 0x00000010u), 2);
    EXPECT_EQ(clicks.press(left, {8.0f, 5.0f}, 0x00000020u), 1) << "a third press is a first";
    EXPECT_EQ(clicks.press(left, {13.0f, 5.0f}, 0x00000030u), 1) << "elsewhere";
    EXPECT_EQ(clicks.press(MouseButton::right, {13.0f, 5.0f}, 0x00000040u), 1);
    EXPECT_EQ(clicks.press(MouseButton::right, {13.0f, 5.0f}, 0x00000240u), 1) << "too late";
}

// Code 38 is a letter, 39 a key with a third level, 40 a keypad key, 41 to 43 dead keys and space.
KeyMap someMap()
{
    KeyMap map;
    map.firstCode = 38;
    map.symbolsPerCode = 6;
    map.symbols = {
        'a',    0,      0x6C6, 0x6E6, 0,          0, //
        'e',    'E',    0,     0,     0x20AC,     0, //
        0xFF96, 0xFFB4, 0,     0,     0,          0, //
        0xFE51, 0xFE50, 0,     0,     0,          0, //
        ' ',    0,      0,     0,     0,          0, //
        0xE4,   0,      0,     0,     0x01001E9E, 0, //
    };
    map.numLock = XCB_MOD_MASK_2;
    map.thirdLevel = XCB_MOD_MASK_5;
    return map;
}

TEST(Keyboard, levelsLocksAndTheKeypad)
{
    XcbKeyboard keyboard(someMap());
    const auto text = [&](int code, int state) {
        const auto key = keyboard.translate(code, static_cast<std::uint16_t>(state));
        return key ? key->text : "-";
    };
    EXPECT_EQ(text(38, 0), "a");
    EXPECT_EQ(text(38, XCB_MOD_MASK_SHIFT), "A") << "no capital of its own in the map";
    EXPECT_EQ(text(38, XCB_MOD_MASK_LOCK), "A");
    EXPECT_EQ(text(43, XCB_MOD_MASK_LOCK), "\u00C4");
    EXPECT_EQ(text(39, XCB_MOD_MASK_5), "\u20AC");
    EXPECT_EQ(text(43, XCB_MOD_MASK_5), "\u1E9E");
    EXPECT_EQ(text(38, XCB_MOD_MASK_CONTROL | 1 << 13), "a") << "commands are Latin letters";
    EXPECT_EQ(text(40, XCB_MOD_MASK_2), "4");
    EXPECT_EQ(keyboard.translate(40, 0)->key, Key::left);
    EXPECT_EQ(keyboard.translate(40, XCB_MOD_MASK_2 | XCB_MOD_MASK_SHIFT)->key, Key::left);
    EXPECT_EQ(text(200, 0), "-");
    EXPECT_EQ(text(1, 0), "-");
}

TEST(Keyboard, deadKeysWaitForTheirLetter)
{
    XcbKeyboard keyboard(someMap());
    EXPECT_FALSE(keyboard.translate(41, 0));
    EXPECT_EQ(keyboard.translate(39, 0)->text, "\u00E9");
    EXPECT_FALSE(keyboard.translate(41, XCB_MOD_MASK_SHIFT));
    EXPECT_EQ(keyboard.translate(38, XCB_MOD_MASK_SHIFT)->text, "\u00C0");
    keyboard.translate(41, 0);
    EXPECT_EQ(keyboard.translate(42, 0)->text, "\u00B4") << "with a space it stands alone";
    keyboard.translate(41, 0);
    EXPECT_EQ(keyboard.translate(43, 0)->text, "\u00B4\u00E4");
    EXPECT_EQ(keyboard.translate(38, 0)->text, "a") << "used up";
}

TEST(DisplayScale, readsRoundsAndFits)
{
    EXPECT_EQ(dpiOf("a:1\nXft.dpi:\t 120\n"), 120.0f);
    EXPECT_FALSE(dpiOf("Xft.dpi: many\n"));
    EXPECT_FALSE(dpiOf("NoXft.dpi:96"));
    EXPECT_EQ(roundedScale(1.6f), 1.5f);
    EXPECT_EQ(roundedScale(0.0f), 0.75f);
    EXPECT_EQ(roundedScale(9.0f), 2.5f);
    EXPECT_EQ(roundedScale(std::numeric_limits<float>::quiet_NaN()), 1.0f);
    EXPECT_EQ(fittingScale(2.0f, {1120.0f, 720.0f}, {1920.0f, 1080.0f}), 1.25f);
    EXPECT_EQ(fittingScale(1.0f, {1120.0f, 720.0f}, {640.0f, 480.0f}), 0.75f) << "the least";
}

} // namespace

} // namespace tolm::gui
