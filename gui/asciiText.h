#pragma once
// Comparing text without regard to upper and lower case of the letters A to Z; other bytes are
// compared as they are, so broken text does no harm.

#include <algorithm>
#include <string>
#include <string_view>

namespace tolm::gui {

inline char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowered(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) { return lowered(c); });
    return result;
}

// Does `text` hold every word of `query`, in any order?
inline bool holdsWords(std::string_view text, std::string_view query)
{
    const std::string in = lowered(text);
    const std::string words = lowered(query);
    for (std::size_t begin = 0; begin < words.size();) {
        const std::size_t end = std::min(words.find(' ', begin), words.size());
        if (in.find(words.substr(begin, end - begin)) == std::string::npos)
            return false;
        begin = end + 1;
    }
    return true;
}

} // namespace tolm::gui
