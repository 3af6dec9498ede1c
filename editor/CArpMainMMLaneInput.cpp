// What hands do with a row of steps.

#include "editor/CArpMainMMLane.h"
#include "gui/DragGesture.h"
#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr int kOctave = 12;
constexpr int kVelocityStep = 4; // of wheel and keys, with Shift 1

// How far wheel and arrow keys go.
int coarseStep(StepReading reading, bool shift)
{
    switch (reading) {
    case StepReading::note:
        return shift ? kOctave : 1;
    case StepReading::finger:
        return 1;
    default:
        return shift ? 1 : kVelocityStep;
    }
}

float between(float from, float to, int at, int length)
{
    return length == 0 ? to
                       : from + (to - from) * static_cast<float>(at) / static_cast<float>(length);
}

} // namespace

CArpMainMMLane::~CArpMainMMLane()
{
    if (stroke_ != Stroke::none) // the window closes in the middle of it
        context().history().end();
}

void CArpMainMMLane::setValue(int step, float value)
{
    const int id = firstId_ + step;
    if (step < 0 || step >= kArpSteps || value == context().value(id))
        return;
    context().actions().controlChanged(id, value);
    context().tellValue(id);
}

void CArpMainMMLane::setNumber(int step, int number)
{
    if (step >= 0 && step < kArpSteps && number != numberOf(step))
        setValue(step, stepValue(reading(), number));
}

// ---- Strokes ---------------------------------------------------------------------------------

void CArpMainMMLane::begin(Stroke stroke)
{
    endStroke();
    stroke_ = stroke;
    strokeOctaves_ = octaves();
    context().history().begin(reading() == StepReading::note ? "Arp Notes" : "Arp Steps");
    for (int step = 0; step < kArpSteps; ++step)
        before_[static_cast<std::size_t>(step)] = valueAt(step);
}

void CArpMainMMLane::endStroke()
{
    if (stroke_ == Stroke::none)
        return;
    stroke_ = Stroke::none;
    strokeOctaves_ = 0;
    context().history().end();
    invalidate();
}

bool CArpMainMMLane::mouseDown(const gui::MouseEvent& event)
{
    const int step = stepAt(event.position.x);
    const bool reset = event.button == gui::MouseButton::right;
    if (step < 0 || step >= kArpSteps || (!reset && event.button != gui::MouseButton::left))
        return false;
    begin(reset ? Stroke::reset : Stroke::paint);
    startStep_ = lastStep_ = cursor_ = step;
    startY_ = lastY_ = event.position.y;
    mouseDragged(event);
    return true;
}

void CArpMainMMLane::mouseDragged(const gui::MouseEvent& event)
{
    const int step = std::clamp(stepAt(event.position.x), 0, kArpSteps - 1);
    if (stroke_ == Stroke::reset)
        resetTo(step);
    else if (stroke_ == Stroke::paint && event.modifiers.shift)
        lineTo(step, event.position.y);
    else if (stroke_ == Stroke::paint)
        paintTo(step, event.position.y);
    lastStep_ = step;
    lastY_ = event.position.y;
    point(step);
}

// A quick hand leaves no step out.
void CArpMainMMLane::paintTo(int step, float y)
{
    const int length = std::abs(step - lastStep_);
    const int direction = step < lastStep_ ? -1 : 1;
    for (int at = length == 0 ? 0 : 1; at <= length; ++at)
        setNumber(lastStep_ + direction * at, numberAt(between(lastY_, y, at, length)));
}

void CArpMainMMLane::lineTo(int step, float y)
{
    const int length = std::abs(step - startStep_);
    const int direction = step < startStep_ ? -1 : 1;
    for (int other = 0; other < kArpSteps; ++other) {
        const int at = (other - startStep_) * direction;
        if (at >= 0 && at <= length)
            setNumber(other, numberAt(between(startY_, y, at, length)));
        else
            setValue(other, before_[static_cast<std::size_t>(other)]);
    }
}

void CArpMainMMLane::resetTo(int step)
{
    for (int at = std::min(step, lastStep_); at <= std::max(step, lastStep_); ++at)
        setValue(at, context().defaultValue(firstId_ + at));
}

// ---- The pointer -----------------------------------------------------------------------------

void CArpMainMMLane::mouseMoved(const gui::MouseEvent& event)
{
    point(stepAt(event.position.x));
}

void CArpMainMMLane::point(int step)
{
    if (step < 0 || step >= kArpSteps)
        step = -1;
    if (step != pointed_)
        for (const int lit : {pointed_, step})
            if (lit >= 0)
                invalidate(column(lit));
    pointed_ = step;
    std::string text;
    if (step >= 0)
        text = stepReadout(reading(), step, valueAt(step));
    listener_.stepPointed(text);
}

// Beside the steps the wheel changes how many octaves are seen.
bool CArpMainMMLane::mouseWheel(const gui::WheelEvent& event)
{
    const int step = stepAt(event.position.x);
    const int turned = event.steps > 0.0f ? 1 : -1;
    if (step < 0 || step >= kArpSteps) {
        shownOctaves_ = std::clamp(octaves() + turned, 1, kHighestNote / kOctave + 1);
        invalidate();
        return true;
    }
    if (stroke_ == Stroke::paint || stroke_ == Stroke::reset || frame() == nullptr)
        return true;
    if (stroke_ == Stroke::none)
        begin(Stroke::wheel);
    wheelEnd_ = frame()->host().now() + gui::DragGesture::kWheelTimeoutSeconds;
    frame()->animate(*this);
    const int by = turned * coarseStep(reading(), event.modifiers.shift);
    setNumber(step, std::clamp(numberOf(step) + by, 0, largestNumber(reading())));
    strokeOctaves_ = 0; // a higher note is shown at once
    point(step);
    return true;
}

bool CArpMainMMLane::animate(double now)
{
    if (stroke_ == Stroke::wheel && now >= wheelEnd_)
        endStroke();
    return stroke_ == Stroke::wheel;
}

// ---- Keys ------------------------------------------------------------------------------------

void CArpMainMMLane::focusChanged(bool focused)
{
    if (!focused)
        listener_.stepPointed({});
    invalidate();
}

void CArpMainMMLane::moveCursor(int step)
{
    cursor_ = std::clamp(step, 0, kArpSteps - 1);
    point(cursor_);
    invalidate();
}

bool CArpMainMMLane::keyDown(const gui::KeyEvent& event)
{
    switch (event.key) {
    case gui::Key::left:
    case gui::Key::right:
        moveCursor(cursor_ + (event.key == gui::Key::left ? -1 : 1));
        return true;
    case gui::Key::home:
        moveCursor(0);
        return true;
    case gui::Key::end:
        moveCursor(arpStepCount(context().value(kArpStepCount)) - 1);
        return true;
    case gui::Key::enter:
        typeValue();
        return true;
    default:
        return changeByKey(event);
    }
}

bool CArpMainMMLane::changeByKey(const gui::KeyEvent& event)
{
    const int fine = coarseStep(reading(), event.modifiers.shift);
    const int page = reading() == StepReading::note ? kOctave : largestNumber(reading()) / 8;
    int number = numberOf(cursor_);
    switch (event.key) {
    case gui::Key::up:
        number += fine;
        break;
    case gui::Key::down:
        number -= fine;
        break;
    case gui::Key::pageUp:
        number += page;
        break;
    case gui::Key::pageDown:
        number -= page;
        break;
    case gui::Key::deleteForward:
    case gui::Key::backspace:
        endStroke();
        setValue(cursor_, context().defaultValue(firstId_ + cursor_));
        point(cursor_);
        return true;
    default:
        return false;
    }
    endStroke();
    setNumber(cursor_, std::clamp(number, 0, largestNumber(reading())));
    point(cursor_);
    return true;
}

void CArpMainMMLane::typeValue()
{
    const int step = cursor_;
    const gui::Rect around = column(step).intersection(body()).moved(toFrame({}));
    context().openTextField(*this, around, stepText(reading(), valueAt(step)),
                            [this, step](const std::string& typed) {
                                if (const auto number = numberFromText(reading(), typed))
                                    setNumber(step, *number);
                            });
}

} // namespace tolm
