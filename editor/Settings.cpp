#include "editor/Settings.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace tolm {

namespace {

constexpr std::size_t kLongestFolder = 4096;

std::optional<int> wholeNumber(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

bool isScale(int percent)
{
    return percent == 0 ||
           (percent >= Settings::kSmallestScale && percent <= Settings::kLargestScale);
}

bool isFolder(std::string_view folder)
{
    return !folder.empty() && folder.size() <= kLongestFolder &&
           folder.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos;
}

// A row per setting.
struct Line {
    std::string_view key;
    void (*read)(Settings&, std::string_view value);
    void (*write)(const Settings&, std::string_view key, std::string& text);
};

void put(std::string& text, std::string_view key, std::string_view value)
{
    text.append(key).append(1, ' ').append(value).append(1, '\n');
}

// clang-format off
constexpr Line kLines[] = {
    {"scale",
     [](Settings& s, std::string_view value) {
         if (const std::optional<int> percent = wholeNumber(value); percent && isScale(*percent))
             s.scalePercent = *percent;
     },
     [](const Settings& s, std::string_view key, std::string& text) { put(text, key, std::to_string(s.scalePercent)); }},
    {"double-click",
     [](Settings& s, std::string_view value) {
         if (value == "type" || value == "reset")
             s.doubleClick = value == "type" ? DoubleClick::type : DoubleClick::reset;
     },
     [](const Settings& s, std::string_view key, std::string& text) { put(text, key, s.doubleClick == DoubleClick::type ? "type" : "reset"); }},
    {"keyboard",
     [](Settings& s, std::string_view value) {
         if (value == "on" || value == "off")
             s.keyboardMode = value == "on";
     },
     [](const Settings& s, std::string_view key, std::string& text) { put(text, key, s.keyboardMode ? "on" : "off"); }},
    {"folder",
     [](Settings& s, std::string_view value) {
         if (isFolder(value) && s.recentFolders.size() < Settings::kMostFolders)
             s.recentFolders.emplace_back(value);
     },
     [](const Settings& s, std::string_view key, std::string& text) { for (const std::string& folder : s.recentFolders) put(text, key, folder); }},
};
// clang-format on

void readLine(Settings& settings, std::string_view line)
{
    const std::size_t blank = std::min(line.find(' '), line.size());
    for (const Line& row : kLines)
        if (row.key == line.substr(0, blank) && blank < line.size())
            row.read(settings, line.substr(blank + 1));
}

} // namespace

void Settings::useFolder(std::string_view folder)
{
    if (!isFolder(folder))
        return;
    const std::string kept(folder); // it may be one of those that move
    std::erase(recentFolders, kept);
    recentFolders.insert(recentFolders.begin(), kept);
    if (recentFolders.size() > kMostFolders)
        recentFolders.resize(kMostFolders);
}

Settings readSettings(std::string_view text)
{
    Settings settings;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        readLine(settings, text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return settings;
}

std::string settingsText(const Settings& settings)
{
    std::string text;
    for (const Line& row : kLines)
        row.write(settings, row.key, text);
    return text;
}

Settings loadSettings(const EditorPort& port)
{
    return readSettings(port.readUserFile(Settings::kFile).value_or(""));
}

void saveSettings(EditorPort& port, const Settings& settings)
{
    port.writeUserFile(Settings::kFile, settingsText(settings));
}

} // namespace tolm
