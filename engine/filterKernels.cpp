#include "engine/filterKernels.h"

#include "fx/Module.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr int kLastSvfIndex = 2047;
constexpr float kOpenOffset = 0.999f; // from here on the second section is left out

// Both two-section kinds relate the second cutoff index to the first by a ratio of indices.
float splitRatio(float offset)
{
    return curve(offset, 0.5f, 2.0f);
}
float seriesRatio(float offset)
{
    return offset <= 0.5f ? curve(offset, 0.5f, 2.0f) : curve(offset, 0.25f, 4.0f);
}
float wideRatio(float offset)
{
    return curve(offset, 0.25f, 4.0f);
}

int indexOf(float position, int last)
{
    return static_cast<int>(std::clamp(position, 0.0f, static_cast<float>(last)));
}

float svfCoefficient(const FilterCall& call, float position)
{
    const auto index = static_cast<std::size_t>(indexOf(position, kLastSvfIndex));
    return std::min(call.tables->svf[index], call.coefficientLimit);
}

float damping(float resonance)
{
    return std::min(1.0f, 1.0f - 0.9f * resonance);
}

// One state-variable section; `state` points at its low-pass and band-pass integrators.
struct Section {
    float lp;
    float bp;

    explicit Section(const float* state) : lp(state[0]), bp(state[1]) {}
    template <int output>
    float step(float x, float f, float q)
    {
        const float hp = x - lp - q * bp;
        bp += f * hp;
        lp += f * bp;
        if constexpr (output == kLow)
            return lp;
        else if constexpr (output == kBand)
            return bp;
        else if constexpr (output == kHigh)
            return hp;
        else
            return hp + lp;
    }
    void store(float* state) const
    {
        state[0] = flushTiny(lp);
        state[1] = flushTiny(bp);
    }
};

} // namespace

void lowpass12(const FilterCall& call)
{
    Section section(call.state->data());
    for (std::size_t i = 0; i < call.voice.size(); ++i)
        call.voice[i] = section.step<kLow>(call.voice[i], svfCoefficient(call, call.position[i]),
                                           damping(call.resonance[i]));
    section.store(call.state->data());
}

void lowpass24(const FilterCall& call)
{
    Section first(call.state->data());
    Section second(call.state->data() + 2);
    for (std::size_t i = 0; i < call.voice.size(); ++i) {
        const float f = svfCoefficient(call, call.position[i]);
        const float q = damping(call.resonance[i]);
        call.voice[i] = second.step<kLow>(first.step<kLow>(call.voice[i], f, q), f, q);
    }
    first.store(call.state->data());
    second.store(call.state->data() + 2);
}

template <int sectionOutput>
void splitFilter(const FilterCall& call)
{
    const float ratio = splitRatio(call.offset);
    Section first(call.state->data());
    Section second(call.state->data() + 2);
    for (std::size_t i = 0; i < call.voice.size(); ++i) {
        const float position = call.position[i];
        const float q = damping(call.resonance[i]);
        const float a = first.step<sectionOutput>(call.voice[i], svfCoefficient(call, position), q);
        const float b = second.step<kLow>(call.split[i], svfCoefficient(call, position * ratio), q);
        call.voice[i] = a + b;
    }
    first.store(call.state->data());
    second.store(call.state->data() + 2);
}
template void splitFilter<kLow>(const FilterCall&);
template void splitFilter<kBand>(const FilterCall&);
template void splitFilter<kHigh>(const FilterCall&);
template void splitFilter<kNotch>(const FilterCall&);

template <int sectionOutput>
void seriesFilter(const FilterCall& call)
{
    const float ratio = seriesRatio(call.offset);
    const bool open = call.offset >= kOpenOffset;
    Section first(call.state->data());
    Section second(call.state->data() + 2);
    for (std::size_t i = 0; i < call.voice.size(); ++i) {
        const float position = call.position[i];
        const float q = damping(call.resonance[i]);
        const float y = first.step<sectionOutput>(call.voice[i], svfCoefficient(call, position), q);
        call.voice[i] = open ? y : second.step<kLow>(y, svfCoefficient(call, position * ratio), q);
    }
    first.store(call.state->data());
    if (!open)
        second.store(call.state->data() + 2);
}
template void seriesFilter<kBand>(const FilterCall&);
template void seriesFilter<kHigh>(const FilterCall&);
template void seriesFilter<kNotch>(const FilterCall&);

// ---- Ladders --------------------------------------------------------------------------------

namespace {

// With a zero at -0.3 the four stages become unstable at a loop gain of 4.0 to 3.5 over the whole
// range of cutoffs. Each stage has a gain of 3.5^(1/4), so that 0.95 of feedback stays below that
// by 5 to 17 %: a resonance of about 16 dB over the pass band.
constexpr float kLadderZero = 0.3f;
constexpr float kStageGain = 1.3677824f;
constexpr float kLadderInput = 0.35f;
constexpr float kLadderFeedback = 0.95f;
// The tap after two stages has less gain by that of the other two.
constexpr float kTwoPoleMakeUp = kStageGain * kStageGain;

struct LadderStage {
    float x1;
    float y1;

    // b = gain * (1 + q) / 1.3; the pole is at -q.
    float step(float x, float b, float q)
    {
        const float y = b * (x + kLadderZero * x1) - q * y1;
        x1 = x;
        y1 = y;
        return y;
    }
};

} // namespace

template <int poles>
void ladder(const FilterCall& call)
{
    FilterState& s = *call.state;
    // A stage's last input is the last output of the stage before it.
    LadderStage stage[4] = {{s[0], s[1]}, {s[1], s[2]}, {s[2], s[3]}, {s[3], s[4]}};
    const int cap = call.tables->ladderCap;
    for (std::size_t i = 0; i < call.voice.size(); ++i) {
        const float q =
            call.tables->ladder[static_cast<std::size_t>(indexOf(call.position[i], cap))];
        const float b = kStageGain / (1.0f + kLadderZero) * (1.0f + q);
        const float input =
            call.voice[i] * kLadderInput - kLadderFeedback * call.resonance[i] * stage[3].y1;
        const float y1 = stage[0].step(input, b, q);
        const float y2 = stage[1].step(y1, b, q);
        const float y3 = stage[2].step(y2, b, q);
        const float y4 = stage[3].step(y3, b, q);
        call.voice[i] = poles == 2 ? y2 * kTwoPoleMakeUp : y4;
    }
    s[0] = flushTiny(stage[0].x1);
    for (std::size_t k = 0; k < 4; ++k)
        s[k + 1] = flushTiny(stage[k].y1);
}
template void ladder<2>(const FilterCall&);
template void ladder<4>(const FilterCall&);

// ---- Comb -----------------------------------------------------------------------------------

namespace {

constexpr float kCombFeedback = 0.95f;
constexpr float kCombDamping = 1.0f; // of the low-pass behind it
constexpr float kShortestComb = 2.0f;
constexpr float kLongestComb = static_cast<float>(kCombFrames - 2);

float combDelay(const FilterCall& call)
{
    float frames =
        call.combFrames / (wideRatio(call.offset) * std::exp2(std::clamp(call.comb, -4.0f, 4.0f)));
    while (frames > kLongestComb)
        frames *= 0.5f; // teeth an octave up rather than out of reach
    return std::max(frames, kShortestComb);
}

} // namespace

// A comb whose teeth stand on the harmonics of oscillator 1, moved by the offset over two octaves
// up and down, fed back by the resonance, and a low-pass of 24 dB per octave behind it.
void combLowpass(const FilterCall& call)
{
    FilterState& s = *call.state;
    Section first(s.data());
    Section second(s.data() + 2);
    CombLine& line = *call.line;
    const float target = combDelay(call);
    float delay = line.filled == 0 ? target : line.delayFrames;
    const float slope = (target - delay) / static_cast<float>(call.voice.size());
    for (std::size_t i = 0; i < call.voice.size(); ++i) {
        const auto whole = static_cast<int>(delay);
        const float fraction = delay - static_cast<float>(whole);
        const float tap = line.tap(whole) * (1.0f - fraction) + line.tap(whole + 1) * fraction;
        const float feedback = std::min(1.0f, kCombFeedback * call.resonance[i]);
        const float v = call.voice[i] + feedback * tap;
        line.push(v);
        // The teeth grow with the feedback; the level is held between pass band and peaks.
        const float y = 0.5f * (v + tap) * (1.0f - 0.6f * feedback);
        const float f = svfCoefficient(call, call.position[i]);
        call.voice[i] = second.step<kLow>(first.step<kLow>(y, f, kCombDamping), f, kCombDamping);
        delay += slope;
    }
    line.delayFrames = target;
    first.store(s.data());
    second.store(s.data() + 2);
}

// ---- LP24 -> LP12 and sweep -----------------------------------------------------------------

// The 24 dB part resonates in its second stage only, so that three peaks do not multiply.
void lowpass24Lowpass12(const FilterCall& call)
{
    FilterState& s = *call.state;
    const float ratio = wideRatio(call.offset);
    Section first(s.data());
    Section second(s.data() + 2);
    Section third(s.data() + 4);
    for (std::size_t i = 0; i < call.voice.size(); ++i) {
        const float f = svfCoefficient(call, call.position[i]);
        const float f2 = svfCoefficient(call, call.position[i] * ratio);
        const float y = first.step<kLow>(call.voice[i], f, 1.0f);
        const float z = second.step<kLow>(y, f, std::min(1.0f, 1.0f - 0.9f * call.resonance[i]));
        call.voice[i] = third.step<kLow>(z, f2, std::min(1.0f, 1.0f - 0.96f * call.resonance[i]));
    }
    first.store(s.data());
    second.store(s.data() + 2);
    third.store(s.data() + 4);
}

// The offset morphs one section's output: low-pass at 0, band-pass at 0.5, high-pass at 1.
void sweep(const FilterCall& call)
{
    const float low = std::max(0.0f, 1.0f - 2.0f * call.offset);
    const float high = std::max(0.0f, 2.0f * call.offset - 1.0f);
    const float band = 1.0f - low - high;
    Section section(call.state->data());
    for (std::size_t i = 0; i < call.voice.size(); ++i) {
        const float f = svfCoefficient(call, call.position[i]);
        const float hp = section.step<kHigh>(call.voice[i], f, damping(call.resonance[i]));
        call.voice[i] = low * section.lp + band * section.bp + high * hp;
    }
    section.store(call.state->data());
}

} // namespace tolm
