// Records to text. A word or decimal is only chosen when reading it gives the same float again.

#include "patch/soundText.h"

#include "patch/soundTextFields.h"
#include "patch/soundTextRules.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>

namespace tolm {
namespace {

struct Writer {
    const ProgramRecord& record;
    const ProgramRecord& base;
    std::string text;
    SoundTextStatus error;

    float value(int id) const { return record.values[static_cast<std::size_t>(id)]; }
    float baseValue(int id) const { return base.values[static_cast<std::size_t>(id)]; }
    bool differs(int id) const
    {
        const float a = value(id);
        const float b = baseValue(id);
        return std::memcmp(&a, &b, sizeof a) != 0; // also tells -0 from 0
    }
    void fail(std::string_view key, std::string message)
    {
        if (!error)
            error = SoundTextError{std::string(nameOf(record)), 0, std::string(key), message};
    }
    void line(std::string_view key, std::string_view content)
    {
        text.append(key).append(" = ").append(content).append("\n");
    }
};

std::string quoted(std::string_view words)
{
    std::string result = "\"";
    for (const char c : words) {
        if (c == '"' || c == '\\')
            result += '\\';
        result += c;
    }
    return result + '"';
}

template <class Number>
std::string shortest(Number number)
{
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    std::string result(digits, end);
    const bool real = result.find_first_of(".e") != std::string::npos;
    return real ? result : result + ".0";
}

double parsed(const std::string& digits)
{
    double number = 0.0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

// The shortest digits of the float, unless reading them as a double rounds to a neighbour.
std::string numberText(float value)
{
    std::string digits = shortest(value);
    const bool same = static_cast<float>(parsed(digits)) == value;
    return same ? digits : shortest(static_cast<double>(value));
}

// Whether reading numberText(value) gives the bits of `value`.
bool isNumber(float value, float largest)
{
    return value >= 0.0f && value <= largest && !std::signbit(value);
}

void writeField(Writer& w, int id)
{
    const char* key = kCatalogue[id].name;
    const float value = w.value(id);
    if (!isNumber(value, largestValue(id)))
        w.fail(key, "the value is out of range");
    else if (isToggle(id) && (value == 0.0f || value == 1.0f))
        w.line(quoted(key), value == 1.0f ? "true" : "false");
    else if (const std::string words = wordsOfValue(id, value); !words.empty())
        w.line(quoted(key), quoted(words));
    else
        w.line(quoted(key), numberText(value));
}

void writeFields(Writer& w)
{
    for (int id = 0; id <= kPatchCategory; ++id)
        if (hasOwnKey(id) && w.differs(id))
            writeField(w, id);
}

// What no key can say must be as in the base.
void checkUnspoken(Writer& w)
{
    for (int id = 0; id < kModSource1; ++id)
        if (!hasOwnKey(id) && w.differs(id))
            w.fail(kCatalogue[id].name, "a reserved value cannot be written");
    if (w.record.reserved != w.base.reserved)
        w.fail("reserved", "the reserved bytes cannot be written");
}

std::string stepNoteText(float value)
{
    if (value == 0.0f || value == 1.0f)
        return value == 0.0f ? "\".\"" : "\"-\"";
    for (int semitones = 0; semitones < 127; ++semitones)
        if (value == storedStep(semitones))
            return std::to_string(semitones);
    return numberText(value);
}

void writeSteps(Writer& w, const char* key, int firstId, std::string (*stepText)(float))
{
    int count = kArpSteps;
    while (count > 0 && !w.differs(firstId + count - 1))
        --count;
    if (count == 0)
        return;
    std::string list;
    for (int step = 0; step < count; ++step) {
        const float value = w.value(firstId + step);
        if (!isNumber(value, 1.0f))
            w.fail(key, "a step is out of range");
        list += (step > 0 ? ", " : "") + stepText(value);
    }
    w.line(quoted(key), "[" + list + "]");
}

void writeArp(Writer& w)
{
    writeSteps(w, "Arp notes", kArpNote1, stepNoteText);
    const bool duophonic = w.value(kArpMode) == 6.0f;
    if (duophonic)
        writeSteps(w, "Arp second notes", kArpVelocity1, stepNoteText);
    else
        writeSteps(w, "Arp velocities", kArpVelocity1, numberText);
}

void writeEffectOrder(Writer& w)
{
    bool differs = false;
    unsigned seen = 0;
    std::string list;
    for (int slot = 0; slot < kEffectSlots; ++slot) {
        const float value = w.value(kFirstEffectOrderId + slot);
        differs = differs || w.differs(kFirstEffectOrderId + slot);
        for (int kind = 0; kind < kEffectSlots; ++kind)
            if (isNumber(value, 5.0f) && value == static_cast<float>(kind)) {
                seen |= 1u << kind;
                list += (slot > 0 ? ", " : "") + quoted(kEffectNames[kind]);
            }
    }
    if (seen != (1u << kEffectSlots) - 1)
        w.fail("Effect order", "every effect must stand in the order once");
    else if (differs)
        w.line(quoted("Effect order"), "[" + list + "]");
}

// The shortest decimal amount that is stored as this value, or the value itself under another key.
std::string amountText(float stored)
{
    const double amount = engineAmount(stored);
    for (int places = 1; places <= 9; ++places) {
        char digits[64];
        const auto end =
            std::to_chars(digits, digits + sizeof digits, amount, std::chars_format::fixed, places)
                .ptr;
        const std::string text(digits, end);
        const float again = storedAmount(parsed(text));
        if (again == stored && text.find_first_not_of("-0.") != std::string::npos)
            return "amount = " + text;
    }
    return stored == 0.5f ? "amount = 0.0" : "stored = " + numberText(stored);
}

const char* menuWords(std::span<const MenuEntry> menu, float stored)
{
    for (const MenuEntry& entry : menu)
        if (entry.id != kSeparatorId && stored == static_cast<float>(entry.id))
            return entry.name;
    return nullptr;
}

const char* maskWords(float stored)
{
    for (const VoiceMask& mask : kVoiceMaskMenu)
        if (stored == static_cast<float>(mask.id))
            return mask.name;
    return nullptr;
}

bool rowEquals(const ProgramRecord& a, const ProgramRecord& b, int row)
{
    for (const int group : {kModSource1, kModAmount1, kModDestination1, kModVoices1}) {
        const auto id = static_cast<std::size_t>(group + row);
        if (std::memcmp(&a.values[id], &b.values[id], sizeof(float)) != 0)
            return false;
    }
    return true;
}

std::string rowText(Writer& w, int row)
{
    const char* source = menuWords(kSourceMenu, w.value(kModSource1 + row));
    const char* destination = menuWords(kDestinationMenu, w.value(kModDestination1 + row));
    const char* voices = maskWords(w.value(kModVoices1 + row));
    const float amount = w.value(kModAmount1 + row);
    bool negativeZero = false;
    for (const int group : {kModSource1, kModAmount1, kModDestination1, kModVoices1})
        negativeZero = negativeZero || std::signbit(w.value(group + row));
    if (!source || !destination || !voices || !isNumber(amount, 1.0f) || negativeZero) {
        w.fail("matrix", "row " + std::to_string(row + 1) + " holds an unknown choice");
        return {};
    }
    std::string text =
        "from = " + quoted(source) + ", to = " + quoted(destination) + ", " + amountText(amount);
    if (w.value(kModVoices1 + row) != 0.0f)
        text += ", voices = " + quoted(voices);
    return "{ " + text + " }";
}

void writeMatrix(Writer& w)
{
    const ProgramRecord blank = blankRecord();
    bool differs = false;
    int count = 0;
    for (int row = 0; row < kStoredMatrixRows; ++row) {
        differs = differs || !rowEquals(w.record, w.base, row);
        if (!rowEquals(w.record, blank, row))
            count = row + 1;
    }
    if (!differs)
        return;
    if (count > kMatrixRows) {
        w.fail("matrix", "rows beyond 24 cannot be written");
        return;
    }
    w.text += "matrix = [\n";
    for (int row = 0; row < count; ++row)
        w.text += "    " + (rowEquals(w.record, blank, row) ? "{}" : rowText(w, row)) + ",\n";
    w.text += "]\n";
}

void writeTexts(Writer& w)
{
    const std::string_view name = nameOf(w.record);
    const std::string_view description{
        w.record.description.data(),
        ::strnlen(w.record.description.data(), w.record.description.size())};
    if (const std::string problem = nameProblem(name); !problem.empty())
        w.fail("name", problem);
    if (const std::string problem = descriptionProblem(description); !problem.empty())
        w.fail("description", problem);
    ProgramRecord clean = w.record;
    putName(clean, name);
    putDescription(clean, description);
    if (clean.name != w.record.name || clean.description != w.record.description)
        w.fail("name", "there are bytes behind the end of a text");
    w.line("name", quoted(name));
    ProgramRecord empty = w.base;
    if (w.record.description != empty.description)
        w.line("description", quoted(description));
}

SoundTextStatus writeProgram(const ProgramRecord& record, const ProgramRecord& base,
                             std::string& text)
{
    Writer w{record, base, {}, {}};
    w.text = "\n[[program]]\n";
    writeTexts(w);
    checkUnspoken(w);
    writeFields(w);
    writeEffectOrder(w);
    writeArp(w);
    writeMatrix(w);
    text += w.text;
    return w.error;
}

} // namespace

SoundTextStatus writeSounds(std::span<const ProgramRecord> programs, const ProgramRecord& base,
                            int category, std::string& text)
{
    const std::string words = wordsOfValue(kPatchCategory, static_cast<float>(category));
    if (words.empty())
        return SoundTextError{{}, 0, "category", "there is no such category"};
    ProgramRecord start = base;
    start.values[kPatchCategory] = static_cast<float>(category);
    std::string written = "category = " + quoted(words) + "\n";
    for (const ProgramRecord& record : programs)
        if (auto error = writeProgram(record, start, written))
            return error;
    text += written;
    return {};
}

} // namespace tolm
