#include "editor/CBrowserLists.h"

#include "editor/CHeaderParts.h"
#include "editor/theme.h"
#include "gui/Frame.h"
#include "plugin/menus.h"

#include <algorithm>
#include <cstdio>

namespace tolm {

namespace {

constexpr int kBanks = 3;
constexpr int kFavouritesRow = kCategoryCount; // below the categories
constexpr float kPadding = 4.0f;
constexpr float kStarWidth = 18.0f;
constexpr gui::TextStyle kRowText{10.5f, gui::FontWeight::medium, 0.0f, false};
constexpr gui::TextStyle kNumber{9.0f, gui::FontWeight::medium, 0.0f, true};

} // namespace

// ---- Names -----------------------------------------------------------------------------------

int CBrowserNames::rowsPerColumn() const
{
    return std::max(1, static_cast<int>((bounds().height - 2 * kPadding) / kRowHeight));
}

int CBrowserNames::columns() const
{
    const int rows = static_cast<int>(model_.rows().size());
    return (rows + rowsPerColumn() - 1) / rowsPerColumn();
}

gui::Rect CBrowserNames::rowPlace(int row) const
{
    const float width = (bounds().width - 2 * kPadding) / kColumns;
    const int column = row / rowsPerColumn() - firstColumn_;
    return {kPadding + width * static_cast<float>(column),
            kPadding + kRowHeight * static_cast<float>(row % rowsPerColumn()), width - 4.0f,
            kRowHeight};
}

gui::Rect CBrowserNames::starPlace(int row) const
{
    const gui::Rect place = rowPlace(row);
    return {place.right() - kStarWidth, place.y, kStarWidth, place.height};
}

int CBrowserNames::rowAt(gui::Point p) const
{
    const int first = firstColumn_ * rowsPerColumn();
    const int last =
        std::min(first + kColumns * rowsPerColumn(), static_cast<int>(model_.rows().size()));
    for (int row = first; row < last; ++row)
        if (rowPlace(row).contains(p))
            return row;
    return -1;
}

void CBrowserNames::scrollTo(int column)
{
    firstColumn_ = std::clamp(column, 0, std::max(0, columns() - kColumns));
    invalidate();
}

void CBrowserNames::showRow(int row)
{
    if (row < 0)
        return scrollTo(firstColumn_);
    const int column = row / rowsPerColumn();
    scrollTo(std::clamp(firstColumn_, column - kColumns + 1, column));
}

void CBrowserNames::update()
{
    const int current = model_.currentRow();
    if (current != current_ || current < 0)
        showRow(current);
    else
        scrollTo(firstColumn_);
    current_ = current;
}

void CBrowserNames::move(int rows)
{
    const int last = static_cast<int>(model_.rows().size()) - 1;
    const int from = model_.currentRow();
    if (last < 0)
        return;
    model_.choose(from < 0 ? 0 : std::clamp(from + rows, 0, last));
    update();
}

void CBrowserNames::drawRow(gui::Canvas& canvas, int row) const
{
    const CBrowserModel::Row& shown = model_.rows()[static_cast<std::size_t>(row)];
    const gui::Rect box = canvas.snap(rowPlace(row));
    const bool current = row == current_;
    const gui::Color accent = theme::color(Accent::value);
    if (current)
        canvas.fillRoundRect(box, 3.0f, accent.withAlpha(0.92f));
    else if (row == pointed_)
        canvas.fillRoundRect(box, 3.0f, theme::kTrack.withAlpha(0.6f));
    char number[8];
    std::snprintf(number, sizeof number, "%c%03d", 'A' + shown.program / kPresetListSize % 26,
                  shown.program % kPresetListSize + 1);
    const gui::Color ink = current ? theme::kWell : theme::kText;
    canvas.textIn(number, {box.x + 5.0f, box.y, 28.0f, box.height}, kNumber,
                  current ? theme::kWell : theme::kSecondary.withAlpha(0.8f));
    const bool starred = shown.favourite || row == pointed_;
    canvas.textIn(
        shown.label,
        {box.x + 33.0f, box.y, box.width - 34.0f - (starred ? kStarWidth : 0.0f), box.height},
        kRowText, ink);
    if (starred)
        drawStar(canvas, starPlace(row).centre(), 4.6f, shown.favourite,
                 current           ? theme::kWell
                 : shown.favourite ? theme::color(Accent::osc1)
                                   : theme::kSecondary);
}

void CBrowserNames::draw(gui::Canvas& canvas)
{
    const gui::Rect well = canvas.snap(localBounds());
    canvas.fillRoundRect(well, theme::kWellRadius, theme::kWell);
    canvas.strokeRoundRect(well, theme::kWellRadius, 1.0f, theme::kEdge);
    const int rows = static_cast<int>(model_.rows().size());
    if (rows == 0)
        canvas.textIn(model_.isSearching()       ? "Nothing is called or described like this"
                      : model_.showsFavourites() ? "A click on a star makes a program a favourite"
                                                 : "No programs",
                      well, theme::kField, theme::kSecondary, gui::Align::centre);
    const int first = firstColumn_ * rowsPerColumn();
    for (int row = first; row < std::min(first + kColumns * rowsPerColumn(), rows); ++row)
        drawRow(canvas, row);
    if (columns() <= kColumns)
        return;
    const float whole = well.width - 2 * kPadding;
    const float part = whole / static_cast<float>(columns());
    canvas.fillRoundRect({well.x + kPadding + part * static_cast<float>(firstColumn_),
                          well.bottom() - 4.0f, part * kColumns, 3.0f},
                         1.5f, theme::kFaint);
}

void CBrowserNames::point(int row)
{
    for (const int changed : {pointed_, row})
        if (row != pointed_ && changed >= 0)
            invalidate(rowPlace(changed));
    pointed_ = row;
}

void CBrowserNames::mouseMoved(const gui::MouseEvent& event)
{
    point(rowAt(event.position));
}

bool CBrowserNames::mouseDown(const gui::MouseEvent& event)
{
    const int row = rowAt(event.position);
    if (event.button != gui::MouseButton::left)
        return false;
    if (row < 0)
        return true;
    if (starPlace(row).contains(event.position)) {
        model_.toggleFavourite(row);
    } else if (event.clicks == 2 && activated) {
        activated();
    } else {
        model_.choose(row);
        update();
    }
    return true;
}

bool CBrowserNames::mouseWheel(const gui::WheelEvent& event)
{
    scrollTo(firstColumn_ + (event.steps > 0 ? -1 : 1));
    return true;
}

// ---- Categories ------------------------------------------------------------------------------

int CBrowserCategories::chosen() const
{
    return model_.showsFavourites() ? kFavouritesRow : model_.category();
}

void CBrowserCategories::draw(gui::Canvas& canvas)
{
    const bool focused = hasFocus() && frame()->keyboardMode();
    for (int row = 0; row <= kFavouritesRow; ++row) {
        const float gap = row == 0 ? 0.0f : row == kFavouritesRow ? 8.0f : 4.0f;
        const gui::Rect box = canvas.snap(
            {0.0f, kRowHeight * static_cast<float>(row) + gap, bounds().width, kRowHeight - 2.0f});
        const bool on = row == chosen() && !model_.isSearching();
        if (on) {
            canvas.fillRoundRect(box, theme::kControlRadius, theme::kTrack);
            canvas.fillRoundRect({box.x, box.y + 5.0f, 3.0f, box.height - 10.0f}, 1.5f,
                                 theme::color(Accent::value));
        } else if (row == pointed_) {
            canvas.fillRoundRect(box, theme::kControlRadius, theme::kTrack.withAlpha(0.4f));
        }
        if (on && focused)
            canvas.strokeRoundRect(box, theme::kControlRadius, 1.0f, theme::kText.withAlpha(0.7f));
        const char* const name = row == 0                ? "Whole bank"
                                 : row == kFavouritesRow ? "Favourites"
                                                         : kCategoryNames[row];
        canvas.textIn(name, {box.x + 12.0f, box.y, box.width - 36.0f, box.height}, theme::kField,
                      on || row == pointed_ ? theme::kText : theme::kSecondary);
        if (row == kFavouritesRow)
            drawStar(canvas, {box.right() - 14.0f, box.centre().y}, 5.0f, true,
                     theme::color(Accent::osc1));
    }
}

void CBrowserCategories::choose(int row)
{
    if (row < 0 || row > kFavouritesRow)
        return;
    if (row == kFavouritesRow)
        model_.showFavourites(true);
    else
        model_.showCategory(row);
    invalidate();
    if (changed)
        changed();
}

void CBrowserCategories::point(int row)
{
    if (row != pointed_)
        invalidate();
    pointed_ = row;
}

void CBrowserCategories::mouseMoved(const gui::MouseEvent& event)
{
    const int row = static_cast<int>((event.position.y - 4.0f) / kRowHeight);
    point(row <= kFavouritesRow ? row : -1);
}

bool CBrowserCategories::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    choose(static_cast<int>((event.position.y - 4.0f) / kRowHeight));
    return true;
}

bool CBrowserCategories::keyDown(const gui::KeyEvent& event)
{
    if (event.key != gui::Key::up && event.key != gui::Key::down)
        return false;
    choose(chosen() + (event.key == gui::Key::down ? 1 : -1));
    return true;
}

// ---- Banks -----------------------------------------------------------------------------------

void CBankSwitch::draw(gui::Canvas& canvas)
{
    const gui::Rect box = canvas.snap(localBounds());
    canvas.fillRoundRect(box, theme::kControlRadius, theme::kWell);
    canvas.strokeRoundRect(box, theme::kControlRadius, 1.0f, theme::kEdge);
    const bool used = model_.category() == 0 && !model_.showsFavourites() && !model_.isSearching();
    for (int bank = 0; bank < kBanks; ++bank) {
        const float width = box.width / kBanks;
        const gui::Rect part =
            canvas.snap({box.x + width * static_cast<float>(bank), box.y, width, box.height});
        const bool on = used && bank == context_.port().currentBank();
        if (on)
            canvas.fillRoundRect(part.inset(1.0f), theme::kControlRadius - 1.0f,
                                 theme::color(Accent::value));
        const std::string name = std::string("Bank ") + static_cast<char>('A' + bank);
        canvas.textIn(name, part, theme::kLabel, on ? theme::kWell : theme::kSecondary,
                      gui::Align::centre);
    }
}

bool CBankSwitch::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    model_.showBank(
        std::clamp(static_cast<int>(event.position.x / bounds().width * static_cast<float>(kBanks)),
                   0, kBanks - 1));
    invalidate();
    if (changed)
        changed();
    return true;
}

} // namespace tolm
