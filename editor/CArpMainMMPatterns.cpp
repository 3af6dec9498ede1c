#include "editor/CArpMainMMPatterns.h"

#include "editor/programActions.h"
#include "editor/shapes.h"
#include "gui/Frame.h"
#include "gui/Menu.h"
#include "gui/textWrap.h"

#include <array>

namespace tolm {

namespace {

constexpr float kRateHeight = 20.0f;
constexpr float kRateLeft = 64.0f; // right of the switch that it depends on
constexpr float kBelowRate = 14.0f;

bool isOpeningKey(const gui::KeyEvent& event)
{
    return event.key == gui::Key::enter || event.key == gui::Key::space;
}

void drawFocus(gui::Canvas& canvas, const gui::View& view)
{
    if (view.hasFocus() && view.frame()->keyboardMode())
        canvas.strokeRoundRect(canvas.snap(view.localBounds()), theme::kControlRadius, 1.0f,
                               theme::kText.withAlpha(0.7f));
}

} // namespace

// ---- The menu of patterns --------------------------------------------------------------------

CArpPatternMenu::CArpPatternMenu(EditorContext& context, gui::Rect place) : CDisplay(context, place)
{
    for (const int id : kArpPatternIds)
        context.listen(*this, {id});
}

void CArpPatternMenu::valueChanged(int)
{
    stale_ = true;
    invalidate();
}

int CArpPatternMenu::shownPattern()
{
    if (!stale_)
        return shown_;
    stale_ = false;
    shown_ = 0;
    const ArpPattern own = currentPattern(context().port());
    const ArpPatternTable& table = context().actions().patterns();
    for (int pattern = table.count() - 1; pattern > 0; --pattern)
        if (table.pattern(pattern) == own)
            shown_ = pattern;
    return shown_;
}

void CArpPatternMenu::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    drawField(canvas, bounds, hoverLight());
    gui::Rect text = bounds.inset(8.0f, 0.0f);
    text.width -= 12.0f;
    canvas.textIn(context().actions().patterns().name(shownPattern()), text, theme::kField,
                  hoverColor(theme::kText.withAlpha(0.9f), theme::kText));
    drawArrow(canvas, {bounds.right() - 10.0f, bounds.y + bounds.height / 2}, 0.0f, 1.8f,
              theme::kSecondary);
    drawFocus(canvas, *this);
}

void CArpPatternMenu::open()
{
    if (frame() == nullptr)
        return;
    const ArpPatternTable& table = context().actions().patterns();
    gui::MenuRequest request;
    request.anchor = boundsInFrame();
    for (int pattern = 0; pattern < table.count(); ++pattern)
        request.entries.push_back({pattern,
                                   std::string(table.name(pattern)),
                                   {},
                                   pattern == shownPattern(),
                                   true,
                                   {},
                                   {}});
    request.chosen = [this](int pattern) {
        context().actions().controlChanged(kTagArpPattern, static_cast<float>(pattern));
    };
    gui::Menu::show(*frame(), std::move(request));
}

bool CArpPatternMenu::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    open();
    return true;
}

bool CArpPatternMenu::keyDown(const gui::KeyEvent& event)
{
    if (!isOpeningKey(event))
        return false;
    open();
    return true;
}

// ---- Commands --------------------------------------------------------------------------------

void CArpPatternTools::draw(gui::Canvas& canvas)
{
    const gui::Rect bounds = canvas.snap(localBounds());
    drawField(canvas, bounds, hoverLight());
    const gui::Color color = hoverColor(theme::kSecondary, theme::kText);
    for (int dot = -1; dot <= 1; ++dot)
        canvas.fill(
            gui::Path::circle(
                {bounds.centre().x + 5.0f * static_cast<float>(dot), bounds.centre().y}, 1.5f),
            color);
    drawFocus(canvas, *this);
}

void CArpPatternTools::open()
{
    enum Command : int { copyIt, pasteIt, turnLeft, turnRight, resetIt };
    if (frame() == nullptr)
        return;
    gui::MenuRequest request;
    request.anchor = boundsInFrame();
    const auto entry = [&](int id, const char* label) {
        request.entries.push_back({id, label, {}, false, true, {}, {}});
    };
    entry(copyIt, "Copy Pattern");
    entry(pasteIt, "Paste Pattern");
    request.entries.push_back(gui::MenuEntry::separator());
    entry(turnLeft, "One Step Earlier");
    entry(turnRight, "One Step Later");
    request.entries.push_back(gui::MenuEntry::separator());
    entry(resetIt, "Reset Pattern");
    request.chosen = [this](int command) {
        switch (command) {
        case copyIt:
            return copy();
        case pasteIt:
            return paste();
        case resetIt:
            return reset();
        default:
            return turn(command == turnLeft ? -1 : 1);
        }
    };
    gui::Menu::show(*frame(), std::move(request));
}

void CArpPatternTools::copy()
{
    frame()->host().copyToClipboard(patternText(currentPattern(context().port())));
}

// The clipboard may also hold a program, which would not belong here.
void CArpPatternTools::paste()
{
    frame()->host().pasteFromClipboard(
        [this, alive = std::weak_ptr<bool>(alive_)](const std::string& text) {
            if (alive.expired() || !readPattern(text))
                return;
            pasteText(context().port(), context().history(), text);
            context().tellAllValues();
        });
}

// All steps that are played move by one; what leaves at one end comes in at the other.
void CArpPatternTools::turn(int by)
{
    const EditGesture gesture(context().history(), "Turn Pattern");
    const int steps = arpStepCount(context().value(kArpStepCount));
    for (const int first : {kArpNote1, kArpVelocity1}) {
        std::array<float, kArpSteps> before{};
        for (int step = 0; step < steps; ++step)
            before[static_cast<std::size_t>(step)] = context().value(first + step);
        for (int step = 0; step < steps; ++step) {
            const auto from = static_cast<std::size_t>((step - by + steps) % steps);
            context().actions().controlChanged(first + step, before[from]);
            context().tellValue(first + step);
        }
    }
}

void CArpPatternTools::reset()
{
    context().port().softAllNotesOff();
    resetPattern(context().port(), context().history());
    context().tellAllValues();
}

bool CArpPatternTools::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    open();
    return true;
}

bool CArpPatternTools::keyDown(const gui::KeyEvent& event)
{
    if (!isOpeningKey(event))
        return false;
    open();
    return true;
}

// ---- The hint --------------------------------------------------------------------------------

CArpModeHint::CArpModeHint(EditorContext& context, gui::View* mix, gui::Rect place)
    : CDisplay(context, place), mix_(mix)
{
    context.listen(*this, {kArpMode, kArpRate, kArpSync});
    valueChanged(kArpMode);
}

void CArpModeHint::valueChanged(int)
{
    if (mix_ != nullptr)
        mix_->setEnabled(mixesVelocities(arpMode(context().value(kArpMode))));
    invalidate();
}

void CArpModeHint::draw(gui::Canvas& canvas)
{
    gui::Rect line = localBounds();
    const gui::Rect rate = line.removeFromTop(kRateHeight);
    const std::string length = context().text(kArpRate);
    canvas.textIn(length, rate.inset(kRateLeft, 0.0f), theme::kField, theme::kText);
    const float width = canvas.textWidth(length, theme::kField) + 5.0f;
    canvas.textIn("a step", rate.inset(kRateLeft, 0.0f).moved({width, 0.0f}), theme::kLabel,
                  theme::kSecondary);
    line.removeFromTop(kBelowRate);
    const std::string_view hint = arpModeHint(arpMode(context().value(kArpMode)));
    line.height = gui::lineHeight(theme::kLabel);
    for (const gui::TextLine& part : gui::wrapText(hint, theme::kLabel, line.width)) {
        canvas.textIn(hint.substr(part.begin, part.end - part.begin), line, theme::kLabel,
                      theme::kSecondary);
        line.y += line.height;
    }
}

} // namespace tolm
