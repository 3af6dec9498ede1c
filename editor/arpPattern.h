#pragma once
// An arpeggiator pattern: what the pattern menu sets and what is copied and pasted.

#include "plugin/EditorPort.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tolm {

// The parameters of a pattern in the order in which they are set: the mode, the steps from the last
// velocity down to the first note, then how they are played.
inline constexpr auto kArpPatternIds = [] {
    std::array<int, 1 + 2 * kArpSteps + 5> ids{};
    std::size_t n = 0;
    ids[n++] = kArpMode;
    for (int id = kArpVelocity1 + kArpSteps - 1; id >= kArpNote1; --id)
        ids[n++] = id;
    for (const int id : {kArpStepCount, kArpSync, kArpRate, kArpLength, kArpSwing})
        ids[n++] = id;
    return ids;
}();

struct ArpPattern {
    std::array<float, kArpPatternIds.size()> values{}; // stored, as kArpPatternIds

    float value(int id) const; // 0 for ids that are not in a pattern
    void set(int id, float value);
    friend bool operator==(const ArpPattern&, const ArpPattern&) = default;
};

ArpPattern currentPattern(const EditorPort& port);
ArpPattern patternOf(const ProgramRecord& record);

// A readable text, and back. Nothing for a text that is not exactly one whole pattern with values
// 0..1 and a known mode.
std::string patternText(const ArpPattern& pattern);
std::optional<ArpPattern> readPattern(std::string_view text);

// The pattern menu's table. Entry 0 is "User Pattern" and stands for the program's own.
class ArpPatternTable {
public:
    virtual ~ArpPatternTable() = default;
    virtual int count() const = 0;
    virtual std::string_view name(int pattern) const = 0;
    // 1..count() - 1.
    virtual ArpPattern pattern(int pattern) const = 0;
};

// Patterns kept as program records, of which only the pattern's values and the name count. The
// records outlive the table.
class RecordPatternTable final : public ArpPatternTable {
public:
    explicit RecordPatternTable(std::span<const ProgramRecord> records) : records_(records) {}

    int count() const override { return static_cast<int>(records_.size()); }
    std::string_view name(int pattern) const override;
    // Outside the records: no name, a pattern of zeros.
    ArpPattern pattern(int pattern) const override;

private:
    std::span<const ProgramRecord> records_;
};

} // namespace tolm
