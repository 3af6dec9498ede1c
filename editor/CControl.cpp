#include "editor/CControl.h"

#include "gui/Frame.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr float kKeyStep = 0.01f;
constexpr float kFineKeyStep = 0.001f;
constexpr float kPageStep = 0.1f;

} // namespace

CControl::CControl(EditorContext& context, const ControlRow& row)
    : View(row.place), context_(context), row_(row), id_(parameterOfTag(row.tag))
{
    if (id_ >= 0) {
        context_.listen(*this, {id_});
        value_ = context_.value(id_);
    }
}

CControl::~CControl()
{
    if (gesture_.isActive()) // the window closes in the middle of it
        context_.actions().endGesture(row_.tag);
    if (id_ >= 0)
        context_.forget(*this);
}

std::string CControl::tooltip() const
{
    std::string text = row_.tooltip;
    if (id_ < 0)
        return text;
    text += text.empty() ? "" : "\n";
    text += context_.text(id_);
    const auto controllers = context_.port().controllersOf(id_);
    for (std::size_t i = 0; i < controllers.size(); ++i)
        text += (i == 0 ? "  \u2022  CC " : ", ") + std::to_string(controllers[i]);
    return text;
}

bool CControl::mouseDown(const gui::MouseEvent& event)
{
    if (event.button == gui::MouseButton::right) {
        context_.openParameterMenu(*this, row_.tag, toFrame(event.position));
        return true;
    }
    return event.button == gui::MouseButton::left && pressed(event);
}

bool CControl::mouseWheel(const gui::WheelEvent& event)
{
    if (frame() == nullptr)
        return false;
    gesture_.wheel(event, value_, frame()->host().now(), smallestStep());
    frame()->animate(*this);
    return true;
}

bool CControl::keyDown(const gui::KeyEvent& event)
{
    const float step = std::max(smallestStep(), event.modifiers.shift ? kFineKeyStep : kKeyStep);
    const auto moveBy = [this](float by) {
        change(std::clamp(value_ + by, 0.0f, 1.0f));
        return true;
    };
    switch (event.key) {
    case gui::Key::up:
    case gui::Key::right:
        return moveBy(step);
    case gui::Key::down:
    case gui::Key::left:
        return moveBy(-step);
    case gui::Key::pageUp:
        return moveBy(kPageStep);
    case gui::Key::pageDown:
        return moveBy(-kPageStep);
    case gui::Key::home:
        change(0.0f);
        return true;
    case gui::Key::end:
        change(1.0f);
        return true;
    case gui::Key::deleteForward:
    case gui::Key::backspace:
        if (id_ >= 0)
            change(context_.defaultValue(id_));
        return true;
    case gui::Key::enter:
        if (id_ >= 0)
            context_.openValueField(*this, id_);
        return true;
    default:
        return false;
    }
}

void CControl::valueChanged(int)
{
    // The hand that holds the control knows better than an echo of an earlier value.
    if (gesture_.isActive())
        return;
    value_ = context_.value(id_);
    invalidate();
}

void CControl::change(float value)
{
    value_ = value;
    context_.actions().controlChanged(row_.tag, value);
    context_.tellValue(id_);
    if (gesture_.isActive() && context_.showStatus && id_ >= 0)
        context_.showStatus(spokenName() + "  " + context_.textOf(id_, value));
    invalidate();
}

void CControl::gestureBegan()
{
    context_.actions().beginGesture(row_.tag);
    invalidate();
}

void CControl::gestureEnded()
{
    context_.actions().endGesture(row_.tag);
    if (context_.showStatus)
        context_.showStatus({});
    if (id_ >= 0)
        value_ = context_.value(id_);
    invalidate();
}

void CControl::drawFocus(gui::Canvas& canvas, const gui::Rect& around, float radius) const
{
    if (hasFocus() && frame() != nullptr && frame()->keyboardMode())
        canvas.strokeRoundRect(around, radius, 1.0f, theme::kText.withAlpha(0.7f));
}

} // namespace tolm
