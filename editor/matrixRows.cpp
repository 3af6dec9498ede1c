#include "editor/matrixRows.h"

#include "patch/chunkRecord.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace tolm {

namespace {

constexpr int kFirstAmountDestination = 61; // "MM Amount 1"

// "---" (0) becomes the largest key, so that unused rows end up last.
std::uint32_t sortKey(float id)
{
    return static_cast<std::uint32_t>(truncated(id)) - 1u;
}

bool belongsBehind(const MatrixRowValues& row, const MatrixRowValues& other)
{
    const std::uint32_t source = sortKey(row.source);
    const std::uint32_t otherSource = sortKey(other.source);
    return otherSource < source ||
           (otherSource == source && sortKey(row.destination) > sortKey(other.destination));
}

bool isIncomplete(const MatrixRowValues& row)
{
    return truncated(row.source) == 0 || truncated(row.destination) == 0;
}

} // namespace

MatrixRows matrixOf(const EditorPort& port)
{
    MatrixRows rows;
    for (int i = 0; i < kMatrixRows; ++i)
        rows[static_cast<std::size_t>(i)] = {
            port.value(kModSource1 + i), port.value(kModAmount1 + i),
            port.value(kModDestination1 + i), port.value(kModVoices1 + i)};
    return rows;
}

void writeMatrix(EditorPort& port, EditHistory& history, const MatrixRows& rows)
{
    const auto write = [&](int id, float value) {
        if (port.value(id) == value)
            return;
        history.noteValue(id);
        port.setParameterQuiet(id, value);
    };
    for (int i = 0; i < kMatrixRows; ++i) {
        const MatrixRowValues& row = rows[static_cast<std::size_t>(i)];
        write(kModSource1 + i, row.source);
        write(kModAmount1 + i, row.amount);
        write(kModDestination1 + i, row.destination);
        write(kModVoices1 + i, row.voices);
    }
}

int amountTarget(const MatrixRowValues& row)
{
    const int target = truncated(row.destination) - kFirstAmountDestination;
    return target >= 0 && target < kMatrixRows ? target : -1;
}

// An exchange sort, because the order that it leaves among pinned rows is the one players know.
void tidyMatrix(MatrixRows& rows)
{
    std::replace_if(rows.begin(), rows.end(), isIncomplete, MatrixRowValues{});
    std::array<bool, kMatrixRows> pinned{};
    for (const MatrixRowValues& row : rows)
        if (const int target = amountTarget(row); target >= 0)
            pinned[static_cast<std::size_t>(target)] = true;
    for (std::size_t i = 0; i + 1 < rows.size(); ++i)
        for (std::size_t j = i + 1; j < rows.size(); ++j)
            if (!pinned[i] && !pinned[j] && belongsBehind(rows[i], rows[j]))
                std::swap(rows[i], rows[j]);
}

void exchangeMatrixRows(MatrixRows& rows, int a, int b)
{
    const auto isRow = [](int row) { return row >= 0 && row < kMatrixRows; };
    if (!isRow(a) || !isRow(b) || a == b)
        return;
    for (MatrixRowValues& row : rows) {
        const int target = amountTarget(row);
        if (target == a || target == b)
            row.destination = static_cast<float>(kFirstAmountDestination + (target == a ? b : a));
    }
    std::swap(rows[static_cast<std::size_t>(a)], rows[static_cast<std::size_t>(b)]);
}

} // namespace tolm
