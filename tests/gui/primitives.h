#pragma once
// A bit of everything a canvas draws, as the window uses it: to clip and to time.

#include "gui/Canvas.h"

#include <numbers>

namespace tolm::gui {

namespace sheet {

inline constexpr Color kBack = Color::rgb(0x14171C);
inline constexpr Color kText = Color::rgb(0xE6EAF0);
inline constexpr Color kSecondary = Color::rgb(0x99A2B2);
inline constexpr Color kTrack = Color::rgb(0x333A46);
inline constexpr Color kWell = Color::rgb(0x0F1216);
inline constexpr Color kEdge = Color::rgb(0x2E3440);
inline constexpr Color kAmber = Color::rgb(0xFFB454);
inline constexpr Color kTeal = Color::rgb(0x4FD6BE);
inline constexpr Color kBlue = Color::rgb(0x6CA8FF);
inline constexpr Color kViolet = Color::rgb(0xB48CFF);
inline constexpr float kPi = std::numbers::pi_v<float>;

inline void panel(Canvas& canvas, const Rect& bounds, std::string_view title, Color accent)
{
    const Rect r = canvas.snap(bounds);
    canvas.fillRoundRect(
        r, 7.0f,
        Paint::linear({0, r.y}, {0, r.bottom()}, Color::rgb(0x222730), Color::rgb(0x1A1E25)));
    canvas.strokeRoundRect(r, 7.0f, 1.0f, kEdge);
    canvas.text(title, {r.x + 10, r.y + 18}, {10.5f, FontWeight::semiBold, 0.9f}, accent);
}

inline void knob(Canvas& canvas, Point centre, float diameter, float value, bool bipolar,
                 float modulation, Color accent, std::string_view label)
{
    const float from = 0.75f * kPi;
    const auto angle = [from](float v) { return from + 1.5f * kPi * v; };
    const float ring = diameter / 2 - 3.0f;
    const auto arc = [&](float radius, float a, float b, float width, Color color) {
        canvas.stroke(Path().arc(centre, radius, angle(a), angle(b)), {width, LineCap::round},
                      color);
    };
    arc(ring, 0.0f, 1.0f, 2.6f, kTrack);
    arc(ring, bipolar ? 0.5f : 0.0f, value, 2.6f, accent);
    if (modulation != 0.0f)
        arc(ring + 3.4f, value, value + modulation, 1.4f, kViolet);
    const float body = ring - 4.2f;
    const Point low = centre + Point{0, 1.5f};
    canvas.fill(Path::circle(low, body + 2.5f), Paint::radial(low, body + 2.5f,
                                                              {{0.0f, Color{0, 0, 0, 150}},
                                                               {0.82f, Color{0, 0, 0, 110}},
                                                               {1.0f, Color{0, 0, 0, 0}}}));
    canvas.fill(Path::circle(centre, body),
                Paint::linear(centre - Point{0, body}, centre + Point{0, body},
                              Color::rgb(0x434B59), Color::rgb(0x272C35)));
    canvas.stroke(Path::circle(centre, body - 0.5f), {1.0f, LineCap::butt},
                  Paint::linear(centre - Point{0, body}, centre + Point{0, body},
                                {{0.0f, Color{255, 255, 255, 70}},
                                 {0.55f, Color{255, 255, 255, 0}},
                                 {1.0f, Color{255, 255, 255, 0}}}));
    const Path tip = Path().arc(centre, body - 2.5f, angle(value), angle(value));
    const Point outer = tip.elements()[0].points[0];
    const Point inner = centre + Point{(outer.x - centre.x) * 0.45f, (outer.y - centre.y) * 0.45f};
    canvas.stroke(Path::line(inner, outer), {2.0f, LineCap::round}, kText);
    canvas.textIn(label, {centre.x - 30, centre.y + diameter / 2, 60, 12}, {9.5f}, kSecondary,
                  Align::centre);
}

inline void button(Canvas& canvas, const Rect& bounds, std::string_view label, bool on,
                   Color accent)
{
    const Rect r = canvas.snap(bounds);
    canvas.fillRoundRect(
        r, 4.0f,
        on ? Paint(accent)
           : Paint::linear({0, r.y}, {0, r.bottom()}, Color::rgb(0x333A46), Color::rgb(0x272C35)));
    if (!on)
        canvas.strokeRoundRect(r, 4.0f, 1.0f, Color::rgb(0x3C4452));
    canvas.textIn(label, r.inset(6, 0), {10.5f}, on ? kWell : kText, Align::centre);
}

inline void curves(Canvas& canvas, const Rect& bounds)
{
    const Rect r = canvas.snap(bounds);
    canvas.fillRoundRect(r, 5.0f, kWell);
    canvas.save();
    canvas.clip(r.inset(1));
    for (int i = 1; i < 4; ++i) {
        const float y = canvas.snapY(r.y + r.height * static_cast<float>(i) / 4);
        canvas.fillRect({r.x, y, r.width, 1.0f / canvas.scale()}, Color{255, 255, 255, 14});
    }
    const float bottom = r.bottom() - 6;
    Path envelope;
    envelope.moveTo({r.x + 6, bottom}).lineTo({r.x + 22, r.y + 8});
    envelope.cubicTo({r.x + 28, r.y + 30}, {r.x + 36, r.y + 34}, {r.x + 52, r.y + 36});
    envelope.lineTo({r.x + 84, r.y + 36});
    envelope.cubicTo({r.x + 92, r.y + 52}, {r.x + 102, bottom - 2}, {r.x + 116, bottom});
    Path area = envelope;
    canvas.fill(area.close(), Paint::linear({0, r.y}, {0, bottom}, kBlue.withAlpha(0.30f),
                                            kBlue.withAlpha(0.02f)));
    canvas.stroke(envelope, {1.6f, LineCap::round}, kBlue);
    for (Point p :
         {Point{r.x + 22, r.y + 8}, Point{r.x + 52, r.y + 36}, Point{r.x + 84, r.y + 36}}) {
        canvas.fill(Path::circle(p, 3.0f), kWell);
        canvas.stroke(Path::circle(p, 2.6f), {1.3f}, kText);
    }
    Path saw;
    for (int i = 0; i < 3; ++i) {
        const float x = r.x + 126 + 16 * static_cast<float>(i);
        saw.lineTo({x, bottom}).lineTo({x + 16, r.y + 10}).lineTo({x + 16, bottom});
    }
    canvas.stroke(saw, {1.4f}, kAmber);
    canvas.restore();
}

} // namespace sheet

} // namespace tolm::gui
