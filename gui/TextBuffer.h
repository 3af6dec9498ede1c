#pragma once
// What a text field edits: UTF-8 text of limited length, a caret and a selection. Positions are
// bytes and always lie between characters.

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace tolm::gui {

class TextBuffer {
public:
    enum class Unit : unsigned char { character, word, line, all };

    explicit TextBuffer(std::size_t maxBytes, bool multiLine)
        : maxBytes_(maxBytes), multiLine_(multiLine)
    {
    }

    const std::string& text() const { return text_; }
    // Cut to the limit at a character; the caret goes to the end.
    void setText(std::string_view utf8);

    std::size_t caret() const { return caret_; }
    std::pair<std::size_t, std::size_t> selection() const;
    bool hasSelection() const { return caret_ != anchor_; }
    std::string selectedText() const;
    void select(std::size_t anchor, std::size_t caret);
    void selectAll() { select(0, text_.size()); }
    void selectWordAt(std::size_t position);

    // Moves the caret; `extend` keeps the selection's other end. Without it a selection collapses
    // to the side of the movement.
    void move(Unit unit, bool forwards, bool extend);
    void moveTo(std::size_t position, bool extend);

    // Replaces the selection by as much of `utf8` as there is room for, whole characters only.
    // Control characters are left out and line breaks become spaces in a single line. True when
    // something changed.
    bool insert(std::string_view utf8);
    // Deletes the selection, else one unit in the direction.
    bool erase(Unit unit, bool forwards);

    std::size_t next(std::size_t position) const;
    std::size_t previous(std::size_t position) const;

private:
    std::string accepted(std::string_view utf8) const;
    std::size_t boundary(std::size_t from, Unit unit, bool forwards) const;
    std::size_t snapped(std::size_t position) const;
    bool eraseRange(std::size_t from, std::size_t to);

    std::string text_;
    std::size_t maxBytes_;
    bool multiLine_;
    std::size_t caret_ = 0;
    std::size_t anchor_ = 0;
};

} // namespace tolm::gui
