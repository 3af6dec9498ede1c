#pragma once
// The numbers that make the reverb's types: one row per type, early reflections, output weights.

#include <array>
#include <span>

namespace tolm {

inline constexpr int kReverbLongLines = 64;
inline constexpr int kReverbMixedLines = 16;
inline constexpr int kReverbLineTaps = 16; // early reflections that stand before the long lines

// Which network makes the tail.
enum class ReverbNetwork {
    parallel, // all long lines, each on its own
    mixed,    // 16 lines through a Hadamard matrix
    half,     // the odd long lines, with dense early reflections
};

// An early reflection; the position is in frames at 48 kHz.
struct EarlyTap {
    int position;
    float gain;
};
struct EarlySet {
    std::span<const EarlyTap> left, right;
};

struct ReverbRow {
    const char* name;
    ReverbNetwork network;
    // Of the low-pass before everything. Free to choose: a room keeps its sparkle, distance takes
    // it away.
    double inputCutoffHz;
    float inputGain; // of the sum of both channels
    const EarlySet* early;
    double lineTapSeconds; // place of the early reflections before the long lines; 0: none
    double timeScale;      // of the early reflections
    float earlyGain;
};
inline constexpr int kReverbTypeCount = 5;
extern const std::array<ReverbRow, kReverbTypeCount> kReverbTypes;

// What a line takes and gives: it receives sign * (state - input) and adds to both sums.
struct LineWeight {
    int line;
    float sign;
    float left, right;
};
// In the order of summation.
extern const std::array<LineWeight, kReverbLongLines> kParallelWeights;
extern const std::array<LineWeight, kReverbLongLines / 2> kHalfWeights;

using LineVector = std::array<float, kReverbMixedLines>;
extern const LineVector kMixedLeft;
extern const LineVector kMixedRight;
// Gains of the early reflections that stand before the long lines.
extern const LineVector kLineTapLeft;
extern const LineVector kLineTapRight;

} // namespace tolm
