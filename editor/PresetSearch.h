#pragma once
// Text search over the 384 programs: names, categories and descriptions.

#include "plugin/EditorPort.h"

#include <string>
#include <string_view>
#include <vector>

namespace tolm {

class PresetSearch {
public:
    // Reads all programs; do it again when the preset list is new. About a millisecond.
    void read(const EditorPort& port);

    // Programs in which every word of the text is found, in any order and case; the best first:
    // words at the start of a name count most, then inside a name, in the category, in the
    // description. Equals come in the order of programs. A text without words finds all.
    std::vector<int> find(std::string_view text) const;

private:
    struct Entry {
        std::string name; // lower case
        std::string category;
        std::string description;
    };

    static int scoreOf(const Entry& entry, std::string_view word);

    std::vector<Entry> entries_;
};

} // namespace tolm
