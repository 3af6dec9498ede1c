#pragma once
// Tempo-synchronised stereo delay: nine modes, a one-pole colour filter in the feedback path, and a
// delay time that LFO 2 can sweep.

#include "fx/DelayModulation.h"
#include "fx/Module.h"
#include "fx/delayTaps.h"
#include "fx/onePoleMemory.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tolm {

class FxDelay : public Module {
public:
    // Each 0..1. The patch's one feedback setting reaches both feedbacks; both sides decay by the
    // first. The second and the pan are accepted and change nothing.
    enum Setting { type, feedback1, steps1, steps2, feedback2, pan2, colour, dryWet };
    static constexpr int kModeCount = 9;

    // All that a mode's kernel works on.
    using Filters = std::array<OnePoleMemory, 2>;
    using Diffusers = std::array<std::array<DelayDiffuser, 2>, 2>; // [channel][in order]
    struct State {
        std::array<std::vector<float>, 2> rings;
        Filters filters;
        Diffusers diffusers;
        std::uint32_t writePosition = 0;
    };
    // What holds for one block.
    struct Block {
        int frames = 0;
        std::uint32_t ahead = 0;  // of the write position: where the right tap counts from
        double delayFrames = 0.0; // of the left tap
        double sweepFrames = 0.0; // change of it at LFO value 1
        DelayModulation modulation;
        OnePole colour;
        float dry = 1.0f, wet = 0.0f;
        float feedback = 0.0f, rightFeedback = 0.0f;
        float ownShare = 0.0f; // of a side's own tap in its output; ping-pong modes
    };

    FxDelay();
    virtual void setSampleRate(double hz);
    virtual void reset();
    virtual void setParameter(int index, float value);
    virtual void process(int frames, float* const* channels, float tempo,
                         const DelayModulation& modulation);

private:
    void setColour(float value);
    double noteFrames(float steps, double tempo) const;

    State state_;
    bool cleared_ = true; // nothing has sounded since the last reset
    int mode_ = 0;
    float feedback_ = 0.0f;
    float wet_ = 0.0f;
    float stepsLeft_ = 0.0f;
    float stepsRight_ = 0.0f;
    bool colourPasses_ = true;
    OnePole colour_;
};

} // namespace tolm
