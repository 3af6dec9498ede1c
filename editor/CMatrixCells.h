#pragma once
// The controls of one matrix row: fields with menus for source, destination and voices, and the
// amount as a bar with a sign.

#include "editor/CControl.h"
#include "editor/CMatrixMenus.h"

#include <optional>

namespace tolm {

// Arrows up and down go on to the page, which moves the focus; left and right change the value.
class CMatrixCell : public CControl {
public:
    CMatrixCell(EditorContext& context, const ControlRow& row);
    MatrixCell cell() const { return cell_; }
    std::string spokenName() const override;
    bool keyDown(const gui::KeyEvent& event) override;

protected:
    bool isUsed() const { return isMatrixRowUsed(context(), cell_.row); }

private:
    MatrixCell cell_;
};

class CMatrixField final : public CMatrixCell {
public:
    using CMatrixCell::CMatrixCell;
    void draw(gui::Canvas& canvas) override;
    std::string tooltip() const override;
    bool mouseDown(const gui::MouseEvent& event) override;
    bool pressed(const gui::MouseEvent& event) override;
    bool mouseWheel(const gui::WheelEvent& event) override;
    bool keyDown(const gui::KeyEvent& event) override;

private:
    void open();
    void choose(int position);
    bool step(int direction);
};

// -100 % to +100 % around the middle, dragged sideways. While notes sound a tick shows what the row
// adds at this moment.
class CMatrixAmount final : public CMatrixCell {
public:
    using CMatrixCell::CMatrixCell;
    void draw(gui::Canvas& canvas) override;
    gui::Cursor cursor() const override { return gui::Cursor::resizeHorizontal; }
    bool pressed(const gui::MouseEvent& event) override;
    void mouseDragged(const gui::MouseEvent& event) override { gesture().drag(turned(event)); }
    void mouseUp(const gui::MouseEvent&) override { gesture().end(); }
    // The row's source -1..1; nothing while no note sounds.
    void showSource(std::optional<float> source);
    // Where the tick stands, in own coordinates; nothing when there is none.
    std::optional<float> tick() const;

private:
    gui::MouseEvent turned(const gui::MouseEvent& event) const;
    gui::Rect bar() const;
    float placeOf(float amount) const;
    void drawBar(gui::Canvas& canvas) const;

    std::optional<float> source_;
};

} // namespace tolm
