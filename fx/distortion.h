#pragma once
// Distortion: a one-pole tone filter and one of five wave shapers, in nine combinations.

#include "fx/Module.h"
#include "fx/onePoleMemory.h"

#include <array>

namespace tolm {

class Distortion : public Module {
public:
    enum Setting { type, colour, drive, amount }; // each 0..1
    static constexpr int kTypeCount = 9;

    // One channel's two filter stages.
    using Memory = std::array<OnePoleMemory, 2>;

    // What a block's kernel needs.
    struct Block {
        float drive = 1.0f;
        float makeUp = 1.0f;
        OnePole tone;
        OnePole dcBlocker;
        // The mix at the first sample and its step per sample.
        float dry = 1.0f, dryStep = 0.0f;
        float wet = 0.0f, wetStep = 0.0f;
    };

    void setSampleRate(double hz) { setRate(static_cast<float>(hz)); }
    void setParameter(int index, float value);
    // In place. A new amount is reached at the end of the block.
    void process(int frames, float* const* channels);

private:
    OnePole toneCoefficients(bool highpass) const;

    int type_ = 0;
    float colour_ = 0.0f;
    float drive_ = 0.0f;
    float amount_ = 0.0f;
    float dry_ = -1.0f; // where the ramps have got to; negative before the first block
    float wet_ = 0.0f;
    std::array<Memory, 2> memory_;
};

} // namespace tolm
