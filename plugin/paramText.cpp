#include "plugin/paramText.h"

#include "plugin/displayRules.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tolm {

namespace {

char lowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameText(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

bool isUnit(std::string_view text, const DisplayRule& rule)
{
    if (text.empty() || sameText(text, trimmed(rule.unit)))
        return true;
    return rule.law == Law::stack && sameText(text, "voice");
}

// A decimal number with an optional sign, then nothing or the rule's unit.
std::optional<double> parseNumber(std::string_view text, const DisplayRule& rule)
{
    const bool plus = text.starts_with('+');
    if (plus && text.substr(1).starts_with('-'))
        return std::nullopt;
    const char* begin = text.data() + (plus ? 1 : 0);
    const char* end = text.data() + text.size();
    double number = 0.0;
    const auto [rest, error] = std::from_chars(begin, end, number, std::chars_format::fixed);
    if (error != std::errc() || !std::isfinite(number))
        return std::nullopt;
    if (!isUnit(trimmed({rest, static_cast<std::size_t>(end - rest)}), rule))
        return std::nullopt;
    return number;
}

// The stored value whose rule shows exactly `number`, before any rounding for display.
double inverse(const DisplayRule& rule, double number)
{
    switch (rule.law) {
    case Law::exponential:
    case Law::wholeExponential:
        return std::log((number - rule.offset) / rule.scale) / std::log(rule.top / rule.scale);
    case Law::whole:
        return (number / rule.unitStep - rule.offset) / rule.scale;
    case Law::stack:
        return (number - 1.0) * 18.0 / 128.0;
    default:
        return (number - rule.offset) / rule.scale;
    }
}

bool isTruncating(const DisplayRule& rule)
{
    return rule.law != Law::linear && rule.law != Law::exponential;
}

// Numbers that lie inside the stretch of values shown as `number`: the number itself, and points
// beside it in case that rounding (of the value to a float, or for display) leads out of it.
std::array<double, 3> numbersShownAs(const DisplayRule& rule, double number)
{
    if (isTruncating(rule)) {
        if (rule.law == Law::whole)
            number = std::round(number / rule.unitStep) * rule.unitStep;
        return {number, number + 0.5 * rule.unitStep, number + 0.01 * rule.unitStep};
    }
    const double quarter = 0.25 * std::pow(10.0, -rule.decimals);
    return {number, number + quarter, number - quarter};
}

bool isShownAs(std::string_view shown, std::string_view text, const DisplayRule& rule)
{
    const std::string_view unit = rule.unit;
    if (sameText(shown, text))
        return true;
    return shown.ends_with(unit) && sameText(shown.substr(0, shown.size() - unit.size()), text);
}

// Of the stored values that could have been meant, the first that is shown as the very text; else
// the first that shows the number; else the number's own value, if it is in range.
std::optional<float> valueOfNumber(const DisplayRule& rule, double number, std::string_view text,
                                   double largest)
{
    constexpr double kRoundingSlack = 1e-6;
    std::optional<float> sameNumber;
    std::optional<float> nearest;
    for (const double candidate : numbersShownAs(rule, number)) {
        const double exact = inverse(rule, candidate);
        if (!(exact >= -kRoundingSlack && exact <= largest + kRoundingSlack))
            continue;
        const auto value = static_cast<float>(std::clamp(exact, 0.0, largest));
        const ParamText shown = ruleText(rule, static_cast<double>(value));
        if (isShownAs(shown.view(), text, rule))
            return value;
        if (!sameNumber && parseNumber(shown.view(), rule) == number)
            sameNumber = value;
        if (!nearest)
            nearest = value;
    }
    return sameNumber ? sameNumber : nearest;
}

std::optional<float> valueOfName(const DisplayRule& rule, std::string_view text)
{
    for (std::size_t i = 0; i < rule.names.size(); ++i)
        if (sameText(rule.names[i], text))
            return static_cast<float>(std::min(1.0, (static_cast<double>(i) + 0.5) / rule.scale));
    return std::nullopt;
}

std::optional<float> valueOfMenuEntry(const StoredMenu& menu, std::string_view text)
{
    constexpr std::string_view kModePrefix = "Mode: ";
    for (int entry = 0; entry < kMenuIdCount; ++entry) {
        const char* found = menu.nameOf(entry);
        if (found == nullptr)
            continue;
        std::string_view name = found;
        if (sameText(name, text))
            return static_cast<float>(entry);
        if (name.starts_with(kModePrefix) && sameText(name.substr(kModePrefix.size()), text))
            return static_cast<float>(entry);
    }
    return std::nullopt;
}

// Whole numbers that are stored as such may leave 0..1.
double largestValue(int id)
{
    if (kCatalogue[static_cast<std::size_t>(id)].control == Control::order)
        return kEffectSlots - 1;
    return storedMenu(id) != nullptr ? kMenuIdCount - 1 : 1.0;
}

std::optional<float> valueOfSwitch(std::string_view text)
{
    if (sameText(text, "On"))
        return 1.0f;
    if (sameText(text, "Off"))
        return 0.0f;
    return std::nullopt;
}

bool isParameter(int id)
{
    return id >= 0 && id < kParameterCount;
}

} // namespace

ParamText& ParamText::add(std::string_view text)
{
    const std::size_t length = std::min(text.size(), text_.size() - size_);
    std::copy_n(text.data(), length, text_.data() + size_);
    size_ += length;
    return *this;
}

ParamText& ParamText::add(double number, int decimals)
{
    std::array<char, 64> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                      std::chars_format::fixed, decimals);
    if (result.ec != std::errc())
        return *this; // more than 60 digits
    return add({digits.data(), static_cast<std::size_t>(result.ptr - digits.data())});
}

ParamText parameterText(int id, float value, const TextContext& context)
{
    if (!isParameter(id))
        return {};
    return ruleText(displayRule(id, context), static_cast<double>(value));
}

std::string_view menuText(int id, float value)
{
    const StoredMenu* menu = isParameter(id) ? storedMenu(id) : nullptr;
    if (menu == nullptr)
        return {};
    constexpr double kStoredError = 1e-4; // stored ids may be off by a little
    const int entry = truncated(static_cast<double>(value) + kStoredError);
    const char* name = menu->nameOf(entry);
    return name != nullptr ? name : std::string_view();
}

std::optional<float> parameterValue(int id, std::string_view text, const TextContext& context)
{
    if (!isParameter(id))
        return std::nullopt;
    text = trimmed(text);
    const DisplayRule& rule = displayRule(id, context);
    if (rule.law == Law::names)
        return valueOfName(rule, text);
    if (rule.zeroName != nullptr && sameText(text, rule.zeroName))
        return 0.0f;
    if (const StoredMenu* menu = storedMenu(id))
        if (const std::optional<float> entry = valueOfMenuEntry(*menu, text))
            return entry;
    if (kCatalogue[static_cast<std::size_t>(id)].control == Control::toggle)
        if (const std::optional<float> state = valueOfSwitch(text))
            return state;
    const std::optional<double> number = parseNumber(text, rule);
    return number ? valueOfNumber(rule, *number, text, largestValue(id)) : std::nullopt;
}

} // namespace tolm
