#pragma once
// Phaser, flanger and chorus. The phaser is a chain of first-order all-pass stages in a feedback
// loop, swept alike on both channels; the other modes hand the audio to a clocked delay.

#include "fx/CDelay.h"
#include "fx/Module.h"

#include <array>
#include <cstdint>

namespace tolm {

inline constexpr int kPhaserStages = 8;

class FxVintagePhaser : public Module {
public:
    enum Setting { rate, frequency, feedback, amount, depth, mode }; // each 0..1
    static constexpr int kModeCount = 7;

    // Low-pass states of the stages (each all-pass is made of one) and what is fed back, for both
    // channels.
    struct Network {
        std::array<std::array<float, 2>, kPhaserStages> lowpass{};
        std::array<double, 2> fedBack{};
    };
    // Levels that a block uses.
    struct Mix {
        double feedback;
        float wet, dry;
    };

    FxVintagePhaser();
    virtual void setSampleRate(double hz);
    virtual void reset();
    void setParameter(int index, float value);
    void process(int frames, float* const* channels);

private:
    void setMode(int newMode);
    void processNetwork(int frames, float* const* channels);
    void sweep(int frames, std::uint32_t increment, double* coefficients);

    Network network_;
    CDelay delay_;
    int mode_ = 0;
    float feedback_ = 0.0f;
    double centreHz_ = 200.0;
    float wet_ = 0.0f;
    float rateHz_ = 0.05f;
    float depth_ = 0.0f;
    std::uint32_t phase_ = 0;
};

} // namespace tolm
