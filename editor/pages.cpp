#include "editor/pages.h"

#include "editor/CArpMainMM.h"
#include "editor/CArpMainMMPatterns.h"
#include "editor/CMatrixPage.h"
#include "editor/CTolmFxBox.h"
#include "editor/controls.h"
#include "editor/displays.h"

namespace tolm {

namespace {

// Panels and controls of the table. What is no single parameter is added by the caller.
class TablePage : public gui::View {
public:
    TablePage(EditorContext& context, Page page) : View(pagePlace(page)), page_(page)
    {
        for (const ControlRow& row : controlRows())
            if (row.page == page)
                add(makeControl(context, row));
    }
    void draw(gui::Canvas& canvas) override
    {
        for (const PanelRow& panel : panelRows())
            if (panel.page == page_)
                drawPanel(canvas, panel.place, panel.title, panel.accent);
    }

private:
    Page page_;
};

std::unique_ptr<gui::View> voicePage(EditorContext& context)
{
    auto page = std::make_unique<TablePage>(context, Page::voice);
    const DisplayPlaces& places = kDisplayPlaces;
    for (int osc = 0; osc < 2; ++osc)
        page->emplace<CWaveDisplay>(context, osc, places.waves[osc]);
    page->emplace<CFilterDisplay>(context, places.filter);
    page->emplace<CEnvelopeDisplay>(context, EnvelopeIds{kAmpAttack, Accent::value},
                                    places.envelopes[0]);
    page->emplace<CEnvelopeDisplay>(context, EnvelopeIds{kFilterAttack, Accent::filter},
                                    places.envelopes[1]);
    page->emplace<CEnvelopeDisplay>(context, EnvelopeIds{kModAttack, Accent::modulation},
                                    places.envelopes[2]);
    page->emplace<CVoiceSwitches>(context, places.voiceSwitches);
    return page;
}

std::unique_ptr<gui::View> modulationPage(EditorContext& context)
{
    auto page = std::make_unique<TablePage>(context, Page::modulation);
    for (int lfo = 0; lfo < 3; ++lfo)
        page->emplace<CLfoDisplay>(context, lfo, kDisplayPlaces.lfos[lfo]);
    page->emplace<CModulationList>(context, kDisplayPlaces.modulationList);
    return page;
}

gui::View* controlOf(const gui::View& page, int tag)
{
    for (const auto& child : page.children())
        if (const auto* control = dynamic_cast<const CControl*>(child.get());
            control != nullptr && control->row().tag == tag)
            return child.get();
    return nullptr;
}

std::unique_ptr<gui::View> arpeggiatorPage(EditorContext& context)
{
    auto page = std::make_unique<TablePage>(context, Page::arpeggiator);
    const DisplayPlaces& places = kDisplayPlaces;
    page->emplace<CArpPatternMenu>(context, places.arpPatterns);
    page->emplace<CArpPatternTools>(context, places.arpTools);
    page->emplace<CArpModeHint>(context, controlOf(*page, kArpRange), places.arpHint);
    page->emplace<CArpMainMM>(context, places.arpSteps);
    return page;
}

} // namespace

std::unique_ptr<gui::View> makePage(EditorContext& context, Page page)
{
    switch (page) {
    case Page::voice:
        return voicePage(context);
    case Page::modulation:
        return modulationPage(context);
    case Page::matrix:
        return std::make_unique<CMatrixPage>(context);
    case Page::effects:
        return std::make_unique<CTolmFxBox>(context);
    case Page::arpeggiator:
        return arpeggiatorPage(context);
    default:
        return std::make_unique<TablePage>(context, page);
    }
}

void drawPanel(gui::Canvas& canvas, const gui::Rect& place, std::string_view title, Accent accent)
{
    const gui::Rect panel = canvas.snap(place);
    canvas.fillRoundRect(panel, theme::kPanelRadius,
                         gui::Paint::linear({0, panel.y}, {0, panel.bottom()}, theme::kPanelTop,
                                            theme::kPanelBottom));
    canvas.strokeRoundRect(panel, theme::kPanelRadius, 1.0f, theme::kEdge);
    if (title.empty())
        return;
    canvas.fillRoundRect({panel.x + 10.0f, panel.y + 11.0f, 3.0f, 9.0f}, 1.5f,
                         theme::color(accent));
    canvas.textIn(title, {panel.x + 18.0f, panel.y + 6.0f, panel.width - 28.0f, 19.0f},
                  theme::kTitle, theme::kText);
}

} // namespace tolm
