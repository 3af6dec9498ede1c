#include "fx/equaliser.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr float kGainRangeDb = 10.0f;

// Steps of a knob stay below these ratios, however fast it turns.
constexpr float kFrequencyJump = 2.0f;
constexpr float kQJump = 4.0f;

bool isFar(float a, float b, float ratio)
{
    return a > b * ratio || b > a * ratio;
}

double flush(double value)
{
    return std::abs(value) < 1e-9 ? 0.0 : value;
}

} // namespace

void EqualiserBand::setParameter(int index, float value)
{
    switch (index) {
    case type:
        type_ = static_cast<Type>(std::clamp(static_cast<int>(value * 2.01f), 0, 2));
        break;
    case frequency:
        frequencyHz_ = curve(value, 10.0f, 10000.0f);
        break;
    case quality:
        q_ = curve(value, 0.1f, 10.0f);
        break;
    case gain:
        gain_ = dbGain(value, kGainRangeDb);
        break;
    default:
        break;
    }
}

// All three by the bilinear transform s = c (1 - 1/z) / (1 + 1/z). Peaking and low shelf map the
// frequency straight, without pre-warping: their place in the top octave is part of the sound.

// (s^2 + s g w / Q + w^2) / (s^2 + s w / Q + w^2)
Biquad EqualiserBand::peaking() const
{
    const double g = static_cast<double>(gain_);
    const double c = 2.0 * sampleRateHz();
    const double w = 2.0 * kPi * static_cast<double>(frequencyHz_);
    const double bandwidth = c * w / static_cast<double>(q_);
    const double d = c * c + bandwidth + w * w;
    Biquad f;
    f.b0 = (c * c + g * bandwidth + w * w) / d;
    f.b1 = (2.0 * w * w - 2.0 * c * c) / d;
    f.b2 = (c * c - g * bandwidth + w * w) / d;
    f.a1 = f.b1;
    f.a2 = (c * c - bandwidth + w * w) / d;
    return f;
}

// Boost moves the zero up, cut moves the pole up: the two are mirror images in dB.
Biquad EqualiserBand::lowShelf() const
{
    const double g = static_cast<double>(gain_);
    const double c = 2.0 * sampleRateHz();
    const double w = 2.0 * kPi * static_cast<double>(frequencyHz_);
    const double zero = g > 1.0 ? w * g : w;
    const double pole = g > 1.0 ? w : w / g;
    const double d = c + pole;
    return {(c + zero) / d, (zero - c) / d, 0.0, (pole - c) / d, 0.0};
}

Biquad EqualiserBand::highShelf() const
{
    const double g = static_cast<double>(gain_);
    const double c = 2.0 * sampleRateHz();
    const double hz = clampCorner(static_cast<double>(frequencyHz_));
    const double w = c * std::tan(kPi * hz / sampleRateHz());
    const double zero = g > 1.0 ? c * g : c;
    const double pole = g > 1.0 ? c : c / g;
    const double d = w + pole;
    return {(w + zero) / d, (w - zero) / d, 0.0, (w - pole) / d, 0.0};
}

Biquad EqualiserBand::coefficients() const
{
    switch (type_) {
    case Type::lowShelf:
        return lowShelf();
    case Type::highShelf:
        return highShelf();
    default:
        return peaking();
    }
}

// A filter low and narrow takes the last two outputs of a different one for the start of a swing
// that can be hundreds of times louder than the signal. After a jump the memory is therefore that
// of a band at 0 dB.
void EqualiserBand::softenJump()
{
    if (type_ != lastShape_.type || isFar(frequencyHz_, lastShape_.frequencyHz, kFrequencyJump) ||
        isFar(q_, lastShape_.q, kQJump)) {
        for (Memory& m : memory_) {
            m.y1 = m.x1;
            m.y2 = m.x2;
        }
    }
    lastShape_ = {type_, frequencyHz_, q_};
}

// Both channels side by side: the recursion is serial, and two of them overlap. Terms are paired so
// that a band at 0 dB, where b = a, returns its input bit by bit, and the latest output comes in
// last.
void EqualiserBand::process(int frames, float* const* channels)
{
    softenJump();
    const Biquad f = coefficients();
    std::array<Memory, 2> memory = memory_;
    for (int i = 0; i < frames; ++i) {
        for (std::size_t c = 0; c < 2; ++c) {
            Memory& m = memory[c];
            const double x = static_cast<double>(channels[c][i]);
            const double y = (f.b0 * x + (f.b2 * m.x2 - f.a2 * m.y2)) + (f.b1 * m.x1 - f.a1 * m.y1);
            m.x2 = m.x1;
            m.x1 = x;
            m.y2 = m.y1;
            m.y1 = y;
            channels[c][i] = static_cast<float>(y);
        }
    }
    for (std::size_t c = 0; c < 2; ++c)
        memory_[c] = {flush(memory[c].x1), flush(memory[c].y1), flush(memory[c].x2),
                      flush(memory[c].y2)};
}

} // namespace tolm
