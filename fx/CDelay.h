#pragma once
// Flanger and chorus: one clocked delay line per channel, the right one's LFO a little faster and
// ahead, so that the image moves.

#include "fx/CDelayLine.h"

#include <memory>

namespace tolm {

class CDelay {
public:
    CDelay();

    // A new rate builds new lines with default settings; the patch's are applied again by the
    // engine. The same rate changes nothing.
    void setSampleRate(double hz);
    // 0..1; the delay grows with its square.
    void setDelay(float delay);
    void setLfoRate(double hz);
    void setDepth(float depth);
    void setAmount(float amount);
    void setInvertWet(float value);
    void setFeedback(float feedback);
    void setSmoothing(float value);
    void process(int frames, float* const* channels);

private:
    void applyWet();

    std::unique_ptr<CDelayLine> left_;
    std::unique_ptr<CDelayLine> right_;
    double sampleRateHz_ = -1.0; // so that the first rate counts as new
    float amount_ = 0.0f;
    bool invertWet_ = false;
    bool invertFeedback_ = false;
    bool enabled_ = false;
};

} // namespace tolm
