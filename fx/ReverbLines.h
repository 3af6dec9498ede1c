#pragma once
// The reverb's recirculating delay lines: 64 long lines side by side, and 16 lines that are mixed
// through a Hadamard matrix. One pool of memory serves both; only one kind runs at a time.

#include "fx/ReverbInput.h"
#include "fx/reverbTables.h"

#include <array>
#include <span>
#include <vector>

namespace tolm {

inline constexpr float kReverbDefaultDecaySeconds = 5.028f;

// Lines by index, as parallel arrays.
template <std::size_t count>
struct DelayLines {
    std::array<int, count> length{};
    std::array<float*, count> cells{};
    std::array<int, count> position{};
    std::array<float, count> gain{};
    std::array<float, count> state{}; // of the one-pole in each line
};

class ReverbLines {
public:
    // Lays out both kinds for a rate and clears them. The decay is the default, undamped, until
    // it is set again.
    void resize(double sampleRateHz);
    void clear();
    // Every line loses 60 dB in the decay time. `damping` 0.5..1 is the share of new signal in the
    // long lines' one-poles; `setting` 0.15..1 the treble's share of the decay in the mixed ones.
    void setDecay(double sampleRateHz, float decaySeconds, float damping, float setting);

    const std::array<int, kReverbLongLines>& longLengths() const { return long_.length; }
    const std::array<int, kReverbMixedLines>& mixedLengths() const { return mixed_.length; }
    // No stage may look back less than a chunk: this many frames at a time.
    int mixedChunk() const { return mixedChunk_; }

    // Add to the sums. At most kReverbChunk, for the mixed lines mixedChunk() frames.
    void runLong(std::span<const LineWeight> weights, float damping, int frames,
                 const ReverbBuffer& input, ReverbBuffer& left, ReverbBuffer& right);
    void runMixed(int frames, const ReverbBuffer& input, ReverbBuffer& left, ReverbBuffer& right);
    // Normalises the sums of the mixed lines.
    float mixedLevel() const { return mixedLevel_; }
    void endBlock();

private:
    std::vector<float> pool_;
    DelayLines<kReverbLongLines> long_;
    DelayLines<kReverbMixedLines> mixed_;
    LineVector mixedLoss_{}; // one-pole coefficients
    float mixedLevel_ = 0.0f;
    int mixedChunk_ = 1;
};

} // namespace tolm
