#include "editor/Favourites.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr std::size_t kLongestName = sizeof(ProgramRecord::name) - 1;

bool isName(std::string_view name)
{
    return !name.empty() && name.size() <= kLongestName &&
           std::none_of(name.begin(), name.end(),
                        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

} // namespace

Favourites::Favourites(EditorPort& port) : port_(port)
{
    read();
}

void Favourites::read()
{
    names_.clear();
    const std::string text = port_.readUserFile(kFile).value_or("");
    for (std::size_t at = 0; at < text.size() && names_.size() < kMost;) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        if (const std::string name = text.substr(at, end - at); isName(name))
            names_.insert(name);
        at = end + 1;
    }
}

void Favourites::set(std::string_view name, bool favourite)
{
    if (!isName(name))
        return;
    read();
    if (!favourite)
        names_.erase(std::string(name));
    else if (names_.size() < kMost)
        names_.emplace(name);
    std::string text;
    for (const std::string& each : names_)
        text += each + '\n';
    port_.writeUserFile(kFile, text);
}

} // namespace tolm
