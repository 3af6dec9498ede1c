#pragma once
// How the user likes the window, kept in a small file.

#include "plugin/EditorPort.h"

#include <string>
#include <string_view>
#include <vector>

namespace tolm {

enum class DoubleClick : unsigned char { type, reset };

struct Settings {
    static constexpr std::string_view kFile = "settings.txt"; // "key value" lines
    static constexpr int kSmallestScale = 75;                 // percent
    static constexpr int kLargestScale = 250;
    static constexpr std::size_t kMostFolders = 8;

    int scalePercent = 0;                        // 0: from the display
    DoubleClick doubleClick = DoubleClick::type; // Ctrl-click does the other
    bool keyboardMode = false;
    std::vector<std::string> recentFolders; // the latest first

    friend bool operator==(const Settings&, const Settings&) = default;

    // Puts a folder in front. Paths with line ends are not kept.
    void useFolder(std::string_view folder);
};

// Unknown lines and values out of range are passed over; what is missing has its default.
Settings readSettings(std::string_view text);
std::string settingsText(const Settings& settings);

Settings loadSettings(const EditorPort& port);
void saveSettings(EditorPort& port, const Settings& settings);

} // namespace tolm
