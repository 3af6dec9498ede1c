// Drawing, mouse and focus of a text field. Its keys stand in TextEditKeys.cpp.

#include "gui/TextEdit.h"

#include "gui/Frame.h"
#include "gui/Menu.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr float kPadding = 6.0f;
constexpr double kBlinkSeconds = 0.5;
constexpr float kCaretWidth = 1.5f;
constexpr Style kDefaultStyle{};

} // namespace

TextEdit::TextEdit(Rect bounds, Options options)
    : View(bounds),
      options_(std::move(options)),
      buffer_(options_.maxBytes, options_.multiLine),
      lines_(1)
{
}

const Style& TextEdit::style() const
{
    return frame() != nullptr ? frame()->style() : kDefaultStyle;
}

void TextEdit::setText(std::string_view utf8)
{
    buffer_.setText(utf8);
    before_ = buffer_.text();
    dirty_ = false;
    scroll_ = {};
    layOut();
    invalidate();
}

void TextEdit::selectAll()
{
    buffer_.selectAll();
    moved();
}

void TextEdit::boundsChanged()
{
    layOut();
}

// --- layout ----------------------------------------------------------------------------------

Rect TextEdit::textArea() const
{
    return localBounds().inset(kPadding, options_.multiLine ? kPadding : 0.0f);
}

void TextEdit::layOut()
{
    if (options_.multiLine)
        lines_ = wrapText(buffer_.text(), style().field, textArea().width);
    else
        lines_ = {{0, buffer_.text().size()}};
}

// At the seam of two lines the caret stands at the beginning of the second.
std::size_t TextEdit::lineOf(std::size_t position) const
{
    std::size_t line = 0;
    while (line + 1 < lines_.size() && lines_[line + 1].begin <= position)
        ++line;
    return line;
}

float TextEdit::xOf(std::size_t position) const
{
    const TextLine& line = lines_[lineOf(position)];
    const std::size_t end = std::clamp(position, line.begin, line.end);
    return measureText(std::string_view(buffer_.text()).substr(line.begin, end - line.begin),
                       style().field);
}

std::size_t TextEdit::positionInLine(const TextLine& line, float x) const
{
    const std::string_view text = buffer_.text();
    std::size_t at = line.begin;
    float left = 0.0f;
    while (at < line.end) {
        const std::size_t next = buffer_.next(at);
        const float right = measureText(text.substr(line.begin, next - line.begin), style().field);
        if (x < (left + right) / 2.0f)
            return at;
        left = right;
        at = next;
    }
    return line.end;
}

std::size_t TextEdit::positionAt(Point local) const
{
    const Rect area = textArea();
    std::size_t line = 0;
    if (options_.multiLine) {
        const float row = (local.y - area.y + scroll_.y) / lineHeight(style().field);
        line =
            static_cast<std::size_t>(std::clamp(row, 0.0f, static_cast<float>(lines_.size() - 1)));
    }
    return positionInLine(lines_[line], local.x - area.x + scroll_.x);
}

// Scrolls so that the caret can be seen, and no further than the text reaches.
void TextEdit::showCaret()
{
    const Rect area = textArea();
    if (options_.multiLine) {
        const float height = lineHeight(style().field);
        const float top = static_cast<float>(lineOf(buffer_.caret())) * height;
        const float all = static_cast<float>(lines_.size()) * height;
        scroll_.y = std::clamp(scroll_.y, std::max(top + height - area.height, 0.0f),
                               std::max(top, top + height - area.height));
        scroll_.y = std::clamp(scroll_.y, 0.0f, std::max(all - area.height, 0.0f));
        return;
    }
    const float x = xOf(buffer_.caret());
    const float all = xOf(buffer_.text().size()) + kCaretWidth;
    scroll_.x = std::min(std::max(scroll_.x, x + kCaretWidth - area.width), std::max(x, 0.0f));
    scroll_.x = std::clamp(scroll_.x, 0.0f, std::max(all - area.width, 0.0f));
}

// --- what happened ---------------------------------------------------------------------------

void TextEdit::moved()
{
    showCaret();
    caretOn_ = true;
    if (frame() != nullptr)
        blinkFrom_ = frame()->host().now();
    invalidate();
}

void TextEdit::changed()
{
    dirty_ = true;
    layOut();
    moved();
    if (edited)
        edited(buffer_.text());
}

void TextEdit::commit()
{
    dirty_ = false;
    before_ = buffer_.text();
    if (committed)
        committed(std::string(before_));
}

void TextEdit::focusChanged(bool focused)
{
    if (frame() != nullptr)
        frame()->requestKeys(*this, focused);
    if (focused) {
        before_ = buffer_.text();
        if (frame() != nullptr)
            frame()->animate(*this);
        layOut();
        moved();
        return;
    }
    buffer_.moveTo(0, false);
    showCaret();
    invalidate();
    if (dirty_)
        commit();
}

bool TextEdit::animate(double now)
{
    if (!hasFocus())
        return false;
    const bool on = std::fmod(now - blinkFrom_, 2.0 * kBlinkSeconds) < kBlinkSeconds;
    if (on != caretOn_) {
        caretOn_ = on;
        invalidate();
    }
    return true;
}

// --- mouse -----------------------------------------------------------------------------------

bool TextEdit::mouseDown(const MouseEvent& event)
{
    if (event.button == MouseButton::right) {
        openContextMenu(event.position);
        return true;
    }
    if (event.button != MouseButton::left)
        return false;
    const std::size_t position = positionAt(event.position);
    if (event.clicks == 2)
        buffer_.selectWordAt(position);
    else
        buffer_.moveTo(position, event.modifiers.shift);
    moved();
    return true;
}

void TextEdit::mouseDragged(const MouseEvent& event)
{
    buffer_.moveTo(positionAt(event.position), true);
    moved();
}

bool TextEdit::mouseWheel(const WheelEvent& event)
{
    const float height = lineHeight(style().field);
    const float most = static_cast<float>(lines_.size()) * height - textArea().height;
    if (!options_.multiLine || most <= 0.0f)
        return false;
    scroll_.y = std::clamp(scroll_.y - event.steps * 3.0f * height, 0.0f, most);
    invalidate();
    return true;
}

void TextEdit::openContextMenu(Point local)
{
    enum { idCut = 1, idCopy, idPaste, idAll };
    const bool some = buffer_.hasSelection();
    MenuRequest request;
    request.entries = {{idCut, "Cut", "Ctrl+X", false, some, {}, {}},
                       {idCopy, "Copy", "Ctrl+C", false, some, {}, {}},
                       {idPaste, "Paste", "Ctrl+V", false, true, {}, {}},
                       MenuEntry::separator(),
                       {idAll, "Select All", "Ctrl+A", false, true, {}, {}}};
    const Point at = toFrame(local);
    request.anchor = {at.x, at.y, 0.0f, 0.0f};
    request.chosen = [this](int id) {
        if (id == idCut)
            cut();
        else if (id == idCopy)
            copy();
        else if (id == idPaste)
            paste();
        else
            selectAll();
    };
    Menu::show(*frame(), std::move(request));
}

// --- drawing ---------------------------------------------------------------------------------

void TextEdit::draw(Canvas& canvas)
{
    const Style& look = style();
    canvas.fillRoundRect(localBounds(), look.wellRadius, look.well);
    canvas.strokeRoundRect(localBounds(), look.wellRadius, 1.0f,
                           hasFocus() ? look.accent : look.edge);
    const Rect area = textArea();
    canvas.save();
    canvas.clip(area.inset(-kCaretWidth, 0.0f));
    if (hasFocus())
        drawSelection(canvas);
    const float height = options_.multiLine ? lineHeight(look.field) : area.height;
    const Color color = isEnabled() ? look.text : look.disabledText;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const float y = area.y + static_cast<float>(i) * height - scroll_.y;
        if (y + height < 0.0f || y > bounds().height)
            continue;
        const std::string_view line = std::string_view(buffer_.text())
                                          .substr(lines_[i].begin, lines_[i].end - lines_[i].begin);
        // Wide enough never to be cut with an ellipsis: the clip does that.
        canvas.textIn(line, {area.x - scroll_.x, y, measureText(line, look.field) + 8.0f, height},
                      look.field, color);
    }
    if (buffer_.text().empty() && !options_.placeholder.empty())
        canvas.textIn(options_.placeholder, {area.x, area.y, area.width, height}, look.field,
                      look.disabledText);
    if (hasFocus() && caretOn_) {
        const float x = canvas.snapX(area.x + xOf(buffer_.caret()) - scroll_.x);
        const float y = area.y + static_cast<float>(lineOf(buffer_.caret())) * height - scroll_.y;
        const float tall = look.field.size * 1.3f;
        canvas.fillRect({x, y + (height - tall) / 2.0f, kCaretWidth, tall}, look.accent);
    }
    canvas.restore();
}

void TextEdit::drawSelection(Canvas& canvas) const
{
    const auto [from, to] = buffer_.selection();
    if (from == to)
        return;
    const Rect area = textArea();
    const float tall = style().field.size * 1.4f;
    const float height = options_.multiLine ? lineHeight(style().field) : area.height;
    const std::string_view text = buffer_.text();
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const std::size_t begin = std::max(from, lines_[i].begin);
        const std::size_t end = std::min(to, lines_[i].end);
        if (begin > end || lines_[i].begin > to || lines_[i].end < from)
            continue;
        const auto width = [&](std::size_t position) {
            return measureText(text.substr(lines_[i].begin, position - lines_[i].begin),
                               style().field);
        };
        const float x = area.x + width(begin) - scroll_.x;
        const float y = area.y + static_cast<float>(i) * height - scroll_.y;
        // A selected line break shows as a sliver.
        const float w = std::max(width(end) - width(begin), to > lines_[i].end ? 3.0f : 0.0f);
        canvas.fillRect({x, y + (height - tall) / 2.0f, w, tall}, style().accent.withAlpha(0.35f));
    }
}

} // namespace tolm::gui
