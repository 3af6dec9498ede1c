#pragma once
// The page of the modulation matrix: 24 rows in two columns.

#include "editor/CMatrixCells.h"
#include "editor/CMatrixHandle.h"

#include <array>
#include <vector>

namespace tolm {

class CMatrixPage final : public gui::View,
                          private ValueListener,
                          private MeterListener,
                          private MatrixDragListener {
public:
    explicit CMatrixPage(EditorContext& context);
    ~CMatrixPage() override;

    void draw(gui::Canvas& canvas) override;
    // Up and down go to the same column of the next row; with Alt they exchange the rows.
    bool keyDown(const gui::KeyEvent& event) override;
    // The row 0..23 at a point of the page, or -1.
    int rowAt(gui::Point local) const;
    gui::Rect rowPlace(int row) const;

private:
    static constexpr std::size_t kCells = 5; // handle, source, amount, destination, voices
    struct Row {
        std::array<gui::View*, kCells> cells{};
        CMatrixAmount* amount = nullptr;
    };

    void addCell(const ControlRow& row);
    void valueChanged(int id) override;
    void metersChanged(const EditorMeters& meters) override;
    void rowDragged(int row, gui::Point inFrame) override;
    void rowDropped(int row, bool kept) override;
    void showTarget(int from, int to);
    int usedRows() const;
    gui::Rect countPlace() const;
    void drawCaptions(gui::Canvas& canvas) const;

    EditorContext& context_;
    std::array<Row, kMatrixRows> rows_;
    int dragged_ = -1;
    int target_ = -1;
};

} // namespace tolm
