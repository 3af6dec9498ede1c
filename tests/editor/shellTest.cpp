// The window around the controls: tabs, header, keys and wheels, opening and closing, what the
// plug-in has to say.

#include "EditorRig.h"
#include "editor/CHeader.h"
#include "editor/CKeyboardCtrl.h"
#include "gui/Message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Tabs, choosePagesThatStayOverClosing)
{
    EditorRig rig;
    const gui::Rect tabs = rig.place("Page ");
    const char* ofPages[] = {"LFO rate", "Matrix row 1", "Arpeggiator notes", "Delay feedback"};
    for (const int tab : {3, 2, 1, 0, 3}) {
        rig.click({tabs.centre().x, tabs.y + 20.0f + 60.0f * static_cast<float>(tab)});
        for (int page = 0; page < 4; ++page)
            EXPECT_EQ(rig.find(ofPages[page])->isShowing(), page == tab) << ofPages[page];
    }
    rig.editor.close();
    rig.open();
    EXPECT_TRUE(rig.find("Delay feedback")->isShowing());
    EXPECT_FALSE(rig.find("LFO rate")->isShowing());
}

struct KeyboardRig : EditorRig {
    // Of the n-th white key, at a depth of 0..1.
    gui::Point at(float white, float depth) const
    {
        const gui::Rect keys = keyboard.boundsInFrame();
        return {keys.x + keys.width / 36.0f * white, keys.y + keys.height * depth};
    }
    CKeyboardCtrl& keyboard = *find<CKeyboardCtrl>("Keyboard");
};

TEST(Keyboard, playsByDepthAndSlidesFromKeyToKey)
{
    KeyboardRig rig;
    rig.press(rig.at(0.5f, 0.995f));
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("playKey 36 127"));
    rig.move(rig.at(1.6f, 0.8f));
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("releaseKey 36", "playKey 38 102"));
    rig.move(rig.at(1.0f, 0.0125f)); // the black key between them, softly
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("releaseKey 38", "playKey 37 3"));
    rig.move(rig.at(1.0f, -0.5f)); // off the keys
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("releaseKey 37"));
    rig.move(rig.at(35.9f, 0.995f));
    rig.release(rig.at(35.9f, 0.995f));
    EXPECT_THAT(rig.port.takeCalls(), ElementsAre("playKey 96 127", "releaseKey 96"));
    rig.press(rig.at(0.5f, 0.995f), kRight);
    EXPECT_THAT(rig.port.takeCalls(), IsEmpty());
}

TEST(Keyboard, leavesNoNoteHanging)
{
    KeyboardRig rig;
    const gui::Point key = rig.at(0.5f, 0.9f);
    rig.press(key);
    rig.keyboard.setFirstKey(48);
    EXPECT_THAT(rig.port.takeCalls(), Contains("releaseKey 36"));
    rig.release(key);
    rig.press(key);
    rig.port.notice = EditorNotice{"Info", "A box takes the mouse away."};
    rig.wait();
    EXPECT_THAT(rig.port.takeCalls(), Contains("releaseKey 48"));
    rig.keys("Enter");
    rig.press(key);
    rig.port.takeCalls();
    rig.editor.close();
    EXPECT_THAT(rig.port.takeCalls(), Contains("releaseKey 48"));
}

TEST(Keyboard, reachesAllOctavesAndNoKeyBeyond127)
{
    KeyboardRig rig;
    const gui::Rect buttons = rig.place("Octave of the keys");
    for (int i = 0; i < 20; ++i)
        rig.click({buttons.centre().x, buttons.y + 5.0f});
    EXPECT_EQ(rig.keyboard.firstKey(), 60);
    EXPECT_EQ(rig.keyboard.touchAt({rig.keyboard.bounds().width - 1.0f, 60.0f})->key, 120);
    for (int i = 0; i < 20; ++i)
        rig.click({buttons.centre().x, buttons.bottom() - 5.0f});
    EXPECT_EQ(rig.keyboard.firstKey(), 0);
}

TEST(Wheels, springBackOrStayInOneGesture)
{
    EditorRig rig;
    const gui::Rect pitch = rig.place("Pitch wheel");
    rig.press(pitch.centre());
    rig.move({pitch.centre().x, pitch.y - 50.0f});
    EXPECT_FLOAT_EQ(rig.value(kPitchWheel), 1.0f);
    rig.release(pitch.centre());
    EXPECT_FLOAT_EQ(rig.value(kPitchWheel), 0.5f);
    EXPECT_FALSE(rig.undo());

    const gui::Rect mod = rig.place("Modulation wheel");
    rig.press(mod.centre());
    EXPECT_NEAR(rig.value(kModWheel), 0.5f, 0.01f);
    rig.move({mod.centre().x, mod.y});
    rig.release(mod.centre());
    EXPECT_FLOAT_EQ(rig.value(kModWheel), 1.0f);
    EXPECT_TRUE(rig.undo());
    EXPECT_FLOAT_EQ(rig.value(kModWheel), 0.0f);

    // A bend that is held when the window closes does not stay.
    rig.press({pitch.centre().x, pitch.y + 8.0f});
    EXPECT_GT(rig.value(kPitchWheel), 0.9f);
    rig.editor.close();
    EXPECT_FLOAT_EQ(rig.value(kPitchWheel), 0.5f);
}

TEST(BendRanges, readAsSemitones)
{
    EditorRig rig;
    const EditorContext& context = rig.editor.context();
    EXPECT_EQ(context.text(kBendUp), "2 st");
    EXPECT_FLOAT_EQ(*context.valueFromText(kBendDown, "12 st"), 12.0f / 64.0f);
    EXPECT_EQ(context.valueFromText(kBendDown, "65"), std::nullopt);
    EXPECT_EQ(context.valueFromText(kBendDown, "up"), std::nullopt);
    rig.change(kTagBendDown, 12.0f / 64.0f);
    EXPECT_EQ(rig.port.bendDownRange(), 12);
    EXPECT_EQ(context.text(kBendDown), "12 st");
}

struct HeaderRig : EditorRig {
    gui::View& mark = *find("Compare");
    CHeader& header = dynamic_cast<CHeader&>(*mark.parent());
};

TEST(Header, silencesAndUndoes)
{
    HeaderRig rig;
    rig.click("Panic");
    EXPECT_THAT(rig.port.takeCalls(), Contains("panic"));

    const float before = rig.value(kFilterCutoff);
    rig.change(kFilterCutoff, 0.123f);
    rig.click("Undo");
    EXPECT_FLOAT_EQ(rig.value(kFilterCutoff), before);
    rig.click("Redo");
    EXPECT_FLOAT_EQ(rig.value(kFilterCutoff), 0.123f);
}

TEST(Header, comparesWithTheLoadedSound)
{
    HeaderRig rig;
    EXPECT_EQ(rig.mark.tooltip(), "As it was loaded");
    const float loaded = rig.value(kFilterCutoff);
    rig.change(kFilterCutoff, 0.125f);
    EXPECT_THAT(rig.mark.tooltip(), HasSubstr("Changed"));
    rig.click("Compare");
    EXPECT_FLOAT_EQ(rig.value(kFilterCutoff), loaded);
    EXPECT_THAT(rig.mark.tooltip(), HasSubstr("loaded sound: click for yours"));
    rig.click("Compare");
    EXPECT_FLOAT_EQ(rig.value(kFilterCutoff), 0.125f);
    // A bank from outside: nothing is changed any more, and there is nothing to undo.
    rig.port.news.everything = true;
    rig.wait();
    EXPECT_EQ(rig.mark.tooltip(), "As it was loaded");
    EXPECT_FALSE(rig.undo());
}

TEST(Header, showsWhatMovesAndForgetsItAfterwards)
{
    HeaderRig rig;
    const gui::Point knob = rig.middle("Filter resonance");
    rig.press(knob);
    rig.move({knob.x, knob.y - 20.0f});
    EXPECT_THAT(rig.header.status().text(), HasSubstr("Filter resonance"));
    rig.release(knob);
    EXPECT_EQ(rig.header.status().text(), "");
}

TEST(Header, storesCategoryAndFavourite)
{
    HeaderRig rig;
    CProgramField& field = rig.header.field();
    rig.click(field.toFrame(field.starPlace().centre()));
    EXPECT_EQ(rig.port.userFiles["favourites.txt"], rig.programName() + "\n");
    rig.click(field.toFrame(field.starPlace().centre()));
    EXPECT_EQ(rig.port.userFiles["favourites.txt"], "");
    rig.click(field.toFrame(field.categoryPlace().centre()));
    rig.enter("Leads");
    EXPECT_FLOAT_EQ(rig.value(kPatchCategory), 6.0f);
}

TEST(Notices, areShownOneByOneAndKeptWhileNoWindowIsOpen)
{
    EditorRig rig;
    rig.editor.close();
    rig.port.notice = EditorNotice{"Info", "An old program."};
    rig.editor.idle();
    rig.open();
    auto* box = rig.overlay<gui::Message>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->title(), "Info");
    EXPECT_EQ(box->text(), "An old program.");
    rig.port.notice = EditorNotice{"Info", "Another."};
    rig.wait();
    EXPECT_TRUE(rig.port.notice.has_value()) << "waits for the first to be read";
    rig.keys("Enter");
    rig.wait();
    box = rig.overlay<gui::Message>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), "Another.");
    rig.keys("Enter");
    EXPECT_FALSE(rig.frame().hasOverlay());
}

TEST(Lifecycle, aGestureEndsWhenTheWindowCloses)
{
    EditorRig rig;
    const gui::Point knob = rig.middle("Filter cutoff");
    rig.press(knob);
    rig.move({knob.x, knob.y - 20.0f});
    rig.editor.close();
    EXPECT_THAT(rig.port.takeCalls(), Contains("endEdit 28"));
    rig.open();
    // A turn of the wheel ends by itself a little later; not when the window goes before.
    rig.wheel(knob, 1.0f);
    EXPECT_THAT(rig.port.takeCalls(), Contains("beginEdit 28"));
    rig.editor.close();
    EXPECT_THAT(rig.port.takeCalls(), Contains("endEdit 28"));
}

TEST(Lifecycle, theHostsWheelTurnsWhatIsPointedAt)
{
    EditorRig rig;
    rig.move(rig.middle("Filter resonance"));
    const float before = rig.value(kFilterResonance);
    rig.port.news.wheelDistance = 2.0f;
    rig.wait();
    EXPECT_FLOAT_EQ(rig.value(kFilterResonance), before + 0.04f);
}

TEST(Size, isKeptAndFitsAHostThatRefuses)
{
    EditorRig rig;
    const auto scale = [&](int percent) {
        rig.editor.shell().settings.scalePercent = percent;
        rig.editor.shell().applySettings();
        rig.wait();
    };
    scale(150);
    EXPECT_THAT(rig.port.calls, Contains("resizeHostWindow 1680 1080"));
    EXPECT_EQ(rig.window->picture().width(), 1680);
    EXPECT_THAT(rig.port.userFiles["settings.txt"], HasSubstr("150"));

    rig.port.refusesSize = true;
    scale(200);
    EXPECT_EQ(rig.window->picture().width(), 1680) << "all of it is still seen";
    EXPECT_FLOAT_EQ(rig.editor.windowSize().x, 1680.0f);
    ASSERT_NE(rig.overlay<gui::Message>(), nullptr) << "and the user is told";
    rig.editor.close();
    EXPECT_FLOAT_EQ(rig.editor.windowSize().x, 2240.0f);
}

} // namespace
} // namespace tolm::test
