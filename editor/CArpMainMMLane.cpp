// How a row of steps looks.

#include "editor/CArpMainMMLane.h"

#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr float kZone = 10.0f; // height of the places of ties and rests
constexpr int kSemitones = 12;
constexpr int kMostOctaves = 11;
constexpr float kMarkInset = 2.0f; // of a step's mark from its column's edges
constexpr float kThinnestNote = 4.0f;
constexpr float kBaseLine = 2.0f; // what shows of a bar that is 0

} // namespace

CArpMainMMLane::CArpMainMMLane(EditorContext& context, StepListener& listener, int firstId,
                               gui::Rect place)
    : CDisplay(context, place), listener_(listener), firstId_(firstId)
{
    context.listen(*this, firstId, kArpSteps);
    context.listen(*this, {kArpMode, kArpStepCount});
}

StepReading CArpMainMMLane::reading() const
{
    return firstId_ == kArpNote1 ? StepReading::note
                                 : secondReading(arpMode(context().value(kArpMode)));
}

const char* CArpMainMMLane::name() const
{
    return firstId_ == kArpNote1 ? "NOTE" : secondRowName(arpMode(context().value(kArpMode)));
}

std::string CArpMainMMLane::spokenName() const
{
    return firstId_ == kArpNote1 ? "Arpeggiator notes" : "Arpeggiator velocities";
}

void CArpMainMMLane::valueChanged(int id)
{
    const int step = id - firstId_;
    if (step < 0 || step >= kArpSteps || reading() == StepReading::note)
        invalidate(); // ties reach over other steps, and the range may change
    else
        invalidate(column(step));
}

void CArpMainMMLane::showPlayingStep(int step)
{
    if (step == playing_)
        return;
    for (const int lit : {playing_, step})
        if (lit >= 0 && lit < kArpSteps)
            invalidate(column(lit));
    playing_ = step;
}

// ---- Geometry --------------------------------------------------------------------------------

gui::Rect CArpMainMMLane::body() const
{
    return {kGutter, 0.0f, kStepWidth * kArpSteps, localBounds().height - kTextHeight};
}

gui::Rect CArpMainMMLane::roll() const
{
    return body().inset(0.0f, kZone);
}

gui::Rect CArpMainMMLane::column(int step) const
{
    return {kGutter + kStepWidth * static_cast<float>(step), 0.0f, kStepWidth,
            localBounds().height};
}

int CArpMainMMLane::octaves() const
{
    if (strokeOctaves_ > 0)
        return strokeOctaves_;
    int highest = 1;
    for (int step = 0; step < kArpSteps; ++step)
        if (const int number = numberOf(step); number <= kHighestNote)
            highest = std::max(highest, number);
    const int needed = (highest - 1 + kSemitones - 1) / kSemitones;
    return std::clamp(std::max(shownOctaves_, needed), 1, kMostOctaves);
}

float CArpMainMMLane::rowHeight() const
{
    return roll().height / static_cast<float>(kSemitones * octaves() + 1);
}

int CArpMainMMLane::numberAt(float y) const
{
    const gui::Rect area = reading() == StepReading::note ? roll() : body();
    const float up = (area.bottom() - y) / area.height;
    switch (reading()) {
    case StepReading::note:
        if (y < area.y)
            return kTieNumber;
        return y >= area.bottom()
                   ? 0
                   : std::min(1 + static_cast<int>((area.bottom() - y) / rowHeight()),
                              kHighestNote);
    case StepReading::finger: {
        const int most = largestNumber(StepReading::finger);
        return std::clamp(static_cast<int>(up * static_cast<float>(most + 1)), 0, most);
    }
    default: {
        const int most = largestNumber(StepReading::velocity);
        return std::clamp(static_cast<int>(std::lround(up * static_cast<float>(most))), 0, most);
    }
    }
}

float CArpMainMMLane::heightOf(int number) const
{
    const auto at = static_cast<float>(number);
    switch (reading()) {
    case StepReading::note:
        if (number == 0)
            return roll().bottom() + kZone / 2;
        return number == kTieNumber ? roll().y - kZone / 2
                                    : roll().bottom() - (at - 0.5f) * rowHeight();
    case StepReading::finger:
        return body().bottom() - body().height * (at + 0.5f) /
                                     static_cast<float>(largestNumber(StepReading::finger) + 1);
    default:
        return body().bottom() -
               body().height * at / static_cast<float>(largestNumber(StepReading::velocity));
    }
}

int CArpMainMMLane::stepAt(float x) const
{
    return static_cast<int>(std::floor((x - kGutter) / kStepWidth));
}

// ---- Drawing ---------------------------------------------------------------------------------

void CArpMainMMLane::draw(gui::Canvas& canvas)
{
    drawGround(canvas);
    canvas.textIn(name(), {0.0f, 1.0f, kGutter - 4.0f, kTextHeight}, theme::kLabel,
                  theme::kSecondary);
    if (reading() == StepReading::note)
        drawOctaves(canvas);
    const gui::Rect seen = canvas.clipBounds();
    for (int step = 0; step < kArpSteps; ++step)
        if (column(step).intersects(seen))
            drawStep(canvas, step);
    canvas.strokeRoundRect(canvas.snap(body()), theme::kWellRadius, 1.0f, theme::kEdge);
}

void CArpMainMMLane::drawGround(gui::Canvas& canvas) const
{
    const gui::Rect well = canvas.snap(body());
    canvas.fillRoundRect(well, theme::kWellRadius, theme::kWell);
    for (int step = 1; step < kArpSteps; ++step) {
        const float x = canvas.snapX(column(step).x);
        const float strength = step % 4 == 0 ? 1.0f : 0.35f;
        canvas.fillRect({x, well.y + 1.0f, 1.0f, well.height - 2.0f},
                        theme::kEdge.withAlpha(strength));
    }
}

void CArpMainMMLane::drawOctaves(gui::Canvas& canvas) const
{
    const gui::Rect area = roll();
    for (const float y : {area.y, area.bottom()})
        canvas.fillRect({area.x + 1.0f, canvas.snapY(y), area.width - 2.0f, 1.0f}, theme::kEdge);
    const gui::Rect gutter{0.0f, 0.0f, kGutter - 5.0f, 12.0f};
    const auto label = [&](const char* text, float middle) {
        canvas.textIn(text, gutter.moved({0.0f, middle - 6.0f}), theme::kLabel, theme::kFaint,
                      gui::Align::right);
    };
    const float octaveHeight = rowHeight() * kSemitones;
    float lastLabel = area.bottom() + 20.0f;
    for (int octave = 0; octave <= octaves(); ++octave) {
        const float y = area.bottom() - octaveHeight * static_cast<float>(octave);
        if (octave > 0 && octave < octaves())
            canvas.fillRect({area.x + 1.0f, canvas.snapY(y), area.width - 2.0f, 1.0f},
                            theme::kEdge.withAlpha(0.7f));
        const float middle = y - rowHeight() / 2;
        const bool room = lastLabel - middle >= 11.0f && middle >= 18.0f;
        if (room) {
            label(("C-" + std::to_string(octave + 1)).c_str(), middle);
            lastLabel = middle;
        }
    }
}

void CArpMainMMLane::drawStep(gui::Canvas& canvas, int step) const
{
    const gui::Rect place = canvas.snap(column(step).intersection(body()));
    const bool inPattern = step < arpStepCount(context().value(kArpStepCount));
    const bool playing = step == playing_;
    const bool pointed = step == pointed_;
    const gui::Color lime = theme::color(Accent::rhythm);
    if (playing)
        canvas.fillRect(place.inset(1.0f, 1.0f), lime.withAlpha(0.2f));
    else if (pointed)
        canvas.fillRect(place.inset(1.0f, 1.0f), theme::kText.withAlpha(0.06f));
    const gui::Color color = !inPattern ? theme::kTrack
                             : playing  ? gui::mix(lime, theme::kText, 0.55f)
                                        : lime;
    if (reading() == StepReading::note)
        drawNote(canvas, step, color);
    else
        drawBar(canvas, step, color);
    drawText(canvas, step);
    if (step == cursor_ && hasFocus() && frame()->keyboardMode())
        canvas.strokeRoundRect(place.inset(1.0f), theme::kControlRadius, 1.0f,
                               theme::kText.withAlpha(0.8f));
}

void CArpMainMMLane::drawNote(gui::Canvas& canvas, int step, gui::Color color) const
{
    const int number = numberOf(step);
    const gui::Rect area = roll();
    const gui::Rect place = column(step);
    if (number == kTieNumber) {
        drawTie(canvas, step, color);
        return;
    }
    if (number == 0) {
        canvas.fill(gui::Path::circle({place.centre().x + 0.5f, area.bottom() + kZone / 2}, 1.6f),
                    color.withAlpha(0.7f));
        return;
    }
    const float thick = std::max(rowHeight(), kThinnestNote);
    const gui::Rect mark = canvas.snap({place.x + kMarkInset + 1.0f, heightOf(number) - thick / 2,
                                        kStepWidth - 2 * kMarkInset - 1.0f, thick});
    canvas.fillRect({mark.x, mark.bottom(), mark.width, area.bottom() - mark.bottom()},
                    color.withAlpha(0.13f));
    canvas.fillRoundRect(mark, 1.5f, color);
}

// A tie holds what sounds: a thin line goes on from the note before it.
void CArpMainMMLane::drawTie(gui::Canvas& canvas, int step, gui::Color color) const
{
    const gui::Rect place = column(step);
    const float y = canvas.snapY(roll().y - kZone / 2);
    canvas.fillRoundRect(
        {place.x + kMarkInset + 3.0f, y - 1.0f, kStepWidth - 2 * kMarkInset - 5.0f, 2.0f}, 1.0f,
        color);
    int from = step;
    while (from > 0 && numberOf(from) == kTieNumber)
        --from;
    const int number = numberOf(from);
    if (number == 0 || number == kTieNumber)
        return;
    const float line = canvas.snapY(heightOf(number) - 1.0f);
    canvas.fillRect({place.x - kMarkInset, line, kStepWidth, 2.0f}, color.withAlpha(0.45f));
}

void CArpMainMMLane::drawBar(gui::Canvas& canvas, int step, gui::Color color) const
{
    const gui::Rect area = body();
    const gui::Rect place = column(step);
    const int number = numberOf(step);
    const float share = static_cast<float>(number) / static_cast<float>(largestNumber(reading()));
    const float height = std::max(kBaseLine, (area.height - 3.0f) * share);
    const gui::Rect bar = canvas.snap({place.x + kMarkInset + 1.0f, area.bottom() - 1.0f - height,
                                       kStepWidth - 2 * kMarkInset - 1.0f, height});
    canvas.fillRect(bar, number == 0 ? color.withAlpha(0.35f) : color.withAlpha(0.55f));
    if (number > 0)
        canvas.fillRect({bar.x, bar.y, bar.width, 2.0f}, color);
}

void CArpMainMMLane::drawText(gui::Canvas& canvas, int step) const
{
    const bool inPattern = step < arpStepCount(context().value(kArpStepCount));
    const std::string text = stepText(reading(), valueAt(step));
    gui::Color color = inPattern ? theme::kSecondary : theme::kFaint;
    if (step == playing_ || step == pointed_)
        color = theme::kText;
    const gui::Rect place = column(step);
    canvas.textIn(text == "---" ? "\u2013" : text,
                  {place.x - 3.0f, body().bottom(), place.width + 7.0f, kTextHeight}, theme::kLabel,
                  color, gui::Align::centre);
}

} // namespace tolm
