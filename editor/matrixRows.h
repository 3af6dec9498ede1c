#pragma once
// The modulation matrix as the editor handles it: 24 rows of four stored values each.

#include "editor/EditHistory.h"
#include "plugin/EditorPort.h"

#include <array>

namespace tolm {

// Stored values: menu ids (which may be a little too large) and the amount 0..1, 0.5 is none.
struct MatrixRowValues {
    float source = 0.0f;
    float amount = 0.5f;
    float destination = 0.0f;
    float voices = 0.0f;

    friend bool operator==(const MatrixRowValues&, const MatrixRowValues&) = default;
};

using MatrixRows = std::array<MatrixRowValues, kMatrixRows>;

MatrixRows matrixOf(const EditorPort& port);
// Stores what differs, quietly, as part of the gesture under way.
void writeMatrix(EditorPort& port, EditHistory& history, const MatrixRows& rows);

// The row 0..23 whose amount a row scales ("MM Amount n"), or -1.
int amountTarget(const MatrixRowValues& row);

// Empties rows without a source or destination and sorts the others by source, then destination.
// A row that another one scales keeps its number.
void tidyMatrix(MatrixRows& rows);

// Exchanges two rows 0..23. Rows that scale one of them follow it to its new number: what is meant
// is the routing, not the place it was in.
void exchangeMatrixRows(MatrixRows& rows, int a, int b);

} // namespace tolm
