#pragma once
// What goes into the reverb: a ring of past input, and the early reflections that are read from it.

#include "fx/Random.h"
#include "fx/reverbTables.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tolm {

// The reverb works on stretches of at most this many frames, stage by stage.
inline constexpr int kReverbChunk = 128;
using ReverbBuffer = std::array<float, kReverbChunk>;

// Cells are repeated beyond the end, so that a chunk with any delay is one contiguous stretch.
class InputRing {
public:
    InputRing() { resize(0); }

    // Room for this delay.
    void resize(int longestDelay);
    void clear();
    void write(const float* chunk, int frames);
    // The last chunk written, `delayFrames` earlier. 0 is the chunk itself.
    const float* at(int delayFrames) const
    {
        return &cells_[(start_ - static_cast<std::uint32_t>(delayFrames)) & mask_];
    }
    int longestDelay() const { return static_cast<int>(mask_) - kReverbChunk; }

private:
    std::vector<float> cells_;
    std::uint32_t mask_ = 0;
    std::uint32_t start_ = 0; // of the last chunk
    std::uint32_t next_ = 0;
};

class EarlyReflections {
public:
    static constexpr int kDiffuseTaps = 128;

    // `lineLengths` are those of the long lines. "Room" also gets its diffuse taps, with random
    // gains.
    void build(const ReverbRow& row, double sampleRateHz, int preDelayFrames,
               const std::array<int, kReverbLongLines>& lineLengths, Random& random);
    void render(const InputRing& ring, int frames, ReverbBuffer& left, ReverbBuffer& right) const;
    int lastDiffuseDelay() const { return diffuse_.delays[kDiffuseTaps - 1]; }

private:
    struct Taps {
        int count = 0;
        std::array<int, kDiffuseTaps> delays{}; // frames
        std::array<float, kDiffuseTaps> gains{};

        void add(int delayFrames, float gain);
        void addTo(const InputRing& ring, int frames, ReverbBuffer& out) const;
    };

    Taps left_;
    Taps right_;
    Taps diffuse_; // added on the left, subtracted on the right
};

} // namespace tolm
