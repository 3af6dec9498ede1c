#pragma once
// The display rules as rows: how a stored value becomes a shown number or name, and what both
// directions of paramText need to know about it.

#include "plugin/catalogue.h"
#include "plugin/paramText.h"

#include <cstdint>
#include <span>

namespace tolm {

enum class Law : std::uint8_t {
    names,            // names[int(v * scale)]
    linear,           // v * scale + offset
    exponential,      // scale * (top / scale)^v + offset
    whole,            // int(v * scale + nudge) + offset, times `unitStep`
    wholeExponential, // int(scale * (top / scale)^v + nudge)
    coarse,           // semitones, as whole; see shownNumber
    stack,            // stacked voices: int(128 v) / 18 + 1
};

enum class Sign : std::uint8_t {
    minusOnly,
    plusAboveZero,  // "+" when the shown number is above 0
    plusFromMiddle, // "+" for stored values of one half and more
};

struct DisplayRule {
    Display display = Display::percent;
    Law law = Law::linear;
    double scale = 1.0;
    double offset = 0.0;
    double top = 1.0;
    double nudge = 0.0; // lifts values that rounding left just below a step
    double unitStep = 1.0;
    int decimals = 0;
    Sign sign = Sign::minusOnly;
    const char* unit = "";
    std::span<const char* const> names = {};
    double smallest = -1e9;         // values below this count as 0
    const char* zeroName = nullptr; // and are shown as this
};

// `id` must be 0..348.
const DisplayRule& displayRule(int id, const TextContext& context);

// The number that a rule (of any law but names) shows for `value`.
double shownNumber(const DisplayRule& rule, double value);
// The entry of rule.names.
std::size_t shownName(const DisplayRule& rule, double value);
ParamText ruleText(const DisplayRule& rule, double value);

// Truncates toward zero; far away numbers stay at the ends of a range that any sum can bear.
int truncated(double value);

// A parameter that stores the id of a menu entry as a whole number.
struct StoredMenu {
    int first; // parameter ids
    int last;
    const char* (*nameOf)(int entry); // nullptr where the menu has no such entry
};
const StoredMenu* storedMenu(int id); // nullptr for all others
inline constexpr int kMenuIdCount = 128;

} // namespace tolm
