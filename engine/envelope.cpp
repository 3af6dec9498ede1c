#include "engine/envelope.h"

#include <algorithm>
#include <array>

namespace tolm {

namespace {

constexpr float kAttackEnd = 0.9f;
// A sustain up to here holds the mod envelope below 1; above it the decay never starts.
constexpr float kModSustainLimit = 0.9999f;
constexpr float kModSustainFull = 1.00001f;

// A run of powers: `value` times `factor`, `factor`^2 and so on. Eight powers are known beforehand,
// so that only one multiplication in eight waits for the one before it.
void powers(float value, float factor, std::span<float> out)
{
    constexpr std::size_t kRun = 8;
    std::array<float, kRun> power;
    power[0] = factor;
    for (std::size_t k = 1; k < kRun; ++k)
        power[k] = power[k - 1] * factor;
    std::size_t i = 0;
    for (; i + kRun <= out.size(); i += kRun) {
        for (std::size_t k = 0; k < kRun; ++k)
            out[i + k] = value * power[k];
        value = out[i + kRun - 1];
    }
    for (std::size_t k = 0; i < out.size(); ++i, ++k)
        out[i] = value * power[k];
}

bool isAttackEnd(float level)
{
    return level >= kAttackEnd;
}

// How many frames of a stage belong to it: up to and with the first one whose level `ends` it, or
// all. Levels move one way, so the last tells whether there is anything to find, and the loops that
// make them do nothing but multiply.
template <class Ends>
std::size_t framesUntil(std::span<const float> levels, Ends ends)
{
    if (!ends(levels.back()))
        return levels.size();
    const auto end = std::find_if(levels.begin(), levels.end(), ends);
    return static_cast<std::size_t>(end - levels.begin()) + 1;
}

// Levels of an attack, each after its step. Answers how many frames belong to it.
std::size_t climb(float& level, float factor, std::span<float> levels)
{
    powers(1.0f - level, factor, levels);
    for (float& out : levels)
        out = 1.0f - out;
    const std::size_t frames = framesUntil(levels, isAttackEnd);
    level = levels[frames - 1];
    return frames;
}

// The same two for an envelope that yields before it steps. They answer through `next`, or return,
// the level after the last step.
float fallBefore(float level, float factor, std::span<float> levels)
{
    if (levels.empty())
        return level;
    levels[0] = level;
    powers(level, factor, levels.subspan(1));
    return levels.back() * factor;
}

std::size_t climbBefore(float& level, float& next, float factor, std::span<float> levels)
{
    next = 1.0f - fallBefore(1.0f - level, factor, levels);
    for (float& out : levels)
        out = 1.0f - out;
    const std::size_t frames = framesUntil(levels, isAttackEnd);
    level = levels[frames - 1];
    return frames;
}

} // namespace

EnvelopeCoefficients exponentialCoefficients(const RateTables& tables, const EnvelopeSettings& s,
                                             bool releaseEnabled)
{
    EnvelopeCoefficients c;
    c.attack = tables.timeMultiplier[timeIndex(s.attack)];
    c.decay = tables.timeMultiplier[timeIndex(s.decay)];
    c.release = releaseEnabled ? tables.timeMultiplier[timeIndex(s.release)] : 1.0f;
    c.sustain = std::max(0.0f, s.sustain);
    return c;
}

EnvelopeCoefficients modCoefficients(const RateTables& tables, const EnvelopeSettings& s,
                                     bool releaseEnabled)
{
    EnvelopeCoefficients c;
    const std::size_t release = timeIndex(s.release);
    const bool decays = releaseEnabled && release < kTimeSteps;
    c.attack = tables.timeIncrement[timeIndex(s.attack)];
    c.decay = tables.timeMultiplier[timeIndex(s.decay)];
    c.release = decays ? tables.timeMultiplier[release] : 1.0f;
    c.sustain = s.sustain > kModSustainLimit ? kModSustainFull : std::max(0.0f, s.sustain);
    return c;
}

void runAmpEnvelope(EnvelopeState& state, const EnvelopeCoefficients& c, std::uint32_t age,
                    std::uint32_t holdFrames, std::span<float> levels)
{
    std::span<float> rest = levels;
    if (state.stage == EnvelopeStage::attack && !rest.empty()) {
        rest = rest.subspan(climb(state.level, c.attack, rest));
        if (state.level >= kAttackEnd)
            state.stage = EnvelopeStage::decay;
    }
    const std::size_t now = age + (levels.size() - rest.size());
    if (now < holdFrames && !rest.empty() && state.stage != EnvelopeStage::attack) {
        const std::size_t held = std::min(holdFrames - now, rest.size());
        std::fill_n(rest.begin(), held, state.level);
        rest = rest.subspan(held);
    }
    if (state.stage == EnvelopeStage::decay && !rest.empty()) {
        powers(state.level, c.decay, rest);
        // The decay stops at the first frame below the sustain level.
        const auto isBelow = [&](float x) { return c.sustain > x; };
        if (isBelow(rest.back()))
            state.stage = EnvelopeStage::sustain;
        const std::size_t frames = framesUntil(rest, isBelow);
        state.level = rest[frames - 1];
        rest = rest.subspan(frames);
    }
    if (rest.empty())
        return;
    if (state.stage == EnvelopeStage::release)
        powers(state.level, c.release, rest);
    else
        std::fill(rest.begin(), rest.end(), state.level);
    state.level = rest.back();
}

void runFilterEnvelope(EnvelopeState& state, const EnvelopeCoefficients& c, std::span<float> levels)
{
    std::span<float> rest = levels;
    float level = state.level;
    if (state.stage == EnvelopeStage::attack && !rest.empty()) {
        float next = level;
        const std::size_t frames = climbBefore(level, next, c.attack, rest);
        if (level >= kAttackEnd)
            state.stage = EnvelopeStage::decay;
        else
            level = next; // still climbing: the next call goes on from the step already taken
        rest = rest.subspan(frames);
    }
    if (state.stage == EnvelopeStage::decay && !rest.empty()) {
        float next = fallBefore(level, c.decay, rest);
        // The decay stops, without a step, at the first frame at or below the sustain level.
        const auto isReached = [&](float x) { return c.sustain >= x; };
        const std::size_t frames = framesUntil(rest, isReached);
        if (isReached(rest.back())) {
            next = rest[frames - 1];
            state.stage = EnvelopeStage::sustain;
        }
        level = next;
        rest = rest.subspan(frames);
    }
    const bool releasing = state.stage == EnvelopeStage::release;
    state.level = fallBefore(level, releasing ? c.release : 1.0f, rest);
}

void runModEnvelope(EnvelopeState& state, const EnvelopeCoefficients& c, int frames)
{
    for (int i = 0; i < frames; ++i) {
        switch (state.stage) {
        case EnvelopeStage::attack:
            state.level += c.attack;
            if (state.level >= 1.0f) {
                state.level = 1.0f;
                state.stage = EnvelopeStage::decay;
            }
            break;
        case EnvelopeStage::decay:
            if (c.sustain > state.level)
                state.stage = EnvelopeStage::sustain;
            else
                state.level *= c.decay;
            break;
        case EnvelopeStage::sustain:
            return;
        case EnvelopeStage::release:
            state.level *= c.release;
            break;
        }
    }
}

} // namespace tolm
