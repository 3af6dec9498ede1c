#include "editor/CArpMainMM.h"

#include "gui/DragGesture.h"
#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr float kLeft = 8.0f;
constexpr float kRulerTop = 29.0f;
constexpr float kRulerHeight = 17.0f;
constexpr float kLanesTop = kRulerTop + kRulerHeight + 1.0f;
constexpr float kBottom = 6.0f;
constexpr float kBetweenLanes = 4.0f;
constexpr float kNoteShare = 0.6f; // of the height, when the second row is no row of notes
constexpr float kGrab = 6.0f;      // pixels around the handle that still take it
constexpr float kHandleHalf = 4.0f;

} // namespace

// ---- The ruler -------------------------------------------------------------------------------

CArpMainMMRuler::CArpMainMMRuler(EditorContext& context, gui::Rect place) : CDisplay(context, place)
{
    context.listen(*this, {kArpStepCount});
}

CArpMainMMRuler::~CArpMainMMRuler()
{
    if (dragging_ || wheelEnd_ != 0.0) // the window closes in the middle of it
        context().actions().endGesture(kArpStepCount);
}

std::string CArpMainMMRuler::tooltip() const
{
    return "Drag to set how many steps are played\n" + context().text(kArpStepCount);
}

float CArpMainMMRuler::handleX() const
{
    return CArpMainMMLane::kGutter + CArpMainMMLane::kStepWidth * static_cast<float>(steps());
}

void CArpMainMMRuler::showPlayingStep(int step)
{
    if (step != playing_)
        invalidate();
    playing_ = step;
}

void CArpMainMMRuler::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = localBounds();
    const gui::Color lime = theme::color(Accent::rhythm);
    const float left = CArpMainMMLane::kGutter;
    const float line = canvas.snapY(bounds.bottom() - 3.0f);
    canvas.fillRect({left, line, CArpMainMMLane::kStepWidth * kArpSteps, 2.0f}, theme::kTrack);
    canvas.fillRect({left, line, handleX() - left, 2.0f}, lime.withAlpha(0.75f));
    for (int step = 0; step < kArpSteps; ++step) {
        const gui::Rect place{left + CArpMainMMLane::kStepWidth * static_cast<float>(step), 0.0f,
                              CArpMainMMLane::kStepWidth, bounds.height - 4.0f};
        gui::Color color = step % 4 == 0 ? theme::kText : theme::kSecondary;
        if (step >= steps())
            color = theme::kFaint;
        if (step == playing_)
            color = lime;
        canvas.textIn(std::to_string(step + 1), place, theme::kLabel, color, gui::Align::centre);
    }
    const float x = canvas.snapX(handleX());
    gui::Path handle;
    handle.moveTo({x - kHandleHalf, line - 7.0f})
        .lineTo({x + kHandleHalf, line - 7.0f})
        .lineTo({x + kHandleHalf, line - 2.0f})
        .lineTo({x, line + 3.0f})
        .lineTo({x - kHandleHalf, line - 2.0f})
        .close();
    canvas.fill(handle, dragging_ ? theme::kText : hoverColor(lime, theme::kText));
    if (hasFocus() && frame()->keyboardMode())
        canvas.strokeRoundRect(canvas.snap(bounds), theme::kControlRadius, 1.0f,
                               theme::kText.withAlpha(0.7f));
}

void CArpMainMMRuler::setSteps(int steps)
{
    if (std::clamp(steps, 1, kArpSteps) == this->steps())
        return;
    context().actions().controlChanged(kArpStepCount, arpStepCountValue(steps));
    context().tellValue(kArpStepCount);
}

bool CArpMainMMRuler::mouseDown(const gui::MouseEvent& event)
{
    if (event.button == gui::MouseButton::right) {
        context().openParameterMenu(*this, kArpStepCount, toFrame(event.position));
        return true;
    }
    if (event.button != gui::MouseButton::left)
        return false;
    endWheel();
    endDrag();
    dragging_ = true;
    context().actions().beginGesture(kArpStepCount);
    const float fromHandle = event.position.x - handleX();
    const bool onHandle = std::abs(fromHandle) <= kGrab;
    grabbedAt_ = onHandle ? fromHandle + CArpMainMMLane::kStepWidth / 2 : 0.0f;
    mouseDragged(event);
    invalidate();
    return true;
}

void CArpMainMMRuler::mouseDragged(const gui::MouseEvent& event)
{
    if (!dragging_)
        return;
    const float x = event.position.x - grabbedAt_ - CArpMainMMLane::kGutter;
    setSteps(static_cast<int>(std::floor(x / CArpMainMMLane::kStepWidth)) + 1);
    if (context().showStatus)
        context().showStatus("Arp Steps  " + context().text(kArpStepCount));
}

void CArpMainMMRuler::endDrag()
{
    if (!dragging_)
        return;
    dragging_ = false;
    context().actions().endGesture(kArpStepCount);
    if (context().showStatus)
        context().showStatus({});
    invalidate();
}

// Turns in a row are one step of undo.
bool CArpMainMMRuler::mouseWheel(const gui::WheelEvent& event)
{
    if (dragging_ || frame() == nullptr)
        return true;
    if (wheelEnd_ == 0.0)
        context().actions().beginGesture(kArpStepCount);
    wheelEnd_ = frame()->host().now() + gui::DragGesture::kWheelTimeoutSeconds;
    frame()->animate(*this);
    setSteps(steps() + (event.steps > 0.0f ? 1 : -1));
    return true;
}

bool CArpMainMMRuler::animate(double now)
{
    if (now >= wheelEnd_)
        endWheel();
    return wheelEnd_ != 0.0;
}

void CArpMainMMRuler::endWheel()
{
    if (wheelEnd_ != 0.0)
        context().actions().endGesture(kArpStepCount);
    wheelEnd_ = 0.0;
}

bool CArpMainMMRuler::keyDown(const gui::KeyEvent& event)
{
    switch (event.key) {
    case gui::Key::left:
    case gui::Key::down:
        setSteps(steps() - 1);
        return true;
    case gui::Key::right:
    case gui::Key::up:
        setSteps(steps() + 1);
        return true;
    case gui::Key::home:
        setSteps(1);
        return true;
    case gui::Key::end:
        setSteps(kArpSteps);
        return true;
    case gui::Key::enter:
        context().openValueField(*this, kArpStepCount);
        return true;
    default:
        return false;
    }
}

// ---- The whole -------------------------------------------------------------------------------

CArpMainMM::CArpMainMM(EditorContext& context, gui::Rect place)
    : CDisplay(context, place),
      ruler_(emplace<CArpMainMMRuler>(
          context,
          gui::Rect{kLeft, kRulerTop, CArpMainMMLane::kWidth + kHandleHalf + 1.0f, kRulerHeight})),
      notes_(emplace<CArpMainMMLane>(context, static_cast<StepListener&>(*this), kArpNote1,
                                     gui::Rect{kLeft, kLanesTop, CArpMainMMLane::kWidth, 0.0f})),
      second_(emplace<CArpMainMMLane>(context, static_cast<StepListener&>(*this), kArpVelocity1,
                                      gui::Rect{kLeft, kLanesTop, CArpMainMMLane::kWidth, 0.0f}))
{
    context.listen(*this, {kArpMode});
    context.listenToMeters(*this);
    layOut();
}

CArpMainMM::~CArpMainMM()
{
    context().forget(static_cast<MeterListener&>(*this));
}

// Two rows of notes share the height; bars need less of it.
void CArpMainMM::layOut()
{
    const float height = localBounds().height - kLanesTop - kBottom - kBetweenLanes;
    const bool twoRolls = second_.reading() == StepReading::note;
    const float upper = std::round(height * (twoRolls ? 0.5f : kNoteShare));
    notes_.setBounds({kLeft, kLanesTop, CArpMainMMLane::kWidth, upper});
    second_.setBounds(
        {kLeft, kLanesTop + upper + kBetweenLanes, CArpMainMMLane::kWidth, height - upper});
}

void CArpMainMM::valueChanged(int)
{
    layOut();
    invalidate();
}

gui::View* CArpMainMM::hitTest(gui::Point local)
{
    gui::View* const hit = View::hitTest(local);
    return hit == this ? nullptr : hit;
}

gui::Rect CArpMainMM::readoutPlace() const
{
    return {96.0f, 6.0f, 400.0f, 19.0f};
}

void CArpMainMM::draw(gui::Canvas& canvas)
{
    // No tooltip: it would cover what it is about.
    if (readout_.empty())
        canvas.textIn("Drag to paint, with Shift a line, with the right button to reset",
                      readoutPlace(), theme::kLabel, theme::kSecondary);
    else
        canvas.textIn(readout_, readoutPlace(), theme::kField, theme::kText);
}

void CArpMainMM::stepPointed(const std::string& text)
{
    if (text == readout_)
        return;
    readout_ = text;
    invalidate(readoutPlace());
}

void CArpMainMM::metersChanged(const EditorMeters& meters)
{
    ruler_.showPlayingStep(meters.arpStep);
    notes_.showPlayingStep(meters.arpStep);
    second_.showPlayingStep(meters.arpStep);
}

} // namespace tolm
