#include "editor/CTabs.h"

#include "editor/theme.h"
#include "gui/Frame.h"

#include <array>
#include <cmath>
#include <numbers>

namespace tolm {

namespace {

constexpr gui::Rect kPlace{12.0f, 398.0f, 84.0f, 234.0f};
constexpr float kTabHeight = 54.0f;
constexpr float kTabStep = 60.0f;

struct Tab {
    const char* title;
    const char* tooltip;
    float value; // what the page selector is sent
    Accent accent;
    void (*drawIcon)(gui::Canvas& canvas, const gui::Rect& box, gui::Color color);
};

void drawWave(gui::Canvas& canvas, const gui::Rect& box, gui::Color color)
{
    constexpr int kPoints = 24;
    std::array<gui::Point, kPoints + 1> points;
    for (int i = 0; i <= kPoints; ++i) {
        const float t = static_cast<float>(i) / kPoints;
        points[static_cast<std::size_t>(i)] = {
            box.x + box.width * t,
            box.centre().y - box.height * 0.42f * std::sin(2.0f * std::numbers::pi_v<float> * t)};
    }
    canvas.stroke(gui::Path::polyline(points), {1.6f, gui::LineCap::round}, color);
}

void drawGrid(gui::Canvas& canvas, const gui::Rect& box, gui::Color color)
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column) {
            const bool lit = (row * 5 + column * 3) % 4 == 0;
            const gui::Point centre{
                box.x + 2.0f + (box.width - 4.0f) / 3.0f * static_cast<float>(column),
                box.y + 2.0f + (box.height - 4.0f) / 2.0f * static_cast<float>(row)};
            canvas.fill(gui::Path::circle(centre, lit ? 2.2f : 1.3f), color);
        }
}

void drawSteps(gui::Canvas& canvas, const gui::Rect& box, gui::Color color)
{
    constexpr std::array<float, 5> kHeights = {0.45f, 0.8f, 0.6f, 1.0f, 0.35f};
    const float step = box.width / static_cast<float>(kHeights.size());
    for (std::size_t i = 0; i < kHeights.size(); ++i) {
        const float height = box.height * kHeights[i];
        canvas.fillRoundRect({box.x + step * static_cast<float>(i) + 0.6f, box.bottom() - height,
                              step - 1.2f, height},
                             1.0f, color);
    }
}

void drawChain(gui::Canvas& canvas, const gui::Rect& box, gui::Color color)
{
    const float middle = box.centre().y;
    canvas.line({box.x, middle}, {box.right(), middle}, 1.2f, color);
    constexpr std::array<float, 3> kWhere = {0.1f, 0.5f, 0.9f};
    for (std::size_t i = 0; i < kWhere.size(); ++i) {
        const float x = box.x + box.width * kWhere[i];
        const gui::Rect node{x - 2.6f, middle - 4.5f, 5.2f, 9.0f};
        canvas.fillRoundRect(node, 1.5f, color);
    }
}

constexpr std::array<Tab, CTabs::kCount> kTabs = {{
    {"MOD", "LFOs, glide and bend ranges", 0.0f, Accent::modulation, drawWave},
    {"MATRIX", "24 routes from a source to a destination", 0.33f, Accent::modulation, drawGrid},
    {"ARP", "The arpeggiator and its 32 steps", 0.66f, Accent::rhythm, drawSteps},
    {"EFFECTS", "Six effects in the order of the signal", 1.0f, Accent::value, drawChain},
}};

} // namespace

CTabs::CTabs(EditorContext& context) : View(kPlace), context_(context) {}

gui::Rect CTabs::place(int tab) const
{
    return {0.0f, kTabStep * static_cast<float>(tab), kPlace.width, kTabHeight};
}

int CTabs::tabAt(gui::Point p) const
{
    for (int tab = 0; tab < kCount; ++tab)
        if (place(tab).contains(p))
            return tab;
    return -1;
}

void CTabs::drawTab(gui::Canvas& canvas, int tab) const
{
    const Tab& row = kTabs[static_cast<std::size_t>(tab)];
    const gui::Rect box = canvas.snap(place(tab));
    const bool on = tab == chosen();
    if (on) {
        canvas.fillRoundRect(box, theme::kPanelRadius,
                             gui::Paint::linear({0, box.y}, {0, box.bottom()}, theme::kPanelTop,
                                                theme::kPanelBottom));
        canvas.strokeRoundRect(box, theme::kPanelRadius, 1.0f, theme::kTrack);
        canvas.fillRoundRect({box.x + 1.0f, box.y + 10.0f, 3.0f, box.height - 20.0f}, 1.5f,
                             theme::color(row.accent));
    } else if (tab == pointed_) {
        canvas.fillRoundRect(box, theme::kPanelRadius, theme::kPanelBottom);
    }
    const gui::Color ink = on                ? theme::color(row.accent)
                           : tab == pointed_ ? theme::kText
                                             : theme::kSecondary;
    row.drawIcon(canvas, {box.centre().x - 11.0f, box.y + 11.0f, 22.0f, 14.0f}, ink);
    canvas.textIn(row.title, {box.x, box.y + 31.0f, box.width, 16.0f}, theme::kSmallTitle,
                  on || tab == pointed_ ? theme::kText : theme::kSecondary, gui::Align::centre);
    if (on && hasFocus() && frame()->keyboardMode())
        canvas.strokeRoundRect(box.inset(2.0f), theme::kPanelRadius - 2.0f, 1.0f,
                               theme::kText.withAlpha(0.7f));
}

void CTabs::draw(gui::Canvas& canvas)
{
    for (int tab = 0; tab < kCount; ++tab)
        drawTab(canvas, tab);
}

void CTabs::choose(int tab)
{
    if (tab < 0 || tab >= kCount)
        return;
    context_.actions().controlChanged(kTagEffectPage, kTabs[static_cast<std::size_t>(tab)].value);
    invalidate();
}

void CTabs::point(int tab)
{
    if (tab != pointed_)
        invalidate();
    pointed_ = tab;
}

bool CTabs::mouseDown(const gui::MouseEvent& event)
{
    if (event.button == gui::MouseButton::left)
        choose(tabAt(event.position));
    return event.button == gui::MouseButton::left;
}

void CTabs::mouseMoved(const gui::MouseEvent& event)
{
    point(tabAt(event.position));
}

void CTabs::mouseLeft()
{
    point(-1);
}

bool CTabs::keyDown(const gui::KeyEvent& event)
{
    switch (event.key) {
    case gui::Key::up:
    case gui::Key::left:
        choose(chosen() - 1);
        return true;
    case gui::Key::down:
    case gui::Key::right:
        choose(chosen() + 1);
        return true;
    default:
        return false;
    }
}

std::string CTabs::tooltip() const
{
    return pointed_ >= 0 ? kTabs[static_cast<std::size_t>(pointed_)].tooltip : "";
}

std::string CTabs::spokenName() const
{
    return std::string("Page ") + kTabs[static_cast<std::size_t>(chosen())].title;
}

} // namespace tolm
