// Search of a parameter's displays. Exact texts come first; a quantity between two displays is
// then bisected.

#include "host/parameterText.h"

#include "host/textNumbers.h"
#include "plugin/paramText.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace tolm {
namespace {

constexpr int kScanSteps = 1280; // ten per step of a 128-step control
constexpr int kBisectSteps = 20; // down to the resolution of a float

struct UnitRow {
    std::string_view unit, base;
    double factor;
};
constexpr UnitRow kUnits[] = {
    {"khz", "hz", 1000.0},
    {"s", "ms", 1000.0},
    {"sec", "ms", 1000.0},
};

// Lower case without blanks, so that "440hz" and "440 Hz" are one.
std::string canonical(std::string_view text)
{
    std::string result;
    for (const char c : text)
        if (std::isspace(static_cast<unsigned char>(c)) == 0)
            result.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    return result;
}

struct Quantity {
    double amount;
    std::string unit;
};

std::optional<Quantity> quantity(std::string_view canonicalText)
{
    const std::optional<double> amount = leadingNumber(canonicalText);
    if (!amount)
        return std::nullopt;
    for (const UnitRow& row : kUnits)
        if (canonicalText == row.unit)
            return Quantity{*amount * row.factor, std::string(row.base)};
    return Quantity{*amount, std::string(canonicalText)};
}

class Scan {
public:
    Scan(const Plugin& plugin, int index)
        : plugin_(plugin), index_(index), before_(plugin.parameter(index))
    {
    }
    ~Scan() { plugin_.setParameter(index_, before_); }
    Scan(const Scan&) = delete;
    Scan& operator=(const Scan&) = delete;

    std::string textAt(float value) const
    {
        plugin_.setParameter(index_, value);
        return canonical(plugin_.parameterText(index_));
    }

    // The displayed amount when it is in the wanted unit, or one of the two has none.
    std::optional<double> amountAt(float value, const std::string& unit) const
    {
        const std::optional<Quantity> shown = quantity(textAt(value));
        if (!shown || (shown->unit != unit && !unit.empty() && !shown->unit.empty()))
            return std::nullopt;
        return shown->amount;
    }

private:
    const Plugin& plugin_;
    int index_;
    float before_;
};

float scanValue(int step)
{
    return static_cast<float>(step) / kScanSteps;
}

// The middle of the first run of values that show exactly `wanted`; the ends of the range stand
// for themselves.
std::optional<float> exactValue(const Scan& scan, const std::string& wanted)
{
    int first = 0;
    while (first <= kScanSteps && scan.textAt(scanValue(first)) != wanted)
        ++first;
    if (first > kScanSteps)
        return std::nullopt;
    int last = first;
    while (last < kScanSteps && scan.textAt(scanValue(last + 1)) == wanted)
        ++last;
    if (first == 0 || last == kScanSteps)
        return scanValue(first == 0 ? 0 : kScanSteps);
    return 0.5f * (scanValue(first) + scanValue(last));
}

// The value that shows the amount nearest to `wanted`, when the displays pass through it.
std::optional<float> nearestValue(const Scan& scan, const Quantity& wanted)
{
    const auto offsetAt = [&](float value) -> std::optional<double> {
        const auto amount = scan.amountAt(value, wanted.unit);
        return amount ? std::optional(*amount - wanted.amount) : std::nullopt;
    };
    std::optional<double> before;
    for (int step = 0; step <= kScanSteps; ++step) {
        const std::optional<double> here = offsetAt(scanValue(step));
        if (before && here && (*before <= 0.0) != (*here <= 0.0)) {
            float low = scanValue(step - 1);
            float high = scanValue(step);
            for (int i = 0; i < kBisectSteps; ++i) {
                const float middle = 0.5f * (low + high);
                const std::optional<double> there = offsetAt(middle);
                (there && (*there <= 0.0) == (*before <= 0.0) ? low : high) = middle;
            }
            const auto distance = [&](float v) { return std::abs(offsetAt(v).value_or(HUGE_VAL)); };
            return distance(low) <= distance(high) ? low : high;
        }
        before = here;
    }
    return std::nullopt;
}

constexpr std::int32_t kTolmId = fourCharacters("QXJT");

bool isTolm(const Plugin& plugin)
{
    return plugin.uniqueId() == kTolmId;
}

std::optional<float> tolmValue(const Plugin& plugin, int id, std::string_view text)
{
    const auto valueOf = [&](int other) { return plugin.parameter(other); };
    return parameterValue(id, text, textContext(valueOf));
}

} // namespace

std::vector<std::string> settableNames(const Plugin& plugin)
{
    std::vector<std::string> names = plugin.parameterNames();
    if (isTolm(plugin))
        for (int id = static_cast<int>(names.size()); id < kStoredParameterCount; ++id)
            names.push_back(kCatalogue[id].name);
    return names;
}

std::optional<float> parameterValueFromText(const Plugin& plugin, int index, std::string_view text)
{
    const std::optional<double> number = decimalNumber(trimmed(text));
    if (number && *number >= 0.0 && *number <= 1.0)
        return static_cast<float>(*number);
    if (isTolm(plugin))
        return tolmValue(plugin, index, text);
    const std::string wanted = canonical(text);
    if (wanted.empty())
        return std::nullopt;
    const Scan scan(plugin, index);
    if (const std::optional<float> exact = exactValue(scan, wanted))
        return exact;
    const std::optional<Quantity> amount = quantity(wanted);
    return amount ? nearestValue(scan, *amount) : std::nullopt;
}

} // namespace tolm
