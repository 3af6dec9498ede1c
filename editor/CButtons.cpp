// Switches, segments, menus and steppers: controls of a few positions.

#include "editor/controls.h"

#include "editor/CMatrixCells.h"
#include "editor/shapes.h"
#include "gui/Frame.h"
#include "gui/Menu.h"
#include "plugin/menus.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr float kOn = 0.00001f;

bool isAdvanceKey(const gui::KeyEvent& event)
{
    return event.key == gui::Key::space || event.key == gui::Key::enter;
}

} // namespace

// ---- Toggle ----------------------------------------------------------------------------------

void CToggle::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    const bool on = value() > kOn;
    if (on) {
        canvas.fillRoundRect(bounds, theme::kControlRadius, accent().withAlpha(0.9f));
    } else {
        drawField(canvas, bounds, hoverLight());
    }
    canvas.textIn(row().label, bounds, theme::kSmallTitle,
                  on ? theme::kWell : hoverColor(theme::kSecondary, theme::kText),
                  gui::Align::centre);
    drawFocus(canvas, bounds, theme::kControlRadius);
}

void CToggle::flip()
{
    change(value() > kOn ? 0.0f : 1.0f);
}

bool CToggle::pressed(const gui::MouseEvent&)
{
    flip();
    return true;
}

bool CToggle::keyDown(const gui::KeyEvent& event)
{
    if (!isAdvanceKey(event))
        return CControl::keyDown(event);
    flip();
    return true;
}

// ---- Segments --------------------------------------------------------------------------------

CSegments::CSegments(EditorContext& context, const ControlRow& row, bool shapes)
    : CControl(context, row), shapes_(shapes)
{
}

void CSegments::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    const auto& choices = context().choices(id());
    const int chosen = context().choiceAt(id(), value());
    drawField(canvas, bounds, hoverLight());
    const float width = bounds.width / static_cast<float>(std::max<std::size_t>(1, choices.size()));
    for (std::size_t i = 0; i < choices.size(); ++i) {
        const gui::Rect part =
            canvas.snap({bounds.x + width * static_cast<float>(i), bounds.y, width, bounds.height});
        const bool on = static_cast<int>(i) == chosen;
        if (on)
            canvas.fillRoundRect(part.inset(1.0f), theme::kControlRadius - 1.0f, accent());
        const gui::Color color = on ? theme::kWell : theme::kSecondary;
        if (shapes_)
            drawShape(canvas, shapeNamed(choices[i].text), part.inset(7.0f, 5.0f), color);
        else
            canvas.textIn(choices[i].text, part, theme::kLabel, color, gui::Align::centre);
    }
    drawFocus(canvas, bounds, theme::kControlRadius);
}

void CSegments::choose(int position)
{
    const auto& choices = context().choices(id());
    const int last = static_cast<int>(choices.size()) - 1;
    const int wanted = std::clamp(position, 0, std::max(0, last));
    if (wanted <= last && wanted != context().choiceAt(id(), value()))
        change(choices[static_cast<std::size_t>(wanted)].value);
}

bool CSegments::pressed(const gui::MouseEvent& event)
{
    const auto count = static_cast<float>(context().choices(id()).size());
    choose(static_cast<int>(event.position.x / localBounds().width * count));
    return true;
}

bool CSegments::keyDown(const gui::KeyEvent& event)
{
    const int at = context().choiceAt(id(), value());
    switch (event.key) {
    case gui::Key::left:
    case gui::Key::down:
        choose(at - 1);
        return true;
    case gui::Key::right:
    case gui::Key::up:
        choose(at + 1);
        return true;
    default:
        return CControl::keyDown(event);
    }
}

bool CSegments::mouseWheel(const gui::WheelEvent& event)
{
    choose(context().choiceAt(id(), value()) + (event.steps > 0 ? 1 : -1));
    return true;
}

// ---- Menu ------------------------------------------------------------------------------------

namespace {

struct MenuItems {
    std::vector<std::string> names; // "-" for a separator
    int chosen = -1;
};

// Menus send their position; what it stands for is the actions' business.
MenuItems itemsOf(EditorContext& context, const ControlRow& row, int id)
{
    MenuItems items;
    const auto fromTable = [&](std::span<const MenuEntry> table) {
        for (const MenuEntry& entry : table)
            items.names.emplace_back(entry.name);
        items.chosen = menuPosition(table, context.value(id));
    };
    if (row.tag == kFilterType) {
        fromTable(kFilterMenu);
    } else if (row.tag == kArpMode) {
        fromTable(kArpModeMenu);
    } else if (row.tag == kTagOsc1WaveMenu || row.tag == kTagOsc2WaveMenu) {
        for (int wave = 0; wave < kWaveCount; ++wave)
            items.names.emplace_back(kWaveNames[wave]);
        items.chosen = waveIndex(context.value(id));
    } else {
        for (const Choice& choice : context.choices(id))
            items.names.push_back(choice.text);
        items.chosen = context.choiceAt(id, context.value(id));
    }
    return items;
}

bool sendsPosition(int tag)
{
    return tag == kFilterType || tag == kArpMode || tag == kTagOsc1WaveMenu ||
           tag == kTagOsc2WaveMenu;
}

} // namespace

void CMenu::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    drawField(canvas, bounds, hoverLight());
    const MenuItems items = itemsOf(context(), row(), id());
    const bool known = items.chosen >= 0 && items.chosen < static_cast<int>(items.names.size());
    gui::Rect text = bounds.inset(8.0f, 0.0f);
    text.width -= 12.0f;
    canvas.textIn(known ? items.names[static_cast<std::size_t>(items.chosen)] : "\u2013", text,
                  theme::kField, hoverColor(theme::kText.withAlpha(0.9f), theme::kText));
    drawArrow(canvas, {bounds.right() - 10.0f, bounds.y + bounds.height / 2}, 0.0f, 1.8f,
              theme::kSecondary);
    drawFocus(canvas, bounds, theme::kControlRadius);
}

void CMenu::open()
{
    if (frame() == nullptr)
        return;
    const MenuItems items = itemsOf(context(), row(), id());
    gui::MenuRequest request;
    request.anchor = boundsInFrame();
    for (std::size_t i = 0; i < items.names.size(); ++i) {
        if (items.names[i] == "-")
            request.entries.push_back(gui::MenuEntry::separator());
        else
            request.entries.push_back({static_cast<int>(i),
                                       items.names[i],
                                       {},
                                       static_cast<int>(i) == items.chosen,
                                       true,
                                       {},
                                       {}});
    }
    request.chosen = [this](int position) {
        if (sendsPosition(row().tag))
            change(static_cast<float>(position));
        else if (const auto& choices = context().choices(id());
                 position < static_cast<int>(choices.size()))
            change(choices[static_cast<std::size_t>(position)].value);
        CControl::valueChanged(id());
    };
    gui::Menu::show(*frame(), std::move(request));
}

void CMenu::step(int direction)
{
    const MenuItems items = itemsOf(context(), row(), id());
    const int last = static_cast<int>(items.names.size()) - 1;
    int next = items.chosen + direction;
    if (next >= 0 && next <= last && items.names[static_cast<std::size_t>(next)] == "-")
        next += direction;
    if (next < 0 || next > last)
        return;
    change(sendsPosition(row().tag)
               ? static_cast<float>(next)
               : context().choices(id())[static_cast<std::size_t>(next)].value);
    CControl::valueChanged(id());
}

bool CMenu::pressed(const gui::MouseEvent&)
{
    open();
    return true;
}

bool CMenu::keyDown(const gui::KeyEvent& event)
{
    if (isAdvanceKey(event)) {
        open();
        return true;
    }
    if (event.key == gui::Key::down || event.key == gui::Key::up) {
        step(event.key == gui::Key::down ? 1 : -1);
        return true;
    }
    return false;
}

bool CMenu::mouseWheel(const gui::WheelEvent& event)
{
    step(event.steps > 0 ? -1 : 1);
    return true;
}

// ---- Stepper ---------------------------------------------------------------------------------

void CStepper::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    drawField(canvas, bounds, hoverLight());
    const gui::Color color = hoverColor(theme::kSecondary, theme::kText);
    const float middle = bounds.y + bounds.height / 2;
    drawArrow(canvas, {bounds.x + bounds.width * 0.25f, middle}, -1.8f, 0.0f, color);
    drawArrow(canvas, {bounds.x + bounds.width * 0.75f, middle}, 1.8f, 0.0f, color);
    const float line = canvas.snapX(bounds.x + bounds.width / 2);
    canvas.fillRect({line, bounds.y + 4.0f, 1.0f, bounds.height - 8.0f}, theme::kEdge);
    drawFocus(canvas, bounds, theme::kControlRadius);
}

void CStepper::send(float direction)
{
    context().actions().controlChanged(row().tag, direction);
    context().tellValue(id());
}

bool CStepper::pressed(const gui::MouseEvent& event)
{
    send(event.position.x < localBounds().width / 2 ? 1.0f : -1.0f);
    return true;
}

bool CStepper::keyDown(const gui::KeyEvent& event)
{
    if (event.key == gui::Key::left || event.key == gui::Key::up)
        send(1.0f);
    else if (event.key == gui::Key::right || event.key == gui::Key::down)
        send(-1.0f);
    else
        return false;
    return true;
}

bool CStepper::mouseWheel(const gui::WheelEvent& event)
{
    send(event.steps > 0 ? 1.0f : -1.0f);
    return true;
}

// ---- By kind ---------------------------------------------------------------------------------

std::unique_ptr<CControl> makeControl(EditorContext& context, const ControlRow& row)
{
    switch (row.kind) {
    case ControlKind::knob:
    case ControlKind::bigKnob:
        return std::make_unique<CKnob>(context, row);
    case ControlKind::toggle:
        return std::make_unique<CToggle>(context, row);
    case ControlKind::segments:
    case ControlKind::shapes:
        return std::make_unique<CSegments>(context, row, row.kind == ControlKind::shapes);
    case ControlKind::menu:
        return std::make_unique<CMenu>(context, row);
    case ControlKind::stepper:
        return std::make_unique<CStepper>(context, row);
    case ControlKind::number:
        return std::make_unique<CNumber>(context, row);
    case ControlKind::matrixField:
        return std::make_unique<CMatrixField>(context, row);
    case ControlKind::matrixAmount:
        return std::make_unique<CMatrixAmount>(context, row);
    }
    return nullptr;
}

} // namespace tolm
