// tolm-manual TEMPLATE OUT: fills the tables of the manual from the rows that the plug-in itself is
// made of.

#include "editor/EditorContext.h"
#include "editor/OfflinePort.h"
#include "editor/effectRows.h"
#include "editor/layout.h"
#include "plugin/menus.h"
#include "plugin/midiMap.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace tolm;

// What a player should know of a source; ids as in the source menu.
const std::map<int, const char*> kSourceTexts = {
    {1, "How hard the key was struck, -1 to 1"},
    {2, "The key: 0 at middle C, growing upwards"},
    {3, "Modulation wheel, 0 to 1"},
    {4, "Pitch wheel, -1 to 1"},
    {5, "Channel pressure, 0 to 1"},
    {6, "A new random value for every note, -1 to 1"},
    {7, "Always 1"},
    {8, "The note of the arpeggiator's step"},
    {9, "The velocity of the arpeggiator's step"},
    {10, "Breath controller (2), 0 to 1"},
    {11, "Foot controller (4), 0 to 1"},
    {12, "Expression controller (11), 0 to 1"},
    {13, "LFO 1, -1 to 1"},
    {14, "LFO 2, -1 to 1"},
    {15, "LFO 3, -1 to 1"},
    {16, "LFO 1 times the modulation wheel"},
    {17, "LFO 2 times the modulation wheel"},
    {18, "LFO 3 times the modulation wheel"},
    {19, "LFO 1 times the pressure"},
    {20, "LFO 2 times the pressure"},
    {21, "LFO 3 times the pressure"},
    {22, "Amplitude envelope, 0 to 1"},
    {23, "Filter envelope, 0 to 1"},
    {24, "Number of the voice in its stack: 0, 1, 2 ..."},
    {25, "Modulation envelope, 0 to 1"},
};

class NoSettings final : public SettingsStore {
public:
    std::optional<std::size_t> read(Scope, std::string_view, std::string_view,
                                    std::span<std::uint8_t>) override
    {
        return std::nullopt;
    }
    void write(Scope, std::string_view, std::string_view, std::span<const std::uint8_t>) override {}
};

std::string textAt(OfflinePort& port, int id, float value)
{
    const auto context = textContext([&port](int other) { return port.value(other); });
    if (const std::string_view menu = menuText(id, value); !menu.empty())
        return std::string(menu);
    return std::string(parameterText(id, value, context).view());
}

// All names between the ends, in order.
std::string choicesOf(OfflinePort& port, int id)
{
    if (id == kFmMode) {
        std::string all;
        for (const MenuEntry& entry : kFmModeMenu)
            all += (all.empty() ? "" : ", ") + std::string(entry.name);
        return all;
    }
    std::string all;
    std::string last;
    for (int probe = 0; probe <= 512; ++probe)
        if (const std::string text = textAt(port, id, static_cast<float>(probe) / 512);
            text != last) {
            all += (all.empty() ? "" : ", ") + text;
            last = text;
        }
    return all;
}

std::string rangeOf(OfflinePort& port, const ControlRow& row)
{
    if (row.kind == ControlKind::toggle)
        return "off, on";
    if (row.tag >= kStoredParameterCount)
        return "";
    if (row.tag == kFilterType || row.tag == kArpMode || row.tag == kPatchCategory)
        return "see the menu";
    if (row.kind == ControlKind::menu || row.kind == ControlKind::shapes ||
        row.kind == ControlKind::segments)
        return choicesOf(port, row.tag);
    return textAt(port, row.tag, 0.0f) + " ... " + textAt(port, row.tag, 1.0f);
}

std::string pageTitle(Page page)
{
    switch (page) {
    case Page::voice:
        return "Sound";
    case Page::modulation:
        return "Mod page";
    case Page::arpeggiator:
        return "Arp page";
    case Page::effects:
        return "Effects page";
    case Page::matrix:
        return "Matrix page";
    case Page::header:
        return "Header";
    case Page::keyboard:
        return "Keys";
    }
    return {};
}

std::vector<ControlRow> allControls()
{
    std::vector<ControlRow> rows(controlRows().begin(), controlRows().end());
    rows.insert(rows.end(), kEffectControls.begin(), kEffectControls.end());
    return rows;
}

// The matrix has a chapter of its own, arrows belong to the menu beside them.
bool isExplained(const ControlRow& row)
{
    return row.page != Page::matrix && row.kind != ControlKind::stepper;
}

std::string parameters(OfflinePort& port, const MidiMap& map)
{
    std::string out;
    for (int page = 0; page < kPageCount; ++page) {
        std::string table;
        for (const ControlRow& row : allControls()) {
            if (static_cast<int>(row.page) != page || !isExplained(row))
                continue;
            const int id = parameterOfTag(row.tag);
            const int controller =
                id >= 0 && id < kStoredParameterCount ? map.controllerOf(id) : -1;
            table += std::string("| ") + row.spoken + " | " + row.tooltip + " | " +
                     rangeOf(port, row) + " | " +
                     (id >= 0 && id < kHostParameterCount ? std::to_string(id) : "") + " | " +
                     (controller >= 0 ? std::to_string(controller) : "") + " |\n";
        }
        if (!table.empty())
            out += "### " + pageTitle(static_cast<Page>(page)) +
                   "\n\n| Control | What it does | Range | Host | CC |\n"
                   "| --- | --- | --- | --- | --- |\n" +
                   table + "\n";
    }
    return out;
}

std::string sources()
{
    std::string out;
    for (const MenuEntry& entry : kSourceMenu)
        if (entry.id != 0)
            out += std::string("| ") + entry.name + " | " + kSourceTexts.at(entry.id) + " |\n";
    return out;
}

std::string destinations()
{
    constexpr const char* kGroups[] = {"Oscillators", "Mix and FM",  "Modulation envelope, spike",
                                       "Filter",      "Curves",      "LFOs",
                                       "Matrix",      "Pitch, level"};
    std::string out = "| Group | Destinations |\n| --- | --- |\n";
    for (std::size_t group = 0; group < std::size(kDestinationGroups); ++group) {
        const std::size_t end = group + 1 < std::size(kDestinationGroups)
                                    ? static_cast<std::size_t>(kDestinationGroups[group + 1])
                                    : std::size(kDestinationMenu);
        out += std::string("| ") + kGroups[group] + " | ";
        for (auto i = static_cast<std::size_t>(kDestinationGroups[group]); i < end; ++i)
            out += std::string(kDestinationMenu[i].name) + (i + 1 < end ? ", " : " |\n");
    }
    return out;
}

std::string masks()
{
    std::string out;
    for (std::size_t i = 1; i < std::size(kVoiceMaskMenu); ++i)
        out += std::string(i > 1 ? ", " : "") + "`" + kVoiceMaskMenu[i].name + "`";
    return out;
}

std::string controllers(const MidiMap& map)
{
    std::string out = "| CC | Parameter |\n| --- | --- |\n";
    for (int controller = 0; controller < kControllerCount; ++controller)
        if (const int id = map.parameterOf(controller); id >= 0)
            out += "| " + std::to_string(controller) + " | " +
                   kCatalogue[static_cast<std::size_t>(id)].name + " |\n";
    return out;
}

void fill(std::string& text, const std::string& place, const std::string& with)
{
    const std::string mark = "{{" + place + "}}";
    if (const std::size_t at = text.find(mark); at != std::string::npos)
        text.replace(at, mark.size(), with);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: tolm-manual TEMPLATE OUT\n");
        return 2;
    }
    std::ifstream in(argv[1], std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    if (text.empty()) {
        std::fprintf(stderr, "tolm-manual: cannot read %s\n", argv[1]);
        return 1;
    }
    OfflinePort port;
    NoSettings settings;
    const MidiMap map(settings);
    fill(text, "parameters", parameters(port, map));
    fill(text, "sources", sources());
    fill(text, "destinations", destinations());
    fill(text, "masks", masks());
    fill(text, "controllers", controllers(map));
    std::ofstream out(argv[2], std::ios::binary);
    out << text;
    out.close();
    if (!out) {
        std::fprintf(stderr, "tolm-manual: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
