// tolm-editor-shot: draws the editor into a PNG, without a display.

#include "editor/ADEditor.h"
#include "editor/OfflinePort.h"
#include "gui/Image.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <map>
#include <string>

namespace {

using namespace tolm;

const std::map<std::string, Page> kPages = {
    {"mod", Page::modulation},
    {"matrix", Page::matrix},
    {"arp", Page::arpeggiator},
    {"effects", Page::effects},
};

// Pictures need no patterns but the program's own.
class NoPatterns final : public ArpPatternTable {
public:
    int count() const override { return 1; }
    std::string_view name(int) const override { return "User Pattern"; }
    ArpPattern pattern(int) const override { return {}; }
};

// 0..383, or -1 when no program has the name.
int programNamed(OfflinePort& port, const std::string& name)
{
    for (int program = 0; program < kProgramCount; ++program)
        if (name == port.record(program).name.data())
            return program;
    return -1;
}

} // namespace

int main(int argc, char** argv)
{
    std::string page = "mod";
    std::string program;
    std::string out;
    float scale = 1.0f;
    CLI::App app("Draws the editor into a picture");
    app.add_option("out", out, "PNG file to write")->required();
    app.add_option("--page", page, "Page of the lower pane")
        ->check(CLI::IsMember({"mod", "matrix", "arp", "effects"}));
    bool browsing = false;
    app.add_flag("--browser", browsing, "With the browser open");
    app.add_option("--scale", scale, "Device pixels per logical one")->check(CLI::Range(0.75, 2.5));
    app.add_option("--program", program, "Program to show, by name");
    CLI11_PARSE(app, argc, argv);

    OfflinePort port;
    if (!program.empty()) {
        const int number = programNamed(port, program);
        if (number < 0) {
            std::fprintf(stderr, "tolm-editor-shot: no program \"%s\"\n", program.c_str());
            return 1;
        }
        port.setProgram(number);
    }
    const NoPatterns patterns;
    ADEditor editor(port, patterns);
    editor.setScale(scale);
    editor.showPage(kPages.at(page));
    editor.openIn(std::make_unique<gui::HeadlessWindow>(kWindowSize, scale));
    if (browsing)
        editor.context().toggleBrowser();
    editor.idle();
    if (!gui::writePng(editor.window()->picture(), out)) {
        std::fprintf(stderr, "tolm-editor-shot: cannot write %s\n", out.c_str());
        return 1;
    }
    return 0;
}
