// The matrix in short, beside the LFOs.

#include "editor/displays.h"

namespace tolm {

namespace {

constexpr float kLineHeight = 15.0f;
constexpr float kMatrixTab = 0.33f; // of the page selector

} // namespace

CModulationList::CModulationList(EditorContext& context, gui::Rect place) : CDisplay(context, place)
{
    for (const int first : {kModSource1, kModAmount1, kModDestination1})
        context.listen(*this, first, kMatrixRows);
}

bool CModulationList::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    context().actions().controlChanged(kTagEffectPage, kMatrixTab);
    return true;
}

void CModulationList::draw(gui::Canvas& canvas)
{
    const gui::Rect area = drawWell(canvas, 1, 1);
    std::vector<int> used;
    for (int row = 0; row < kMatrixRows; ++row)
        if (context().value(kModSource1 + row) >= 1.0f &&
            context().value(kModDestination1 + row) >= 1.0f)
            used.push_back(row);
    if (used.empty()) {
        canvas.textIn("No modulation yet", area, theme::kLabel, theme::kFaint, gui::Align::centre);
        return;
    }
    const auto lines = static_cast<std::size_t>(area.height / kLineHeight);
    const std::size_t shown = used.size() > lines ? lines - 1 : used.size();
    for (std::size_t i = 0; i < shown; ++i) {
        const int row = used[i];
        const gui::Rect line{area.x + 3.0f, area.y + kLineHeight * static_cast<float>(i),
                             area.width - 6.0f, kLineHeight};
        canvas.textIn(context().text(kModSource1 + row), {line.x, line.y, 74.0f, line.height},
                      theme::kLabel, theme::kModulation);
        canvas.textIn(context().text(kModDestination1 + row),
                      {line.x + 78.0f, line.y, line.width - 124.0f, line.height}, theme::kLabel,
                      theme::kText);
        canvas.textIn(context().text(kModAmount1 + row),
                      {line.right() - 44.0f, line.y, 44.0f, line.height}, theme::kLabel,
                      theme::kSecondary, gui::Align::right);
    }
    if (shown < used.size())
        canvas.textIn("and " + std::to_string(used.size() - shown) + " more",
                      {area.x + 3.0f, area.y + kLineHeight * static_cast<float>(shown), area.width,
                       kLineHeight},
                      theme::kLabel, theme::kFaint);
}

} // namespace tolm
