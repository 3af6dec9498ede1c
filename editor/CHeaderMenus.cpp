// The header's two menus: commands on whole programs, and how the user likes the window.

#include "editor/CHeader.h"

#include "editor/programActions.h"
#include "gui/Frame.h"
#include "gui/Menu.h"
#include "gui/Message.h"
#include "gui/TextEdit.h"

#include <functional>
#include <utility>

namespace tolm {

namespace {

// A menu whose entries carry what they do.
class CommandMenu {
public:
    void add(std::string label, std::function<void()> run, bool enabled = true,
             bool checked = false)
    {
        entries_.push_back(item(std::move(label), std::move(run), enabled, checked));
    }
    void addSeparator() { entries_.push_back(gui::MenuEntry::separator()); }
    void addHeading(std::string label)
    {
        entries_.push_back(gui::MenuEntry::heading(std::move(label)));
    }
    gui::MenuEntry item(std::string label, std::function<void()> run, bool enabled, bool checked)
    {
        commands_.push_back(std::move(run));
        return {
            static_cast<int>(commands_.size()) - 1, std::move(label), {}, checked, enabled, {}, {}};
    }
    void addGroup(std::string label, std::vector<gui::MenuEntry> children)
    {
        entries_.push_back(gui::MenuEntry::group(std::move(label), std::move(children)));
    }
    void show(gui::View& anchor)
    {
        gui::MenuRequest request;
        request.entries = std::move(entries_);
        request.anchor = anchor.boundsInFrame();
        request.chosen = [commands = std::move(commands_)](int id) {
            commands[static_cast<std::size_t>(id)]();
        };
        gui::Menu::show(*anchor.frame(), std::move(request));
    }

private:
    std::vector<gui::MenuEntry> entries_;
    std::vector<std::function<void()>> commands_;
};

// Runs `agreed` when the user confirms.
void ask(gui::Frame& frame, std::string title, std::string text, std::string yes,
         std::function<void()> agreed)
{
    gui::MessageRequest request;
    request.title = std::move(title);
    request.text = std::move(text);
    request.buttons = {"Cancel", std::move(yes)};
    request.answered = [agreed = std::move(agreed)](int button) {
        if (button == 1)
            agreed();
    };
    gui::Message::show(frame, std::move(request));
}

void tell(gui::Frame& frame, std::string text)
{
    gui::MessageRequest request;
    request.title = "Info";
    request.text = std::move(text);
    gui::Message::show(frame, std::move(request));
}

void openNameField(EditorShell& shell, gui::View& over)
{
    gui::Frame& frame = *over.frame();
    EditorPort& port = shell.context.port();
    auto field = std::make_unique<gui::TextEdit>(
        over.boundsInFrame(),
        gui::TextEdit::Options{false, sizeof(ProgramRecord::name) - 1, false, "Name", "Name"});
    gui::TextEdit* const edit = field.get();
    field->setText(port.record(port.currentProgram()).name.data());
    field->committed = [&shell, &frame, edit](const std::string& name) {
        EditorContext& context = shell.context;
        renameProgram(context.port(), context.history(), name);
        shell.tellProgram();
        frame.dismissOverlay(*edit);
    };
    field->cancelled = [&frame, edit] { frame.dismissOverlay(*edit); };
    frame.showOverlay(std::move(field), {});
    frame.setFocus(edit);
    edit->selectAll();
}

void copyProgram(EditorShell& shell, gui::Frame& frame)
{
    EditorPort& port = shell.context.port();
    if (const auto text = programText(port.record(port.currentProgram())))
        frame.host().copyToClipboard(*text);
    else
        tell(frame, "This program holds values that its text form has no words for.");
}

void pasteProgram(EditorShell& shell, gui::Frame& frame)
{
    frame.host().pasteFromClipboard([&shell, &frame](const std::string& text) {
        EditorContext& context = shell.context;
        if (pasteText(context.port(), context.history(), text))
            shell.tellAll();
        else
            tell(frame, "The clipboard holds neither a program nor an arpeggiator pattern.");
    });
}

void addFiles(CommandMenu& menu, EditorShell& shell)
{
    const auto file = [&](const char* label, int tag, float which) {
        menu.add(label,
                 [&shell, tag, which] { shell.context.actions().controlChanged(tag, which); });
    };
    file("Load program\u2026", kTagProgramFiles, 0.0f);
    file("Save program\u2026", kTagProgramFiles, 1.0f);
    file("Load bank\u2026", kTagBankFiles, 0.0f);
    file("Save bank\u2026", kTagBankFiles, 1.0f);
}

void addSizes(CommandMenu& menu, EditorShell& shell)
{
    std::vector<gui::MenuEntry> sizes;
    const auto add = [&](std::string label, int percent) {
        sizes.push_back(menu.item(
            std::move(label),
            [&shell, percent] {
                shell.settings.scalePercent = percent;
                shell.applySettings();
            },
            true, shell.settings.scalePercent == percent));
    };
    add("As the display asks", 0);
    sizes.push_back(gui::MenuEntry::separator());
    for (const int percent : {75, 100, 125, 150, 175, 200})
        add(std::to_string(percent) + " %", percent);
    menu.addGroup("Window size", std::move(sizes));
}

void addDoubleClick(CommandMenu& menu, EditorShell& shell)
{
    std::vector<gui::MenuEntry> ways;
    for (const auto& [way, label] : {std::pair{DoubleClick::type, "types a value"},
                                     std::pair{DoubleClick::reset, "resets the control"}})
        ways.push_back(menu.item(
            label,
            [&shell, way = way] {
                shell.settings.doubleClick = way;
                shell.applySettings();
            },
            true, shell.settings.doubleClick == way));
    menu.addGroup("Double click", std::move(ways));
}

// Which controllers are learnt; choosing one forgets it.
void addControllers(CommandMenu& menu, EditorShell& shell, gui::Frame& frame)
{
    EditorPort& port = shell.context.port();
    std::vector<gui::MenuEntry> learnt;
    for (int id = 0; id < kStoredParameterCount; ++id)
        for (const int controller : port.controllersOf(id))
            learnt.push_back(menu.item(
                "CC " + std::to_string(controller) + "  " +
                    kCatalogue[static_cast<std::size_t>(id)].name,
                [&port, id] { port.forget(id); }, true, false));
    const bool any = !learnt.empty();
    if (any)
        menu.addGroup("Forget controller", std::move(learnt));
    menu.add(
        "Forget all controllers\u2026",
        [&port, &frame] {
            ask(frame, "FORGET ALL CONTROLLERS",
                "No control will be moved by a MIDI controller any more.", "Forget All",
                [&port] { port.forgetAll(); });
        },
        any);
}

} // namespace

void openProgramMenu(EditorShell& shell, gui::View& anchor, gui::View& field)
{
    gui::Frame& frame = *anchor.frame();
    EditorPort& port = shell.context.port();
    EditHistory& history = shell.context.history();
    const auto then = [&shell](auto command) {
        return [&shell, command] {
            command();
            shell.tellAll();
        };
    };
    CommandMenu menu;
    menu.add("Init this program", then([&port, &history] { initProgram(port, history); }));
    menu.add("Rename\u2026", [&shell, &field] { openNameField(shell, field); });
    menu.addSeparator();
    menu.add("Copy program", [&shell, &frame] { copyProgram(shell, frame); });
    menu.add("Paste program or pattern", [&shell, &frame] { pasteProgram(shell, frame); });
    menu.addSeparator();
    menu.add("Revert to factory sound", then([&port, &history] { revertProgram(port, history); }));
    menu.add("Revert all factory sounds\u2026", [&shell, &frame, &port, &history] {
        ask(frame, "REVERT ALL FACTORY SOUNDS",
            "All 384 programs become as the factory bank has them. Undo takes it back.",
            "Revert All", [&shell, &port, &history] {
                revertAllPrograms(port, history);
                shell.tellAll();
            });
    });
    menu.addSeparator();
    addFiles(menu, shell);
    menu.show(anchor);
}

void openSettingsMenu(EditorShell& shell, gui::View& anchor)
{
    CommandMenu menu;
    addSizes(menu, shell);
    addDoubleClick(menu, shell);
    menu.add(
        "Keys move controls",
        [&shell] {
            shell.settings.keyboardMode = !shell.settings.keyboardMode;
            shell.applySettings();
        },
        true, shell.settings.keyboardMode);
    menu.addSeparator();
    addControllers(menu, shell, *anchor.frame());
    menu.show(anchor);
}

} // namespace tolm
