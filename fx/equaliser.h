#pragma once
// One equaliser band: peaking filter, low shelf or high shelf, -10 to +10 dB.

#include "fx/Module.h"

#include <array>

namespace tolm {

// y = b0 * x + b1 * x[-1] + b2 * x[-2] - a1 * y[-1] - a2 * y[-2]. Double precision: at 10 Hz and
// 384 kHz the coefficients differ from those of 0 Hz by less than a float resolves, and rounded
// outputs in the recursion would be heard as rumble.
struct Biquad {
    double b0 = 1.0, b1 = 0.0, b2 = 0.0;
    double a1 = 0.0, a2 = 0.0;
};

class EqualiserBand : public Module {
public:
    enum Setting { type, frequency, quality, gain }; // each 0..1
    enum class Type { peaking, lowShelf, highShelf };

    void setSampleRate(double hz) { setRate(static_cast<float>(hz)); }
    void setParameter(int index, float value);
    void process(int frames, float* const* channels);

private:
    struct Memory {
        double x1 = 0.0, y1 = 0.0, x2 = 0.0, y2 = 0.0;
    };
    struct Shape {
        Type type;
        float frequencyHz, q;
    };

    void softenJump();

    Biquad coefficients() const;
    Biquad peaking() const;
    Biquad lowShelf() const;
    Biquad highShelf() const;

    Type type_ = Type::peaking;
    float frequencyHz_ = 10.0f; // 10..10000
    float q_ = 0.1f;            // 0.1..10; only the peaking filter has one
    float gain_ = 1.0f;         // linear
    std::array<Memory, 2> memory_;
    Shape lastShape_{Type::peaking, 10.0f, 0.1f}; // of the block before
};

} // namespace tolm
