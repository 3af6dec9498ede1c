// The header's buttons and their icons.

#include "editor/CHeaderParts.h"
#include "editor/theme.h"
#include "gui/Frame.h"

#include <cmath>
#include <numbers>

namespace tolm {

namespace {

constexpr float kHalfTurn = std::numbers::pi_v<float>;

bool isPressKey(const gui::KeyEvent& event)
{
    return event.key == gui::Key::space || event.key == gui::Key::enter;
}

void drawChevron(gui::Canvas& canvas, gui::Point centre, float direction, gui::Color color)
{
    gui::Path path;
    path.moveTo({centre.x - 2.0f * direction, centre.y - 4.0f})
        .lineTo({centre.x + 2.0f * direction, centre.y})
        .lineTo({centre.x - 2.0f * direction, centre.y + 4.0f});
    canvas.stroke(path, {1.6f, gui::LineCap::round}, color);
}

void drawDownArrow(gui::Canvas& canvas, gui::Point centre, gui::Color color)
{
    gui::Path path;
    path.moveTo({centre.x - 3.0f, centre.y - 1.5f})
        .lineTo({centre.x, centre.y + 1.5f})
        .lineTo({centre.x + 3.0f, centre.y - 1.5f});
    canvas.stroke(path, {1.4f, gui::LineCap::round}, color);
}

// An arrow that turns back: undo to the left, redo its mirror image.
void drawTurn(gui::Canvas& canvas, gui::Point centre, float side, gui::Color color)
{
    const auto at = [&](float x, float y) { return gui::Point{centre.x + x * side, centre.y + y}; };
    gui::Path path;
    path.moveTo(at(-5.0f, -2.0f))
        .lineTo(at(1.5f, -2.0f))
        .cubicTo(at(6.0f, -2.0f), at(6.0f, 5.0f), at(1.5f, 5.0f))
        .lineTo(at(-2.0f, 5.0f));
    canvas.stroke(path, {1.5f, gui::LineCap::round}, color);
    gui::Path head;
    head.moveTo(at(-2.2f, -5.0f)).lineTo(at(-5.2f, -2.0f)).lineTo(at(-2.2f, 1.0f));
    canvas.stroke(head, {1.5f, gui::LineCap::round}, color);
}

void drawGear(gui::Canvas& canvas, gui::Point centre, gui::Color color)
{
    canvas.stroke(gui::Path::circle(centre, 4.1f), {2.0f, gui::LineCap::butt}, color);
    for (int tooth = 0; tooth < 8; ++tooth) {
        const float angle = kHalfTurn / 4.0f * static_cast<float>(tooth);
        const gui::Point out{std::cos(angle), std::sin(angle)};
        canvas.stroke(gui::Path::line({centre.x + out.x * 4.6f, centre.y + out.y * 4.6f},
                                      {centre.x + out.x * 7.0f, centre.y + out.y * 7.0f}),
                      {2.6f, gui::LineCap::butt}, color);
    }
}

void drawPanic(gui::Canvas& canvas, gui::Point centre, gui::Color color)
{
    canvas.stroke(gui::Path::circle(centre, 6.4f), {1.5f, gui::LineCap::butt}, color);
    canvas.fillRoundRect({centre.x - 0.9f, centre.y - 3.8f, 1.8f, 4.8f}, 0.9f, color);
    canvas.fill(gui::Path::circle({centre.x, centre.y + 3.0f}, 1.05f), color);
}

void drawIcon(gui::Canvas& canvas, Icon icon, gui::Point centre, gui::Color color)
{
    switch (icon) {
    case Icon::previous:
        return drawChevron(canvas, centre, -1.0f, color);
    case Icon::next:
        return drawChevron(canvas, centre, 1.0f, color);
    case Icon::undo:
        return drawTurn(canvas, centre, 1.0f, color);
    case Icon::redo:
        return drawTurn(canvas, centre, -1.0f, color);
    case Icon::panic:
        return drawPanic(canvas, centre, color);
    case Icon::settings:
        return drawGear(canvas, centre, color);
    case Icon::none:
        return;
    }
}

} // namespace

void drawStar(gui::Canvas& canvas, gui::Point centre, float radius, bool filled, gui::Color color)
{
    gui::Path star;
    for (int corner = 0; corner < 10; ++corner) {
        const float angle = -kHalfTurn / 2.0f + kHalfTurn / 5.0f * static_cast<float>(corner);
        const float r = corner % 2 == 0 ? radius : radius * 0.44f;
        const gui::Point p{centre.x + r * std::cos(angle), centre.y + r * std::sin(angle)};
        if (corner == 0)
            star.moveTo(p);
        else
            star.lineTo(p);
    }
    star.close();
    if (filled)
        canvas.fill(star, color);
    else
        canvas.stroke(star, {1.1f, gui::LineCap::round}, color);
}

void CIconButton::draw(gui::Canvas& canvas)
{
    const gui::Rect box = canvas.snap(localBounds());
    const bool useful = isUseful();
    const float lit = !useful ? 0.0f : down_ ? 1.0f : hoverLight();
    canvas.fillRoundRect(box, theme::kControlRadius,
                         down_ ? gui::Paint(theme::kWell)
                               : gui::Paint::linear({0, box.y}, {0, box.bottom()}, theme::kPanelTop,
                                                    theme::kPanelBottom));
    const bool focused = hasFocus() && frame()->keyboardMode();
    canvas.strokeRoundRect(box, theme::kControlRadius, 1.0f,
                           focused ? theme::kText.withAlpha(0.7f)
                                   : gui::mix(theme::kEdge, theme::kTrack, lit));
    const gui::Color ink = useful ? gui::mix(theme::kSecondary, theme::kText, lit) : theme::kTrack;
    if (options_.icon != Icon::none)
        drawIcon(canvas, options_.icon, box.centre(), ink);
    if (options_.word.empty())
        return;
    gui::Rect text = box;
    if (options_.opensMenu) {
        text.width -= 14.0f;
        drawDownArrow(canvas, {box.right() - 12.0f, box.centre().y}, ink);
    }
    canvas.textIn(options_.word, text, theme::kField, ink, gui::Align::centre);
}

bool CIconButton::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    down_ = isUseful();
    invalidate();
    if (down_)
        options_.pressed(*this);
    return true;
}

void CIconButton::release()
{
    down_ = false;
    invalidate();
}

bool CIconButton::keyDown(const gui::KeyEvent& event)
{
    if (!isPressKey(event))
        return false;
    if (isUseful())
        options_.pressed(*this);
    return true;
}

} // namespace tolm
