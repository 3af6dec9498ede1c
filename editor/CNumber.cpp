// A number in a field that is dragged or typed.

#include "editor/controls.h"
#include "editor/shapes.h"

namespace tolm {

void CNumber::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    drawField(canvas, bounds, hoverLight());
    canvas.textIn(context().textOf(id(), value()), bounds.inset(6.0f, 0.0f), theme::kField,
                  isTurning() ? theme::kText
                              : hoverColor(theme::kText.withAlpha(0.9f), theme::kText),
                  gui::Align::centre);
    drawFocus(canvas, bounds, theme::kControlRadius);
}

bool CNumber::pressed(const gui::MouseEvent& event)
{
    const auto press = gesture().press(event, value());
    if (press == gui::DragGesture::Press::drag)
        return true;
    const bool types =
        (press == gui::DragGesture::Press::doubleClick) == context().doubleClickTypes;
    if (types)
        context().openValueField(*this, id());
    else
        change(context().defaultValue(id()));
    return true;
}

// A whole step, so that each turn of the wheel shows.
float CNumber::smallestStep() const
{
    const int steps = kCatalogue[static_cast<std::size_t>(id())].steps;
    const int last = id() == kArpStepCount ? kArpSteps - 1 : steps;
    return 1.0f / static_cast<float>(last);
}

} // namespace tolm
