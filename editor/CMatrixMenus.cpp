#include "editor/CMatrixMenus.h"

#include "editor/programActions.h"
#include "patch/chunkRecord.h"
#include "plugin/menus.h"

#include <algorithm>
#include <iterator>

namespace tolm {

namespace {

constexpr int kColumnStride = kModAmount1 - kModSource1;
static_assert(kModDestination1 == kModSource1 + 2 * kColumnStride);
static_assert(kModVoices1 == kModSource1 + 3 * kColumnStride);

// Of the sub-menus 1000 to 1007.
constexpr const char* kGroupNames[] = {"Oscillators",    "Noise, Ring & FM", "Mod Envelope & Spike",
                                       "Filter & Amp",   "Curves",           "LFOs",
                                       "Matrix Amounts", "Pitch & Output"};
static_assert(std::size(kGroupNames) == std::size(kDestinationGroups));
constexpr int kDestinations = static_cast<int>(std::size(kDestinationMenu));

// The sub-menu 0..7 of a position from 1 on.
int groupOf(int position)
{
    const auto* end = std::end(kDestinationGroups);
    const auto* next = std::upper_bound(std::begin(kDestinationGroups), end, position);
    return static_cast<int>(next - std::begin(kDestinationGroups)) - 1;
}

int groupEnd(int group)
{
    const auto next = static_cast<std::size_t>(group) + 1;
    return next < std::size(kDestinationGroups) ? kDestinationGroups[next] : kDestinations;
}

const char* nameAt(MatrixColumn column, int position)
{
    const auto at = static_cast<std::size_t>(position);
    switch (column) {
    case MatrixColumn::source:
        return kSourceMenu[at].name;
    case MatrixColumn::voices:
        return position == 0 ? "--- (all voices)" : kVoiceMaskMenu[at].name;
    default:
        return kDestinationMenu[at].name;
    }
}

gui::MenuEntry entryAt(MatrixColumn column, int position, int chosen)
{
    return {position, nameAt(column, position), {}, position == chosen, true, {}, {}};
}

std::vector<gui::MenuEntry> destinationEntries(int chosen)
{
    std::vector<gui::MenuEntry> entries{entryAt(MatrixColumn::destination, 0, chosen)};
    for (int group = 0; group < static_cast<int>(std::size(kGroupNames)); ++group) {
        std::vector<gui::MenuEntry> inside;
        for (int at = kDestinationGroups[group]; at < groupEnd(group); ++at)
            inside.push_back(entryAt(MatrixColumn::destination, at, chosen));
        gui::MenuEntry entry = gui::MenuEntry::group(kGroupNames[group], std::move(inside));
        entry.checked = chosen > 0 && groupOf(chosen) == group;
        entries.push_back(std::move(entry));
    }
    return entries;
}

// The position that was last chosen anywhere in the column; 0 for none.
int rememberedPosition(EditorContext& context, MatrixColumn column)
{
    if (column == MatrixColumn::source)
        return menuPosition(kSourceMenu,
                            static_cast<float>(context.port().rememberedMatrixSource()));
    return voiceMaskPosition(static_cast<float>(context.port().rememberedVoiceMask()));
}

} // namespace

MatrixCell matrixCellOf(int tag)
{
    const int offset = tag - kModSource1;
    return {offset % kColumnStride, static_cast<MatrixColumn>(offset / kColumnStride)};
}

int matrixTag(MatrixCell cell)
{
    return kModSource1 + kColumnStride * static_cast<int>(cell.column) + cell.row;
}

bool isMatrixRowUsed(const EditorContext& context, int row)
{
    return truncated(context.value(kModSource1 + row)) != 0 &&
           truncated(context.value(kModDestination1 + row)) != 0;
}

bool isMatrixRowEmpty(const EditorContext& context, int row)
{
    return truncated(context.value(kModSource1 + row)) == 0 &&
           truncated(context.value(kModDestination1 + row)) == 0;
}

int matrixPositions(MatrixColumn column)
{
    switch (column) {
    case MatrixColumn::source:
        return static_cast<int>(std::size(kSourceMenu));
    case MatrixColumn::voices:
        return static_cast<int>(std::size(kVoiceMaskMenu));
    default:
        return kDestinations;
    }
}

int matrixPosition(const EditorContext& context, MatrixCell cell)
{
    const float stored = context.value(matrixTag(cell));
    switch (cell.column) {
    case MatrixColumn::source:
        return menuPosition(kSourceMenu, stored);
    case MatrixColumn::voices:
        return voiceMaskPosition(stored);
    default:
        return menuPosition(kDestinationMenu, stored);
    }
}

std::vector<gui::MenuEntry> matrixEntries(EditorContext& context, MatrixCell cell)
{
    int chosen = matrixPosition(context, cell);
    if (cell.column == MatrixColumn::destination)
        return destinationEntries(chosen);
    std::vector<gui::MenuEntry> entries;
    const int last = rememberedPosition(context, cell.column);
    if (isMatrixRowEmpty(context, cell.row) && chosen == 0 && last > 0) {
        entries.push_back(entryAt(cell.column, last, -1));
        entries.back().shortcut = "last chosen";
        entries.push_back(gui::MenuEntry::separator());
        chosen = -1; // no mark, so that the keys begin at the first entry
    }
    for (int position = 0; position < matrixPositions(cell.column); ++position)
        entries.push_back(entryAt(cell.column, position, chosen));
    return entries;
}

void chooseMatrixPosition(EditorContext& context, MatrixCell cell, int position)
{
    if (position < 0 || position >= matrixPositions(cell.column))
        return;
    Actions& actions = context.actions();
    const int tag = matrixTag(cell);
    actions.beginGesture(tag);
    if (cell.column == MatrixColumn::destination && position > 0) {
        const int group = groupOf(position);
        actions.openDestinationMenu(cell.row);
        actions.controlChanged(kTagDestinations1 + group,
                               static_cast<float>(position - kDestinationGroups[group]));
    } else {
        actions.controlChanged(tag, static_cast<float>(position));
    }
    actions.endGesture(tag);
    context.tellAllValues(); // knobs show what moves them
}

void clearMatrixRow(EditorContext& context, int row)
{
    clearMatrixRow(context.port(), context.history(), row);
    context.tellAllValues();
}

void exchangeMatrixRows(EditorContext& context, int row, int other)
{
    if (row == other || std::min(row, other) < 0 || std::max(row, other) >= kMatrixRows)
        return;
    moveMatrixRow(context.port(), context.history(), row, other);
    context.tellAllValues();
}

void tidyMatrix(EditorContext& context)
{
    context.actions().controlChanged(kTagMatrixTidy, 1.0f);
}

void openMatrixRowMenu(EditorContext& context, gui::View& from, int row, gui::Point inFrame)
{
    enum Command : int { clear, up, down, tidy };
    if (from.frame() == nullptr)
        return;
    gui::MenuRequest request;
    request.anchor = {inFrame.x, inFrame.y, 0.0f, 0.0f};
    const bool empty = isMatrixRowEmpty(context, row);
    auto& entries = request.entries;
    entries.push_back(gui::MenuEntry::heading("Row " + std::to_string(row + 1)));
    entries.push_back({clear, "Clear Row", {}, false, !empty, {}, {}});
    entries.push_back({up, "Move Up", {}, false, row > 0, {}, {}});
    entries.push_back({down, "Move Down", {}, false, row + 1 < kMatrixRows, {}, {}});
    entries.push_back(gui::MenuEntry::separator());
    entries.push_back({tidy, "Tidy Matrix", {}, false, true, {}, {}});
    request.chosen = [&context, row](int command) {
        if (command == clear)
            clearMatrixRow(context, row);
        else if (command == tidy)
            tidyMatrix(context);
        else
            exchangeMatrixRows(context, row, command == up ? row - 1 : row + 1);
    };
    gui::Menu::show(*from.frame(), std::move(request));
}

} // namespace tolm
