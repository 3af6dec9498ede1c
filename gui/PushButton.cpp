#include "gui/PushButton.h"

#include "gui/Frame.h"

namespace tolm::gui {

void PushButton::draw(Canvas& canvas)
{
    const Style& style = frame()->style();
    const Rect box = localBounds();
    const Color ground = default_ ? mix(style.track, style.accent, 0.35f) : style.track;
    const float light = pressed_ ? -0.3f : 0.12f * hoverLight();
    const Color fill =
        light < 0.0f ? mix(ground, style.well, -light) : mix(ground, style.text, light);
    canvas.fillRoundRect(box, style.controlRadius, isEnabled() ? fill : style.panelBottom);
    canvas.strokeRoundRect(box, style.controlRadius, 1.0f, hasFocus() ? style.accent : style.edge);
    canvas.textIn(label_, box, style.field, isEnabled() ? style.text : style.disabledText,
                  Align::centre);
}

void PushButton::press(bool pressed)
{
    if (pressed == pressed_)
        return;
    pressed_ = pressed;
    invalidate();
}

bool PushButton::mouseDown(const MouseEvent& event)
{
    if (event.button != MouseButton::left)
        return false;
    armed_ = true;
    press(true);
    return true;
}

void PushButton::mouseDragged(const MouseEvent& event)
{
    press(armed_ && localBounds().contains(event.position));
}

void PushButton::mouseUp(const MouseEvent& event)
{
    const bool hit = armed_ && localBounds().contains(event.position);
    armed_ = false;
    press(false);
    if (hit)
        click();
}

void PushButton::captureLost()
{
    armed_ = false;
    press(false);
}

bool PushButton::keyDown(const KeyEvent& event)
{
    if (event.key != Key::enter && event.key != Key::space)
        return false;
    click();
    return true;
}

// By copy: the handler may take the button away.
void PushButton::click()
{
    if (const auto clicked = clicked_)
        clicked();
}

} // namespace tolm::gui
