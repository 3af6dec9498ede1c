// The picture of an envelope, and the hand that drags its points.

#include "editor/displays.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tolm {

namespace {

constexpr float kReach = 9.0f;    // pixels around a handle that still take it
constexpr float kPlateau = 0.12f; // of the width: the held part

} // namespace

CEnvelopeDisplay::CEnvelopeDisplay(EditorContext& context, EnvelopeIds ids, gui::Rect place)
    : CDisplay(context, place), ids_(ids)
{
    context.listen(*this, ids.attack, 4);
}

std::string CEnvelopeDisplay::tooltip() const
{
    return "Drag the points: attack, decay with sustain, release";
}

// Times are logarithmic, so each stage takes a share of the width that grows with its value.
CEnvelopeDisplay::Shape CEnvelopeDisplay::shape() const
{
    const gui::Rect area = localBounds().inset(7.0f);
    const float stage = area.width * (1.0f - kPlateau) / 3.0f;
    const auto at = [&](int offset) {
        return std::clamp(context().value(ids_.attack + offset), 0.0f, 1.0f);
    };
    // The stored sustain is squared before it is a level.
    const float sustain = at(2) * at(2);
    Shape s;
    s.start = {area.x, area.bottom()};
    s.peak = {area.x + stage * at(0), area.y};
    s.sustain = {s.peak.x + stage * at(1), area.bottom() - area.height * sustain};
    s.hold = {s.sustain.x + area.width * kPlateau, s.sustain.y};
    s.end = {s.hold.x + stage * at(3), area.bottom()};
    return s;
}

CEnvelopeDisplay::Handle CEnvelopeDisplay::handleAt(gui::Point p) const
{
    const Shape s = shape();
    const auto distance = [p](gui::Point q) { return std::hypot(p.x - q.x, p.y - q.y); };
    const std::array<std::pair<float, Handle>, 3> all = {{{distance(s.sustain), Handle::decay},
                                                          {distance(s.peak), Handle::attack},
                                                          {distance(s.end), Handle::release}}};
    const auto nearest = std::min_element(
        all.begin(), all.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    if (nearest->first <= kReach)
        return nearest->second;
    // Anywhere else the stage under the pointer is meant.
    if (p.x < s.peak.x + 4.0f)
        return Handle::attack;
    return p.x < s.hold.x ? Handle::decay : Handle::release;
}

void CEnvelopeDisplay::draw(gui::Canvas& canvas)
{
    drawWell(canvas, 4, 2);
    const Shape s = shape();
    const gui::Color color = theme::color(ids_.accent);
    // Attacks approach, decays and releases fall exponentially.
    const auto towards = [](gui::Path& path, gui::Point from, gui::Point to) {
        path.cubicTo({from.x + (to.x - from.x) * 0.18f, from.y + (to.y - from.y) * 0.62f},
                     {from.x + (to.x - from.x) * 0.5f, to.y}, to);
    };
    gui::Path line;
    line.moveTo(s.start);
    towards(line, s.start, s.peak);
    towards(line, s.peak, s.sustain);
    line.lineTo(s.hold);
    towards(line, s.hold, s.end);
    gui::Path area = line;
    area.lineTo(s.start).close();
    canvas.fill(area, gui::Paint::linear({0, 0}, {0, localBounds().height}, color.withAlpha(0.26f),
                                         color.withAlpha(0.03f)));
    canvas.stroke(line, {1.6f, gui::LineCap::round}, color);
    const auto handle = [&](gui::Point p, Handle which) {
        const bool lit = which == dragged_ || (dragged_ == Handle::none && which == pointed_);
        canvas.fill(gui::Path::circle(p, lit ? 4.5f : 3.2f), lit ? theme::kText : color);
        canvas.fill(gui::Path::circle(p, lit ? 2.0f : 1.4f), theme::kWell);
    };
    handle(s.peak, Handle::attack);
    handle(s.sustain, Handle::decay);
    handle(s.end, Handle::release);
}

bool CEnvelopeDisplay::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    dragged_ = handleAt(event.position);
    last_ = event.position;
    for (int id = ids_.attack; id < ids_.attack + 4; ++id)
        context().actions().beginGesture(id);
    invalidate();
    return true;
}

void CEnvelopeDisplay::nudge(int id, float by)
{
    const float next = std::clamp(context().value(id) + by, 0.0f, 1.0f);
    if (next == context().value(id))
        return;
    context().actions().controlChanged(id, next);
    context().tellValue(id);
    if (context().showStatus)
        context().showStatus(std::string(kCatalogue[static_cast<std::size_t>(id)].name) + "  " +
                             context().text(id));
}

void CEnvelopeDisplay::mouseDragged(const gui::MouseEvent& event)
{
    if (dragged_ == Handle::none)
        return;
    const float fine = event.modifiers.shift ? 0.125f : 1.0f;
    const gui::Point by = event.position - last_;
    last_ = event.position;
    const float stage = localBounds().inset(7.0f).width * (1.0f - kPlateau) / 3.0f;
    const float sideways = fine * by.x / stage;
    switch (dragged_) {
    case Handle::attack:
        nudge(ids_.attack, sideways);
        break;
    case Handle::decay:
        nudge(ids_.attack + 1, sideways);
        nudge(ids_.attack + 2, -fine * by.y / 100.0f);
        break;
    case Handle::release:
        nudge(ids_.attack + 3, sideways);
        break;
    case Handle::none:
        break;
    }
}

void CEnvelopeDisplay::mouseMoved(const gui::MouseEvent& event)
{
    if (const Handle now = handleAt(event.position); now != pointed_) {
        pointed_ = now;
        invalidate();
    }
}

void CEnvelopeDisplay::mouseLeft()
{
    pointed_ = Handle::none;
    invalidate();
}

void CEnvelopeDisplay::endDrag()
{
    if (dragged_ == Handle::none)
        return;
    dragged_ = Handle::none;
    for (int id = ids_.attack + 3; id >= ids_.attack; --id)
        context().actions().endGesture(id);
    if (context().showStatus)
        context().showStatus({});
    invalidate();
}

} // namespace tolm
