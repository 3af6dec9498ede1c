#pragma once
// Programs that the user likes, by name, so that a favourite stays one when banks are sorted anew.
// Kept in a small file of the user.

#include "plugin/EditorPort.h"

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace tolm {

class Favourites {
public:
    static constexpr std::string_view kFile = "favourites.txt"; // a name a line
    static constexpr std::size_t kMost = 2000;

    // Reads the file. Lines that are no program's name are left out.
    explicit Favourites(EditorPort& port);

    bool has(std::string_view name) const { return names_.find(name) != names_.end(); }
    // Reads the file again first, for another instance may have written it, and then writes it.
    // Names that are empty or no text are not taken.
    void set(std::string_view name, bool favourite);
    std::size_t count() const { return names_.size(); }

private:
    void read();

    EditorPort& port_;
    std::set<std::string, std::less<>> names_;
};

} // namespace tolm
