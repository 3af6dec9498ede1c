// One row per category: which keys, how long, together or one after the other.

#include "tools/audition/Phrase.h"

#include "engine/EngineOwner.h"
#include "plugin/menus.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tolm {
namespace {

struct CategoryRow {
    std::vector<int> keys;
    double chordSeconds;  // the keys together, 0 for not at all
    double singleSeconds; // then each of them alone, 0 for not at all
    LoudnessTarget target;
    int hardestKeys; // of kSixKeys
};

constexpr LoudnessTarget kSteadyTarget{};
constexpr LoudnessTarget kDrumTarget{LoudnessKind::momentary, -16.0, 2.0};
constexpr LoudnessTarget kEffectTarget{LoudnessKind::shortTerm, -18.0, 3.0};
constexpr double kLoudestStroke = -12.0;
constexpr double kLoudestEffect = -8.0;
constexpr int kSoundEffects = 10;
static_assert(std::string_view(kCategoryNames[kSoundEffects]) == "Sound Effects");
constexpr int kSixKeys[] = {48, 55, 59, 64, 67, 52};

// Key 60 is C4. Chord programs make a chord of every key, so their keys come one by one.
const CategoryRow kRows[] = {
    {{48, 52, 55, 59}, 2.0, 0.4, kSteadyTarget, 6},                // ---
    {{48, 52, 55}, 8.0, 0.0, kSteadyTarget, 4},                    // Arpeggiated
    {{28, 31, 33, 36}, 0.0, 0.8, kSteadyTarget, 2},                // Bass
    {{48, 53, 55, 48}, 0.0, 1.0, kSteadyTarget, 2},                // Chords
    {{36, 36, 36, 36, 36, 36, 36, 36}, 0.0, 0.25, kDrumTarget, 1}, // Drums
    {{48, 52, 55, 59}, 2.0, 0.4, kSteadyTarget, 6},                // Keyboards
    {{60, 64, 67, 72}, 0.0, 0.8, kSteadyTarget, 6},                // Leads
    {{60, 64, 67, 72}, 0.0, 0.5, kSteadyTarget, 6},                // Mallets
    {{48, 52, 55, 59}, 8.0, 0.0, kSteadyTarget, 6},                // Pads
    {{60, 64, 67, 72}, 0.0, 0.5, kSteadyTarget, 6},                // Plucked
    {{60}, 4.0, 0.0, kEffectTarget, 2},                            // Sound Effects
    {{48, 52, 55, 59}, 2.0, 0.4, kSteadyTarget, 6},                // Synths
    {{48, 52, 55, 59}, 8.0, 0.0, kSteadyTarget, 6},                // Textures
    {{60, 64, 67, 72}, 0.0, 0.8, kSteadyTarget, 6},                // Wind
};
static_assert(std::size(kRows) == std::size(kCategoryNames));

const CategoryRow& rowOf(int category)
{
    const bool known = category >= 0 && category < static_cast<int>(std::size(kRows));
    return kRows[known ? category : 0];
}

void hold(Phrase& phrase, std::span<const int> keys, double seconds, int velocity)
{
    const double start = phrase.keyUpSeconds;
    phrase.keyUpSeconds += seconds;
    for (const int key : keys)
        phrase.events.push_back(
            {start, kNoteOn, static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(velocity)});
    for (const int key : keys)
        phrase.events.push_back({phrase.keyUpSeconds, kNoteOff, static_cast<std::uint8_t>(key), 0});
}

} // namespace

Phrase categoryPhrase(int category, int velocity)
{
    const CategoryRow& row = rowOf(category);
    Phrase phrase;
    if (row.chordSeconds > 0.0)
        hold(phrase, row.keys, row.chordSeconds, velocity);
    if (row.singleSeconds > 0.0)
        for (const int key : row.keys)
            hold(phrase, {&key, 1}, row.singleSeconds, velocity);
    return phrase;
}

LoudnessTarget loudnessTarget(int category)
{
    return rowOf(category).target;
}

double loudestStroke(int category)
{
    return category == kSoundEffects ? kLoudestEffect : kLoudestStroke;
}

Phrase hardestPhrase(int category)
{
    const auto count = static_cast<std::size_t>(rowOf(category).hardestKeys);
    return heldKeys(std::span(kSixKeys).first(count), 2.0, 127);
}

Phrase heldKeys(std::span<const int> keys, double seconds, int velocity)
{
    Phrase phrase;
    hold(phrase, keys, seconds, velocity);
    return phrase;
}

Phrase silentPhrase(double seconds)
{
    return {{}, seconds};
}

void setBefore(Phrase& phrase, std::uint8_t status, std::uint8_t data1, std::uint8_t data2)
{
    phrase.events.insert(phrase.events.begin(), {0.0, status, data1, data2});
}

} // namespace tolm
