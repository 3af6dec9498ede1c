#include "editor/CHeader.h"

#include "editor/layout.h"
#include "editor/theme.h"

namespace tolm {

namespace {

constexpr float kButtonY = 9.0f;
constexpr float kButtonHeight = 26.0f;
constexpr float kButtonWidth = 28.0f;

} // namespace

CHeader::CHeader(EditorShell& shell) : View(pagePlace(Page::header)), shell_(shell)
{
    addStepper(92.0f, Icon::previous, kTagPresetPrevious, "Previous program");
    field_ = &emplace<CProgramField>(shell, gui::Rect{124.0f, 6.0f, 348.0f, 32.0f});
    addStepper(476.0f, Icon::next, kTagPresetNext, "Next program");
    compare_ = &emplace<CCompareMark>(shell, gui::Rect{514.0f, kButtonY, 78.0f, kButtonHeight});
    addUndo(600.0f, false);
    addUndo(632.0f, true);
    addMenus();
    status_ = &emplace<CStatusText>(shell.context, gui::Rect{768.0f, 6.0f, 148.0f, 32.0f});
    meter_ = &emplace<COutputMeter>(shell.context, gui::Rect{918.0f, 6.0f, 110.0f, 32.0f});
    shell.listen(*this);
    shell.context.listen(static_cast<ValueListener&>(*this), {kPatchCategory});
}

CHeader::~CHeader()
{
    shell_.forget(*this);
    shell_.context.forget(static_cast<ValueListener&>(*this));
}

CIconButton& CHeader::addButton(float x, float width, CIconButton::Options options)
{
    return emplace<CIconButton>(gui::Rect{x, kButtonY, width, kButtonHeight}, std::move(options));
}

void CHeader::addStepper(float x, Icon icon, int tag, const char* name)
{
    CIconButton::Options options;
    options.icon = icon;
    options.spoken = name;
    options.tooltip = [name] { return std::string(name); };
    options.pressed = [this, tag](gui::View&) {
        shell_.context.actions().controlChanged(tag, 1.0f);
    };
    addButton(x, kButtonWidth, std::move(options));
}

void CHeader::addUndo(float x, bool redo)
{
    EditHistory& history = shell_.context.history();
    CIconButton::Options options;
    options.icon = redo ? Icon::redo : Icon::undo;
    options.spoken = redo ? "Redo" : "Undo";
    options.isUseful = [&history, redo] { return redo ? history.canRedo() : history.canUndo(); };
    options.tooltip = [&history, redo] {
        const std::string_view label = redo ? history.redoLabel() : history.undoLabel();
        const std::string command = redo ? "Redo" : "Undo";
        return label.empty() ? command + ": nothing" : command + " " + std::string(label);
    };
    options.pressed = [this, &history, redo](gui::View&) {
        if (redo)
            history.redo();
        else
            history.undo();
        shell_.tellAll();
    };
    addButton(x, kButtonWidth, std::move(options));
}

void CHeader::addMenus()
{
    CIconButton::Options program;
    program.word = "Program";
    program.opensMenu = true;
    program.spoken = "Program menu";
    program.tooltip = [] { return std::string("Init, rename, copy, revert, files"); };
    program.pressed = [this](gui::View& button) { openProgramMenu(shell_, button, *field_); };
    addButton(668.0f, 88.0f, std::move(program));

    CIconButton::Options panic;
    panic.icon = Icon::panic;
    panic.spoken = "Panic";
    panic.tooltip = [] { return std::string("Panic: silences everything at once"); };
    panic.pressed = [this](gui::View&) { shell_.context.port().panic(); };
    addButton(1036.0f, kButtonWidth, std::move(panic));

    CIconButton::Options settings;
    settings.icon = Icon::settings;
    settings.spoken = "Settings";
    settings.tooltip = [] { return std::string("Size, mouse, keyboard, controllers"); };
    settings.pressed = [this](gui::View& button) { openSettingsMenu(shell_, button); };
    addButton(1068.0f, kButtonWidth, std::move(settings));
}

void CHeader::programChanged()
{
    compare_->update();
    invalidate();
}

void CHeader::draw(gui::Canvas& canvas)
{
    const float middle = bounds().height / 2;
    const Accent bars[] = {Accent::osc1, Accent::osc2, Accent::filter};
    const float heights[] = {10.0f, 18.0f, 13.0f};
    for (int i = 0; i < 3; ++i)
        canvas.fillRoundRect(
            {2.0f + 6.0f * static_cast<float>(i), middle - heights[i] / 2, 3.4f, heights[i]}, 1.7f,
            theme::color(bars[i]));
    canvas.textIn("Tolm", {26.0f, 0.0f, 60.0f, bounds().height}, theme::kProduct, theme::kText);
}

} // namespace tolm
