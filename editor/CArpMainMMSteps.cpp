#include "editor/CArpMainMMSteps.h"

#include "engine/constants.h"
#include "patch/chunkRecord.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace tolm {

namespace {

constexpr int kSemitones = 12;
constexpr std::array<const char*, kSemitones> kNoteNames = {"C-", "C#", "D-", "D#", "E-", "F-",
                                                            "F#", "G-", "G#", "A-", "A#", "B-"};
constexpr std::array<const char*, 9> kFingers = {"---", "2nd", "3rd", "4th", "5th",
                                                 "6th", "7th", "8th", "9th"};
constexpr float kSilent = 1e-5f; // velocities up to here leave the one before
constexpr float kTopVelocity = 127.0f;

struct ModeRow {
    ArpMode mode;
    StepReading second;
    const char* secondName;
    bool mixesVelocities;
    const char* hint;
};

// By stored value.
constexpr std::array<ModeRow, 7> kModes = {{
    {ArpMode::simple, StepReading::velocity, "VEL", true,
     "The pattern plays from the lowest key that is held."},
    {ArpMode::voices, StepReading::velocity, "VEL", true,
     "Keys play voices 1, 3, 5, 7 of a stack; the pattern walks up the held keys on 2, 4, 6, 8."},
    {ArpMode::oneShot, StepReading::velocity, "VEL", true,
     "The pattern plays once for each new key, from the lowest one held."},
    {ArpMode::chord, StepReading::velocity, "VEL", true,
     "All held keys play in the rhythm of the pattern; rests end them."},
    {ArpMode::modulation, StepReading::velocity, "VEL", false,
     "Keys play as usual; the steps are the matrix sources Arp Note and Arp Vel."},
    {ArpMode::dynamic, StepReading::finger, "KEY", false,
     "The lower row picks which held key a step plays, counted from the lowest."},
    {ArpMode::duophonic, StepReading::note, "2ND", false,
     "Two lines of notes, both from the lowest key that is held."},
}};

const ModeRow& rowOf(ArpMode mode)
{
    return kModes[static_cast<std::size_t>(mode)];
}

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameText(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowered(x) == lowered(y); });
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

std::optional<int> wholeNumber(std::string_view text)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

std::string noteText(int number)
{
    if (number == 0)
        return "---";
    if (number == kTieNumber)
        return "Tie";
    const int above = number - 1;
    return kNoteNames[static_cast<std::size_t>(above % kSemitones)] +
           std::to_string(above / kSemitones + 1);
}

std::optional<int> noteNumber(std::string_view text)
{
    for (int number = 0; number <= kTieNumber; ++number)
        if (sameText(noteText(number), text))
            return number;
    if (sameText(text, "rest"))
        return 0;
    const std::optional<int> semitones = wholeNumber(text);
    const bool fits = semitones && *semitones >= 0 && *semitones < kHighestNote;
    return fits ? std::optional(*semitones + 1) : std::nullopt;
}

std::optional<int> fingerNumber(std::string_view text)
{
    for (std::size_t finger = 0; finger < kFingers.size(); ++finger)
        if (sameText(kFingers[finger], text))
            return static_cast<int>(finger);
    const std::optional<int> key = wholeNumber(text);
    const bool fits = key && *key >= 1 && *key <= static_cast<int>(kFingers.size());
    return fits ? std::optional(*key - 1) : std::nullopt;
}

std::optional<int> velocityNumber(std::string_view text)
{
    if (text == "---")
        return 0;
    const std::optional<int> velocity = wholeNumber(text);
    const bool fits = velocity && *velocity >= 0 && *velocity <= static_cast<int>(kTopVelocity);
    return fits ? velocity : std::nullopt;
}

} // namespace

ArpMode arpMode(float stored)
{
    const int mode = truncated(stored);
    const bool known = mode >= 0 && mode < static_cast<int>(kModes.size());
    return known ? kModes[static_cast<std::size_t>(mode)].mode : ArpMode::simple;
}

const char* arpModeHint(ArpMode mode)
{
    return rowOf(mode).hint;
}

bool mixesVelocities(ArpMode mode)
{
    return rowOf(mode).mixesVelocities;
}

StepReading secondReading(ArpMode mode)
{
    return rowOf(mode).second;
}

const char* secondRowName(ArpMode mode)
{
    return rowOf(mode).secondName;
}

int largestNumber(StepReading reading)
{
    switch (reading) {
    case StepReading::note:
        return kTieNumber;
    case StepReading::finger:
        return static_cast<int>(kFingers.size()) - 1;
    default:
        return static_cast<int>(kTopVelocity);
    }
}

int stepNumber(StepReading reading, float stored)
{
    const float value = std::clamp(stored, 0.0f, 1.0f);
    switch (reading) {
    case StepReading::note:
        return static_cast<int>(value * 128.0f);
    case StepReading::finger:
        return std::min(static_cast<int>(value * 128.0f) / 16, largestNumber(reading));
    default:
        return static_cast<int>(value * kTopVelocity);
    }
}

float stepValue(StepReading reading, int number)
{
    const auto at = static_cast<float>(std::clamp(number, 0, largestNumber(reading)));
    switch (reading) {
    case StepReading::note:
        return at / 128.0f;
    case StepReading::finger:
        return at / 8.0f;
    default:
        // A little more, because a product that is just below a number is read as the one before.
        return at == 0.0f ? 0.0f : std::min((at + 0.01f) / kTopVelocity, 1.0f);
    }
}

std::string stepText(StepReading reading, float stored)
{
    const int number = stepNumber(reading, stored);
    switch (reading) {
    case StepReading::note:
        return noteText(number);
    case StepReading::finger:
        return kFingers[static_cast<std::size_t>(number)];
    default:
        return stored > kSilent ? std::to_string(number) : "---";
    }
}

std::string stepReadout(StepReading reading, int step, float stored)
{
    std::string text = step < 9 ? "0" : "";
    text += std::to_string(step + 1);
    text += ": ";
    text += stepText(reading, stored);
    const int number = stepNumber(reading, stored);
    if (reading == StepReading::note && number > 0 && number <= kHighestNote) {
        text += "  +";
        text += std::to_string(number - 1);
        text += " st";
    }
    return text;
}

std::optional<int> numberFromText(StepReading reading, std::string_view text)
{
    text = trimmed(text);
    switch (reading) {
    case StepReading::note:
        return noteNumber(text);
    case StepReading::finger:
        return fingerNumber(text);
    default:
        return velocityNumber(text);
    }
}

int arpStepCount(float stored)
{
    return static_cast<int>(std::clamp(stored, 0.0f, 1.0f) * static_cast<float>(kArpSteps - 1)) + 1;
}

float arpStepCountValue(int steps)
{
    const auto last = static_cast<float>(kArpSteps - 1);
    const auto at = static_cast<float>(std::clamp(steps, 1, kArpSteps) - 1);
    return std::min((at + 0.01f) / last, 1.0f);
}

} // namespace tolm
