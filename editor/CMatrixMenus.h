#pragma once
// The menus of the modulation matrix and what their entries do.

#include "editor/EditorContext.h"
#include "gui/Menu.h"

#include <vector>

namespace tolm {

// What a matrix control stands for; the parameters of a column follow each other row by row.
enum class MatrixColumn : unsigned char { source, amount, destination, voices };
struct MatrixCell {
    int row = 0; // 0..23
    MatrixColumn column = MatrixColumn::source;
};
// Of a tag 128..247 of the matrix.
MatrixCell matrixCellOf(int tag);
int matrixTag(MatrixCell cell);

// A row acts when it has a source and a destination.
bool isMatrixRowUsed(const EditorContext& context, int row);
bool isMatrixRowEmpty(const EditorContext& context, int row);

// Entries with menu positions as ids; destinations are in their eight groups, "---" first. In a row
// that was empty the source or mask that was chosen last comes first.
std::vector<gui::MenuEntry> matrixEntries(EditorContext& context, MatrixCell cell);
// How many positions a column's menu has, and the one that a row stands at, or -1.
int matrixPositions(MatrixColumn column);
int matrixPosition(const EditorContext& context, MatrixCell cell);

// One step of undo. Destinations go through the sub-menu that holds them.
void chooseMatrixPosition(EditorContext& context, MatrixCell cell, int position);

// What can be done with a whole row: clear it, exchange it with a neighbour, tidy all.
void openMatrixRowMenu(EditorContext& context, gui::View& from, int row, gui::Point inFrame);
void clearMatrixRow(EditorContext& context, int row);
void exchangeMatrixRows(EditorContext& context, int row, int other);
void tidyMatrix(EditorContext& context);

} // namespace tolm
