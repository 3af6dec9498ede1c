#include "engine/envelope.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr float kAttackEnd = 0.9f;
// A sustain up to here holds the mod envelope below 1; above it the decay never starts.
constexpr float kModSustainLimit = 0.9999f;
constexpr float kModSustainFull = 1.00001f;

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
    std::size_t i = 0;
    float level = state.level;
    if (state.stage == EnvelopeStage::attack) {
        float distance = 1.0f - level;
        while (i < levels.size() && state.stage == EnvelopeStage::attack) {
            distance *= c.attack;
            level = 1.0f - distance;
            levels[i++] = level;
            if (level >= kAttackEnd)
                state.stage = EnvelopeStage::decay;
        }
    }
    for (; i < levels.size() && age + i < holdFrames; ++i)
        levels[i] = level;
    if (state.stage == EnvelopeStage::decay) {
        while (i < levels.size() && state.stage == EnvelopeStage::decay) {
            level *= c.decay;
            levels[i++] = level;
            if (c.sustain > level)
                state.stage = EnvelopeStage::sustain;
        }
    }
    const float factor = state.stage == EnvelopeStage::release ? c.release : 1.0f;
    for (; i < levels.size(); ++i) {
        level *= factor;
        levels[i] = level;
    }
    state.level = level;
}

void runFilterEnvelope(EnvelopeState& state, const EnvelopeCoefficients& c, std::span<float> levels)
{
    std::size_t i = 0;
    float level = state.level;
    if (state.stage == EnvelopeStage::attack) {
        float distance = 1.0f - level;
        while (i < levels.size() && state.stage == EnvelopeStage::attack) {
            level = 1.0f - distance;
            levels[i++] = level;
            distance *= c.attack;
            if (level >= kAttackEnd)
                state.stage = EnvelopeStage::decay;
        }
        // Still climbing: the next call goes on from the step already taken.
        if (state.stage == EnvelopeStage::attack)
            level = 1.0f - distance;
    }
    while (i < levels.size() && state.stage == EnvelopeStage::decay) {
        levels[i++] = level;
        if (c.sustain >= level)
            state.stage = EnvelopeStage::sustain;
        else
            level *= c.decay;
    }
    const float factor = state.stage == EnvelopeStage::release ? c.release : 1.0f;
    for (; i < levels.size(); ++i) {
        levels[i] = level;
        level *= factor;
    }
    state.level = level;
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
