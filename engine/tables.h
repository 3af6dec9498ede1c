#pragma once
// Tables that stand for transcendental functions in per-sample code.
//
// ConstantTables is one block of read-only data, generated at build time by tools/tableGen and
// shared by all instances. RateTables depends on the sample rate and PitchTable can be retuned, so
// each engine owns its own.

#include "engine/constants.h"

#include <array>
#include <cstdint>

namespace tolm {

// One cycle and a guard: entry 2048 repeats entry 0, so that an entry and its next lie side by
// side.
using Wave = std::array<std::int16_t, kTableSize + 1>;

inline constexpr int kResidualOffsets = 128; // sub-sample positions
inline constexpr int kResidualFrames = 32;
inline constexpr int kSaturationSteps = 4096;

struct ConstantTables {
    // trunc(32767 * 0.999 * sin(2 pi i / 2048)); entry 2048 equals entry 0.
    std::array<std::int16_t, kTableSize + 1> sine;
    // Rising saw per semitone s: harmonics up to 20050 Hz at pitch 128 s, peak of table 0 is 32767.
    std::array<Wave, kSemitoneCount> saw;
    Wave square;   // band-limited, first half negative
    Wave triangle; // starts at 0, rising
    // Minimum-phase band-limited step: what remains to be added, per unit height (value before
    // minus value after), j frames plus row/128 frame after the step. Falls from 1 to 0.
    std::array<std::array<float, kResidualFrames>, kResidualOffsets> stepResidual;
    // [wave][octave]; row 70 repeats row 69 and is only a cross-fade partner.
    std::array<std::array<Wave, kWaveOctaves>, kWaveCount + 1> waves;
    // 0.999 * sin(2 pi i / 2048) as float; entry 2048 equals entry 0.
    std::array<float, kTableSize + 1> floatSine;
    // tanh(80 i / 4096), with guard entries so that i + 1 is readable at full scale.
    std::array<float, kSaturationSteps + 2> saturation;
};

extern "C" const ConstantTables tolmConstantTables;
inline const ConstantTables& constantTables()
{
    return tolmConstantTables;
}

// Pitch offset of a wave in 1/128 semitone: waves of several cycles play lower.
inline constexpr std::int16_t wavePitchOffset(int wave)
{
    if (wave >= 65)
        return -4608;
    if (wave >= 63)
        return -1536;
    return wave >= 60 ? -5102 : 0;
}

inline constexpr int kCutoffEntries = 2254;
inline constexpr int kCutoffScale = 2048; // index of a normalised cutoff of 1
inline constexpr int kTimeSteps = 1024;   // index of a normalised time of 1
// Spike tables grow with the rate: 1024 frames at 44100 Hz, room for 768 kHz.
inline constexpr int kMaxSpikeFrames = 17834;

struct RateTables {
    // Cutoff tables over index i: 22000 * 2200^((i - 2048) / 2048) Hz.
    std::array<float, kCutoffEntries> svf;             // 2 sin(pi fc / (3 sr))
    std::array<float, kCutoffEntries> onePoleGain;     // k / (k + 2 sr), k = 2 sr tan(pi fc / sr)
    std::array<float, kCutoffEntries> onePoleFeedback; // (k - 2 sr) / (k + 2 sr)
    std::array<float, kCutoffEntries> onePole;         // 1 - exp(-2 pi fc / sr)
    std::array<float, kCutoffEntries> ladder;          // (2 (1 - exp(-2 pi fc / sr)) - 1) 0.6 - 0.4
    int ladderCap = 2046;                              // highest index that the ladders read

    // Envelope times over index i: t = 2 * 10000^(i / 1024) ms.
    std::array<float, kTimeSteps + 1> timeMultiplier; // 0.1^(1000 / (t sr))
    std::array<float, kTimeSteps + 1> timeIncrement;  // 1 / (t 0.001 sr)

    // Gain transients at note start, by frame of age.
    int spikeFrames = 1024;
    std::array<float, kMaxSpikeFrames> softSpike;
    std::array<float, kMaxSpikeFrames> hardSpike;
};

void buildRateTables(RateTables& tables, double sampleRateHz);

// Frequency in Hz of every pitch: 1.021974609375 * 2^(p / 1536).
using PitchTable = std::array<float, kPitchCount>;
void buildPitchTable(PitchTable& table);

} // namespace tolm
