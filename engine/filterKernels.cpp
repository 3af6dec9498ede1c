#include "engine/filterKernels.h"

#include "engine/unroll.h"
#include "fx/Module.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr int kLastSvfIndex = 2047;

// ---- What every frame needs, before the recursion ------------------------------------------

// Cutoff indices of position * ratio, truncated and clamped to 0..last.
void indices(const FilterCall& call, float ratio, int last,
             std::array<std::int32_t, kMaxSliceFrames>& out)
{
    const auto highest = static_cast<float>(last);
    const std::size_t frames = call.frames;
    for (std::size_t i = 0; i < frames; ++i)
        out[i] =
            static_cast<std::int32_t>(atMost(atLeast(call.position[i] * ratio, 0.0f), highest));
}

void svfCoefficients(const FilterCall& call, float ratio, float limit, SliceBuffer& f)
{
    std::array<std::int32_t, kMaxSliceFrames> index;
    indices(call, ratio, kLastSvfIndex, index);
    const float* table = call.tables->svf.data();
    const std::size_t frames = call.frames;
    TOLM_UNROLL
    for (std::size_t i = 0; i < frames; ++i)
        f[i] = atMost(table[index[i]], limit);
}

// min(1, 1 - depth * resonance)
void damping(const FilterCall& call, float depth, SliceBuffer& q)
{
    const std::size_t frames = call.frames;
    for (std::size_t i = 0; i < frames; ++i)
        q[i] = atMost(1.0f - depth * call.resonance[i], 1.0f);
}

constexpr float kSvfResonance = 0.9f;
// A section that always runs with full damping, q = 1, is stable below sqrt(5) - 1.
constexpr float kUndampedLimit = 0.97f * 1.2360680f;

void prepareSection(FilterCall& call)
{
    svfCoefficients(call, 1.0f, call.coefficientLimit, call.f);
    damping(call, kSvfResonance, call.q);
}

// ---- State-variable sections ---------------------------------------------------------------

// Outputs of a section.
enum class Output { low, band, high, notch };

struct Section {
    float lp;
    float bp;

    template <Output output>
    float step(float x, float f, float q)
    {
        const float hp = x - lp - q * bp;
        bp += f * hp;
        lp += f * bp;
        if constexpr (output == Output::low)
            return lp;
        else if constexpr (output == Output::band)
            return bp;
        else if constexpr (output == Output::high)
            return hp;
        else
            return hp + lp;
    }
};

// Section n keeps its integrators at 2n and 2n + 1 of the voice's filter state.
Section loadSection(const FilterCall& call, std::size_t n)
{
    return {(*call.state)[2 * n], (*call.state)[2 * n + 1]};
}

void storeSection(FilterCall& call, std::size_t n, const Section& section)
{
    (*call.state)[2 * n] = flushTiny(section.lp);
    (*call.state)[2 * n + 1] = flushTiny(section.bp);
}

struct Lowpass12 {
    Section section;

    static void prepare(FilterCall& call) { prepareSection(call); }
    explicit Lowpass12(const FilterCall& call) : section(loadSection(call, 0)) {}
    void step(FilterCall& call, std::size_t i)
    {
        call.voice[i] = section.step<Output::low>(call.voice[i], call.f[i], call.q[i]);
    }
    void finish(FilterCall& call) const { storeSection(call, 0, section); }
};

struct Lowpass24 {
    Section first;
    Section second;

    static void prepare(FilterCall& call) { prepareSection(call); }
    explicit Lowpass24(const FilterCall& call)
        : first(loadSection(call, 0)), second(loadSection(call, 1))
    {
    }
    void step(FilterCall& call, std::size_t i)
    {
        const float y = first.step<Output::low>(call.voice[i], call.f[i], call.q[i]);
        call.voice[i] = second.step<Output::low>(y, call.f[i], call.q[i]);
    }
    void finish(FilterCall& call) const
    {
        storeSection(call, 0, first);
        storeSection(call, 1, second);
    }
};

// The offset relates the second section's cutoff index to the first's by a ratio of indices.
float narrowRatio(float offset)
{
    return curve(offset, 0.5f, 2.0f);
}
float wideRatio(float offset)
{
    return curve(offset, 0.25f, 4.0f);
}

// Oscillator 1 through a section of any kind, the rest through a low-pass, summed.
template <Output output>
struct Split {
    Section first;
    Section second;

    static void prepare(FilterCall& call)
    {
        prepareSection(call);
        svfCoefficients(call, narrowRatio(call.offset), call.coefficientLimit, call.f2);
    }
    explicit Split(const FilterCall& call)
        : first(loadSection(call, 0)), second(loadSection(call, 1))
    {
    }
    void step(FilterCall& call, std::size_t i)
    {
        const float a = first.step<output>(call.voice[i], call.f[i], call.q[i]);
        call.voice[i] = a + second.step<Output::low>(call.split[i], call.f2[i], call.q[i]);
    }
    void finish(FilterCall& call) const
    {
        storeSection(call, 0, first);
        storeSection(call, 1, second);
    }
};

// A section of any kind into a low-pass. At the end of the offset's range the second is left out
// and keeps its state.
template <Output output>
struct Series {
    static constexpr float kOpenOffset = 0.999f;

    Section first;
    Section second;
    bool open;

    static void prepare(FilterCall& call)
    {
        const float offset = call.offset;
        prepareSection(call);
        const float ratio = offset <= 0.5f ? narrowRatio(offset) : wideRatio(offset);
        svfCoefficients(call, ratio, call.coefficientLimit, call.f2);
    }
    explicit Series(const FilterCall& call)
        : first(loadSection(call, 0)),
          second(loadSection(call, 1)),
          open(call.offset >= kOpenOffset)
    {
    }
    void step(FilterCall& call, std::size_t i)
    {
        const float y = first.step<output>(call.voice[i], call.f[i], call.q[i]);
        call.voice[i] = open ? y : second.step<Output::low>(y, call.f2[i], call.q[i]);
    }
    void finish(FilterCall& call) const
    {
        storeSection(call, 0, first);
        if (!open)
            storeSection(call, 1, second);
    }
};

// The 24 dB part resonates in its second stage only, so that three peaks do not multiply.
struct Lowpass24Lowpass12 {
    static constexpr float kLastResonance = 0.96f;

    Section first;
    Section second;
    Section third;

    static void prepare(FilterCall& call)
    {
        svfCoefficients(call, 1.0f, kUndampedLimit, call.f);
        damping(call, kSvfResonance, call.q);
        svfCoefficients(call, wideRatio(call.offset), call.coefficientLimit, call.f2);
        // The first input is not needed twice: its buffer takes the last section's damping.
        damping(call, kLastResonance, call.split);
    }
    explicit Lowpass24Lowpass12(const FilterCall& call)
        : first(loadSection(call, 0)), second(loadSection(call, 1)), third(loadSection(call, 2))
    {
    }
    void step(FilterCall& call, std::size_t i)
    {
        const float y = first.step<Output::low>(call.voice[i], call.f[i], 1.0f);
        const float z = second.step<Output::low>(y, call.f[i], call.q[i]);
        call.voice[i] = third.step<Output::low>(z, call.f2[i], call.split[i]);
    }
    void finish(FilterCall& call) const
    {
        storeSection(call, 0, first);
        storeSection(call, 1, second);
        storeSection(call, 2, third);
    }
};

// The offset morphs one section's output: low-pass at 0, band-pass at 0.5, high-pass at 1.
struct Sweep {
    Section section;
    float low;
    float high;

    static void prepare(FilterCall& call) { prepareSection(call); }
    explicit Sweep(const FilterCall& call)
        : section(loadSection(call, 0)),
          low(std::max(0.0f, 1.0f - 2.0f * call.offset)),
          high(std::max(0.0f, 2.0f * call.offset - 1.0f))
    {
    }
    void step(FilterCall& call, std::size_t i)
    {
        const float hp = section.step<Output::high>(call.voice[i], call.f[i], call.q[i]);
        call.voice[i] = low * section.lp + (1.0f - low - high) * section.bp + high * hp;
    }
    void finish(FilterCall& call) const { storeSection(call, 0, section); }
};

// ---- Ladders -------------------------------------------------------------------------------

// With a zero at -0.3 the four stages become unstable at a loop gain of 4.0 to 3.5 over the whole
// range of cutoffs. Each stage has a gain of 3.5^(1/4), so that 0.95 of feedback stays below that
// by 5 to 17 %: a resonance of about 16 dB over the pass band.
constexpr float kLadderZero = 0.3f;
constexpr float kStageGain = 1.3677824f;
constexpr float kLadderInput = 0.35f;
// At half the sample rate the delay in the feedback turns it positive; its gain there passes 1 at a
// coefficient of 0.158. The index caps keep it below this value from 44.1 kHz on.
constexpr float kHighestLadderPole = 0.1472f;
constexpr float kLadderFeedback = 0.95f;

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

template <int poles>
struct Ladder {
    // A stage's last input is the last output of the stage before it.
    LadderStage stage[4];

    static void prepare(FilterCall& call)
    {
        std::array<std::int32_t, kMaxSliceFrames> index;
        indices(call, 1.0f, call.tables->ladderCap, index);
        for (std::size_t i = 0; i < call.frames; ++i)
            call.q[i] =
                atMost(call.tables->ladder[static_cast<std::size_t>(index[i])], kHighestLadderPole);
        for (std::size_t i = 0; i < call.frames; ++i) {
            call.f[i] = kStageGain / (1.0f + kLadderZero) * (1.0f + call.q[i]);
            call.f2[i] = kLadderFeedback * call.resonance[i];
        }
    }
    explicit Ladder(const FilterCall& call)
    {
        const FilterState& s = *call.state;
        for (std::size_t k = 0; k < 4; ++k)
            stage[k] = {s[k], s[k + 1]};
    }
    void step(FilterCall& call, std::size_t i)
    {
        const float b = call.f[i];
        const float q = call.q[i];
        const float input = call.voice[i] * kLadderInput - call.f2[i] * stage[3].y1;
        const float y1 = stage[0].step(input, b, q);
        const float y2 = stage[1].step(y1, b, q);
        const float y3 = stage[2].step(y2, b, q);
        const float y4 = stage[3].step(y3, b, q);
        // The tap after two stages makes up for the gain of the other two.
        call.voice[i] = poles == 2 ? y2 * (kStageGain * kStageGain) : y4;
    }
    void finish(FilterCall& call) const
    {
        FilterState& s = *call.state;
        s[0] = flushTiny(stage[0].x1);
        for (std::size_t k = 0; k < 4; ++k)
            s[k + 1] = flushTiny(stage[k].y1);
    }
};

// ---- Comb ----------------------------------------------------------------------------------

constexpr float kShortestComb = 2.0f;
constexpr float kLongestComb = static_cast<float>(kCombFrames - 2);

float combDelay(const FilterCall& call)
{
    const float octaves = std::clamp(call.comb, -4.0f, 4.0f);
    float frames = call.combFrames / (wideRatio(call.offset) * std::exp2(octaves));
    while (frames > kLongestComb)
        frames *= 0.5f; // teeth an octave up rather than out of reach
    return std::max(frames, kShortestComb);
}

// A comb whose teeth stand on the harmonics of oscillator 1, moved by the offset over two octaves
// up and down, fed back by the resonance, and a low-pass of 24 dB per octave behind it.
struct Comb {
    static constexpr float kFeedback = 0.95f;
    static constexpr float kLevel = 0.6f; // holds the level between pass band and peaks

    Section first;
    Section second;
    float delay;
    float slope;

    static void prepare(FilterCall& call)
    {
        svfCoefficients(call, 1.0f, kUndampedLimit, call.f);
        for (std::size_t i = 0; i < call.frames; ++i)
            call.q[i] = atMost(kFeedback * call.resonance[i], 1.0f);
    }
    explicit Comb(const FilterCall& call)
        : first(loadSection(call, 0)), second(loadSection(call, 1))
    {
        const float target = combDelay(call);
        delay = call.line->filled == 0 ? target : call.line->delayFrames;
        slope = (target - delay) / static_cast<float>(call.frames);
    }
    void step(FilterCall& call, std::size_t i)
    {
        CombLine& line = *call.line;
        const auto whole = static_cast<int>(delay);
        const float fraction = delay - static_cast<float>(whole);
        const float tap = line.tap(whole) * (1.0f - fraction) + line.tap(whole + 1) * fraction;
        const float feedback = call.q[i];
        const float v = call.voice[i] + feedback * tap;
        line.push(v);
        const float y = 0.5f * (v + tap) * (1.0f - kLevel * feedback);
        const float z = first.step<Output::low>(y, call.f[i], 1.0f);
        call.voice[i] = second.step<Output::low>(z, call.f[i], 1.0f);
        delay += slope;
    }
    void finish(FilterCall& call) const
    {
        call.line->delayFrames = delay;
        storeSection(call, 0, first);
        storeSection(call, 1, second);
    }
};

// ---- Lanes ---------------------------------------------------------------------------------

template <class K, std::size_t... lane>
void runLanes(std::span<FilterCall> calls, std::index_sequence<lane...>)
{
    K kernels[] = {K(calls[lane])...};
    FilterCall* const c = calls.data();
    const std::size_t frames = c->frames;
    for (std::size_t i = 0; i < frames; ++i)
        (kernels[lane].step(c[lane], i), ...);
    (kernels[lane].finish(c[lane]), ...);
}

template <class K>
void run(std::span<FilterCall> lanes)
{
    for (FilterCall& call : lanes)
        K::prepare(call);
    if (lanes.size() == kFilterLanes) {
        runLanes<K>(lanes, std::make_index_sequence<kFilterLanes>{});
        return;
    }
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
        runLanes<K>(lanes.subspan(lane, 1), std::make_index_sequence<1>{});
}

constexpr FilterKernel kKernels[] = {
    run<Lowpass12>,
    run<Lowpass24>,
    run<Split<Output::low>>,
    run<Split<Output::band>>,
    run<Split<Output::notch>>,
    run<Split<Output::high>>,
    run<Ladder<4>>,
    run<Ladder<2>>,
    run<Series<Output::band>>,
    run<Series<Output::notch>>,
    run<Series<Output::high>>,
    run<Comb>,
    run<Lowpass24Lowpass12>,
    run<Sweep>,
};
static_assert(std::size(kKernels) == static_cast<std::size_t>(Kernel::count));

} // namespace

FilterKernel filterKernel(Kernel kernel)
{
    return kKernels[static_cast<std::size_t>(kernel)];
}

} // namespace tolm
