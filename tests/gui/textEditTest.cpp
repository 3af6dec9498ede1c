#include "gui/TextEdit.h"
#include "gui/Font.h"
#include "gui/textWrap.h"
#include "tests/gui/frameRig.h"

namespace tolm::gui {

namespace {

class TextEdits : public FrameTest {
protected:
    TextEdits() : FrameTest({400.0f, 300.0f}) {}
    void TearDown() override { frame.setFocus(nullptr); } // a field commits at the latest now

    // With the focus.
    TextEdit& field(std::string_view text, std::size_t maxBytes = 40)
    {
        return show({10.0f, 10.0f, 200.0f, 24.0f}, {false, maxBytes, false, {}, {}}, text);
    }
    TextEdit& several()
    {
        return show({10.0f, 50.0f, 120.0f, 60.0f}, {true, 400, false, {}, {}}, {});
    }

    std::vector<std::string> commits;
    int cancels = 0;

private:
    TextEdit& show(Rect bounds, TextEdit::Options options, std::string_view text)
    {
        auto& edit = frame.content().emplace<TextEdit>(bounds, std::move(options));
        edit.committed = [this](const std::string& written) { commits.push_back(written); };
        edit.cancelled = [this] { ++cancels; };
        edit.setText(text);
        frame.setFocus(&edit);
        return edit;
    }
};

TEST_F(TextEdits, typingSelectingAndDeletingKeepWholeCharacters)
{
    TextEdit& edit = field("B\u00E4ss \u20AC");
    EXPECT_TRUE(window.keysWanted());
    const std::pair<const char*, const char*> steps[] = {
        {"End Backspace", "B\u00E4ss "},   {"Home Right Shift+Right a", "Bass "},
        {"Shift+End Delete", "Ba"},        {"Space l o w Space e n d Control+Backspace", "Ba low "},
        {"Control+Left Delete", "Ba ow "}, {"Control+q", "Ba ow "}, // commands type nothing
    };
    for (const auto& [keys, text] : steps) {
        hands.keys(keys);
        EXPECT_EQ(edit.text(), text) << keys;
    }
}

TEST_F(TextEdits, commitsOnEnterAndWhenTheFocusGoesAndNotTwice)
{
    TextEdit& edit = field("one");
    hands.keys("! Enter");
    EXPECT_EQ(commits, std::vector<std::string>{"one!"});
    EXPECT_EQ(frame.focus(), nullptr);
    EXPECT_FALSE(window.keysWanted());

    frame.setFocus(&edit);
    hands.click({390.0f, 290.0f});
    EXPECT_EQ(commits.size(), 1u) << "nothing was changed";
    frame.setFocus(&edit);
    hands.type("?");
    hands.click({390.0f, 290.0f});
    EXPECT_EQ(commits.size(), 2u);

    const std::string before = edit.text();
    frame.setFocus(&edit);
    hands.keys("g o n e Escape");
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
    Hands(closing.get()).type("name");
    closing.reset();
    EXPECT_EQ(commits, std::vector<std::string>{"name"});
}

TEST_F(TextEdits, neverHoldsMoreThanItMayAndCutsAtCharacters)
{
    TextEdit& edit = field("abcd\u20AC", 5);
    EXPECT_EQ(edit.text(), "abcd");
    hands.type("ef");
    EXPECT_EQ(edit.text().size(), 5u);
    frame.host().copyToClipboard("\u20AC\u20AC\u20AC");
    hands.keys("Control+a Control+v");
    EXPECT_EQ(edit.text(), "\u20AC");
    TextEdit& tiny = field("ab", 2);
    hands.keys("Control+a Control+v");
    EXPECT_EQ(tiny.text(), "ab") << "no room for what comes: the selection is not lost for nothing";
    tiny.setText("\xE2\x82");
    hands.keys("Left Delete");
    EXPECT_EQ(tiny.text(), "") << "broken bytes can be deleted";
}

TEST_F(TextEdits, clipboardAndControlCharacters)
{
    TextEdit& edit = field("alpha beta");
    hands.keys("Control+c");
    EXPECT_EQ(window.clipboard(), "") << "nothing selected";
    hands.keys("End Shift+Control+Left Control+x");
    EXPECT_EQ(window.clipboard(), "beta");
    EXPECT_EQ(edit.text(), "alpha ");
    frame.host().copyToClipboard("two\r\nlines\x01\x7F\t.");
    hands.keys("Control+v");
    EXPECT_EQ(edit.text(), "alpha two lines .");
    TextEdit& text = several();
    hands.keys("Control+v");
    EXPECT_EQ(text.text(), "two\nlines .");
}

TEST_F(TextEdits, theMouseSelects)
{
    TextEdit& edit = field("alpha beta");
    const float left = 16.0f;
    const float right = left + measureText("alpha beta", frame.style().field);
    hands.press({left, 20.0f});
    hands.move({right + 30.0f, 20.0f});
    EXPECT_EQ(edit.buffer().selectedText(), "alpha beta");
    hands.release({right + 30.0f, 20.0f});
    hands.press({right - 4.0f, 20.0f}, MouseButton::left, {}, 2);
    hands.release({right - 4.0f, 20.0f});
    EXPECT_EQ(edit.buffer().selectedText(), "beta");

    // The context menu keeps the focus and the selection.
    hands.click({40.0f, 20.0f}, MouseButton::right);
    ASSERT_TRUE(frame.hasOverlay());
    EXPECT_EQ(frame.focus(), &edit);
    hands.keys("c u t Enter");
    EXPECT_EQ(edit.text(), "alpha ");
    EXPECT_EQ(window.clipboard(), "beta");
    hands.wait(0.0);
    EXPECT_TRUE(window.keysWanted());
}

TEST_F(TextEdits, aFieldThatGoesInTheMiddleOfItsCommitDoesNoHarm)
{
    TextEdit& edit = field({});
    edit.committed = [&](const std::string& written) {
        commits.push_back(written);
        frame.discard(frame.content().remove(edit));
    };
    hands.keys("x Enter");
    EXPECT_EQ(commits.size(), 1u);
    hands.wait(1.0);
    EXPECT_FALSE(window.keysWanted());
}

TEST_F(TextEdits, severalLinesWrapScrollAndMove)
{
    TextEdit& edit = several();
    hands.keys("f i r s t Enter");
    hands.type("second line that is too long for the width");
    EXPECT_TRUE(commits.empty());
    EXPECT_EQ(edit.text().find('\n'), 5u);
    hands.keys("Up Up Up Up Up Up Up");
    EXPECT_EQ(edit.buffer().caret(), 0u);
    hands.keys("Down");
    EXPECT_EQ(edit.buffer().caret(), 6u);
    hands.keys("Control+Enter");
    EXPECT_EQ(commits.size(), 1u);
}

TEST(TextWrap, losesNothingAndFits)
{
    const TextStyle style;
    const std::string text =
        "Brush \u2014 a  longer text,\n\nwith Donaudampfschifffahrtsgesellschaft in it ";
    std::size_t at = 0;
    for (const TextLine& line : wrapText(text, style, 60.0f)) {
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
