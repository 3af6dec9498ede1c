#pragma once
// Reading numbers and lists out of command-line texts, independent of the locale.

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace tolm {

inline std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    return first == text.npos ? std::string_view{}
                              : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

inline std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> pieces;
    for (std::size_t end = 0; end != text.npos;) {
        end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return pieces;
}

// A finite number at the start of `text`, which then holds what follows it.
inline std::optional<double> leadingNumber(std::string_view& text)
{
    double value = 0.0;
    std::string_view digits = text;
    if (!digits.empty() && digits[0] == '+')
        digits.remove_prefix(1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc{} || !std::isfinite(value))
        return std::nullopt;
    text = digits.substr(static_cast<std::size_t>(end - digits.data()));
    return value;
}

inline std::optional<double> decimalNumber(std::string_view text)
{
    const std::optional<double> value = leadingNumber(text);
    return text.empty() ? value : std::nullopt;
}

inline std::optional<int> wholeNumber(std::string_view text)
{
    int value = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value);
    return error == std::errc{} && end == last ? std::optional(value) : std::nullopt;
}

} // namespace tolm
