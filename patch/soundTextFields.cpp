// Tables of the words for parameter values.

#include "patch/soundTextFields.h"

#include "engine/constants.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace tolm {
namespace {

constexpr const char* kOscShapes[] = {"Saw", "Pulse", "Sine", "Wavetbl"};
constexpr const char* kSubShapes[] = {"Saw", "Pulse", "Triangle"};
constexpr const char* kLfoShapes[] = {"Saw", "Pulse", "Sine", "S+H"};
constexpr const char* kPhaserTypes[] = {"4-Stage-Ph", "6-Stage-Ph", "8-Stage-Ph", "Flanger+",
                                        "Flanger-",   "Chorus I",   "Chorus II"};
constexpr const char* kDelayTypes[] = {"Simple", "Ping-Pong", "PP 75%",    "PP 50%",
                                       "PP 25%", "PP 10%",    "Multi-Tap", "Diffuse"};
constexpr const char* kReverbTypes[] = {"Diffuse-1", "Diffuse-2", "Room", "Hall", "Cathedral"};
constexpr const char* kDistTypes[] = {"LP+Crunch", "HP+Crunch", "LP+Toxic", "HP+Toxic", "LP+Valve",
                                      "HP+Valve",  "LP Only",   "HP Only",  "LP+Clip"};
constexpr const char* kEqTypes[] = {"Peaking", "Lo Shelf", "Hi Shelf"};

const char* nameOf(const char* name)
{
    return name;
}
const char* nameOf(const NoteLength& length)
{
    return length.name;
}
template <const auto& list>
const char* nameAt(int index)
{
    return nameOf(list[index]);
}

// A value that the engine turns into an index by trunc(value * scale).
struct ChoiceField {
    int id;
    double scale;
    int count;
    const char* (*name)(int index);
};

// clang-format off
constexpr ChoiceField kChoices[] = {
    {kOsc1Shape, 3.0, 4, nameAt<kOscShapes>},
    {kOsc2Shape, 3.0, 4, nameAt<kOscShapes>},
    {kOsc3Shape, 2.0, 3, nameAt<kSubShapes>},
    {kLfo1Shape, 3.0, 4, nameAt<kLfoShapes>},
    {kLfo1Shape + kLfoIdStride, 3.0, 4, nameAt<kLfoShapes>},
    {kLfo1Shape + 2 * kLfoIdStride, 3.0, 4, nameAt<kLfoShapes>},
    {kLfo1Rate, 26.001, 27, nameAt<kLfoLengths>}, // meant for synchronised LFOs
    {kLfo1Rate + kLfoIdStride, 26.001, 27, nameAt<kLfoLengths>},
    {kLfo1Rate + 2 * kLfoIdStride, 26.001, 27, nameAt<kLfoLengths>},
    {kArpRate, 20.001, 21, nameAt<kArpLengths>}, // meant for a synchronised arpeggiator
    {kPhaserType, 6.1, 7, nameAt<kPhaserTypes>},
    {kDelayType, 8.0, 8, nameAt<kDelayTypes>},
    {kDelayRateLeft, 20.001, 21, nameAt<kDelayLengths>},
    {kDelayRateRight, 20.001, 21, nameAt<kDelayLengths>},
    {kReverbType, 4.0, 5, nameAt<kReverbTypes>},
    {kDistType, 8.0, 9, nameAt<kDistTypes>},
    {kEq1Type, 2.01, 3, nameAt<kEqTypes>},
    {kEq2Type, 2.01, 3, nameAt<kEqTypes>},
};
// clang-format on

// The middle of the choice's stretch of values, which survives any rounding on its way.
float choiceValue(const ChoiceField& field, int index)
{
    return static_cast<float>(std::min(1.0, (index + 0.5) / field.scale));
}

// A value that stands for a count or an offset.
struct CountField {
    int id;
    const char* before;
    const char* after;
    int first;
    int last;
    float (*value)(int count);
};

float coarseValue(int semitones)
{
    return static_cast<float>((semitones + 36) / 72.0);
}
float waveValue(int wave)
{
    return static_cast<float>(wave) / 128.0f;
}
// The engine stacks trunc(trunc(128 v) / 18) + 1 voices.
float voicesValue(int voices)
{
    return voices == 1 ? 0.0f : std::min(1.0f, static_cast<float>(18 * voices - 9) / 128.0f);
}
float polyphonyValue(int voices)
{
    return std::min(1.0f, (static_cast<float>(voices - kMinPolyphony) + 0.5f) / 64.0f);
}
float stepCountValue(int steps)
{
    return static_cast<float>(std::min(1.0, (steps - 0.5) / 31.0));
}

constexpr CountField kCounts[] = {
    {kOsc1Coarse, "", " st", -36, 36, coarseValue},
    {kOsc2Coarse, "", " st", -36, 36, coarseValue},
    {kOsc1Wave, "wave ", "", 0, kWaveCount - 1, waveValue},
    {kOsc2Wave, "wave ", "", 0, kWaveCount - 1, waveValue},
    {kVoices, "", " voices", 1, kMaxStack, voicesValue},
    {kPolyphony, "", " voices", kMinPolyphony, kVoiceCount, polyphonyValue},
    {kArpStepCount, "", " steps", 1, kArpSteps, stepCountValue},
};

struct MenuField {
    int id;
    std::span<const MenuEntry> menu;
};
constexpr MenuField kMenus[] = {
    {kFmMode, kFmModeMenu},
    {kArpMode, kArpModeMenu},
    {kFilterType, kFilterMenu},
};

// The row of a parameter, or null.
template <class Row, std::size_t count>
const Row* rowOf(const Row (&rows)[count], int id)
{
    const auto row =
        std::find_if(std::begin(rows), std::end(rows), [id](const Row& r) { return r.id == id; });
    return row == std::end(rows) ? nullptr : row;
}

std::optional<int> countInWords(const CountField& field, std::string_view words)
{
    const std::string_view before = field.before;
    const std::string_view after = field.after;
    if (!words.starts_with(before) || !words.ends_with(after) ||
        words.size() <= before.size() + after.size())
        return std::nullopt;
    words = words.substr(before.size(), words.size() - before.size() - after.size());
    if (field.first < 0 && words.starts_with('+') && words.size() > 1 && words[1] != '-')
        words.remove_prefix(1);
    int count = 0;
    const char* end = words.data() + words.size();
    const auto [stop, error] = std::from_chars(words.data(), end, count);
    if (error != std::errc() || stop != end || count < field.first || count > field.last)
        return std::nullopt;
    return count;
}

std::string wordsOfCount(const CountField& field, int count)
{
    const char* sign = field.first < 0 && count > 0 ? "+" : "";
    return std::string(field.before) + sign + std::to_string(count) + field.after;
}

std::optional<int> categoryOf(std::string_view name)
{
    for (std::size_t i = 0; i < std::size(kCategoryNames); ++i)
        if (name == kCategoryNames[i])
            return static_cast<int>(i);
    return std::nullopt;
}

std::optional<float> asFloat(std::optional<int> id)
{
    return id ? std::optional(static_cast<float>(*id)) : std::nullopt;
}

} // namespace

bool hasOwnKey(int id)
{
    return id >= 0 && id <= kPatchCategory && !(id >= kModSource1 && id < kArpStepCount) &&
           std::string_view(kCatalogue[id].name) != "Reserved";
}

int idOfKey(std::string_view key)
{
    for (const ParamRow& row : kCatalogue)
        if (hasOwnKey(row.id) && key == row.name)
            return row.id;
    return -1;
}

float largestValue(int id)
{
    if (id == kPatchCategory)
        return static_cast<float>(std::size(kCategoryNames) - 1);
    const MenuField* field = rowOf(kMenus, id);
    if (!field)
        return 1.0f;
    int largest = 0;
    for (const MenuEntry& entry : field->menu)
        if (entry.id != kSeparatorId)
            largest = std::max(largest, entry.id);
    return static_cast<float>(largest);
}

bool isToggle(int id)
{
    return kCatalogue[id].control == Control::toggle;
}

std::optional<float> valueOfWords(int id, std::string_view words)
{
    if (const ChoiceField* field = rowOf(kChoices, id))
        for (int index = 0; index < field->count; ++index)
            if (words == field->name(index))
                return choiceValue(*field, index);
    if (const CountField* field = rowOf(kCounts, id))
        if (const auto count = countInWords(*field, words))
            return field->value(*count);
    if (const MenuField* field = rowOf(kMenus, id))
        return asFloat(menuIdOf(field->menu, words));
    if (id == kPatchCategory)
        return asFloat(categoryOf(words));
    return std::nullopt;
}

std::string wordsOfValue(int id, float value)
{
    if (const ChoiceField* field = rowOf(kChoices, id))
        for (int index = 0; index < field->count; ++index)
            if (value == choiceValue(*field, index))
                return field->name(index);
    if (const CountField* field = rowOf(kCounts, id))
        for (int count = field->first; count <= field->last; ++count)
            if (value == field->value(count))
                return wordsOfCount(*field, count);
    if (const MenuField* field = rowOf(kMenus, id))
        for (const MenuEntry& entry : field->menu)
            if (entry.id != kSeparatorId && value == static_cast<float>(entry.id))
                return entry.name;
    if (id == kPatchCategory)
        for (std::size_t i = 0; i < std::size(kCategoryNames); ++i)
            if (value == static_cast<float>(i))
                return kCategoryNames[i];
    return {};
}

std::optional<int> menuIdOf(std::span<const MenuEntry> menu, std::string_view name)
{
    for (const MenuEntry& entry : menu)
        if (entry.id != kSeparatorId && name == entry.name)
            return entry.id;
    return std::nullopt;
}

std::optional<int> voiceMaskIdOf(std::string_view name)
{
    for (const VoiceMask& mask : kVoiceMaskMenu)
        if (name == mask.name)
            return mask.id;
    return std::nullopt;
}

} // namespace tolm
