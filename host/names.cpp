// Name search with suggestions by edit distance.

#include "host/names.h"

#include "host/Failure.h"
#include "host/textNumbers.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace tolm {
namespace {

constexpr std::size_t kSuggestions = 3;

std::string lower(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Fewest insertions, deletions and replacements that turn `a` into `b` (Wagner and Fischer).
std::size_t editDistance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// A name that holds what was typed is nearer than any that is only spelt alike.
std::size_t distanceTo(const std::string& name, const std::string& wanted)
{
    const bool contained = !wanted.empty() && name.find(wanted) != name.npos;
    return contained ? 0 : 1 + editDistance(name, wanted);
}

std::string suggestions(const std::vector<std::string>& names, const std::string& wanted)
{
    std::vector<std::pair<std::size_t, std::string>> ranked;
    for (const std::string& name : names)
        if (!name.empty())
            ranked.emplace_back(distanceTo(lower(name), lower(wanted)), name);
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    ranked.erase(std::unique(ranked.begin(), ranked.end()), ranked.end());
    ranked.resize(std::min(ranked.size(), kSuggestions));
    std::string text;
    for (const auto& [distance, name] : ranked)
        text += (text.empty() ? "; nearest: " : ", ") + quoted(name);
    return text;
}

} // namespace

int findByName(const std::vector<std::string>& names, const std::string& wanted,
               const std::string& what)
{
    const auto indexOf = [&](const auto& found) { return static_cast<int>(found - names.begin()); };
    if (const auto index = wholeNumber(wanted)) {
        if (*index >= 0 && *index < static_cast<int>(names.size()))
            return *index;
        throw Failure("no " + what + " " + wanted + ": there are " + std::to_string(names.size()) +
                      ", counted from 0");
    }
    if (const auto exact = std::find(names.begin(), names.end(), wanted); exact != names.end())
        return indexOf(exact);
    const auto alike = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
        return lower(name) == lower(wanted);
    });
    if (alike != names.end())
        return indexOf(alike);
    throw Failure("no " + what + " " + quoted(wanted) + suggestions(names, wanted));
}

} // namespace tolm
