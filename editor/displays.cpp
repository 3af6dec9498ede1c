#include "editor/displays.h"

#include "editor/shapes.h"
#include "engine/tables.h"
#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm {

// ---- What displays share ---------------------------------------------------------------------

gui::Rect CDisplay::drawWell(gui::Canvas& canvas, int columns, int rows) const
{
    const gui::Rect well = canvas.snap(localBounds());
    canvas.fillRoundRect(well, theme::kWellRadius, theme::kWell);
    const gui::Color line = theme::kEdge.withAlpha(0.45f);
    for (int i = 1; i < columns; ++i) {
        const float x =
            canvas.snapX(well.x + well.width * static_cast<float>(i) / static_cast<float>(columns));
        canvas.fillRect({x, well.y + 2.0f, 1.0f, well.height - 4.0f}, line);
    }
    for (int i = 1; i < rows; ++i) {
        const float y =
            canvas.snapY(well.y + well.height * static_cast<float>(i) / static_cast<float>(rows));
        canvas.fillRect({well.x + 2.0f, y, well.width - 4.0f, 1.0f}, line);
    }
    canvas.strokeRoundRect(well, theme::kWellRadius, 1.0f, theme::kEdge);
    return well.inset(5.0f);
}

void CDisplay::drawCurve(gui::Canvas& canvas, const gui::Rect& area, std::span<const float> values,
                         gui::Color color)
{
    if (values.size() < 2)
        return;
    std::vector<gui::Point> points(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        points[i] = {area.x +
                         area.width * static_cast<float>(i) / static_cast<float>(values.size() - 1),
                     area.bottom() - area.height * std::clamp(values[i], 0.0f, 1.0f)};
    gui::Path below = gui::Path::polyline(points);
    below.lineTo({area.right(), area.bottom()}).lineTo({area.x, area.bottom()}).close();
    canvas.fill(below, gui::Paint::linear({0, area.y}, {0, area.bottom()}, color.withAlpha(0.22f),
                                          color.withAlpha(0.02f)));
    canvas.stroke(gui::Path::polyline(points), {1.6f, gui::LineCap::round}, color);
}

// ---- Waves -----------------------------------------------------------------------------------

CWaveDisplay::CWaveDisplay(EditorContext& context, int oscillator, gui::Rect place)
    : CDisplay(context, place),
      firstId_(oscillator == 0 ? kOsc1Shape : kOsc2Shape),
      oscillator_(oscillator)
{
    context.listen(*this, {firstId_, firstId_ + 3, firstId_ + 4, kPulseWidth});
}

std::string CWaveDisplay::tooltip() const
{
    return "Oscillator " + std::to_string(oscillator_ + 1) + ": " + context().text(firstId_);
}

void CWaveDisplay::draw(gui::Canvas& canvas)
{
    const gui::Rect area = drawWell(canvas, 4, 2);
    const Shape shape = shapeNamed(context().text(firstId_));
    const ConstantTables& tables = constantTables();
    constexpr std::size_t kDrawnSemitone = 72; // enough harmonics for sharp edges
    const auto width =
        static_cast<std::size_t>(std::clamp(context().value(kPulseWidth), 0.0f, 1.0f) * kTableSize);
    const std::int16_t* table = tables.saw[kDrawnSemitone].data();
    if (shape == Shape::sine)
        table = tables.sine.data();
    else if (shape == Shape::table)
        table = tables.waves[static_cast<std::size_t>(waveIndex(context().value(firstId_ + 4)))][0]
                    .data();
    std::array<float, 257> values;
    constexpr std::size_t kStride = kTableSize / (values.size() - 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t at = i * kStride;
        float sample = static_cast<float>(table[at & kTableMask]);
        if (shape == Shape::pulse)
            sample = 0.9f * (sample - static_cast<float>(table[(at + width) & kTableMask]));
        values[i] = 0.5f + 0.46f * sample / 32768.0f;
    }
    const gui::Color color = theme::color(oscillator_ == 0 ? Accent::osc1 : Accent::osc2);
    if (context().value(firstId_ + 3) > 0.004f && shape != Shape::sine) {
        // Fat voices: two faint copies beside the tone.
        for (const float shift : {-5.0f, 5.0f})
            drawCurve(canvas, area.moved({shift * context().value(firstId_ + 3), 0.0f}), values,
                      color.withAlpha(0.35f));
    }
    drawCurve(canvas, area, values, color);
}

// ---- LFOs ------------------------------------------------------------------------------------

CLfoDisplay::CLfoDisplay(EditorContext& context, int lfo, gui::Rect place)
    : CDisplay(context, place), firstId_(kLfo1Shape + 9 * lfo), lfo_(static_cast<std::size_t>(lfo))
{
    context.listen(*this, firstId_, 6);
    context.listenToMeters(*this);
}

std::string CLfoDisplay::tooltip() const
{
    return "LFO " + std::to_string(lfo_ + 1) + ": " + context().text(firstId_) + ", " +
           context().text(firstId_ + 1);
}

void CLfoDisplay::metersChanged(const EditorMeters& meters)
{
    const bool running = meters.voices > 0;
    if (running == running_ && (!running || std::abs(meters.lfoPhase[lfo_] - phase_) < 0.002f))
        return;
    running_ = running;
    phase_ = meters.lfoPhase[lfo_];
    if (isShowing())
        invalidate();
}

void CLfoDisplay::draw(gui::Canvas& canvas)
{
    const gui::Rect area = drawWell(canvas, 8, 2);
    const Shape shape = shapeNamed(context().text(firstId_));
    const float skew = context().value(firstId_ + 2);
    // Powers bend the shapes, as in the engine; in the middle they are plain.
    const float sawExponent = 0.25f * std::pow(16.0f, skew);
    const float sineExponent = 0.5f * std::pow(4.0f, skew);
    const auto at = [&](float phase) {
        switch (shape) {
        case Shape::pulse:
            return phase < 0.004f + 0.992f * skew ? 1.0f : -1.0f;
        case Shape::sine: {
            const float s = std::sin(2.0f * 3.14159265f * phase);
            return std::copysign(std::pow(std::abs(s), sineExponent), s);
        }
        case Shape::steps: {
            constexpr float kHeld[] = {0.3f, -0.7f, 0.9f, -0.1f};
            return kHeld[static_cast<std::size_t>(phase * 3.999f)];
        }
        default:
            return 2.0f * std::pow(1.0f - phase, sawExponent) - 1.0f;
        }
    };
    std::array<float, 321> values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float turns = 2.0f * static_cast<float>(i) / static_cast<float>(values.size() - 1);
        values[i] = 0.5f + 0.47f * at(turns - std::floor(turns * 0.9999f));
    }
    drawCurve(canvas, area, values, theme::kModulation);
    if (running_) {
        const float x = canvas.snapX(area.x + area.width * phase_ / 2);
        canvas.fillRect({x, area.y, 1.0f, area.height}, theme::kText.withAlpha(0.5f));
        const gui::Point dot{x + 0.5f,
                             area.bottom() - area.height * (0.5f + 0.47f * at(phase_ * 0.9999f))};
        canvas.fill(gui::Path::circle(dot, 3.0f), theme::kText);
    }
}

// ---- Stacked voices --------------------------------------------------------------------------

CVoiceSwitches::CVoiceSwitches(EditorContext& context, gui::Rect place) : CDisplay(context, place)
{
    context.listen(*this, kVoice1, 8);
    context.listen(*this, {kVoices});
}

int CVoiceSwitches::indexAt(gui::Point p) const
{
    const int index = static_cast<int>(p.x / localBounds().width * 8.0f);
    return localBounds().contains(p) ? std::clamp(index, 0, 7) : -1;
}

std::string CVoiceSwitches::tooltip() const
{
    return "Which voices of a stack sound; with none chosen, all do";
}

bool CVoiceSwitches::mouseDown(const gui::MouseEvent& event)
{
    const int index = indexAt(event.position);
    if (index < 0)
        return false;
    const int id = kVoice1 + index;
    if (event.button == gui::MouseButton::right) {
        context().openParameterMenu(*this, id, toFrame(event.position));
        return true;
    }
    context().actions().controlChanged(id, context().value(id) > 0.5f ? 0.0f : 1.0f);
    context().tellValue(id);
    return true;
}

void CVoiceSwitches::mouseMoved(const gui::MouseEvent& event)
{
    if (const int index = indexAt(event.position); index != pointed_) {
        pointed_ = index;
        invalidate();
    }
}

void CVoiceSwitches::mouseLeft()
{
    pointed_ = -1;
    invalidate();
}

void CVoiceSwitches::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = localBounds();
    canvas.textIn("STACK VOICES", {0, 0, bounds.width, 12.0f}, theme::kLabel, theme::kSecondary);
    const float width = bounds.width / 8.0f;
    for (int i = 0; i < 8; ++i) {
        const gui::Rect box = canvas.snap(
            {width * static_cast<float>(i) + 1.0f, 15.0f, width - 2.0f, bounds.height - 15.0f});
        const bool on = context().value(kVoice1 + i) > 0.5f;
        canvas.fillRoundRect(box, theme::kControlRadius,
                             on ? theme::color(Accent::value) : theme::kWell);
        if (!on)
            canvas.strokeRoundRect(box, theme::kControlRadius, 1.0f,
                                   i == pointed_ ? theme::kTrack : theme::kEdge);
        canvas.textIn(std::to_string(i + 1), box, theme::kSmallTitle,
                      on ? theme::kWell : theme::kSecondary, gui::Align::centre);
    }
}

} // namespace tolm
