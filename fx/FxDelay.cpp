#include "fx/FxDelay.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr double kLongestRight = kDelayRingFrames - 2.0;
constexpr double kSlowestTempo = 1.0;
constexpr double kFastestTempo = 1000.0;
constexpr float kMostSweep = 1000.0f; // more depth than the modulation matrix can add up to

// Note values in 1/64 of a beat: dotted, straight and triplet, from the whole note to the 1/64.
constexpr std::array kNotes = {
    384.0,    256.0, 512.0 / 3, 192.0,    128.0, 256.0 / 3, 96.0,     64.0, 128.0 / 3, 48.0,   32.0,
    64.0 / 3, 24.0,  16.0,      32.0 / 3, 12.0,  8.0,       16.0 / 3, 6.0,  4.0,       8.0 / 3};
constexpr double kUnitSeconds = 0.9375; // 1/64 beat at one beat per minute

// Diffuser lengths at 44.1 kHz: [channel][in order]
constexpr float kDiffuserFrames[2][2] = {{100.0f, 292.0f}, {80.0f, 290.1f}};

// Full feedback never dies away, and resonates where its filter lets it. What enters a ring stays
// below this, 48 dB over full scale.
constexpr float kRingLimit = 256.0f;

float limitWrite(float value)
{
    return std::min(std::max(-kRingLimit, value), kRingLimit);
}

// What one frame of a mode gets and gives.
struct Frame {
    float inLeft, inRight;
    float outLeft, outRight;     // wet
    float writeLeft, writeRight; // into the rings
};

// The open filter keeps its memory up to date, so that turning the colour does not click.
template <bool pass>
float colour(OnePoleMemory& filter, const OnePole& coefficients, float x)
{
    if constexpr (!pass)
        return filter.run(coefficients, x);
    filter.x1 = filter.y1 = x;
    return x;
}
template <bool pass>
float colourFlushed(OnePoleMemory& filter, const OnePole& coefficients, float x)
{
    colour<pass>(filter, coefficients, x);
    filter.flushOutput();
    return filter.y1;
}

// Each mode is a struct with a function of this form; `pass` says that the colour filter is open.
// Separate sides. Feedback is subtracted.
template <bool diffuse>
struct Sides {
    static constexpr bool kDiffuses = diffuse;
    static constexpr bool kRightFromLeftRing = false;
    static constexpr bool kWritesRight = true;

    template <bool pass>
    static void run(FxDelay::Filters& filters, const FxDelay::Block& b, float tapLeft,
                    float tapRight, Frame& frame)
    {
        const float left = colourFlushed<pass>(filters[0], b.colour, tapLeft);
        const float right = colourFlushed<pass>(filters[1], b.colour, tapRight);
        frame.outLeft = left;
        frame.outRight = right;
        frame.writeLeft = frame.inLeft - b.feedback * left;
        frame.writeRight = frame.inRight - right * b.rightFeedback;
    }
};

// The repeats change sides: the left ring takes the input, the right one what comes out of the
// left, and back. Each output has the opposite tap and a share of its own. Only the way from left
// to right is coloured.
struct PingPong {
    static constexpr bool kDiffuses = false;
    static constexpr bool kRightFromLeftRing = false;
    static constexpr bool kWritesRight = true;

    template <bool pass>
    static void run(FxDelay::Filters& filters, const FxDelay::Block& b, float tapLeft,
                    float tapRight, Frame& frame)
    {
        const float left = colour<pass>(filters[0], b.colour, tapLeft);
        const float right = flushTiny(tapRight);
        frame.outLeft = b.ownShare * left + right;
        frame.outRight = left + b.ownShare * right;
        filters[0].flushOutput();
        frame.writeLeft = (frame.inLeft + frame.inRight) * 0.5f - right * b.feedback;
        frame.writeRight = -b.feedback * filters[0].y1;
    }
};

// Two taps on the left ring, which alone is written. Here feedback is added.
struct MultiTap {
    static constexpr bool kDiffuses = false;
    static constexpr bool kRightFromLeftRing = true;
    static constexpr bool kWritesRight = false;

    template <bool pass>
    static void run(FxDelay::Filters& filters, const FxDelay::Block& b, float tapLeft,
                    float tapRight, Frame& frame)
    {
        const float left = colourFlushed<pass>(filters[0], b.colour, tapLeft);
        const float right = colourFlushed<pass>(filters[1], b.colour, tapRight);
        frame.outLeft = left * 0.95f + right * 0.05f;
        frame.outRight = right;
        frame.writeLeft =
            (frame.inLeft + frame.inRight) * 0.5f + (left + right) * 0.5f * b.rightFeedback;
    }
};

// A stretch whose taps stay clear of it. `first` is its place in the chunk.
template <class Mode, bool pass, class Times>
void runStretch(FxDelay::State& state, const FxDelay::Block& block, const Times& times, int first,
                int frames, float* left, float* right)
{
    float* const leftRing = state.rings[0].data();
    float* const rightRing = state.rings[1].data();
    std::uint32_t position = state.writePosition;
    DelayChunk tapLeft, tapRight;
    times.read(leftRing, position, first, frames, tapLeft);
    times.read(Mode::kRightFromLeftRing ? leftRing : rightRing, position + block.ahead, first,
               frames, tapRight);
    if constexpr (Mode::kDiffuses)
        for (std::size_t k = 0; k < 2; ++k) {
            state.diffusers[0][k].run(frames, tapLeft.data());
            state.diffusers[1][k].run(frames, tapRight.data());
        }
    FxDelay::Filters filters = state.filters; // a copy, which stores to the rings cannot touch
    for (int i = 0; i < frames; ++i) {
        const auto n = static_cast<std::size_t>(i);
        Frame frame{left[i], right[i], 0.0f, 0.0f, 0.0f, 0.0f};
        Mode::template run<pass>(filters, block, tapLeft[n], tapRight[n], frame);
        left[i] = frame.inLeft * block.dry + frame.outLeft * block.wet;
        right[i] = frame.inRight * block.dry + frame.outRight * block.wet;
        leftRing[position] = limitWrite(frame.writeLeft);
        if constexpr (Mode::kWritesRight)
            rightRing[position] = limitWrite(frame.writeRight);
        position = (position + 1) & kDelayRingMask;
    }
    state.filters = filters;
    state.writePosition = position;
}

void setTimes(StillTime& still, const FxDelay::Block& block, std::uint32_t&, int)
{
    still.time = splitDelay(block.delayFrames);
}
void setTimes(SweptTimes& swept, const FxDelay::Block& block, std::uint32_t& phase, int frames)
{
    DelayChunk lfo;
    for (int i = 0; i < frames; ++i) {
        lfo[static_cast<std::size_t>(i)] = sweepAt(block.modulation.table, phase);
        phase += static_cast<std::uint32_t>(block.modulation.increment);
    }
    for (int i = 0; i < frames; ++i) {
        const auto n = static_cast<std::size_t>(i);
        const TapTime time =
            splitDelay(static_cast<double>(lfo[n]) * block.sweepFrames + block.delayFrames);
        swept.whole[n] = time.frames;
        swept.fraction[n] = time.fraction;
    }
}

// A sweep can bring a tap close to the write position; then frame follows frame.
template <class Mode, bool pass, class Times>
void runMode(FxDelay::State& state, const FxDelay::Block& settings, float* left, float* right)
{
    const FxDelay::Block block = settings;
    std::uint32_t phase = block.modulation.phase;
    for (int done = 0; done < block.frames; done += kDelayChunk) {
        const int frames = std::min(kDelayChunk, block.frames - done);
        Times times;
        setTimes(times, block, phase, frames);
        const bool clear = times.stayClear(frames, 0) && times.stayClear(frames, block.ahead);
        const int stretch = clear ? frames : 1;
        for (int i = 0; i < frames; i += stretch)
            runStretch<Mode, pass>(state, block, times, i, stretch, left + done + i,
                                   right + done + i);
    }
}

using RunMode = void (*)(FxDelay::State&, const FxDelay::Block&, float*, float*);
struct ModeRow {
    RunMode run[2][2]; // [colour filter open][time swept]
    float ownShare;
};
template <class Mode>
constexpr ModeRow modeRow(float ownShare = 0.0f)
{
    return {{{runMode<Mode, false, StillTime>, runMode<Mode, false, SweptTimes>},
             {runMode<Mode, true, StillTime>, runMode<Mode, true, SweptTimes>}},
            ownShare};
}
constexpr std::array<ModeRow, FxDelay::kModeCount> kModes = {
    modeRow<Sides<false>>(),  // Simple
    modeRow<PingPong>(0.0f),  // Ping-Pong
    modeRow<PingPong>(0.25f), // PP 75%
    modeRow<PingPong>(0.5f),  // PP 50%
    modeRow<PingPong>(0.75f), // PP 25%
    modeRow<PingPong>(0.9f),  // PP 10%
    modeRow<MultiTap>(),      // Multi-Tap
    modeRow<Sides<true>>(),   // Diffuse
    modeRow<Sides<true>>(),   // Diffuse
};

} // namespace

FxDelay::FxDelay()
{
    for (auto& ring : state_.rings)
        ring.assign(kDelayRingFrames, 0.0f);
    setSampleRate(44100.0);
}

void FxDelay::setSampleRate(double hz)
{
    setRate(static_cast<float>(hz));
    const auto ratio = static_cast<float>(sampleRateHz() / 44100.0);
    for (std::size_t c = 0; c < 2; ++c) {
        for (std::size_t k = 0; k < 2; ++k) {
            DelayDiffuser& diffuser = state_.diffusers[c][k];
            const int length = static_cast<int>(ratio * kDiffuserFrames[c][k]);
            diffuser.length = std::clamp(length, 1, DelayDiffuser::kCells);
            diffuser.index = std::min(diffuser.index, diffuser.length - 1);
        }
    }
}

void FxDelay::reset()
{
    state_.filters = {};
    if (cleared_)
        return;
    for (auto& ring : state_.rings)
        std::fill(ring.begin(), ring.end(), 0.0f);
    for (auto& channel : state_.diffusers) {
        for (DelayDiffuser& diffuser : channel) {
            diffuser.cells.fill(0.0f);
            diffuser.index = 0;
        }
    }
    cleared_ = true;
}

// Middle position: the filter passes everything. Below it darkens, above it thins out.
void FxDelay::setColour(float value)
{
    const int k = static_cast<int>(value * 128.0f);
    const double x = (k - 64) / 64.01;
    colourPasses_ = k == 64;
    if (x <= 0.0)
        colour_ = lowpassCoefficients(curve(x + 1.0, 200.0, 20000.0));
    else
        colour_ = highpassCoefficients(curve(x, 20.0, 15000.0));
}

void FxDelay::setParameter(int index, float value)
{
    switch (index) {
    case type:
        mode_ = std::clamp(static_cast<int>(value * 128.0f) / 16, 0, kModeCount - 1);
        break;
    case feedback1:
        feedback_ = value;
        break;
    case steps1:
        stepsLeft_ = value;
        break;
    case steps2:
        stepsRight_ = value;
        break;
    case colour:
        setColour(value);
        break;
    case dryWet:
        wet_ = value * value;
        break;
    default:
        break;
    }
}

double FxDelay::noteFrames(float steps, double tempo) const
{
    const int index = static_cast<int>(steps * 20.001f);
    const int last = static_cast<int>(kNotes.size()) - 1;
    const double unit = sampleRateHz() * kUnitSeconds / tempo;
    return std::trunc(unit * kNotes[static_cast<std::size_t>(std::clamp(index, 0, last))]);
}

void FxDelay::process(int frames, float* const* channels, float tempo,
                      const DelayModulation& modulation)
{
    const double bpm = static_cast<double>(tempo);
    const double saneBpm = bpm >= kSlowestTempo && bpm <= kFastestTempo ? bpm : kDefaultTempo;
    // A left time beyond the ring wraps around it; only the right one is held.
    const double left = noteFrames(stepsLeft_, saneBpm);
    const double right = std::min(noteFrames(stepsRight_, saneBpm), kLongestRight);

    Block block;
    block.frames = frames;
    block.ahead = static_cast<std::uint32_t>(static_cast<std::int64_t>(left - right));
    block.modulation = modulation;
    const float depth =
        modulation.table == nullptr ? 0.0f : std::clamp(modulation.depth, -kMostSweep, kMostSweep);
    block.delayFrames = left;
    block.sweepFrames = static_cast<double>(depth) * 0.5 * left;
    block.colour = colour_;
    block.wet = wet_;
    block.dry = 1.0f - wet_;
    block.feedback = feedback_;
    // Both sides lose as much per second, however different their times are.
    block.rightFeedback = std::pow(feedback_, static_cast<float>(right / std::max(left, 1.0)));
    const ModeRow& row = kModes[static_cast<std::size_t>(mode_)];
    block.ownShare = row.ownShare;

    const bool swept = block.sweepFrames != 0.0;
    row.run[colourPasses_ ? 1 : 0][swept ? 1 : 0](state_, block, channels[0], channels[1]);
    for (OnePoleMemory& filter : state_.filters)
        filter.y1 = flushTiny(filter.y1);
    cleared_ = false;
}

} // namespace tolm
