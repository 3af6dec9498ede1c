// The picture of the filter, and the hand that drags its corner.

#include "editor/displays.h"

#include "editor/filterResponse.h"
#include "gui/Frame.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tolm {

namespace {

constexpr float kLowestHz = 20.0f;
constexpr float kDecades = 3.0f;
constexpr float kTopDb = 24.0f;
constexpr float kRangeDb = 72.0f;
constexpr std::size_t kPoints = 160;
constexpr float kTrackedAtMiddle = 0.3f; // what key tracking adds to the cutoff at C4

} // namespace

CFilterDisplay::CFilterDisplay(EditorContext& context, gui::Rect place) : CDisplay(context, place)
{
    context.listen(*this, {kFilterType, kFilterCutoff, kFilterResonance, kFilterOffset,
                           kFilterKeytrack, kFilterEnvAmount});
}

std::string CFilterDisplay::tooltip() const
{
    return "Filter response for C4. Drag sideways for the cutoff, up and down for the resonance";
}

void CFilterDisplay::draw(gui::Canvas& canvas)
{
    const gui::Rect area = drawWell(canvas, 3, 3);
    std::array<float, kPoints> hz;
    std::array<float, kPoints> decibels;
    for (std::size_t i = 0; i < kPoints; ++i)
        hz[i] = kLowestHz *
                std::pow(10.0f, kDecades * static_cast<float>(i) / static_cast<float>(kPoints - 1));
    FilterSettings settings;
    settings.type = static_cast<int>(context().value(kFilterType));
    settings.cutoff =
        context().value(kFilterCutoff) + kTrackedAtMiddle * context().value(kFilterKeytrack);
    settings.resonance = context().value(kFilterResonance);
    settings.offset = context().value(kFilterOffset);
    const auto curve = [&](float cutoff) {
        FilterSettings moved = settings;
        moved.cutoff = std::clamp(cutoff, 0.0f, 1.0f);
        filterResponse(moved, hz, decibels);
        for (float& value : decibels)
            value = 1.0f - (kTopDb - value) / kRangeDb;
        return std::span<const float>(decibels);
    };
    // Where the envelope takes it at its peak.
    const float reach = 0.9f * context().value(kFilterEnvAmount);
    if (std::abs(reach) > 0.01f)
        drawCurve(canvas, area, curve(settings.cutoff + reach),
                  theme::color(Accent::filter).withAlpha(0.3f));
    drawCurve(canvas, area, curve(settings.cutoff), theme::color(Accent::filter));
    canvas.textIn("100", {area.x + area.width * 0.2333f - 14.0f, area.bottom() - 9.0f, 28.0f, 9.0f},
                  {8.5f, gui::FontWeight::medium, 0.0f, false}, theme::kFaint, gui::Align::centre);
    canvas.textIn("1k", {area.x + area.width * 0.5667f - 14.0f, area.bottom() - 9.0f, 28.0f, 9.0f},
                  {8.5f, gui::FontWeight::medium, 0.0f, false}, theme::kFaint, gui::Align::centre);
    canvas.textIn("10k", {area.x + area.width * 0.9f - 14.0f, area.bottom() - 9.0f, 28.0f, 9.0f},
                  {8.5f, gui::FontWeight::medium, 0.0f, false}, theme::kFaint, gui::Align::centre);
}

bool CFilterDisplay::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    dragging_ = true;
    last_ = event.position;
    context().actions().beginGesture(kFilterCutoff);
    context().actions().beginGesture(kFilterResonance);
    return true;
}

void CFilterDisplay::mouseDragged(const gui::MouseEvent& event)
{
    if (!dragging_)
        return;
    const float fine = event.modifiers.shift ? 0.125f : 1.0f;
    const gui::Point by = event.position - last_;
    last_ = event.position;
    const auto move = [&](int id, float amount) {
        if (amount == 0.0f)
            return;
        context().actions().controlChanged(id,
                                           std::clamp(context().value(id) + amount, 0.0f, 1.0f));
        context().tellValue(id);
    };
    move(kFilterCutoff, fine * by.x / localBounds().width);
    move(kFilterResonance, -fine * by.y / 120.0f);
    if (context().showStatus)
        context().showStatus("Cutoff  " + context().text(kFilterCutoff) + "   Resonance  " +
                             context().text(kFilterResonance));
}

void CFilterDisplay::endDrag()
{
    if (!dragging_)
        return;
    dragging_ = false;
    context().actions().endGesture(kFilterResonance);
    context().actions().endGesture(kFilterCutoff);
    if (context().showStatus)
        context().showStatus({});
}

} // namespace tolm
