#include "editor/CHeaderParts.h"

#include "editor/theme.h"
#include "gui/Frame.h"
#include "gui/Menu.h"
#include "plugin/menus.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tolm {

namespace {

constexpr float kMeterFloor = -48.0f; // dB
constexpr float kMeterTop = 3.0f;
constexpr float kMeterFall = 0.022f; // of the scale, thirty times a second
constexpr gui::TextStyle kName{13.0f, gui::FontWeight::semiBold, 0.0f, false};

bool isPressKey(const gui::KeyEvent& event)
{
    return event.key == gui::Key::space || event.key == gui::Key::enter;
}

void drawDownArrow(gui::Canvas& canvas, gui::Point centre, gui::Color color)
{
    gui::Path path;
    path.moveTo({centre.x - 3.0f, centre.y - 1.5f})
        .lineTo({centre.x, centre.y + 1.5f})
        .lineTo({centre.x + 3.0f, centre.y - 1.5f});
    canvas.stroke(path, {1.4f, gui::LineCap::round}, color);
}

std::string placeOf(int program) // "A 001"
{
    char text[8];
    std::snprintf(text, sizeof text, "%c %03d", 'A' + program / kPresetListSize % 26,
                  program % kPresetListSize + 1);
    return text;
}

int categoryOf(const EditorContext& context)
{
    const int category = static_cast<int>(context.value(kPatchCategory));
    return category >= 0 && category < kCategoryCount ? category : 0;
}

} // namespace

// ---- The program -----------------------------------------------------------------------------

gui::Rect CProgramField::starPlace() const
{
    return {bounds().width - 30.0f, 0.0f, 30.0f, bounds().height};
}

gui::Rect CProgramField::categoryPlace() const
{
    return {bounds().width - 136.0f, 5.0f, 104.0f, bounds().height - 10.0f};
}

std::string CProgramField::spokenName() const
{
    EditorPort& port = shell_.context.port();
    return std::string("Program ") + port.record(port.currentProgram()).name.data();
}

void CProgramField::draw(gui::Canvas& canvas)
{
    EditorPort& port = shell_.context.port();
    const gui::Rect box = canvas.snap(localBounds());
    const bool focused = hasFocus() && frame()->keyboardMode();
    canvas.fillRoundRect(box, theme::kWellRadius, theme::kWell);
    canvas.strokeRoundRect(box, theme::kWellRadius, 1.0f,
                           focused ? theme::kText.withAlpha(0.7f)
                                   : hoverColor(theme::kEdge, theme::kTrack));
    const int program = port.currentProgram();
    const ProgramRecord record = port.record(program);
    canvas.textIn(placeOf(program), {12.0f, 0.0f, 44.0f, box.height}, theme::kField,
                  theme::kSecondary);
    canvas.textIn(record.name.data(), {58.0f, 0.0f, categoryPlace().x - 66.0f, box.height}, kName,
                  theme::kText);
    const gui::Rect category = categoryPlace();
    canvas.fillRect({category.x, category.y + 3.0f, 1.0f, category.height - 6.0f}, theme::kEdge);
    const int chosen = categoryOf(shell_.context);
    canvas.textIn(chosen > 0 ? kCategoryNames[chosen] : "No category",
                  {category.x + 10.0f, category.y, category.width - 22.0f, category.height},
                  theme::kField, chosen > 0 ? theme::kSecondary : theme::kFaint);
    drawDownArrow(canvas, {category.right() - 6.0f, category.centre().y}, theme::kSecondary);
    const bool favourite = shell_.favourites.has(record.name.data());
    drawStar(canvas, starPlace().centre(), 6.4f, favourite,
             favourite ? theme::color(Accent::osc1) : theme::kFaint);
}

bool CProgramField::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    if (starPlace().contains(event.position)) {
        EditorPort& port = shell_.context.port();
        const ProgramRecord record = port.record(port.currentProgram());
        shell_.favourites.set(record.name.data(), !shell_.favourites.has(record.name.data()));
        shell_.tellProgram();
    } else if (categoryPlace().contains(event.position)) {
        openCategories();
    } else if (shell_.context.toggleBrowser) {
        shell_.context.toggleBrowser();
    }
    return true;
}

bool CProgramField::mouseWheel(const gui::WheelEvent& event)
{
    shell_.context.actions().controlChanged(event.steps > 0 ? kTagPresetPrevious : kTagPresetNext,
                                            1.0f);
    return true;
}

bool CProgramField::keyDown(const gui::KeyEvent& event)
{
    if (event.key == gui::Key::up || event.key == gui::Key::down) {
        shell_.context.actions().controlChanged(
            event.key == gui::Key::up ? kTagPresetPrevious : kTagPresetNext, 1.0f);
        return true;
    }
    if (!isPressKey(event) || !shell_.context.toggleBrowser)
        return false;
    shell_.context.toggleBrowser();
    return true;
}

void CProgramField::openCategories()
{
    gui::MenuRequest request;
    request.anchor = categoryPlace().moved(boundsInFrame().origin());
    request.entries.push_back(gui::MenuEntry::heading("Category of this program"));
    const int chosen = categoryOf(shell_.context);
    for (int category = 0; category < kCategoryCount; ++category)
        request.entries.push_back({category,
                                   category == 0 ? "No category" : kCategoryNames[category],
                                   {},
                                   category == chosen,
                                   true,
                                   {},
                                   {}});
    request.chosen = [this](int category) {
        shell_.context.actions().controlChanged(kPatchCategory, static_cast<float>(category));
        shell_.context.tellValue(kPatchCategory);
        shell_.tellProgram();
    };
    gui::Menu::show(*frame(), std::move(request));
}

// ---- Compare ---------------------------------------------------------------------------------

void CCompareMark::update()
{
    const bool changed = shell_.comparison.isCurrentChanged();
    const bool loaded = shell_.comparison.showsLoaded();
    if (changed != changed_ || loaded != loaded_)
        invalidate();
    changed_ = changed;
    loaded_ = loaded;
}

std::string CCompareMark::tooltip() const
{
    if (loaded_)
        return "You hear the loaded sound: click for yours";
    return changed_ ? "Changed: click to hear the loaded sound" : "As it was loaded";
}

void CCompareMark::draw(gui::Canvas& canvas)
{
    const gui::Rect box = canvas.snap(localBounds());
    const bool active = changed_ || loaded_;
    const gui::Color accent = loaded_ ? theme::color(Accent::value) : theme::color(Accent::osc1);
    if (loaded_) {
        canvas.fillRoundRect(box, theme::kControlRadius, accent.withAlpha(0.9f));
    } else {
        canvas.fillRoundRect(box, theme::kControlRadius, theme::kWell);
        canvas.strokeRoundRect(box, theme::kControlRadius, 1.0f,
                               active ? accent.withAlpha(0.5f + 0.4f * hoverLight())
                                      : theme::kEdge);
        canvas.fill(gui::Path::circle({box.x + 12.0f, box.centre().y}, 2.6f),
                    active ? accent : theme::kTrack);
    }
    const char* const word = loaded_ ? "ORIGINAL" : active ? "EDITED" : "AS SAVED";
    const gui::Rect text{box.x + (loaded_ ? 0.0f : 18.0f), box.y,
                         box.width - (loaded_ ? 0.0f : 20.0f), box.height};
    canvas.textIn(word, text, theme::kSmallTitle,
                  loaded_  ? theme::kWell
                  : active ? theme::kText
                           : theme::kSecondary,
                  loaded_ ? gui::Align::centre : gui::Align::left);
    if (hasFocus() && frame()->keyboardMode())
        canvas.strokeRoundRect(box, theme::kControlRadius, 1.0f, theme::kText.withAlpha(0.7f));
}

void CCompareMark::toggle()
{
    shell_.comparison.toggle();
    shell_.tellAll();
}

bool CCompareMark::mouseDown(const gui::MouseEvent& event)
{
    if (event.button == gui::MouseButton::left)
        toggle();
    return event.button == gui::MouseButton::left;
}

bool CCompareMark::keyDown(const gui::KeyEvent& event)
{
    if (isPressKey(event))
        toggle();
    return isPressKey(event);
}

// ---- Status ----------------------------------------------------------------------------------

void CStatusText::show(const std::string& text)
{
    if (text == text_)
        return;
    text_ = text;
    invalidate();
}

void CStatusText::draw(gui::Canvas& canvas)
{
    // Name above, value below; two spaces lie between them.
    const std::size_t gap = text_.find("  ");
    std::string name = text_.substr(0, gap);
    std::string value = gap != std::string::npos ? text_.substr(gap + 2) : std::string();
    gui::Color color = theme::kText;
    if (const auto learning = context_.port().learningId(); text_.empty() && learning) {
        name = "Move a controller for";
        value = kCatalogue[static_cast<std::size_t>(*learning)].name;
        color = theme::color(Accent::osc1);
    }
    const gui::Rect box = localBounds();
    canvas.textIn(name, {0.0f, 2.0f, box.width, 13.0f}, theme::kLabel, theme::kSecondary);
    canvas.textIn(value, {0.0f, 15.0f, box.width, 15.0f}, theme::kField, color);
}

// ---- Meter -----------------------------------------------------------------------------------

COutputMeter::COutputMeter(EditorContext& context, gui::Rect place) : View(place), context_(context)
{
    context.listenToMeters(*this);
}

bool COutputMeter::follow(Bar& bar, float peak)
{
    const float db = peak > 1.0e-6f ? 20.0f * std::log10(peak) : -120.0f;
    const float now = std::clamp((db - kMeterFloor) / (kMeterTop - kMeterFloor), 0.0f, 1.0f);
    const float level = std::max(now, std::max(bar.level - kMeterFall, 0.0f));
    const bool over = bar.over || peak > 1.0f;
    const bool changed = level != bar.level || over != bar.over;
    bar = {level, over};
    return changed;
}

void COutputMeter::metersChanged(const EditorMeters& meters)
{
    const bool left = follow(left_, meters.peakLeft);
    const bool right = follow(right_, meters.peakRight);
    if (left || right || meters.voices != voices_)
        invalidate();
    voices_ = meters.voices;
}

void COutputMeter::drawBar(gui::Canvas& canvas, const gui::Rect& place, const Bar& bar) const
{
    const gui::Rect well = canvas.snap(place);
    canvas.fillRoundRect(well, 2.0f, theme::kEdge.withAlpha(0.7f));
    const float full = -kMeterFloor / (kMeterTop - kMeterFloor); // where 0 dB lies
    const float width = (well.width - 8.0f) * bar.level;
    if (width > 0.5f)
        canvas.fillRoundRect({well.x, well.y, width, well.height}, 2.0f,
                             gui::Paint::linear({well.x, 0}, {well.x + well.width - 8.0f, 0},
                                                {{0.0f, theme::color(Accent::osc2)},
                                                 {0.7f, theme::color(Accent::osc2)},
                                                 {full, theme::color(Accent::osc1)},
                                                 {1.0f, theme::kWarning}}));
    canvas.fillRoundRect({well.right() - 6.0f, well.y, 6.0f, well.height}, 2.0f,
                         bar.over ? theme::kWarning : theme::kTrack);
}

void COutputMeter::draw(gui::Canvas& canvas)
{
    const gui::Rect box = localBounds();
    constexpr float kText = 40.0f;
    canvas.textIn(std::to_string(voices_), {0.0f, 3.0f, kText - 8.0f, 14.0f}, theme::kField,
                  voices_ > 0 ? theme::kText : theme::kSecondary, gui::Align::right);
    canvas.textIn("voices", {0.0f, 17.0f, kText - 8.0f, 12.0f}, theme::kLabel, theme::kSecondary,
                  gui::Align::right);
    drawBar(canvas, {kText, 9.0f, box.width - kText, 6.0f}, left_);
    drawBar(canvas, {kText, 18.0f, box.width - kText, 6.0f}, right_);
}

bool COutputMeter::mouseDown(const gui::MouseEvent& event)
{
    if (event.button != gui::MouseButton::left)
        return false;
    left_.over = right_.over = false;
    invalidate();
    return true;
}

} // namespace tolm
