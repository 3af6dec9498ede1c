// One card of the effect box: its switch, what dims it, and how it looks.

#include "editor/CTolmFxBox.h"
#include "editor/CTolmFxPictures.h"
#include "editor/controls.h"
#include "editor/pages.h"
#include "gui/Frame.h"

namespace tolm {

namespace {

constexpr float kOn = 0.001f; // a switch's value up to here

const EffectRow& rowOf(int kind)
{
    return kEffectRows[static_cast<std::size_t>(kind)];
}

// Takes the colour out of what lies below, and no input.
class Shade final : public gui::View, public ValueListener {
public:
    Shade(EditorContext& context, int onId, gui::Rect place)
        : View(place), context_(context), onId_(onId)
    {
        context.listen(*this, {onId});
        valueChanged(onId);
    }
    ~Shade() override { context_.forget(*this); }
    void valueChanged(int) override { setVisible(context_.value(onId_) <= kOn); }
    View* hitTest(gui::Point) override { return nullptr; }
    void draw(gui::Canvas& canvas) override
    {
        canvas.fillRect(localBounds(), theme::kPanelBottom.withAlpha(0.5f));
    }

private:
    EditorContext& context_;
    int onId_;
};

// A pill whose knob lies at the right and whose ground fills while the effect is on.
class Switch final : public CControl {
public:
    using CControl::CControl;
    void draw(gui::Canvas& canvas) override
    {
        const gui::Rect pill = canvas.snap(localBounds());
        const bool on = value() > kOn;
        const float radius = pill.height / 2;
        canvas.fillRoundRect(pill, radius, on ? accent().withAlpha(0.9f) : theme::kWell);
        canvas.strokeRoundRect(pill, radius, 1.0f,
                               on ? accent() : hoverColor(theme::kTrack, theme::kFaint));
        canvas.fill(
            gui::Path::circle({on ? pill.right() - radius : pill.x + radius, pill.centre().y},
                              radius - 3.0f),
            on ? theme::kWell : theme::kSecondary);
        drawFocus(canvas, pill, radius);
    }
    bool pressed(const gui::MouseEvent&) override
    {
        change(value() > kOn ? 0.0f : 1.0f);
        return true;
    }
    bool keyDown(const gui::KeyEvent& event) override
    {
        if (event.key != gui::Key::space && event.key != gui::Key::enter)
            return CControl::keyDown(event);
        change(value() > kOn ? 0.0f : 1.0f);
        return true;
    }
};

bool belongsTo(const EffectRow& effect, int tag)
{
    return tag == effect.onId || (tag >= effect.firstId && tag <= effect.lastId);
}

} // namespace

CTolmFxCard::CTolmFxCard(EditorContext& context, CTolmFxBox& box, int kind)
    : View({0.0f, 0.0f, kEffectCardWidth, box.bounds().height}),
      context_(context),
      box_(box),
      kind_(kind)
{
    if (kind < 0)
        return;
    const EffectRow& effect = rowOf(kind);
    context.listen(*this, {effect.onId});
    emplace<CTolmFxPicture>(
        context, kind, gui::Rect{10.0f, 58.0f, 140.0f, effect.hasTallPicture ? 112.0f : 58.0f});
    const ControlRow* onSwitch = nullptr;
    for (const ControlRow& row : kEffectControls) {
        if (row.tag == effect.onId)
            onSwitch = &row;
        else if (belongsTo(effect, row.tag))
            add(makeControl(context, row));
    }
    emplace<Shade>(context, effect.onId,
                   gui::Rect{2.0f, kTitleHeight, kEffectCardWidth - 4.0f,
                             box.bounds().height - kTitleHeight - 3.0f});
    emplace<Switch>(context, *onSwitch);
}

bool CTolmFxCard::isOn() const
{
    return kind_ >= 0 && context_.value(rowOf(kind_).onId) > kOn;
}

void CTolmFxCard::setLifted(bool lifted)
{
    lifted_ = lifted;
    invalidate();
}

std::string CTolmFxCard::spokenName() const
{
    return kind_ < 0 ? "Empty effect slot" : std::string(rowOf(kind_).title) + " card";
}

void CTolmFxCard::draw(gui::Canvas& canvas)
{
    const gui::Rect box = canvas.snap(localBounds());
    drawPanel(canvas, box, "", Accent::neutral);
    const bool on = isOn();
    const gui::Color accent = kind_ >= 0 ? theme::color(rowOf(kind_).accent) : theme::kFaint;
    canvas.fillRoundRect({box.x + 10.0f, box.y + 11.0f, 3.0f, 9.0f}, 1.5f,
                         on ? accent : theme::kTrack);
    canvas.textIn(kind_ >= 0 ? rowOf(kind_).title : "UNCHANGED", {18.0f, 6.0f, 90.0f, 19.0f},
                  theme::kTitle, on ? theme::kText : theme::kSecondary);
    // A grip shows that the card can be taken.
    const float grip = lifted_ ? 1.0f : hoverLight();
    if (grip > 0.0f)
        for (int dot = 0; dot < 6; ++dot)
            canvas.fill(
                gui::Path::circle({box.centre().x - 6.0f + 6.0f * static_cast<float>(dot % 3),
                                   box.y + 3.0f + 3.0f * static_cast<float>(dot / 3)},
                                  1.0f),
                theme::kFaint.withAlpha(grip));
    if (lifted_)
        canvas.strokeRoundRect(box, theme::kPanelRadius, 1.5f, accent);
    else if (hasFocus() && frame()->keyboardMode())
        canvas.strokeRoundRect(box, theme::kPanelRadius, 1.0f, theme::kText.withAlpha(0.7f));
}

bool CTolmFxCard::keyDown(const gui::KeyEvent& event)
{
    if (event.key != gui::Key::left && event.key != gui::Key::right)
        return false;
    box_.moveCard(slot, slot + (event.key == gui::Key::right ? 1 : -1));
    return true;
}

} // namespace tolm
