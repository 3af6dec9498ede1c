#include "editor/PresetSearch.h"

#include "editor/recordText.h"
#include "patch/chunkRecord.h"
#include "plugin/menus.h"

#include <algorithm>
#include <numeric>

namespace tolm {

namespace {

// Letters of the basic alphabet only; other bytes must match as they are.
std::string lowered(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::vector<std::string> wordsOf(const std::string& text)
{
    std::vector<std::string> words;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = std::min(text.find_first_not_of(" \t\r\n", at), text.size());
        at = std::min(text.find_first_of(" \t\r\n", begin), text.size());
        if (at > begin)
            words.push_back(text.substr(begin, at - begin));
    }
    return words;
}

bool isWordStart(std::string_view text, std::size_t at)
{
    const auto isLetter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (c & 0x80) != 0;
    };
    return at == 0 || !isLetter(text[at - 1]);
}

bool startsAWord(std::string_view text, std::string_view word)
{
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + 1))
        if (isWordStart(text, at))
            return true;
    return false;
}

std::string categoryOf(const ProgramRecord& record)
{
    const int category = truncated(record.values[static_cast<std::size_t>(kPatchCategory)]);
    const bool known = category > 0 && category < static_cast<int>(std::size(kCategoryNames));
    return known ? lowered(kCategoryNames[static_cast<std::size_t>(category)]) : std::string();
}

} // namespace

void PresetSearch::read(const EditorPort& port)
{
    entries_.clear();
    for (int program = 0; program < kProgramCount; ++program) {
        const ProgramRecord record = port.record(program);
        entries_.push_back({lowered(fieldText(record.name)), categoryOf(record),
                            lowered(fieldText(record.description))});
    }
}

// 0 when the word is nowhere. The steps are far enough apart that one word at a better place
// outweighs any number at worse ones.
int PresetSearch::scoreOf(const Entry& entry, std::string_view word)
{
    if (entry.name == word)
        return 100000;
    if (entry.name.starts_with(word))
        return 20000;
    if (startsAWord(entry.name, word))
        return 10000;
    if (entry.name.find(word) != std::string::npos)
        return 1000;
    if (startsAWord(entry.category, word))
        return 100;
    if (startsAWord(entry.description, word))
        return 10;
    return entry.description.find(word) != std::string::npos ? 1 : 0;
}

std::vector<int> PresetSearch::find(std::string_view text) const
{
    const std::vector<std::string> words = wordsOf(lowered(text));
    std::vector<int> scores(entries_.size(), 0);
    std::vector<int> found;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const auto matches = [&](const std::string& word) {
            const int score = scoreOf(entries_[i], word);
            scores[i] += score;
            return score > 0;
        };
        if (std::all_of(words.begin(), words.end(), matches))
            found.push_back(static_cast<int>(i));
    }
    std::stable_sort(found.begin(), found.end(), [&](int a, int b) {
        return scores[static_cast<std::size_t>(a)] > scores[static_cast<std::size_t>(b)];
    });
    return found;
}

} // namespace tolm
