#pragma once
// What the values of arpeggiator steps mean, by mode: numbers, and their texts.

#include <optional>
#include <string>
#include <string_view>

namespace tolm {

enum class ArpMode : unsigned char {
    simple,
    voices, // "Voice 2/4/6/8"
    oneShot,
    chord,
    modulation,
    dynamic,
    duophonic,
};
// Of the stored "Arp Mode".
ArpMode arpMode(float stored);
// What keys and steps do in a mode, in a sentence.
const char* arpModeHint(ArpMode mode);
// "Arp Range" mixes the key's velocity (at 0) with the step's in these modes only.
bool mixesVelocities(ArpMode mode);

// How one row of steps is read.
enum class StepReading : unsigned char {
    note,     // 0 a rest, 1 the base key, then semitones up, 128 a tie
    velocity, // 0 the one before plays on, else 1..127
    finger,   // 0 the base key, 1..8 the second to the ninth held key
};
StepReading secondReading(ArpMode mode);
// What the second row is called in a mode, short.
const char* secondRowName(ArpMode mode);

inline constexpr int kTieNumber = 128;
inline constexpr int kHighestNote = 127;
int largestNumber(StepReading reading);
// The number that a stored value 0..1 is read as, and a stored value that is read as a number.
int stepNumber(StepReading reading, float stored);
float stepValue(StepReading reading, int number);

// "---", "Tie", "C#2" (a note counted from C-1, the base key), "3rd" or a velocity.
std::string stepText(StepReading reading, float stored);
// The same behind the step's number, "05: G#3  +32 st"; step 0..31.
std::string stepReadout(StepReading reading, int step, float stored);
// The number of a text as stepText gives it, in any case; notes also as semitones ("+7").
std::optional<int> numberFromText(StepReading reading, std::string_view text);

// The stored "Arp Steps" as a number 1..32 and back.
int arpStepCount(float stored);
float arpStepCountValue(int steps);

} // namespace tolm
