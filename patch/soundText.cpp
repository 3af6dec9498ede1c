// Rules of the readable form: names, matrix amounts, steps.

#include "patch/soundText.h"

#include "patch/soundTextRules.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace tolm {
namespace {

constexpr std::size_t kMaxNameLength = 23;

// Programs of old banks carried their category as such a prefix, and chunk reading still strips it.
constexpr std::string_view kCategoryPrefixes[] = {"ARP", "SEQ", "BAS", "CHD", "DRM", "KEY",
                                                  "LED", "MAL", "PAD", "PLK", "SFX", "EFX",
                                                  "SYN", "TEX", "ATM", "WND"};

bool isPlainText(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool reaches(double amount, double wanted)
{
    // A whole percentage must survive the product with 100, which may round either way.
    const double percent = std::round(wanted * 100.0);
    const bool whole = std::fabs(wanted * 100.0 - percent) < 1e-9;
    if (wanted < 0.0)
        return amount <= wanted && (!whole || amount * 100.0 <= percent);
    return amount >= wanted && (!whole || amount * 100.0 >= percent);
}

template <std::size_t size>
void put(std::array<char, size>& field, std::string_view text)
{
    field.fill('\0');
    std::copy_n(text.begin(), std::min(text.size(), size - 1), field.begin());
}

} // namespace

std::string SoundTextError::text() const
{
    std::string result = file;
    if (line > 0)
        result.append(":").append(std::to_string(line));
    if (!key.empty())
        result.append(": ").append(key);
    return result.append(": ").append(message);
}

ProgramRecord blankRecord()
{
    ProgramRecord record;
    for (int row = 0; row < kStoredMatrixRows; ++row)
        record.values[static_cast<std::size_t>(kModAmount1 + row)] = 0.5f;
    for (int slot = 0; slot < kEffectSlots; ++slot)
        record.values[static_cast<std::size_t>(kFirstEffectOrderId + slot)] =
            static_cast<float>(slot);
    return record;
}

double engineAmount(float stored)
{
    return static_cast<double>(2.0f * stored - 1.0f);
}

float storedAmount(double amount)
{
    // Steps away from the centre that change 2v - 1 by at most a step of its own: above 0.5 floats
    // are that far apart, below they are finer than the sum can tell.
    constexpr float kStep = 0x1p-25f;
    const float end = amount < 0.0 ? 0.0f : 1.0f;
    float stored = std::clamp(static_cast<float>((amount + 1.0) / 2.0), 0.0f, 1.0f);
    while (stored != end && !reaches(engineAmount(stored), amount))
        stored = amount < 0.0 ? std::max(0.0f, stored - kStep) : std::nextafter(stored, end);
    return stored;
}

float storedStep(int semitones)
{
    return static_cast<float>(semitones + 1) / 128.0f;
}

std::string nameProblem(std::string_view name)
{
    if (withoutMark(name).empty())
        return "the name is empty";
    if (name.size() > kMaxNameLength)
        return "the name is longer than 23 characters";
    if (!isPlainText(name) || name.front() == ' ' || name.back() == ' ')
        return "the name must be plain text without blanks at its ends";
    const std::string_view start = withoutMark(name).substr(0, 3);
    for (const std::string_view prefix : kCategoryPrefixes)
        if (start == prefix)
            return std::string("the name begins like the old category prefix ").append(prefix);
    return {};
}

std::string descriptionProblem(std::string_view description)
{
    if (description.size() >= sizeof(ProgramRecord::description))
        return "the description is longer than 479 characters";
    return isPlainText(description) ? "" : "the description must be plain text";
}

std::string_view nameOf(const ProgramRecord& record)
{
    return {record.name.data(), ::strnlen(record.name.data(), record.name.size())};
}

std::string_view withoutMark(std::string_view name)
{
    return name.starts_with('+') ? name.substr(1) : name;
}

void putName(ProgramRecord& record, std::string_view name)
{
    put(record.name, name);
}

void putDescription(ProgramRecord& record, std::string_view description)
{
    put(record.description, description);
}

} // namespace tolm
