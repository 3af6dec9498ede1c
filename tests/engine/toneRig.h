#pragma once
// A rig whose voice path is known to the number: one held voice at full envelope level, an open
// two-pole low-pass that can be undone, a gain of 0.2.

#include "tests/engine/rig.h"

#include <span>
#include <vector>

namespace tolm {

inline constexpr double kVoiceGain = 0.2;

// Setting value of an oscillator shape 0..3.
inline float shapeValue(int shape)
{
    return static_cast<float>(shape) / 3.0f + 0.001f;
}

// Coefficient of a state-variable section at a cutoff index.
inline double svfCoefficientAt(double index, double rateHz)
{
    const double hz = 22000.0 * std::pow(2200.0, (index - 2048.0) / 2048.0);
    return 2.0 * std::sin(kPi * hz / (3.0 * rateHz));
}

// The two-pole low-pass without resonance, frame by frame.
class SvfModel {
public:
    double low(double x, double cutoff)
    {
        const double index = std::clamp(std::trunc(cutoff * 2048.0), 0.0, 2047.0);
        const double f = svfCoefficientAt(index, kRate);
        band_ += f * (x - low_ - band_);
        return low_ += f * band_;
    }

private:
    double low_ = 0.0;
    double band_ = 0.0;
};

// Trunc of pitch (1/128 semitone) to the phase step of one frame.
inline std::uint32_t stepOfPitch(int pitch, double rateHz)
{
    const auto hz = static_cast<float>(1.021974609375 * std::exp2(pitch / 1536.0));
    return static_cast<std::uint32_t>(double{hz} * kPhaseTurn / rateHz);
}
inline int pitchOfKey(int key)
{
    return (key + 36) * 128;
}

class ToneRig : public EngineRig {
public:
    explicit ToneRig(double rateHz = kRate) : EngineRig(rateHz), rateHz_(rateHz)
    {
        for (int id : {kOsc1Fat, kOsc2Fat, kOsc3Level, kOscMix, kNoiseColour, kNoiseLevel, kRingMod,
                       kOscFm, kFilterKeytrack, kFilterResonance, kFilterEnvAmount, kOscSync,
                       kFmFeedback, kVoiceSpread, kVoiceDetune, kVoices, kGlide, kFilterType})
            set(id, 0.0f);
        for (int id : {kOsc1Coarse, kOsc1Fine, kOsc2Coarse, kOsc2Fine, kVolume})
            set(id, 0.5f);
        for (int row = 1; row <= kMatrixRows; ++row)
            setRow(row, 0, 0, 0.0);
        set(kFilterCutoff, 1.0f);
    }

    EngineRecord& record() { return engine.record(); }
    double rateHz() const { return rateHz_; }

    // Voice `v` sounds at level 1 for as long as its key is held.
    VoiceSlot& hold(int key, std::size_t v = 0)
    {
        on(key);
        VoiceSlot& slot = record().slot[v];
        slot.amp = {1.0f, EnvelopeStage::sustain};
        return slot;
    }
    VoiceSlot& slot(std::size_t v = 0) { return record().slot[v]; }

    // What went into the open filter: the mix of the oscillators, full scale 1.
    std::vector<double> mix(int frames, int block = 512)
    {
        const double f = svfCoefficientAt(2047.0, rateHz_);
        const Stereo out = render(frames, block);
        std::vector<double> x;
        for (const float sample : out.left) {
            const double lp = sample / kVoiceGain;
            const double bp = (lp - lp_) / f;
            const double hp = (bp - bp_) / f;
            x.push_back(hp + lp_ + bp_);
            lp_ = lp;
            bp_ = bp;
        }
        return x;
    }

private:
    double rateHz_;
    double lp_ = 0.0;
    double bp_ = 0.0;
};

} // namespace tolm
