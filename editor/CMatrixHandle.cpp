#include "editor/CMatrixHandle.h"

#include "editor/CMatrixMenus.h"
#include "editor/theme.h"
#include "gui/Frame.h"

namespace tolm {

CMatrixHandle::CMatrixHandle(EditorContext& context, MatrixDragListener& listener, int row,
                             gui::Rect place)
    : View(place), context_(context), listener_(listener), row_(row)
{
    context.listen(*this, {kModSource1 + row, kModDestination1 + row});
}

std::string CMatrixHandle::spokenName() const
{
    return "Matrix row " + std::to_string(row_ + 1);
}

void CMatrixHandle::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = localBounds();
    const float lit = dragging_ ? 1.0f : hoverLight();
    const bool used = isMatrixRowUsed(context_, row_);
    if (lit > 0.0f) {
        // Three lines to hold on to.
        for (int line = -1; line <= 1; ++line)
            canvas.fillRect(
                canvas.snap(
                    {2.0f, bounds.centre().y - 0.5f + 3.0f * static_cast<float>(line), 5.0f, 1.0f}),
                theme::kSecondary.withAlpha(lit));
    }
    const gui::Color color = gui::mix(used ? theme::kSecondary : theme::kFaint, theme::kText, lit);
    canvas.textIn(std::to_string(row_ + 1), {0.0f, 0.0f, bounds.width - 6.0f, bounds.height},
                  theme::kLabel, color, gui::Align::right);
    if (hasFocus() && frame()->keyboardMode())
        canvas.strokeRoundRect(canvas.snap(bounds), theme::kControlRadius, 1.0f,
                               theme::kText.withAlpha(0.7f));
}

bool CMatrixHandle::mouseDown(const gui::MouseEvent& event)
{
    if (event.button == gui::MouseButton::right)
        openMatrixRowMenu(context_, *this, row_, toFrame(event.position));
    else if (event.button == gui::MouseButton::left)
        dragging_ = true;
    invalidate();
    return true;
}

void CMatrixHandle::mouseDragged(const gui::MouseEvent& event)
{
    if (dragging_)
        listener_.rowDragged(row_, toFrame(event.position));
}

void CMatrixHandle::drop(bool kept)
{
    if (!dragging_)
        return;
    dragging_ = false;
    invalidate();
    listener_.rowDropped(row_, kept);
}

bool CMatrixHandle::keyDown(const gui::KeyEvent& event)
{
    switch (event.key) {
    case gui::Key::enter:
    case gui::Key::space:
        openMatrixRowMenu(context_, *this, row_, boundsInFrame().centre());
        return true;
    case gui::Key::deleteForward:
    case gui::Key::backspace:
        clearMatrixRow(context_, row_);
        return true;
    case gui::Key::escape:
        if (!dragging_)
            return false;
        drop(false);
        return true;
    default:
        return false;
    }
}

} // namespace tolm
