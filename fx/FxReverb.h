#pragma once
// Reverb of five types: conditioned input, early reflections, a network of delay lines with prime
// lengths, and a modulated diffuser per channel. It rests once its input has been silent for longer
// than the decay.

#include "fx/Module.h"
#include "fx/Random.h"
#include "fx/ReverbInput.h"
#include "fx/ReverbLines.h"
#include "fx/onePoleMemory.h"
#include "fx/reverbTables.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tolm {

// All-pass whose delay an LFO sweeps by up to two frames.
class ReverbDiffuser {
public:
    explicit ReverbDiffuser(float gain) : gain_(gain) {}

    void setLength(int frames) { length_ = frames; }
    int length() const { return length_; }
    void clear() { cells_.fill(0.0f); }
    // The sweep is whole + fraction frames.
    float run(float x, int whole, float fraction);

private:
    static constexpr std::uint32_t kCells = 8192; // room for 768 kHz
    std::array<float, kCells> cells_{};
    std::uint32_t position_ = 0;
    int length_ = 1;
    float gain_;
};

class FxReverb : public Module {
public:
    // Each 0..1; the indices between are accepted and change nothing.
    enum Setting { type = 0, decay = 1, damp = 2, preDelay = 4, lowCut = 5, amount = 8 };

    explicit FxReverb(Random& random);
    virtual void setSampleRate(double hz);
    virtual void reset();
    virtual void setParameter(int index, float value);
    // In place. Amount and pre-delay reach a new value at the end of the block.
    virtual void process(int frames, float* const* channels);

    const ReverbLines& lines() const { return lines_; }
    bool isResting() const { return currentAmount_ < 0.0f; }

private:
    // What passes between the stages.
    struct Chunk {
        int frames;
        float* outLeft;
        float* outRight;
        ReverbBuffer tail;        // input of the network
        ReverbBuffer left, right; // its sums
        ReverbBuffer earlyLeft, earlyRight;
    };
    // A value that moves from one block's setting to the next.
    struct Ramp {
        float value = 0.0f;
        float step = 0.0f;
    };

    const ReverbRow& row() const { return kReverbTypes[static_cast<std::size_t>(type_)]; }
    void setType(int newType);
    void setPreDelay(float value);
    void updateDecay();
    void updateType();
    bool skipSilence(int frames, float* const* channels);
    void processChunk(Chunk& chunk, Ramp& fade, Ramp& mix);
    void condition(const Chunk& chunk);
    void tapInput(Chunk& chunk, Ramp& fade) const;
    void runNetwork(Chunk& chunk);
    void diffuse(Chunk& chunk);
    void mixOutput(const Chunk& chunk, Ramp& mix);

    Random& random_;
    int type_ = -1; // none yet: the first one set always counts as new
    int preDelayFrames_ = 0;
    int previousPreDelay_ = 0;
    int lineOffset_ = 0; // of the network input behind the pre-delay, "Room"
    float decaySeconds_ = kReverbDefaultDecaySeconds;
    float damping_ = 1.0f;
    float dampingSetting_ = 1.0f;
    float amount_ = 0.0f;
    float currentAmount_ = -1.0f; // negative: the next block starts at its target
    std::int64_t silentFrames_ = 0;
    bool cleared_ = true;

    OnePole lowpass_;
    OnePole highpass_;
    OnePoleMemory lowpassMemory_;
    OnePoleMemory highpassMemory_;
    InputRing ring_;
    EarlyReflections early_;
    ReverbLines lines_;
    std::array<ReverbDiffuser, 2> diffusers_;
    std::uint32_t lfoPhase_ = 0;
    // Delays the right channel a little, which widens the image.
    static constexpr std::uint32_t kSpreadCells = 2048; // room for 768 kHz
    std::array<float, kSpreadCells> spread_{};
    std::uint32_t spreadPosition_ = 0;
    std::uint32_t spreadFrames_ = 0;
};

} // namespace tolm
