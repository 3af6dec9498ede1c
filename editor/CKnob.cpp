// A knob: track, value arc, ring of modulation, body and pointer.

#include "editor/controls.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tolm {

namespace {

constexpr float kPi = std::numbers::pi_v<float>;
constexpr float kFirstAngle = 0.75f * kPi; // 270 degrees from seven to five o'clock
constexpr float kSweep = 1.5f * kPi;
constexpr float kTrackWidth = 2.6f;
constexpr float kRingWidth = 1.4f;
constexpr float kLabelHeight = 14.0f;

float angleOf(float value)
{
    return kFirstAngle + kSweep * std::clamp(value, 0.0f, 1.0f);
}

gui::Path arc(gui::Point centre, float radius, float from, float to)
{
    gui::Path path;
    path.arc(centre, radius, std::min(from, to), std::max(from, to));
    return path;
}

// Values that mean nothing in the middle and push to either side.
bool isBipolar(int id)
{
    switch (id) {
    case kOsc1Coarse:
    case kOsc1Fine:
    case kOsc2Coarse:
    case kOsc2Fine:
    case kOscMix:
    case kFilterOffset:
    case kArpLength:
    case kEq1Type + 3:
    case kEq2Gain:
        return true;
    default:
        return false;
    }
}

} // namespace

CKnob::CKnob(EditorContext& context, const ControlRow& row)
    : CControl(context, row), bipolar_(isBipolar(id()))
{
}

bool CKnob::pressed(const gui::MouseEvent& event)
{
    const auto press = gesture().press(event, value());
    if (press == gui::DragGesture::Press::drag)
        return true;
    const bool types =
        (press == gui::DragGesture::Press::doubleClick) == context().doubleClickTypes;
    if (types && id() >= 0)
        context().openValueField(*this, id());
    else if (id() >= 0)
        change(context().defaultValue(id()));
    return true;
}

float CKnob::smallestStep() const
{
    const int steps = id() >= 0 ? kCatalogue[static_cast<std::size_t>(id())].steps : 128;
    return steps < 128 ? 1.0f / static_cast<float>(steps) : 0.0f;
}

void CKnob::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = localBounds();
    const bool big = row().kind == ControlKind::bigKnob;
    const float diameter = big ? 58.0f : std::min(bounds.width - 10.0f, 38.0f);
    const float radius = diameter / 2;
    const gui::Point centre{bounds.width / 2, (bounds.height - kLabelHeight) / 2 + 1.0f};
    const float body = radius - (big ? 8.0f : 6.0f);
    const float angle = angleOf(value());

    const gui::Stroke track{big ? 3.2f : kTrackWidth, gui::LineCap::round};
    canvas.stroke(arc(centre, radius - 2.0f, kFirstAngle, kFirstAngle + kSweep), track,
                  theme::kTrack);
    const float from = bipolar_ ? angleOf(0.5f) : kFirstAngle;
    if (std::abs(angle - from) > 0.01f)
        canvas.stroke(arc(centre, radius - 2.0f, from, angle), track,
                      isEnabled() ? accent() : theme::kFaint);
    if (const float depth = id() >= 0 ? context().modulationOf(id()) : 0.0f; depth > 0.0f) {
        const float reach = kSweep * depth / 2;
        canvas.stroke(arc(centre, radius + 1.6f, std::max(angle - reach, kFirstAngle),
                          std::min(angle + reach, kFirstAngle + kSweep)),
                      {kRingWidth, gui::LineCap::round}, theme::kModulation);
    }

    canvas.fill(gui::Path::circle({centre.x, centre.y + 1.5f}, body + 0.5f),
                theme::kBack.withAlpha(0.55f));
    const float lit = isTurning() ? 1.0f : hoverLight();
    canvas.fill(gui::Path::circle(centre, body),
                gui::Paint::linear({0, centre.y - body}, {0, centre.y + body},
                                   gui::mix(theme::kKnobTop, theme::kText, 0.12f * lit),
                                   theme::kKnobBottom));
    canvas.stroke(gui::Path::circle(centre, body - 0.5f), {1.0f, gui::LineCap::butt},
                  gui::Paint::linear({0, centre.y - body}, {0, centre.y + body},
                                     theme::kText.withAlpha(0.28f), theme::kText.withAlpha(0.0f)));
    const gui::Point direction{std::cos(angle), std::sin(angle)};
    const auto along = [&](float distance) {
        return gui::Point{centre.x + direction.x * distance, centre.y + direction.y * distance};
    };
    canvas.stroke(gui::Path::line(along(body * 0.38f), along(body - 2.0f)),
                  {2.0f, gui::LineCap::round}, theme::kText);

    const gui::Rect label{-6.0f, bounds.height - kLabelHeight, bounds.width + 12.0f, kLabelHeight};
    if (isTurning() && id() >= 0)
        canvas.textIn(context().textOf(id(), value()), label, theme::kLabel, theme::kText,
                      gui::Align::centre);
    else
        canvas.textIn(row().label, label, theme::kLabel,
                      hoverColor(theme::kSecondary, theme::kText), gui::Align::centre);
    drawFocus(canvas, bounds.inset(1.0f), theme::kControlRadius);
}

} // namespace tolm
