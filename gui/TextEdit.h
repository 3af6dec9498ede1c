#pragma once
// A text field of one or several lines. Keys are asked for only while it has the focus.

#include "gui/Style.h"
#include "gui/TextBuffer.h"
#include "gui/View.h"
#include "gui/textWrap.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tolm::gui {

class TextEdit : public View {
public:
    struct Options {
        bool multiLine = false;      // Enter makes a line; Ctrl+Enter commits
        std::size_t maxBytes = 4096; // UTF-8 bytes
        bool keepsFocus = false;     // Enter commits and, like Escape, goes on to the parents
        std::string placeholder;     // shown while there is no text
        std::string spokenName;
    };
    // Enter, or the loss of the focus after a change.
    std::function<void(const std::string& utf8)> committed;
    // Escape: the text from before is back.
    std::function<void()> cancelled;
    // After each edit.
    std::function<void(const std::string& utf8)> edited;
    // Keys that the field would not use itself, such as arrows up and down in a single line.
    std::function<bool(const KeyEvent& event)> otherKey;

    TextEdit(Rect bounds, Options options);

    const std::string& text() const { return buffer_.text(); }
    // Tells nobody; forgets what was being typed.
    void setText(std::string_view utf8);
    void selectAll();
    const TextBuffer& buffer() const { return buffer_; }

    void draw(Canvas& canvas) override;
    bool mouseDown(const MouseEvent& event) override;
    void mouseDragged(const MouseEvent& event) override;
    bool mouseWheel(const WheelEvent& event) override;
    bool keyDown(const KeyEvent& event) override;
    bool acceptsFocus() const override { return true; }
    void focusChanged(bool focused) override;
    bool animate(double nowSeconds) override;
    Cursor cursor() const override { return Cursor::text; }
    std::string spokenName() const override { return options_.spokenName; }

protected:
    void boundsChanged() override;

private:
    bool editKey(const KeyEvent& event);
    bool moveKey(const KeyEvent& event);
    bool commandKey(const KeyEvent& event);
    bool clipboardKey(const KeyEvent& event);
    void moveLine(int direction, bool extend);
    void changed();
    void moved();
    void commit();
    void finish();
    void openContextMenu(Point local);
    void copy() const;
    void cut();
    void paste();

    const Style& style() const;
    Rect textArea() const;
    void layOut();
    std::size_t lineOf(std::size_t position) const;
    float xOf(std::size_t position) const;
    std::size_t positionAt(Point local) const;
    std::size_t positionInLine(const TextLine& line, float x) const;
    void showCaret();
    void drawSelection(Canvas& canvas) const;

    Options options_;
    TextBuffer buffer_;
    std::string before_; // when the focus came
    std::vector<TextLine> lines_;
    Point scroll_;
    double blinkFrom_ = 0.0;
    bool caretOn_ = true;
    bool dirty_ = false;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace tolm::gui
