#pragma once
// What a program is auditioned with: a few bars that suit its category, at 120 bpm.

#include <cstdint>
#include <span>
#include <vector>

namespace tolm {

struct PhraseEvent {
    double seconds = 0.0;
    std::uint8_t status = 0;
    std::uint8_t data1 = 0;
    std::uint8_t data2 = 0;
};

struct Phrase {
    std::vector<PhraseEvent> events; // in order of time
    double keyUpSeconds = 0.0;       // when the last key goes up
};

// Which figure of a rendering is held against the target.
enum class LoudnessKind : std::uint8_t { wholePhrase, momentary, shortTerm };

// How loud the programs of a category are meant to be with their phrase at velocity 100.
struct LoudnessTarget {
    LoudnessKind kind = LoudnessKind::wholePhrase;
    double lufs = -18.0;
    double withinLu = 1.0;

    bool accepts(double loudness) const
    {
        return loudness >= lufs - withinLu && loudness <= lufs + withinLu;
    }
};

inline constexpr int kAuditionVelocity = 100;

Phrase categoryPhrase(int category, int velocity = kAuditionVelocity);
LoudnessTarget loudnessTarget(int category);
// How loud the phrase may become at velocity 127, momentary LUFS.
double loudestStroke(int category);
// As many keys at velocity 127 as players of the category strike at once, 2 s.
Phrase hardestPhrase(int category);
// The keys together, from the start for `seconds`.
Phrase heldKeys(std::span<const int> keys, double seconds, int velocity = kAuditionVelocity);
// Nothing but waiting.
Phrase silentPhrase(double seconds);
// A controller (or, with status 0xD0, the pressure) that is set before the first note.
void setBefore(Phrase& phrase, std::uint8_t status, std::uint8_t data1, std::uint8_t data2);

} // namespace tolm
