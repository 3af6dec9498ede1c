#include "engine/lfo.h"

#include "fx/Module.h"
#include "plugin/menus.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tolm {

namespace {

constexpr float kRateSteps = 26.001f; // the last of 27 lengths is reached just below a rate of 1
constexpr int kPulseRange = 2032;     // the narrowest pulse is 8 of 2048 entries wide
constexpr int kPulseMargin = 8;
constexpr double kSecondsPerSixtyFourth = 3.75; // times length over tempo

float sawEntry(int i, float exponent)
{
    // A falling ramp on the 16-bit grid: +1 at the first entry, -1 at the last.
    const double ramp = 1.0 - 2.0 * i / (kTableSize - 1);
    const float grid = static_cast<float>(std::lround(ramp * 32767.0)) / 32767.0f;
    return 2.0f * (std::pow((grid + 1.0f) / 2.0f, exponent) - 0.5f);
}

float sineEntry(float sine, float exponent)
{
    return std::copysign(std::pow(std::abs(sine), exponent), sine);
}

} // namespace

void buildLfoTable(LfoSettings& lfo)
{
    const int pulseWidth =
        static_cast<int>(static_cast<float>(kPulseRange) * lfo.skew) + kPulseMargin;
    const auto& sine = constantTables().floatSine;
    for (int i = 0; i < kTableSize; ++i) {
        float& entry = lfo.table[static_cast<std::size_t>(i)];
        switch (lfo.shape) {
        case LfoShape::saw:
            entry = sawEntry(i, lfo.sawExponent);
            break;
        case LfoShape::pulse:
            entry = i < pulseWidth ? 1.0f : -1.0f;
            break;
        case LfoShape::sine:
            entry = sineEntry(sine[static_cast<std::size_t>(i)], lfo.sineExponent);
            break;
        case LfoShape::random:
            // Voices draw their own values; what reads the table all the same (the delay) gets a
            // plain sine.
            entry = sine[static_cast<std::size_t>(i)];
            break;
        }
    }
    lfo.table[kTableSize] = lfo.table[0];
    lfo.tableStale = false;
}

void refreshLfoTables(EngineRecord& r)
{
    for (LfoSettings& lfo : r.lfo)
        if (lfo.tableStale)
            buildLfoTable(lfo);
}

float lfoRateHz(const LfoSettings& lfo, float rate, double tempo)
{
    if (!lfo.sync)
        return curve(rate, 0.1f, 100.0f);
    const auto last = static_cast<int>(std::size(kLfoLengths)) - 1;
    const int index = std::clamp(static_cast<int>(rate * kRateSteps), 0, last);
    const double length = kLfoLengths[index].sixtyFourths;
    return static_cast<float>(tempo / (kSecondsPerSixtyFourth * length));
}

const LfoFrequency& lfoFrequency(LfoFrequency& known, const LfoSettings& lfo, float rate,
                                 double tempo, double sampleRateHz)
{
    if (!known.isFor(rate, lfo.sync, tempo, sampleRateHz)) {
        const float hz = lfoRateHz(lfo, rate, tempo);
        known = {rate, lfo.sync, tempo, sampleRateHz, hz, lfoIncrement(hz, sampleRateHz)};
    }
    return known;
}

std::uint32_t lfoIncrement(float hz, double sampleRateHz)
{
    const double increment = static_cast<double>(hz) * kPhaseTurn / sampleRateHz;
    return static_cast<std::uint32_t>(std::min(increment, kPhaseTurn - 1.0));
}

float readLfo(EngineRecord& r, std::size_t voice, std::size_t n, std::uint32_t increment,
              int frames, double sampleRateHz)
{
    const LfoSettings& lfo = r.lfo[n];
    VoiceSlot& slot = r.slot[voice];
    const std::uint32_t age = r.voiceNote[voice].age;
    float value;
    if (lfo.shape == LfoShape::random) {
        const auto end = static_cast<std::uint64_t>(slot.lfoPhase[n]) +
                         static_cast<std::uint64_t>(increment) * static_cast<std::uint64_t>(frames);
        if (age == 0 || (end >> 32) != 0)
            slot.lfoHeld[n] = 2.0f * static_cast<float>(r.random.next()) / 32767.0f - 1.0f;
        slot.lfoSmoothed[n] += (slot.lfoHeld[n] - slot.lfoSmoothed[n]) * lfo.smoothing;
        value = slot.lfoSmoothed[n];
    } else {
        value = lfo.table[slot.lfoPhase[n] >> kTableShift];
    }
    const double fadeFrames = static_cast<double>(lfo.fadeSeconds) * sampleRateHz;
    if (fadeFrames > 0.0)
        value *= static_cast<float>(std::min(1.0, static_cast<double>(age) / fadeFrames));
    return value;
}

} // namespace tolm
