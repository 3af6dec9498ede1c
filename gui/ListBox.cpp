#include "gui/ListBox.h"

#include "gui/Frame.h"
#include "gui/asciiText.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr float kPadding = 4.0f;
constexpr float kBarWidth = 8.0f;
constexpr float kLeastThumb = 24.0f;
constexpr float kDetailWidth = 90.0f;
constexpr double kTypingSeconds = 1.0;

void drawFolder(Canvas& canvas, Point centre, Color color)
{
    canvas.fillRoundRect({centre.x - 5.5f, centre.y - 4.5f, 5.0f, 3.0f}, 1.0f, color);
    canvas.fillRoundRect({centre.x - 5.5f, centre.y - 3.0f, 11.0f, 7.5f}, 1.0f, color);
}

} // namespace

void ListBox::setRows(std::vector<ListRow> rows)
{
    rows_ = std::move(rows);
    selection_ = -1;
    scroll_ = 0.0f;
    typed_.clear();
    invalidate();
}

void ListBox::setEmptyText(std::string text)
{
    emptyText_ = std::move(text);
    invalidate();
}

float ListBox::furthest() const
{
    const float all = static_cast<float>(rowCount()) * kRowHeight + 2.0f * kPadding;
    return std::max(all - bounds().height, 0.0f);
}

void ListBox::scrollTo(float offset)
{
    scroll_ = std::round(std::clamp(offset, 0.0f, furthest()));
    invalidate();
}

void ListBox::select(int row)
{
    selection_ = row >= 0 && row < rowCount() ? row : -1;
    if (selection_ >= 0) {
        const float top = static_cast<float>(selection_) * kRowHeight;
        const float lowest = top + kRowHeight + 2.0f * kPadding - bounds().height;
        scrollTo(std::min(std::max(scroll_, lowest), std::max(top, 0.0f)));
    }
    invalidate();
}

void ListBox::choose(int row)
{
    if (row < 0 || row >= rowCount())
        return;
    select(row);
    if (selected)
        selected(row);
}

void ListBox::focusChanged(bool focused)
{
    if (frame() != nullptr)
        frame()->requestKeys(*this, focused);
    invalidate();
}

// --- input -----------------------------------------------------------------------------------

Rect ListBox::thumb() const
{
    const float most = furthest();
    const Rect track{bounds().width - kBarWidth - 1.0f, 2.0f, kBarWidth, bounds().height - 4.0f};
    if (most <= 0.0f || track.isEmpty())
        return {};
    const float length =
        std::min(std::max(track.height * bounds().height / (bounds().height + most), kLeastThumb),
                 track.height);
    return {track.x, track.y + (track.height - length) * scroll_ / most, track.width, length};
}

bool ListBox::mouseDown(const MouseEvent& event)
{
    if (event.button != MouseButton::left)
        return false;
    const Rect bar = thumb();
    if (!bar.isEmpty() && event.position.x >= bar.x) {
        draggingBar_ = true;
        const bool onThumb = bar.contains(event.position);
        grip_ = onThumb ? event.position.y - bar.y : bar.height / 2.0f;
        mouseDragged(event);
        return true;
    }
    const float row = std::floor((event.position.y - kPadding + scroll_) / kRowHeight);
    if (row < 0.0f || row >= static_cast<float>(rowCount()))
        return true;
    const int index = static_cast<int>(row);
    const bool again = index == selection_;
    if (event.clicks == 2 && again) {
        if (const auto act = activated)
            act(index);
        return true;
    }
    choose(index);
    return true;
}

void ListBox::mouseDragged(const MouseEvent& event)
{
    if (!draggingBar_)
        return;
    const float way = bounds().height - 4.0f - thumb().height;
    if (way > 0.0f)
        scrollTo((event.position.y - grip_ - 2.0f) / way * furthest());
}

bool ListBox::mouseWheel(const WheelEvent& event)
{
    scrollTo(scroll_ - event.steps * 3.0f * kRowHeight);
    return true;
}

bool ListBox::keyDown(const KeyEvent& event)
{
    const int page = std::max(static_cast<int>(bounds().height / kRowHeight) - 1, 1);
    const int last = rowCount() - 1;
    switch (event.key) {
    case Key::up:
        choose(selection_ < 0 ? last : std::max(selection_ - 1, 0));
        return true;
    case Key::down:
        choose(std::min(selection_ + 1, last));
        return true;
    case Key::pageUp:
        choose(std::max(selection_ - page, 0));
        return true;
    case Key::pageDown:
        choose(std::min(selection_ + page, last));
        return true;
    case Key::home:
        choose(0);
        return true;
    case Key::end:
        choose(last);
        return true;
    case Key::enter:
        if (selection_ < 0 || !activated)
            return false;
        if (const auto act = activated)
            act(selection_);
        return true;
    case Key::character:
    case Key::space:
        return findTyped(event);
    default:
        return false;
    }
}

// Letters typed in quick succession select the first row that begins with them.
bool ListBox::findTyped(const KeyEvent& event)
{
    if (event.modifiers.control || event.modifiers.alt || frame() == nullptr)
        return false;
    const double now = frame()->host().now();
    if (now - typedAt_ > kTypingSeconds)
        typed_.clear();
    typedAt_ = now;
    typed_ += lowered(event.text);
    for (int i = 0; i < rowCount(); ++i)
        if (lowered(rows_[static_cast<std::size_t>(i)].label).starts_with(typed_)) {
            choose(i);
            break;
        }
    return true;
}

// --- drawing ---------------------------------------------------------------------------------

void ListBox::draw(Canvas& canvas)
{
    const Style& style = frame()->style();
    canvas.fillRoundRect(localBounds(), style.wellRadius, style.well);
    const Rect bar = thumb();
    const Rect rowsBox = localBounds().inset(kPadding);
    if (rows_.empty())
        canvas.textIn(emptyText_, rowsBox.inset(kPadding, 0.0f), style.field, style.secondaryText,
                      Align::centre);
    canvas.save();
    canvas.clip(localBounds().inset(1.0f));
    const auto first = static_cast<int>(scroll_ / kRowHeight);
    const auto count = static_cast<int>(bounds().height / kRowHeight) + 2;
    const float width = rowsBox.width - (bar.isEmpty() ? 0.0f : kBarWidth);
    for (int i = std::max(first - 1, 0); i < std::min(first + count, rowCount()); ++i) {
        const float y = kPadding + static_cast<float>(i) * kRowHeight - scroll_;
        drawRow(canvas, rows_[static_cast<std::size_t>(i)], {kPadding, y, width, kRowHeight},
                i == selection_);
    }
    canvas.restore();
    if (!bar.isEmpty())
        canvas.fillRoundRect(bar.inset(1.5f, 0.0f), 2.5f, style.track);
    canvas.strokeRoundRect(localBounds(), style.wellRadius, 1.0f,
                           hasFocus() ? style.accent : style.edge);
}

void ListBox::drawRow(Canvas& canvas, const ListRow& row, const Rect& box, bool isSelected) const
{
    const Style& style = frame()->style();
    if (isSelected)
        canvas.fillRoundRect(box, style.controlRadius,
                             style.accent.withAlpha(hasFocus() ? 0.32f : 0.2f));
    Rect text = box.inset(kPadding, 0.0f);
    if (row.isFolder) {
        drawFolder(canvas, {text.x + 7.0f, text.centre().y}, style.accent);
        text.removeFromLeft(18.0f);
    }
    if (!row.detail.empty()) {
        const Rect detail{text.right() - kDetailWidth, text.y, kDetailWidth, text.height};
        canvas.textIn(row.detail, detail, style.label, style.secondaryText, Align::right);
        text.width -= kDetailWidth + kPadding;
    }
    canvas.textIn(row.label, text, style.field, style.text);
}

} // namespace tolm::gui
