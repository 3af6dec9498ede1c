#include "gui/TextEdit.h"
#include "gui/Font.h"
#include "gui/textWrap.h"
#include "tests/gui/frameRig.h"

#include <gtest/gtest.h>

namespace tolm::gui {

namespace {

class TextEdits : public testing::Test {
protected:
    // Before the window: a field commits when its window goes.
    std::vector<std::string> commits;
    int cancels = 0;
    HeadlessWindow window{{400.0f, 300.0f}, 1.0f};
    Frame& frame = window.frame();
    Hands hands{window};

    TextEdit& field(TextEdit::Options options, Rect bounds = {10.0f, 10.0f, 200.0f, 24.0f})
    {
        auto& edit = frame.content().emplace<TextEdit>(bounds, std::move(options));
        edit.committed = [this](const std::string& text) { commits.push_back(text); };
        edit.cancelled = [this] { ++cancels; };
        return edit;
    }
    TextEdit& field(std::size_t maxBytes = 40)
    {
        TextEdit::Options options;
        options.maxBytes = maxBytes;
        return field(std::move(options));
    }
    TextEdit& text()
    {
        TextEdit::Options options;
        options.multiLine = true;
        return field(std::move(options), {10.0f, 50.0f, 120.0f, 60.0f});
    }
};

constexpr Modifiers kShift{true, false, false};
constexpr Modifiers kControl{false, true, false};

TEST_F(TextEdits, typingSelectingAndDeletingKeepWholeCharacters)
{
    TextEdit& edit = field();
    edit.setText("B\u00E4ss \u20AC");
    frame.setFocus(&edit);
    EXPECT_TRUE(window.keysWanted());
    hands.key(Key::end);
    hands.key(Key::backspace);
    EXPECT_EQ(edit.text(), "B\u00E4ss ");
    hands.key(Key::home);
    hands.key(Key::right);
    hands.key(Key::right, kShift);
    EXPECT_EQ(edit.buffer().selectedText(), "\u00E4");
    hands.type("a");
    EXPECT_EQ(edit.text(), "Bass ");
    hands.key(Key::end, kShift);
    hands.key(Key::deleteForward);
    EXPECT_EQ(edit.text(), "Ba");
    hands.type(" low end");
    hands.key(Key::backspace, kControl);
    EXPECT_EQ(edit.text(), "Ba low ");
    hands.key(Key::left, kControl);
    hands.key(Key::deleteForward);
    EXPECT_EQ(edit.text(), "Ba ow ");
    hands.control('q');
    EXPECT_EQ(edit.text(), "Ba ow ") << "commands type nothing";
}

TEST_F(TextEdits, commitsOnEnterAndWhenTheFocusGoesAndNotTwice)
{
    TextEdit& edit = field();
    edit.setText("one");
    frame.setFocus(&edit);
    hands.type("!");
    hands.key(Key::enter);
    EXPECT_EQ(commits, std::vector<std::string>{"one!"});
    EXPECT_EQ(frame.focus(), nullptr);
    EXPECT_FALSE(window.keysWanted());

    frame.setFocus(&edit);
    hands.press({390.0f, 290.0f});
    EXPECT_EQ(commits.size(), 1u) << "nothing was changed";
    hands.release({390.0f, 290.0f});
    frame.setFocus(&edit);
    hands.type("?");
    hands.press({390.0f, 290.0f});
    EXPECT_EQ(commits.size(), 2u);
    hands.release({390.0f, 290.0f});

    const std::string before = edit.text();
    frame.setFocus(&edit);
    hands.type("gone");
    hands.key(Key::escape);
    EXPECT_EQ(edit.text(), before);
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(commits.size(), 2u);
}

TEST_F(TextEdits, whatIsBeingTypedIsKeptWhenTheWindowCloses)
{
    auto closing = std::make_unique<HeadlessWindow>(Point{100.0f, 100.0f}, 1.0f);
    auto& edit = closing->frame().content().emplace<TextEdit>(Rect{0.0f, 0.0f, 90.0f, 20.0f},
                                                              TextEdit::Options{});
    edit.committed = [this](const std::string& written) { commits.push_back(written); };
    closing->frame().setFocus(&edit);
    Hands(*closing).type("name");
    closing.reset();
    EXPECT_EQ(commits, std::vector<std::string>{"name"});
}

TEST_F(TextEdits, neverHoldsMoreThanItMayAndCutsAtCharacters)
{
    TextEdit& edit = field(5);
    edit.setText("abcd\u20AC");
    EXPECT_EQ(edit.text(), "abcd");
    frame.setFocus(&edit);
    hands.type("ef");
    EXPECT_EQ(edit.text().size(), 5u);
    frame.host().copyToClipboard("\u20AC\u20AC\u20AC");
    hands.control('a');
    hands.control('v');
    EXPECT_EQ(edit.text(), "\u20AC");
    // No room for what comes: the selection is not lost for nothing.
    TextEdit& tiny = field(2);
    tiny.setText("ab");
    frame.setFocus(&tiny);
    hands.control('a');
    hands.control('v');
    EXPECT_EQ(tiny.text(), "ab");
    tiny.setText("\xE2\x82");
    hands.key(Key::left);
    hands.key(Key::deleteForward);
    EXPECT_EQ(tiny.text(), "") << "broken bytes can be deleted";
}

TEST_F(TextEdits, clipboardAndControlCharacters)
{
    TextEdit& edit = field();
    edit.setText("alpha beta");
    frame.setFocus(&edit);
    hands.control('c');
    EXPECT_EQ(window.clipboard(), "") << "nothing selected";
    hands.key(Key::end);
    hands.key(Key::left, {true, true, false});
    hands.control('x');
    EXPECT_EQ(window.clipboard(), "beta");
    EXPECT_EQ(edit.text(), "alpha ");
    frame.host().copyToClipboard("two\r\nlines\x01\x7F\t.");
    hands.control('v');
    EXPECT_EQ(edit.text(), "alpha two lines .");
    TextEdit& several = text();
    frame.setFocus(&several);
    hands.control('v');
    EXPECT_EQ(several.text(), "two\nlines .");
}

TEST_F(TextEdits, theMouseSelects)
{
    TextEdit& edit = field();
    edit.setText("alpha beta");
    const float width = measureText("alpha beta", frame.style().field);
    hands.press({10.0f + 6.0f, 20.0f});
    hands.move({10.0f + 6.0f + width + 30.0f, 20.0f});
    EXPECT_EQ(edit.buffer().selectedText(), "alpha beta");
    hands.release({300.0f, 20.0f});
    hands.press({10.0f + 6.0f + width - 4.0f, 20.0f}, {}, 2);
    hands.release({10.0f + 6.0f + width - 4.0f, 20.0f});
    EXPECT_EQ(edit.buffer().selectedText(), "beta");

    // The context menu keeps the focus and the selection.
    hands.press({40.0f, 20.0f}, {}, 1, MouseButton::right);
    hands.release({40.0f, 20.0f}, MouseButton::right);
    ASSERT_TRUE(frame.hasOverlay());
    EXPECT_EQ(frame.focus(), &edit);
    hands.type("cut");
    hands.key(Key::enter);
    EXPECT_EQ(edit.text(), "alpha ");
    EXPECT_EQ(window.clipboard(), "beta");
    hands.wait(0.0);
    EXPECT_TRUE(window.keysWanted());
}

TEST_F(TextEdits, aFieldThatGoesInTheMiddleOfItsCommitDoesNoHarm)
{
    TextEdit& edit = field();
    edit.committed = [&](const std::string& written) {
        commits.push_back(written);
        frame.discard(frame.content().remove(edit));
    };
    frame.setFocus(&edit);
    hands.type("x");
    hands.key(Key::enter);
    EXPECT_EQ(commits.size(), 1u);
    hands.wait(1.0);
    EXPECT_FALSE(window.keysWanted());
}

TEST_F(TextEdits, severalLinesWrapScrollAndMove)
{
    TextEdit& edit = text();
    frame.setFocus(&edit);
    hands.type("first");
    hands.key(Key::enter);
    hands.type("second line that is too long for the width");
    EXPECT_TRUE(commits.empty());
    EXPECT_EQ(edit.text().find('\n'), 5u);
    for (int i = 0; i < 10; ++i)
        hands.key(Key::up);
    EXPECT_EQ(edit.buffer().caret(), 0u);
    hands.key(Key::down);
    EXPECT_EQ(edit.buffer().caret(), 6u);
    hands.key(Key::enter, kControl);
    EXPECT_EQ(commits.size(), 1u);
    window.pump();
}

TEST(TextWrap, losesNothingAndFits)
{
    const TextStyle style;
    const std::string text =
        "Brush \u2014 a  longer text,\n\nwith Donaudampfschifffahrtsgesellschaft in it ";
    const auto lines = wrapText(text, style, 60.0f);
    std::size_t at = 0;
    for (const TextLine& line : lines) {
        EXPECT_LE(at, line.begin);
        for (; at < line.begin; ++at)
            EXPECT_TRUE(text[at] == ' ' || text[at] == '\n') << at;
        std::string_view shown = std::string_view(text).substr(line.begin, line.end - line.begin);
        while (shown.ends_with(' '))
            shown.remove_suffix(1);
        EXPECT_LE(measureText(shown, style), 60.0f);
        at = line.end;
    }
    EXPECT_EQ(at, text.size());
    EXPECT_EQ(wrapText("", style, 60.0f).size(), 1u);
    EXPECT_EQ(wrapText("abc", style, 0.0f).size(), 3u) << "always moves on";
}

} // namespace

} // namespace tolm::gui
