#include "gui/TextBuffer.h"

#include <algorithm>

namespace tolm::gui {

namespace {

bool continues(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Letters, digits and all beyond ASCII.
bool isWordByte(char c)
{
    const auto u = static_cast<unsigned char>(c);
    return u >= 0x80 || (u >= '0' && u <= '9') || ((u | 0x20) >= 'a' && (u | 0x20) <= 'z');
}

bool isControl(char c)
{
    const auto u = static_cast<unsigned char>(c);
    return u < 0x20 || u == 0x7F;
}

// The longest beginning of at most `limit` bytes that cuts no character.
std::string_view cut(std::string_view utf8, std::size_t limit)
{
    if (utf8.size() <= limit)
        return utf8;
    while (limit > 0 && continues(utf8[limit]))
        --limit;
    return utf8.substr(0, limit);
}

} // namespace

void TextBuffer::setText(std::string_view utf8)
{
    text_ = cut(accepted(utf8), maxBytes_);
    caret_ = anchor_ = text_.size();
}

std::pair<std::size_t, std::size_t> TextBuffer::selection() const
{
    return std::minmax(caret_, anchor_);
}

std::string TextBuffer::selectedText() const
{
    const auto [from, to] = selection();
    return text_.substr(from, to - from);
}

void TextBuffer::select(std::size_t anchor, std::size_t caret)
{
    anchor_ = snapped(anchor);
    caret_ = snapped(caret);
}

void TextBuffer::selectWordAt(std::size_t position)
{
    std::size_t from = snapped(position);
    std::size_t to = from;
    while (from > 0 && isWordByte(text_[from - 1]))
        --from;
    while (to < text_.size() && isWordByte(text_[to]))
        ++to;
    select(from, to > from ? to : next(to));
}

std::size_t TextBuffer::snapped(std::size_t position) const
{
    position = std::min(position, text_.size());
    while (position > 0 && position < text_.size() && continues(text_[position]))
        --position;
    return position;
}

std::size_t TextBuffer::next(std::size_t position) const
{
    if (position >= text_.size())
        return text_.size();
    do
        ++position;
    while (position < text_.size() && continues(text_[position]));
    return position;
}

std::size_t TextBuffer::previous(std::size_t position) const
{
    if (position == 0)
        return 0;
    do
        --position;
    while (position > 0 && continues(text_[position]));
    return position;
}

std::size_t TextBuffer::boundary(std::size_t from, Unit unit, bool forwards) const
{
    switch (unit) {
    case Unit::character:
        return forwards ? next(from) : previous(from);
    case Unit::word:
        if (forwards) {
            while (from < text_.size() && !isWordByte(text_[from]))
                ++from;
            while (from < text_.size() && isWordByte(text_[from]))
                ++from;
        } else {
            while (from > 0 && !isWordByte(text_[from - 1]))
                --from;
            while (from > 0 && isWordByte(text_[from - 1]))
                --from;
        }
        return from;
    case Unit::line:
        if (forwards)
            return std::min(text_.find('\n', from), text_.size());
        return from == 0 ? 0 : text_.rfind('\n', from - 1) + 1; // npos + 1 is 0
    case Unit::all:
        break;
    }
    return forwards ? text_.size() : 0;
}

void TextBuffer::move(Unit unit, bool forwards, bool extend)
{
    if (!extend && hasSelection() && unit == Unit::character) {
        const auto [from, to] = selection();
        moveTo(forwards ? to : from, false);
        return;
    }
    moveTo(boundary(caret_, unit, forwards), extend);
}

void TextBuffer::moveTo(std::size_t position, bool extend)
{
    caret_ = snapped(position);
    if (!extend)
        anchor_ = caret_;
}

std::string TextBuffer::accepted(std::string_view utf8) const
{
    std::string result;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const char c = utf8[i];
        if (c == '\r' && i + 1 < utf8.size() && utf8[i + 1] == '\n')
            continue;
        if (c == '\n' || c == '\r' || c == '\t')
            result += multiLine_ && c != '\t' ? '\n' : ' ';
        else if (!isControl(c))
            result += c;
    }
    return result;
}

bool TextBuffer::insert(std::string_view utf8)
{
    const auto [from, to] = selection();
    const std::size_t kept = text_.size() - (to - from);
    const std::string clean = accepted(utf8);
    const std::string_view fits = cut(clean, maxBytes_ - std::min(kept, maxBytes_));
    if (fits.empty() && (from == to || !clean.empty()))
        return false; // no room: what is selected stays
    text_.replace(from, to - from, fits);
    caret_ = anchor_ = from + fits.size();
    return true;
}

bool TextBuffer::erase(Unit unit, bool forwards)
{
    auto [from, to] = selection();
    if (from == to) {
        const std::size_t end = boundary(caret_, unit, forwards);
        from = std::min(caret_, end);
        to = std::max(caret_, end);
    }
    return eraseRange(from, to);
}

bool TextBuffer::eraseRange(std::size_t from, std::size_t to)
{
    if (from == to)
        return false;
    text_.erase(from, to - from);
    caret_ = anchor_ = from;
    return true;
}

} // namespace tolm::gui
