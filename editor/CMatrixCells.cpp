#include "editor/CMatrixCells.h"

#include "editor/shapes.h"
#include "gui/Frame.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr float kRadius = 3.0f;
constexpr float kReadout = 50.0f; // width of an amount's number
constexpr float kBarInset = 3.0f;
constexpr float kTickWidth = 2.0f;
constexpr float kUnusedGround = 0.4f; // how much of a field's ground unused rows keep

void drawGround(gui::Canvas& canvas, const gui::Rect& bounds, bool used, float lit)
{
    canvas.fillRoundRect(bounds, kRadius, theme::kWell.withAlpha(used ? 1.0f : kUnusedGround));
    if (lit > 0.0f)
        canvas.strokeRoundRect(bounds, kRadius, 1.0f, theme::kFaint.withAlpha(lit));
}

} // namespace

// ---- What fields and amounts share -----------------------------------------------------------

CMatrixCell::CMatrixCell(EditorContext& context, const ControlRow& row)
    : CControl(context, row), cell_(matrixCellOf(row.tag))
{
    for (const int id : {kModSource1 + cell_.row, kModDestination1 + cell_.row})
        if (id != row.tag)
            context.listen(*this, {id});
}

std::string CMatrixCell::spokenName() const
{
    return std::string(row().spoken) + " " + std::to_string(cell_.row + 1);
}

bool CMatrixCell::keyDown(const gui::KeyEvent& event)
{
    if (event.key == gui::Key::up || event.key == gui::Key::down)
        return false;
    return CControl::keyDown(event);
}

// ---- Fields ----------------------------------------------------------------------------------

void CMatrixField::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    const bool used = isUsed();
    drawGround(canvas, bounds, used, hoverLight());
    const bool none = matrixPosition(context(), cell()) <= 0;
    std::string text = none ? "\u2013" : context().text(id());
    gui::Color color = used ? theme::kText : theme::kSecondary;
    if (none) {
        const bool all = used && cell().column == MatrixColumn::voices;
        text = all ? "all" : "\u2013";
        color = theme::kFaint;
    }
    gui::Rect box = bounds.inset(6.0f, 0.0f);
    if (isHovered()) {
        box.width -= 8.0f;
        drawArrow(canvas, {bounds.right() - 8.0f, bounds.y + bounds.height / 2}, 0.0f, 1.6f,
                  theme::kSecondary);
    }
    canvas.textIn(text, box, theme::kField, color);
    drawFocus(canvas, bounds, kRadius);
}

std::string CMatrixField::tooltip() const
{
    const std::string text = context().text(id());
    return std::string(row().tooltip) + (text == "---" ? "" : "\n" + text);
}

void CMatrixField::choose(int position)
{
    chooseMatrixPosition(context(), cell(), position);
}

void CMatrixField::open()
{
    if (frame() == nullptr)
        return;
    gui::MenuRequest request;
    request.anchor = boundsInFrame();
    request.entries = matrixEntries(context(), cell());
    request.chosen = [this](int position) { choose(position); };
    gui::Menu::show(*frame(), std::move(request));
}

bool CMatrixField::step(int direction)
{
    const int next = matrixPosition(context(), cell()) + direction;
    if (next >= 0 && next < matrixPositions(cell().column))
        choose(next);
    return true;
}

bool CMatrixField::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::right)
        return CControl::mouseDown(event);
    openMatrixRowMenu(context(), *this, cell().row, toFrame(event.position));
    return true;
}

bool CMatrixField::pressed(const gui::MouseEvent&)
{
    open();
    return true;
}

bool CMatrixField::mouseWheel(const gui::WheelEvent& event)
{
    return step(event.steps > 0 ? -1 : 1);
}

bool CMatrixField::keyDown(const gui::KeyEvent& event)
{
    switch (event.key) {
    case gui::Key::enter:
    case gui::Key::space:
        open();
        return true;
    case gui::Key::left:
    case gui::Key::right:
        return step(event.key == gui::Key::left ? -1 : 1);
    case gui::Key::deleteForward:
    case gui::Key::backspace:
        choose(0);
        return true;
    default:
        return false;
    }
}

// ---- Amounts ---------------------------------------------------------------------------------

gui::Rect CMatrixAmount::bar() const
{
    gui::Rect area = localBounds();
    area.width -= kReadout;
    return area;
}

float CMatrixAmount::placeOf(float amount) const
{
    const gui::Rect area = bar();
    return area.centre().x + (area.width / 2 - kBarInset) * std::clamp(amount, -1.0f, 1.0f);
}

bool CMatrixAmount::pressed(const gui::MouseEvent& event)
{
    const auto press = gesture().press(turned(event), value());
    if (press == gui::DragGesture::Press::drag)
        return true;
    const bool types =
        (press == gui::DragGesture::Press::doubleClick) == context().doubleClickTypes;
    if (types)
        context().openValueField(*this, id());
    else
        change(context().defaultValue(id()));
    return true;
}

// The gesture counts upwards; here it is sideways, and the bar's end stays below the pointer.
gui::MouseEvent CMatrixAmount::turned(const gui::MouseEvent& event) const
{
    gui::MouseEvent upwards = event;
    const float range = bar().width - 2 * kBarInset;
    upwards.position.y = -event.position.x * gui::DragGesture::kFullRangePixels / range;
    return upwards;
}

std::optional<float> CMatrixAmount::tick() const
{
    if (!source_)
        return std::nullopt;
    return placeOf(*source_ * (2.0f * value() - 1.0f));
}

void CMatrixAmount::showSource(std::optional<float> source)
{
    if (!isUsed())
        source.reset();
    const std::optional<float> before = tick();
    source_ = source;
    const std::optional<float> now = tick();
    constexpr float kSeen = 0.25f; // pixels
    const bool same = before && now ? std::abs(*before - *now) < kSeen : before == now;
    if (!same)
        invalidate(bar());
}

void CMatrixAmount::drawBar(gui::Canvas& canvas) const
{
    const gui::Rect area = canvas.snap(bar());
    const float middle = canvas.snapX(area.centre().x);
    const gui::Rect lane = canvas.snap(area.inset(kBarInset, 3.0f));
    const float end = canvas.snapX(placeOf(2.0f * value() - 1.0f));
    const float left = std::min(middle, end);
    const float width = std::abs(end - middle);
    const float lit = isTurning() ? 1.0f : hoverLight();
    canvas.fillRect({left, lane.y, width, lane.height},
                    gui::mix(theme::kWell, accent(), 0.5f + 0.12f * lit));
    canvas.fillRect({middle, area.y + 1.0f, 1.0f, area.height - 2.0f}, theme::kTrack);
    const float cap = end > middle ? end - kTickWidth : end;
    canvas.fillRect({cap, lane.y, kTickWidth, lane.height}, accent());
    if (const std::optional<float> at = tick())
        canvas.fillRect(
            canvas.snap({*at - kTickWidth / 2, area.y + 1.0f, kTickWidth, area.height - 2.0f}),
            gui::mix(accent(), theme::kText, 0.6f));
}

void CMatrixAmount::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    const bool used = isUsed();
    const bool shown = used || isTurning() || value() != context().defaultValue(id());
    drawGround(canvas, canvas.snap(bar()), used, hoverLight());
    if (shown)
        drawBar(canvas);
    else
        canvas.fillRect(
            {canvas.snapX(bar().centre().x), bounds.y + 4.0f, 1.0f, bounds.height - 8.0f},
            theme::kTrack);
    const gui::Rect number{bounds.right() - kReadout, bounds.y, kReadout - 5.0f, bounds.height};
    gui::Color color = used ? hoverColor(theme::kSecondary, theme::kText) : theme::kFaint;
    if (isTurning())
        color = theme::kText;
    if (shown)
        canvas.textIn(context().textOf(id(), value()), number, theme::kField, color,
                      gui::Align::right);
    drawFocus(canvas, canvas.snap(bar()), kRadius);
}

} // namespace tolm
