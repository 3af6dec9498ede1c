#pragma once
// What a program is like in numbers: the columns of reports and the terms of the rules.

#include "patch/ProgramRecord.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tolm {

enum class Descriptor : std::uint8_t {
    loudness,
    peak,
    attack,
    decay,
    release,
    fade,
    centroid,
    harmonicity,
    lowShare,
    flatness,
    width,
    monoLoss,
    modulation,
    flux,
    offset,
    velocityLevel,
    velocityBrightness,
    lowWidth,
    brightnessFall,
    levelAfter4s,
    onsets,
    breathBrightness,
    fundamentals,
    count
};
inline constexpr std::size_t kDescriptorCount = static_cast<std::size_t>(Descriptor::count);

struct DescriptorColumn {
    const char* key;     // in tables of exceptions
    const char* heading; // short, with the unit
    const char* meaning;
    int decimals;
};

// In the order of Descriptor. Velocity 100, wheel down and effects on where nothing else is said;
// "note" is the category's reference key held alone, "phrase" what its programs are levelled with.
inline constexpr DescriptorColumn kDescriptorColumns[] = {
    {"loudness", "LUFS", "loudness of the phrase", 1},
    {"peak", "peak", "sample peak of the hardest chord at velocity 127, dBFS", 1},
    {"attack", "att ms", "10 to 90 % of the level of the note", 0},
    {"decay", "D20 s", "from the loudest moment to -20 dB with the key held", 2},
    {"release", "rel s", "from the phrase's last key-up to -20 dB", 2},
    {"fade", "fade s", "from the phrase's last key-up to -60 dB", 1},
    {"centroid", "cog Hz", "centre of the note's power from 20 Hz to 16 kHz", 0},
    {"harmonicity", "harm", "share of the note's power at its harmonics", 3},
    {"low share", "low", "share of the note's power below 200 Hz", 2},
    {"flatness", "flat", "geometric over arithmetic mean of the note's spectrum", 3},
    {"width", "width", "side against mid of the phrase, dB", 1},
    {"mono loss", "mono", "what the phrase loses as a mono sum, dB", 1},
    {"modulation", "mod %", "swing of the note's level or brightness at 0.5 to 12 Hz", 0},
    {"flux", "flux %", "how much the note's spectrum differs from one 21 ms to the next", 1},
    {"offset", "offset", "standing mean of the phrase, dBFS", 0},
    {"velocity level", "vel dB", "level gained from velocity 40 to 120", 1},
    {"velocity brightness", "vel %", "centroid change from velocity 40 to 120", 0},
    {"low width", "lo wid", "side against mid of the phrase below 200 Hz, dB", 1},
    {"brightness fall", "fall %", "how much the centroid falls in the first 0.5 s", 0},
    {"level after 4 s", "4s dB", "level of the held note after 4 s against its loudest", 0},
    {"onsets", "onsets", "attacks of the phrase per beat at 120 bpm", 1},
    {"breath brightness", "brth %", "centroid change by full breath controller", 0},
    {"fundamentals", "tones", "distinct tones of the note from an octave below the key on", 0},
};
static_assert(std::size(kDescriptorColumns) == kDescriptorCount);

struct Descriptors {
    std::array<double, kDescriptorCount> values{};
    double cpuNsPerFrame = 0.0; // see cpuNsPerFrameOf

    double& operator[](Descriptor d) { return values[static_cast<std::size_t>(d)]; }
    double operator[](Descriptor d) const { return values[static_cast<std::size_t>(d)]; }
};

// Plays the program several times; about half a second of computing. What no rule of the category
// asks for and no column of all needs (breath, fundamentals) is measured only where it means
// something and else 0.
Descriptors describe(const ProgramRecord& program);

// What eight held notes cost, or two of programs that make a chord of each; varies with whatever
// else the machine does.
double cpuNsPerFrameOf(const ProgramRecord& program);

int categoryOf(const ProgramRecord& program);

} // namespace tolm
