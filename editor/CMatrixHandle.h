#pragma once
// The number of a matrix row, by which it is dragged.

#include "editor/EditorContext.h"
#include "gui/View.h"

namespace tolm {

class MatrixDragListener {
public:
    virtual ~MatrixDragListener() = default;
    virtual void rowDragged(int row, gui::Point inFrame) = 0;
    // Where it was last dragged to, or nowhere when the drag was given up.
    virtual void rowDropped(int row, bool kept) = 0;
};

class CMatrixHandle final : public gui::View, public ValueListener {
public:
    CMatrixHandle(EditorContext& context, MatrixDragListener& listener, int row, gui::Rect place);
    ~CMatrixHandle() override { context_.forget(*this); }

    void draw(gui::Canvas& canvas) override;
    void valueChanged(int) override { invalidate(); }
    bool acceptsFocus() const override { return true; }
    std::string spokenName() const override;
    std::string tooltip() const override { return "Drag onto another row to exchange them"; }
    gui::Cursor cursor() const override { return gui::Cursor::move; }
    bool showsHover() const override { return true; }
    bool mouseDown(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override;
    void mouseUp(const gui::MouseEvent&) override { drop(true); }
    void captureLost() override { drop(false); }
    bool keyDown(const gui::KeyEvent& event) override;

private:
    void drop(bool kept);

    EditorContext& context_;
    MatrixDragListener& listener_;
    int row_;
    bool dragging_ = false;
};

} // namespace tolm
