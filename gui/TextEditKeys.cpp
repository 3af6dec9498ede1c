// The keys of a text field, and the clipboard.

#include "gui/Frame.h"
#include "gui/TextEdit.h"

#include <memory>

namespace tolm::gui {

using Unit = TextBuffer::Unit;

bool TextEdit::keyDown(const KeyEvent& event)
{
    if (moveKey(event) || editKey(event) || commandKey(event))
        return true;
    if (otherKey && otherKey(event))
        return true;
    // Typed characters never reach what lies below, whatever their modifiers are.
    return event.key == Key::character || event.key == Key::space;
}

bool TextEdit::moveKey(const KeyEvent& event)
{
    const bool extend = event.modifiers.shift;
    const bool control = event.modifiers.control;
    switch (event.key) {
    case Key::left:
    case Key::right:
        buffer_.move(control ? Unit::word : Unit::character, event.key == Key::right, extend);
        break;
    case Key::home:
    case Key::end:
        buffer_.move(control ? Unit::all : Unit::line, event.key == Key::end, extend);
        break;
    case Key::up:
    case Key::down:
        if (!options_.multiLine)
            return false;
        moveLine(event.key == Key::down ? 1 : -1, extend);
        break;
    default:
        return false;
    }
    moved();
    return true;
}

void TextEdit::moveLine(int direction, bool extend)
{
    const std::size_t line = lineOf(buffer_.caret());
    const float x = xOf(buffer_.caret());
    if (direction < 0)
        buffer_.moveTo(line == 0 ? 0 : positionInLine(lines_[line - 1], x), extend);
    else
        buffer_.moveTo(line + 1 == lines_.size() ? buffer_.text().size()
                                                 : positionInLine(lines_[line + 1], x),
                       extend);
}

bool TextEdit::editKey(const KeyEvent& event)
{
    const Unit unit = event.modifiers.control ? Unit::word : Unit::character;
    bool edits = false;
    switch (event.key) {
    case Key::backspace:
        edits = buffer_.erase(unit, false);
        break;
    case Key::deleteForward:
        edits = buffer_.erase(unit, true);
        break;
    case Key::character:
    case Key::space:
        if (event.modifiers.control || event.modifiers.alt || event.text.empty())
            return false;
        edits = buffer_.insert(event.text);
        break;
    case Key::enter:
        if (!options_.multiLine || event.modifiers.control)
            return false;
        edits = buffer_.insert("\n");
        break;
    default:
        return false;
    }
    if (edits)
        changed();
    return true;
}

bool TextEdit::commandKey(const KeyEvent& event)
{
    if (event.key == Key::enter) {
        commit();
        finish();
        return !options_.keepsFocus;
    }
    if (event.key == Key::escape && !options_.keepsFocus) {
        const std::string restored = before_;
        setText(restored);
        if (cancelled)
            cancelled();
        finish();
        return true;
    }
    return event.key == Key::character && event.modifiers.control && clipboardKey(event);
}

// Gives the focus up. A handler may have taken the field out of its window.
void TextEdit::finish()
{
    if (!options_.keepsFocus && hasFocus())
        frame()->setFocus(nullptr);
}

bool TextEdit::clipboardKey(const KeyEvent& event)
{
    const char letter = event.text.size() == 1 ? static_cast<char>(event.text[0] | 0x20) : '\0';
    switch (letter) {
    case 'a':
        selectAll();
        return true;
    case 'c':
        copy();
        return true;
    case 'x':
        cut();
        return true;
    case 'v':
        paste();
        return true;
    default:
        return false;
    }
}

void TextEdit::copy() const
{
    if (buffer_.hasSelection() && frame() != nullptr)
        frame()->host().copyToClipboard(buffer_.selectedText());
}

void TextEdit::cut()
{
    copy();
    if (buffer_.hasSelection() && buffer_.erase(Unit::character, true))
        changed();
}

void TextEdit::paste()
{
    if (frame() == nullptr)
        return;
    // The answer may come when the field is gone.
    const std::weak_ptr<bool> alive = alive_;
    frame()->host().pasteFromClipboard([this, alive](const std::string& utf8) {
        if (!alive.expired() && hasFocus() && buffer_.insert(utf8))
            changed();
    });
}

} // namespace tolm::gui
