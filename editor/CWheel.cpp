#include "editor/CWheel.h"

#include "editor/theme.h"
#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr float kMiddle = 0.5f;
constexpr float kMargin = 7.0f; // from the well's ends to the outermost place of the mark
constexpr float kStep = 0.02f;

} // namespace

CWheel::CWheel(EditorContext& context, int tag, gui::Rect place)
    : View(place), context_(context), tag_(tag), value_(context.value(tag))
{
    context.listen(*this, {tag});
}

CWheel::~CWheel()
{
    context_.forget(*this);
}

std::string CWheel::tooltip() const
{
    return isPitch() ? "Pitch wheel: " + std::to_string(context_.port().bendUpRange()) + " up, " +
                           std::to_string(context_.port().bendDownRange()) + " down"
                     : "Modulation wheel\n" + context_.text(kModWheel);
}

std::string CWheel::spokenName() const
{
    return isPitch() ? "Pitch wheel" : "Modulation wheel";
}

void CWheel::draw(gui::Canvas& canvas)
{
    const gui::Rect well = canvas.snap(localBounds());
    const gui::Color accent = isPitch() ? theme::color(Accent::value) : theme::kModulation;
    canvas.fillRoundRect(well, theme::kWellRadius, theme::kWell);
    const gui::Rect body = well.inset(3.0f);
    canvas.fillRoundRect(
        body, theme::kControlRadius,
        gui::Paint::linear(
            {0, body.y}, {0, body.bottom()},
            {{0.0f, theme::kKnobBottom}, {0.5f, theme::kKnobTop}, {1.0f, theme::kKnobBottom}}));
    // Grooves turn with the wheel: they crowd towards its ends.
    const float radius = body.height / 2;
    for (int groove = -8; groove <= 8; ++groove) {
        const float angle = (static_cast<float>(groove) * 0.22f) - (value_ - kMiddle) * 1.6f;
        if (std::abs(angle) > 1.4f)
            continue;
        const float y = body.centre().y + radius * std::sin(angle);
        canvas.fillRect({body.x + 2.0f, y, body.width - 4.0f, 1.0f},
                        theme::kBack.withAlpha(0.55f * std::cos(angle)));
    }
    const float travel = well.height - 2 * kMargin;
    const float y = well.bottom() - kMargin - travel * std::clamp(value_, 0.0f, 1.0f);
    canvas.fillRoundRect({body.x + 1.0f, y - 2.0f, body.width - 2.0f, 4.0f}, 2.0f,
                         gui::mix(accent, theme::kText, held_ ? 0.35f : 0.35f * hoverLight()));
    canvas.strokeRoundRect(well, theme::kWellRadius, 1.0f,
                           hasFocus() && frame()->keyboardMode() ? theme::kText : theme::kEdge);
}

void CWheel::begin()
{
    held_ = true;
    context_.actions().beginGesture(tag_);
}

void CWheel::move(float value)
{
    value_ = std::clamp(value, 0.0f, 1.0f);
    context_.actions().controlChanged(tag_, value_);
    invalidate();
}

void CWheel::release()
{
    if (!held_)
        return;
    if (isPitch())
        move(kMiddle);
    held_ = false;
    context_.actions().endGesture(tag_);
    invalidate();
}

bool CWheel::mouseDown(const gui::MouseEvent& event)
{
    if (event.button == gui::MouseButton::right && !isPitch()) {
        context_.openParameterMenu(*this, tag_, toFrame(event.position));
        return true;
    }
    if (event.button != gui::MouseButton::left)
        return false;
    release();
    begin();
    const float travel = bounds().height - 2 * kMargin;
    const float pointed = (bounds().height - kMargin - event.position.y) / travel;
    // A press near the mark takes it where it is; elsewhere it jumps there.
    const bool onMark = std::abs(pointed - value_) * travel < 6.0f;
    grip_ = onMark ? value_ - pointed : 0.0f;
    if (!onMark)
        move(pointed);
    invalidate();
    return true;
}

void CWheel::mouseDragged(const gui::MouseEvent& event)
{
    if (!held_)
        return;
    const float travel = bounds().height - 2 * kMargin;
    move((bounds().height - kMargin - event.position.y) / travel + grip_);
}

void CWheel::step(float by)
{
    if (isPitch() || held_) // nothing would stay of a pitch wheel's step
        return;
    begin();
    move(value_ + by);
    release();
}

bool CWheel::mouseWheel(const gui::WheelEvent& event)
{
    step(event.steps * kStep);
    return true;
}

bool CWheel::keyDown(const gui::KeyEvent& event)
{
    if (event.key != gui::Key::up && event.key != gui::Key::down)
        return false;
    step(event.key == gui::Key::up ? kStep : -kStep);
    return true;
}

void CWheel::valueChanged(int)
{
    if (held_)
        return;
    value_ = context_.value(tag_);
    invalidate();
}

} // namespace tolm
