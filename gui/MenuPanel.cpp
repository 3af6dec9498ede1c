#include "gui/MenuPanel.h"

#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm::gui {

namespace {

constexpr double kFadeSeconds = 0.06;
constexpr float kRowHeight = 20.0f;
constexpr float kHeadingHeight = 22.0f;
constexpr float kSeparatorHeight = 9.0f;
constexpr float kTitleHeight = 26.0f;
constexpr float kEdge = 5.0f;       // around the rows
constexpr float kMarkWidth = 20.0f; // before the label
constexpr float kTailWidth = 20.0f; // after it: the arrow of a sub-menu
constexpr float kShortcutGap = 16.0f;
constexpr float kMinWidth = 96.0f;
constexpr float kScrollMark = 12.0f; // a row's worth of hint at a cut end
constexpr float kWheelPixels = 3.0f * kRowHeight;

void drawCheck(Canvas& canvas, Point centre, Color color)
{
    Path mark;
    mark.moveTo(centre + Point{-4.0f, 0.0f})
        .lineTo(centre + Point{-1.0f, 3.0f})
        .lineTo(centre + Point{4.0f, -3.5f});
    canvas.stroke(mark, {1.6f, LineCap::round}, color);
}

// A small triangle; `direction` as an angle's unit vector.
void drawArrow(Canvas& canvas, Point centre, Point direction, Color color)
{
    const Point side{-direction.y, direction.x};
    Path arrow;
    arrow.moveTo(centre + Point{direction.x * 3.0f, direction.y * 3.0f})
        .lineTo(centre + Point{side.x * 3.5f - direction.x, side.y * 3.5f - direction.y})
        .lineTo(centre + Point{-side.x * 3.5f - direction.x, -side.y * 3.5f - direction.y})
        .close();
    canvas.fill(arrow, color);
}

} // namespace

MenuPanel::MenuPanel(Menu& menu, const std::vector<MenuEntry>& entries, const Style& style,
                     std::string title, const Rect& bounds)
    : menu_(menu), entries_(entries), style_(style), title_(std::move(title))
{
    std::vector<MenuRowSize> sizes;
    for (const MenuEntry& entry : entries_)
        sizes.push_back(sizeOf(entry));
    const float top = title_.empty() ? 0.0f : kTitleHeight;
    const float titleWidth = measureText(title_, style_.field) + kMarkWidth + kTailWidth;
    layout_ = layOutMenu(sizes, std::max(kMinWidth, titleWidth),
                         {bounds.width - 2.0f * kEdge, bounds.height - 2.0f * kEdge - top});
}

MenuRowSize MenuPanel::sizeOf(const MenuEntry& entry) const
{
    switch (entry.kind) {
    case MenuEntry::Kind::separator:
        return {kSeparatorHeight, 0.0f, false};
    case MenuEntry::Kind::heading:
        return {kHeadingHeight, measureText(entry.label, style_.title) + 2.0f * kEdge, true};
    case MenuEntry::Kind::item:
        break;
    }
    const float shortcut =
        entry.shortcut.empty() ? 0.0f : measureText(entry.shortcut, style_.field) + kShortcutGap;
    return {kRowHeight, kMarkWidth + measureText(entry.label, style_.field) + shortcut + kTailWidth,
            false};
}

Point MenuPanel::wantedSize() const
{
    const float top = title_.empty() ? 0.0f : kTitleHeight;
    return {std::max(layout_.size.x, kMinWidth) + 2.0f * kEdge,
            std::max(layout_.size.y, kEdge) + 2.0f * kEdge + top};
}

Rect MenuPanel::rowsArea() const
{
    Rect area = localBounds().inset(kEdge);
    if (!title_.empty())
        area.removeFromTop(kTitleHeight);
    return area;
}

Rect MenuPanel::rowRect(int index) const
{
    const Rect area = rowsArea();
    return layout_.rows[static_cast<std::size_t>(index)].moved({area.x, area.y - scroll_});
}

Rect MenuPanel::rowInFrame(int index) const
{
    return rowRect(index).moved(toFrame({}));
}

int MenuPanel::rowAt(Point local) const
{
    if (rowsArea().contains(local))
        for (int i = 0; i < rowCount(); ++i)
            if (rowRect(i).contains(local))
                return i;
    return -1;
}

bool MenuPanel::canBeLit(int index) const
{
    const MenuEntry& entry = entries_[static_cast<std::size_t>(index)];
    return entry.kind == MenuEntry::Kind::item && entry.enabled;
}

void MenuPanel::light(int index)
{
    if (index >= rowCount() || (index >= 0 && !canBeLit(index)))
        index = -1;
    if (index == lit_)
        return;
    lit_ = index;
    if (index >= 0 && layout_.scrolls()) {
        const Rect row = layout_.rows[static_cast<std::size_t>(index)];
        const float lowest = row.bottom() + kScrollMark - layout_.size.y;
        scrollTo(std::clamp(scroll_, lowest, std::max(row.y - kScrollMark, lowest)));
    }
    invalidate();
}

void MenuPanel::lightNext(int direction)
{
    const int count = rowCount();
    int at = lit_ >= 0 ? lit_ : direction > 0 ? -1 : count;
    for (int tried = 0; tried < count; ++tried) {
        at = (at + direction + count) % count;
        if (canBeLit(at)) {
            light(at);
            return;
        }
    }
}

bool MenuPanel::lightBeside(int direction)
{
    if (lit_ < 0 || layout_.columns < 2)
        return false;
    const Rect from = rowRect(lit_);
    const float column = from.x + static_cast<float>(direction) * from.width;
    int best = -1;
    for (int i = 0; i < rowCount(); ++i) {
        if (!canBeLit(i) || std::abs(rowRect(i).x - column) > 1.0f)
            continue;
        if (best < 0 || std::abs(rowRect(i).y - from.y) < std::abs(rowRect(best).y - from.y))
            best = i;
    }
    if (best >= 0)
        light(best);
    return best >= 0;
}

void MenuPanel::lightFirstOrChecked()
{
    for (int i = 0; i < rowCount(); ++i)
        if (entries_[static_cast<std::size_t>(i)].checked && canBeLit(i)) {
            light(i);
            return;
        }
    lightNext(1);
}

void MenuPanel::scrollTo(float offset)
{
    const float furthest = std::max(layout_.contentHeight - layout_.size.y, 0.0f);
    const float next = std::round(std::clamp(offset, 0.0f, furthest));
    if (next == scroll_)
        return;
    scroll_ = next;
    invalidate();
}

// --- input -----------------------------------------------------------------------------------

void MenuPanel::mouseMoved(const MouseEvent& event)
{
    const int row = rowAt(event.position);
    light(row);
    menu_.pointAt(*this, lit_);
}

bool MenuPanel::mouseDown(const MouseEvent& event)
{
    menu_.pressed();
    mouseMoved(event);
    return true;
}

void MenuPanel::mouseDragged(const MouseEvent& event)
{
    mouseMoved(event);
}

void MenuPanel::mouseUp(const MouseEvent& event)
{
    const int row = rowAt(event.position);
    // The release of the press that opened the menu chooses nothing unless the hand has moved on.
    if (row >= 0 && canBeLit(row) && !menu_.isOpening())
        menu_.activate(*this, row, false);
}

bool MenuPanel::mouseWheel(const WheelEvent& event)
{
    scrollTo(scroll_ - event.steps * kWheelPixels);
    light(rowAt(event.position));
    menu_.pointAt(*this, lit_);
    return true;
}

// --- drawing ---------------------------------------------------------------------------------

void MenuPanel::fadeIn()
{
    shownSince_ = frame()->host().now();
    frame()->animate(*this);
}

bool MenuPanel::animate(double now)
{
    invalidate();
    if (now - shownSince_ >= kFadeSeconds)
        shownSince_ = -1.0;
    return shownSince_ >= 0.0;
}

void MenuPanel::draw(Canvas& canvas)
{
    if (shownSince_ >= 0.0)
        canvas.fade(static_cast<float>((frame()->host().now() - shownSince_) / kFadeSeconds));
    const Rect box = localBounds();
    canvas.fillRoundRect(
        box, style_.panelRadius,
        Paint::linear({0.0f, 0.0f}, {0.0f, box.height}, style_.panelTop, style_.panelBottom));
    canvas.strokeRoundRect(box, style_.panelRadius, 1.0f, style_.edge);
    if (!title_.empty()) {
        Rect title = box.inset(kEdge).removeFromTop(kTitleHeight - kEdge);
        canvas.fillRoundRect(title, style_.controlRadius, style_.well);
        canvas.textIn(title_, title.inset(kMarkWidth / 2.0f, 0.0f), style_.field, style_.accent);
    }
    const Rect area = rowsArea();
    canvas.save();
    canvas.clip(area);
    const Rect visible = canvas.clipBounds();
    for (int i = 0; i < rowCount(); ++i)
        if (const Rect row = rowRect(i); row.intersects(visible))
            drawRow(canvas, entries_[static_cast<std::size_t>(i)], row, i == lit_);
    canvas.restore();
    for (int column = 1; column < layout_.columns; ++column) {
        const float x = canvas.snapX(area.x + area.width * static_cast<float>(column) /
                                                  static_cast<float>(layout_.columns));
        canvas.fillRect({x, area.y, 1.0f / canvas.scale(), area.height}, style_.edge);
    }
    if (scroll_ > 0.0f)
        drawArrow(canvas, {area.centre().x, area.y + 4.0f}, {0.0f, -1.0f}, style_.accent);
    if (layout_.scrolls() && scroll_ + layout_.size.y < layout_.contentHeight)
        drawArrow(canvas, {area.centre().x, area.bottom() - 4.0f}, {0.0f, 1.0f}, style_.accent);
}

void MenuPanel::drawRow(Canvas& canvas, const MenuEntry& entry, const Rect& row, bool lit) const
{
    if (entry.kind == MenuEntry::Kind::separator) {
        const float y = canvas.snapY(row.centre().y);
        canvas.fillRect({row.x + kEdge, y, row.width - 2.0f * kEdge, 1.0f / canvas.scale()},
                        style_.edge);
        return;
    }
    if (entry.kind == MenuEntry::Kind::heading) {
        canvas.textIn(entry.label, row.inset(kEdge, 0.0f), style_.title, style_.secondaryText);
        return;
    }
    if (lit)
        canvas.fillRoundRect(row, style_.controlRadius, style_.accent.withAlpha(0.22f));
    const Color color = !entry.enabled  ? style_.disabledText
                        : entry.checked ? style_.accent
                                        : style_.text;
    if (entry.checked)
        drawCheck(canvas, {row.x + kMarkWidth / 2.0f, row.centre().y}, color);
    const Rect text{row.x + kMarkWidth, row.y, row.width - kMarkWidth - kTailWidth, row.height};
    canvas.textIn(entry.label, text, style_.field, color);
    if (!entry.shortcut.empty())
        canvas.textIn(entry.shortcut,
                      {text.x, text.y, text.width + kTailWidth - kEdge, text.height}, style_.field,
                      style_.secondaryText, Align::right);
    if (!entry.children.empty())
        drawArrow(canvas, {row.right() - kTailWidth / 2.0f, row.centre().y}, {1.0f, 0.0f}, color);
}

} // namespace tolm::gui
