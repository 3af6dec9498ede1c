// The window around the controls: tabs, header, keys and wheels, opening and closing, what the
// plug-in has to say.

#include "EditorRig.h"
#include "editor/CHeader.h"
#include "editor/CKeyboardCtrl.h"
#include "gui/Menu.h"
#include "gui/Message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

// The box above all others, if it is one.
template <class T>
T* overlay(EditorRig& rig)
{
    // Overlays are found by where they take input: the middle of the window.
    rig.frame().mouseMoved({{560.0f, 360.0f}, gui::MouseButton::none, {}, 1, 0});
    for (gui::View* view = rig.frame().hovered(); view != nullptr; view = view->parent())
        if (auto* const found = dynamic_cast<T*>(view))
            return found;
    return nullptr;
}

TEST(Tabs, choosePagesThatStayOverClosing)
{
    EditorRig rig;
    gui::View& tabs = *rig.find("Page ");
    const gui::Rect place = tabs.boundsInFrame();
    for (int tab = 3; tab >= 0; --tab) {
        rig.click({place.centre().x, place.y + 20.0f + 60.0f * static_cast<float>(tab)});
        EXPECT_EQ(rig.editor.context().actions().pages().effectPage, tab);
    }
    EXPECT_TRUE(rig.find("LFO rate")->isShowing());
    rig.editor.showPage(Page::effects);
    EXPECT_FALSE(rig.find("LFO rate")->isShowing());
    rig.editor.close();
    rig.open();
    EXPECT_TRUE(rig.find("Delay feedback")->isShowing());
    EXPECT_FALSE(rig.find("LFO rate")->isShowing());
}

TEST(Keyboard, playsByDepthAndSlidesFromKeyToKey)
{
    EditorRig rig;
    auto& keys = *rig.find<CKeyboardCtrl>("Keyboard");
    const gui::Rect place = keys.boundsInFrame();
    const float white = place.width / 36.0f;
    const float low = place.bottom() - 0.5f;
    rig.press({place.x + white / 2, low});
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("playKey 36 127"));
    rig.drag({place.x + white * 1.6f, place.y + place.height * 0.8f});
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("releaseKey 36", "playKey 38 102"));
    rig.drag({place.x + white, place.y + 1.0f}); // the black key between them, softly
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("releaseKey 38", "playKey 37 3"));
    rig.drag({place.x + white, place.y - 40.0f}); // off the keys
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("releaseKey 37"));
    rig.drag({place.right() - 1.0f, low});
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("playKey 96 127"));
    rig.release({place.right() - 1.0f, low});
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("releaseKey 96"));
    // The right button plays nothing.
    rig.press({place.x + 2.0f, low}, gui::MouseButton::right);
    EXPECT_THAT(rig.port.takeCalls(), IsEmpty());
}

TEST(Keyboard, leavesNoNoteHanging)
{
    EditorRig rig;
    auto* keys = rig.find<CKeyboardCtrl>("Keyboard");
    const gui::Point key{keys->boundsInFrame().x + 2.0f, keys->boundsInFrame().bottom() - 1.0f};
    rig.press(key);
    keys->setFirstKey(48);
    EXPECT_THAT(rig.port.takeCalls(), Contains("releaseKey 36"));
    rig.release(key);
    rig.press(key);
    rig.port.takeCalls();
    rig.port.notice = EditorNotice{"Info", "A box takes the mouse away."};
    rig.idle();
    EXPECT_THAT(rig.port.takeCalls(), Contains("releaseKey 48"));
    rig.key(gui::Key::enter);
    rig.press(key);
    rig.port.takeCalls();
    rig.editor.close();
    EXPECT_THAT(rig.port.takeCalls(), Contains("releaseKey 48"));
    EXPECT_TRUE(rig.port.shownMeters.keys.none());
}

TEST(Keyboard, reachesAllOctavesAndNoKeyBeyond127)
{
    EditorRig rig;
    auto& keys = *rig.find<CKeyboardCtrl>("Keyboard");
    gui::View& octave = *rig.find("Octave of the keys");
    const gui::Rect buttons = octave.boundsInFrame();
    for (int i = 0; i < 20; ++i)
        rig.click({buttons.centre().x, buttons.y + 5.0f});
    EXPECT_EQ(keys.firstKey(), 60);
    EXPECT_EQ(keys.touchAt({keys.bounds().width - 1.0f, 60.0f})->key, 120);
    for (int i = 0; i < 20; ++i)
        rig.click({buttons.centre().x, buttons.bottom() - 5.0f});
    EXPECT_EQ(keys.firstKey(), 0);
}

TEST(Wheels, springBackOrStayInOneGesture)
{
    EditorRig rig;
    const gui::Rect pitch = rig.find("Pitch wheel")->boundsInFrame();
    rig.press(pitch.centre());
    rig.drag({pitch.centre().x, pitch.y - 50.0f});
    EXPECT_FLOAT_EQ(rig.port.value(kPitchWheel), 1.0f);
    rig.release(pitch.centre());
    EXPECT_FLOAT_EQ(rig.port.value(kPitchWheel), 0.5f);
    EXPECT_FALSE(rig.editor.context().history().canUndo());

    const gui::Rect mod = rig.find("Modulation wheel")->boundsInFrame();
    rig.press(mod.centre());
    EXPECT_NEAR(rig.port.value(kModWheel), 0.5f, 0.01f);
    rig.drag({mod.centre().x, mod.y});
    rig.release(mod.centre());
    EXPECT_FLOAT_EQ(rig.port.value(kModWheel), 1.0f);
    EXPECT_TRUE(rig.editor.context().history().undo());
    EXPECT_FLOAT_EQ(rig.port.value(kModWheel), 0.0f);

    // A bend that is held when the window closes does not stay.
    rig.press({pitch.centre().x, pitch.y + 8.0f});
    EXPECT_GT(rig.port.value(kPitchWheel), 0.9f);
    rig.editor.close();
    EXPECT_FLOAT_EQ(rig.port.value(kPitchWheel), 0.5f);
}

TEST(BendRanges, readAsSemitones)
{
    EditorRig rig;
    const EditorContext& context = rig.editor.context();
    EXPECT_EQ(context.text(kBendUp), "2 st");
    EXPECT_FLOAT_EQ(*context.valueFromText(kBendDown, "12 st"), 12.0f / 64.0f);
    EXPECT_EQ(context.valueFromText(kBendDown, "65"), std::nullopt);
    EXPECT_EQ(context.valueFromText(kBendDown, "up"), std::nullopt);
    rig.editor.context().actions().controlChanged(kTagBendDown, 12.0f / 64.0f);
    EXPECT_EQ(rig.port.bendDownRange(), 12);
    EXPECT_EQ(context.text(kBendDown), "12 st");
}

TEST(Header, stepsProgramsSilencesAndUndoes)
{
    EditorRig rig;
    rig.click(*rig.find("Next program"));
    EXPECT_EQ(rig.port.currentProgram(), 1);
    rig.click(*rig.find("Previous program"));
    EXPECT_EQ(rig.port.currentProgram(), 0);
    rig.port.takeCalls();
    rig.click(*rig.find("Panic"));
    EXPECT_THAT(rig.port.takeCalls(), Contains("panic"));

    const float before = rig.port.value(kFilterCutoff);
    rig.editor.context().actions().controlChanged(kFilterCutoff, 0.123f);
    rig.click(*rig.find("Undo"));
    EXPECT_FLOAT_EQ(rig.port.value(kFilterCutoff), before);
    rig.click(*rig.find("Redo"));
    EXPECT_FLOAT_EQ(rig.port.value(kFilterCutoff), 0.123f);
}

TEST(Header, comparesWithTheLoadedSound)
{
    EditorRig rig;
    gui::View& mark = *rig.find("Compare");
    EXPECT_EQ(mark.tooltip(), "As it was loaded");
    const float loaded = rig.port.value(kFilterCutoff);
    rig.editor.context().actions().controlChanged(kFilterCutoff, 0.125f);
    rig.idle();
    EXPECT_THAT(mark.tooltip(), HasSubstr("Changed"));
    rig.click(mark);
    EXPECT_FLOAT_EQ(rig.port.value(kFilterCutoff), loaded);
    EXPECT_THAT(mark.tooltip(), HasSubstr("loaded sound: click for yours"));
    rig.click(mark);
    EXPECT_FLOAT_EQ(rig.port.value(kFilterCutoff), 0.125f);
    // A bank from outside: nothing is changed any more, and there is nothing to undo.
    rig.port.news.everything = true;
    rig.idle();
    EXPECT_EQ(mark.tooltip(), "As it was loaded");
    EXPECT_FALSE(rig.editor.context().history().canUndo());
}

TEST(Header, showsWhatMovesAndForgetsItAfterwards)
{
    EditorRig rig;
    auto& header = *dynamic_cast<CHeader*>(rig.find("Compare")->parent());
    const gui::Point knob = rig.find("Filter resonance")->boundsInFrame().centre();
    rig.press(knob);
    rig.drag({knob.x, knob.y - 20.0f});
    EXPECT_THAT(header.status().text(), HasSubstr("Filter resonance"));
    rig.release(knob);
    EXPECT_EQ(header.status().text(), "");
}

TEST(Header, storesCategoryAndFavourite)
{
    EditorRig rig;
    auto& header = *dynamic_cast<CHeader*>(rig.find("Compare")->parent());
    CProgramField& field = header.field();
    const gui::Point origin = field.boundsInFrame().origin();
    rig.click(field.starPlace().centre() + origin);
    const std::string name = rig.port.record(0).name.data();
    EXPECT_EQ(rig.port.userFiles["favourites.txt"], name + "\n");
    rig.click(field.starPlace().centre() + origin);
    EXPECT_EQ(rig.port.userFiles["favourites.txt"], "");

    rig.press(field.categoryPlace().centre() + origin);
    rig.release(field.categoryPlace().centre() + origin);
    rig.type("Leads");
    rig.key(gui::Key::enter);
    EXPECT_FLOAT_EQ(rig.port.value(kPatchCategory), 6.0f);
}

TEST(Notices, areShownOneByOneAndKeptWhileNoWindowIsOpen)
{
    EditorRig rig(false);
    rig.port.notice = EditorNotice{"Info", "An old program."};
    rig.editor.idle();
    EXPECT_TRUE(rig.port.notice.has_value());
    rig.open();
    auto* box = overlay<gui::Message>(rig);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->title(), "Info");
    EXPECT_EQ(box->text(), "An old program.");
    rig.port.notice = EditorNotice{"Info", "Another."};
    rig.idle();
    EXPECT_TRUE(rig.port.notice.has_value()); // waits for the first to be read
    rig.key(gui::Key::enter);
    rig.idle();
    box = overlay<gui::Message>(rig);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), "Another.");
    rig.key(gui::Key::enter);
    EXPECT_FALSE(rig.frame().hasOverlay());
}

TEST(Lifecycle, aGestureEndsWhenTheWindowCloses)
{
    EditorRig rig;
    const gui::Point knob = rig.find("Filter cutoff")->boundsInFrame().centre();
    rig.press(knob);
    rig.drag({knob.x, knob.y - 20.0f});
    rig.editor.close();
    EXPECT_THAT(rig.port.takeCalls(), Contains("endEdit 28"));
    rig.open();
    // A turn of the wheel ends by itself a little later; not when the window goes before.
    rig.frame().mouseWheel({knob, 1.0f, {}, 0});
    EXPECT_THAT(rig.port.calls, Contains("beginEdit 28"));
    rig.editor.close();
    EXPECT_THAT(rig.port.takeCalls(), Contains("endEdit 28"));
}

TEST(Lifecycle, theHostsWheelTurnsWhatIsPointedAt)
{
    EditorRig rig;
    const gui::Point knob = rig.find("Filter resonance")->boundsInFrame().centre();
    rig.frame().mouseMoved({knob, gui::MouseButton::none, {}, 1, 0});
    const float before = rig.port.value(kFilterResonance);
    rig.port.news.wheelDistance = 2.0f;
    rig.idle();
    EXPECT_FLOAT_EQ(rig.port.value(kFilterResonance), before + 0.04f);
}

TEST(Size, isKeptAndFitsAHostThatRefuses)
{
    EditorRig rig;
    rig.editor.shell().settings.scalePercent = 150;
    rig.editor.shell().applySettings();
    rig.idle();
    EXPECT_THAT(rig.port.calls, Contains("resizeHostWindow 1680 1080"));
    EXPECT_EQ(rig.window->picture().width(), 1680);
    EXPECT_THAT(rig.port.userFiles["settings.txt"], HasSubstr("150"));

    rig.port.refusesSize = true;
    rig.editor.shell().settings.scalePercent = 200;
    rig.editor.shell().applySettings();
    rig.idle();
    EXPECT_EQ(rig.window->picture().width(), 1680); // all of it is still seen
    EXPECT_FLOAT_EQ(rig.editor.windowSize().x, 1680.0f);
    ASSERT_NE(overlay<gui::Message>(rig), nullptr); // and the user is told
    rig.editor.close();
    EXPECT_FLOAT_EQ(rig.editor.windowSize().x, 2240.0f);
}

} // namespace
} // namespace tolm::test
