#include "editor/arpPattern.h"

#include "editor/recordText.h"
#include "patch/chunkRecord.h"
#include "plugin/menus.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace tolm {

namespace {

constexpr std::string_view kTitle = "Tolm arpeggiator pattern";
constexpr std::size_t kLongestText = 16384;

// A line of the text: a key and as many values as follow from its first id.
struct Line {
    std::string_view key;
    int first;
    int count;
};

constexpr Line kLines[] = {
    {"mode", kArpMode, 1},           {"steps", kArpStepCount, 1},
    {"sync", kArpSync, 1},           {"rate", kArpRate, 1},
    {"length", kArpLength, 1},       {"swing", kArpSwing, 1},
    {"notes", kArpNote1, kArpSteps}, {"velocities", kArpVelocity1, kArpSteps},
};

std::string_view takeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

std::string_view takeWord(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(end);
    return word;
}

std::optional<float> number(std::string_view word)
{
    float value = 0.0f;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    const bool whole = error == std::errc() && end == word.data() + word.size();
    return whole ? std::optional(value) : std::nullopt;
}

bool fits(int id, float value)
{
    if (id == kArpMode)
        return menuName(kArpModeMenu, truncated(value)) != nullptr && value >= 0.0f;
    return value >= 0.0f && value <= 1.0f;
}

// The values of one line; false when they are not as many or as large as they must be.
bool readLine(std::string_view line, const Line& row, ArpPattern& pattern)
{
    if (takeWord(line) != row.key)
        return false;
    for (int i = 0; i < row.count; ++i) {
        const std::optional<float> value = number(takeWord(line));
        if (!value || !fits(row.first, *value))
            return false;
        pattern.set(row.first + i, *value);
    }
    return takeWord(line).empty();
}

void append(std::string& text, float value)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(1, ' ').append(digits.data(), end);
}

template <class ValueOf>
ArpPattern patternFrom(ValueOf&& valueOf)
{
    ArpPattern pattern;
    for (std::size_t i = 0; i < kArpPatternIds.size(); ++i)
        pattern.values[i] = valueOf(kArpPatternIds[i]);
    return pattern;
}

} // namespace

float ArpPattern::value(int id) const
{
    const auto found = std::find(kArpPatternIds.begin(), kArpPatternIds.end(), id);
    const auto at = static_cast<std::size_t>(found - kArpPatternIds.begin());
    return at < values.size() ? values[at] : 0.0f;
}

void ArpPattern::set(int id, float value)
{
    for (std::size_t i = 0; i < values.size(); ++i)
        if (kArpPatternIds[i] == id)
            values[i] = value;
}

ArpPattern currentPattern(const EditorPort& port)
{
    return patternFrom([&](int id) { return port.value(id); });
}

ArpPattern patternOf(const ProgramRecord& record)
{
    return patternFrom([&](int id) { return record.values[static_cast<std::size_t>(id)]; });
}

ArpPattern RecordPatternTable::pattern(int pattern) const
{
    return pattern >= 0 && pattern < count()
               ? patternOf(records_[static_cast<std::size_t>(pattern)])
               : ArpPattern();
}

std::string_view RecordPatternTable::name(int pattern) const
{
    return pattern >= 0 && pattern < count()
               ? fieldText(records_[static_cast<std::size_t>(pattern)].name)
               : std::string_view();
}

std::string patternText(const ArpPattern& pattern)
{
    std::string text = std::string(kTitle) + '\n';
    for (const Line& line : kLines) {
        text += line.key;
        for (int i = 0; i < line.count; ++i)
            append(text, pattern.value(line.first + i));
        text += '\n';
    }
    return text;
}

std::optional<ArpPattern> readPattern(std::string_view text)
{
    if (text.size() > kLongestText || takeLine(text) != kTitle)
        return std::nullopt;
    ArpPattern pattern;
    for (const Line& line : kLines)
        if (!readLine(takeLine(text), line, pattern))
            return std::nullopt;
    const bool ended = text.find_first_not_of(" \r\n") == std::string_view::npos;
    return ended ? std::optional(pattern) : std::nullopt;
}

} // namespace tolm
