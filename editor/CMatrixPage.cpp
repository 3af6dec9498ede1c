#include "editor/CMatrixPage.h"

#include "editor/controls.h"
#include "editor/pages.h"
#include "gui/Frame.h"
#include "gui/PushButton.h"

#include <algorithm>
#include <utility>

namespace tolm {

namespace {

constexpr float kHandleWidth = 26.0f; // left of a row's source
constexpr const char* kCaptions[] = {"Source", "Amount", "Destination", "Voices"};
constexpr float kCaptionHeight = 13.0f;
constexpr int kRowsPerColumn = kMatrixRows / 2;

} // namespace

CMatrixPage::CMatrixPage(EditorContext& context) : View(pagePlace(Page::matrix)), context_(context)
{
    for (const ControlRow& row : controlRows())
        if (row.page == Page::matrix)
            addCell(row);
    emplace<gui::PushButton>(kDisplayPlaces.matrixTidy, "Tidy", [this] { tidyMatrix(context_); });
    context.listen(*this, kModSource1, kMatrixRows);
    context.listen(*this, kModDestination1, kMatrixRows);
    context.listenToMeters(*this);
}

CMatrixPage::~CMatrixPage()
{
    context_.forget(static_cast<ValueListener&>(*this));
    context_.forget(static_cast<MeterListener&>(*this));
}

// The handle goes before its row's source, so that the Tab key meets it first.
void CMatrixPage::addCell(const ControlRow& control)
{
    const MatrixCell cell = matrixCellOf(control.tag);
    Row& row = rows_[static_cast<std::size_t>(cell.row)];
    if (cell.column == MatrixColumn::source)
        row.cells[0] =
            &emplace<CMatrixHandle>(context_, static_cast<MatrixDragListener&>(*this), cell.row,
                                    gui::Rect{control.place.x - kHandleWidth, control.place.y,
                                              kHandleWidth, control.place.height});
    gui::View& added = add(makeControl(context_, control));
    row.cells[static_cast<std::size_t>(cell.column) + 1] = &added;
    if (cell.column == MatrixColumn::amount)
        row.amount = dynamic_cast<CMatrixAmount*>(&added);
}

gui::Rect CMatrixPage::rowPlace(int row) const
{
    gui::Rect place;
    for (const gui::View* cell : rows_[static_cast<std::size_t>(row)].cells)
        place = place.united(cell->bounds());
    return place;
}

int CMatrixPage::rowAt(gui::Point local) const
{
    for (int row = 0; row < kMatrixRows; ++row)
        if (rowPlace(row).inset(0.0f, -0.5f).contains(local))
            return row;
    return -1;
}

int CMatrixPage::usedRows() const
{
    int used = 0;
    for (int row = 0; row < kMatrixRows; ++row)
        used += isMatrixRowUsed(context_, row) ? 1 : 0;
    return used;
}

gui::Rect CMatrixPage::countPlace() const
{
    return {82.0f, 6.0f, 160.0f, 19.0f};
}

void CMatrixPage::drawCaptions(gui::Canvas& canvas) const
{
    for (const int first : {0, kRowsPerColumn}) {
        const Row& row = rows_[static_cast<std::size_t>(first)];
        for (std::size_t i = 0; i < std::size(kCaptions); ++i) {
            const gui::Rect cell = row.cells[i + 1]->bounds();
            canvas.textIn(kCaptions[i],
                          {cell.x + 6.0f, cell.y - kCaptionHeight, cell.width, kCaptionHeight},
                          theme::kLabel, theme::kSecondary);
        }
    }
}

void CMatrixPage::draw(gui::Canvas& canvas)
{
    drawPanel(canvas, localBounds(), "MATRIX", Accent::modulation);
    canvas.textIn(std::to_string(usedRows()) + " of " + std::to_string(kMatrixRows) + " in use",
                  countPlace(), theme::kLabel, theme::kSecondary);
    drawCaptions(canvas);
    for (const int row : {dragged_, target_}) {
        if (row < 0)
            continue;
        const gui::Rect place = canvas.snap(rowPlace(row).inset(-2.0f, -1.0f));
        canvas.fillRoundRect(place, theme::kControlRadius, theme::kModulation.withAlpha(0.18f));
        if (row == target_)
            canvas.strokeRoundRect(place, theme::kControlRadius, 1.0f, theme::kModulation);
    }
}

void CMatrixPage::valueChanged(int)
{
    invalidate(countPlace());
}

void CMatrixPage::metersChanged(const EditorMeters& meters)
{
    if (!isShowing())
        return;
    for (std::size_t row = 0; row < rows_.size(); ++row)
        rows_[row].amount->showSource(meters.voices > 0 ? std::optional(meters.rowSource[row])
                                                        : std::nullopt);
}

void CMatrixPage::showTarget(int from, int to)
{
    for (const int row : {dragged_, target_, from, to})
        if (row >= 0)
            invalidate(rowPlace(row).inset(-3.0f));
    dragged_ = from;
    target_ = to;
}

void CMatrixPage::rowDragged(int row, gui::Point inFrame)
{
    const int over = rowAt(fromFrame(inFrame));
    const int target = over == row ? -1 : over;
    if (row == dragged_ && target == target_)
        return;
    showTarget(row, target);
    if (context_.showStatus)
        context_.showStatus(target < 0 ? std::string()
                                       : "Exchange rows " + std::to_string(row + 1) + " and " +
                                             std::to_string(target + 1));
}

void CMatrixPage::rowDropped(int row, bool kept)
{
    const int target = std::exchange(target_, -1);
    if (target >= 0)
        invalidate(rowPlace(target).inset(-3.0f));
    showTarget(-1, -1);
    if (context_.showStatus)
        context_.showStatus({});
    if (kept && target >= 0)
        exchangeMatrixRows(context_, row, target);
}

bool CMatrixPage::keyDown(const gui::KeyEvent& event)
{
    if (event.key != gui::Key::up && event.key != gui::Key::down)
        return false;
    const gui::View* focus = frame() != nullptr ? frame()->focus() : nullptr;
    for (int row = 0; row < kMatrixRows; ++row) {
        const auto& cells = rows_[static_cast<std::size_t>(row)].cells;
        const auto column = std::find(cells.begin(), cells.end(), focus) - cells.begin();
        const int next = row + (event.key == gui::Key::up ? -1 : 1);
        if (column == static_cast<std::ptrdiff_t>(kCells) || next < 0 || next >= kMatrixRows)
            continue;
        if (event.modifiers.alt)
            exchangeMatrixRows(context_, row, next);
        frame()->setFocus(
            rows_[static_cast<std::size_t>(next)].cells[static_cast<std::size_t>(column)]);
        return true;
    }
    return false;
}

} // namespace tolm
