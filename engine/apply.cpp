#include "engine/apply.h"

#include "engine/arpeggiator.h"
#include "engine/lfo.h"
#include "engine/voices.h"
#include "plugin/catalogue.h"
#include "plugin/menus.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tolm {

namespace {

constexpr float kSwitchThreshold = 0.001f;
constexpr float kOscillatorSwitchThreshold = 1e-5f;
constexpr float kResetThreshold = 0.4f;
constexpr float kMonoThreshold = 0.0001f;
constexpr float kGlideThreshold = 1e-7f;
constexpr float kModeOffset = 1e-7f;
constexpr float kArpModeOffset = 0.0001f;
constexpr float kMatrixOffset = 0.1f;
constexpr int kExtendedGainVersion = 15;

float unit(float v)
{
    return std::clamp(v, 0.0f, 1.0f);
}

// Truncation toward zero of a setting with `steps` steps; the last step is reached only at 1.
int stepFromValue(float v, int steps)
{
    return static_cast<int>(static_cast<float>(steps) * unit(v));
}

// Selectors store their index as a float; a small offset makes up for its rounding.
int indexFromValue(float v, float offset, int last)
{
    return static_cast<int>(std::clamp(v, 0.0f, static_cast<float>(last)) + offset);
}

using Apply = void (*)(ApplyContext& c, int index, float v);

struct ApplyRow {
    int first;
    int count;
    Apply apply; // `index` counts from `first`
};

// Two oscillators and three LFOs have the same parameters, a stride apart.

template <int osc>
OscillatorSettings& oscillator(ApplyContext& c)
{
    return c.r.oscillator[osc];
}

template <int osc>
void applyOscillator(ApplyContext& c, int index, float v)
{
    OscillatorSettings& o = oscillator<osc>(c);
    switch (index) {
    case kOsc1Shape:
        o.shape = static_cast<OscillatorShape>(stepFromValue(v, 3));
        break;
    case kOsc1Coarse:
        o.coarse = static_cast<int>(unit(v) * 72.0f + 0.0001f) - 36;
        break;
    case kOsc1Fine:
        o.fine = stepFromValue(v, 128) - 64;
        break;
    case kOsc1Fat:
        o.fat = stepFromValue(v, 128);
        o.fatFactor = 1.0f + 0.01f * unit(v);
        break;
    default:
        o.wave = std::min(static_cast<int>(unit(v) * 128.0f + 0.001f), kWaveCount - 1);
        break;
    }
}

void setNoiseColour(ApplyContext& c, float v)
{
    c.r.noiseColour = v;
    setNoiseFilter(c.r, c.module, v);
}

void setGlide(ApplyContext& c, float v)
{
    c.r.glideAmount = v;
    c.r.glideOn = v > kGlideThreshold;
    c.r.glideCoefficient = c.module.timeCoefficient(curve(v, 1.0f, 1000.0f), 0.1f);
}

// The skew also sets how smoothly "S+H" glides, from jumps (0) to a corner of 1 Hz (1).
void setLfoSmoothing(ApplyContext& c, LfoSettings& lfo)
{
    lfo.smoothing = c.module.onePoleCoefficient(std::pow(100000.0f, 1.0f - lfo.skew));
}

void setSkew(ApplyContext& c, LfoSettings& lfo, float v)
{
    lfo.skew = v;
    lfo.sawExponent = curve(v, 0.25f, 4.0f);
    lfo.sineExponent = curve(v, 0.5f, 2.0f);
    lfo.tableStale = true;
    setLfoSmoothing(c, lfo);
}

template <int n>
void applyLfo(ApplyContext& c, int index, float v)
{
    LfoSettings& lfo = c.r.lfo[n];
    switch (index + kLfo1Shape) {
    case kLfo1Shape:
        lfo.shape = static_cast<LfoShape>(stepFromValue(v, 3));
        lfo.tableStale = true;
        break;
    case kLfo1Rate:
        lfo.rate = unit(v);
        break;
    case kLfo1Skew:
        setSkew(c, lfo, unit(v));
        break;
    case kLfo1FadeIn:
        lfo.fadeSeconds = curve(unit(v), 0.01f, 10.01f) - 0.01f;
        if (lfo.fadeSeconds < 0.001f)
            lfo.fadeSeconds = 0.0f;
        break;
    case kLfo1Sync:
        lfo.sync = v > kOscillatorSwitchThreshold;
        break;
    default:
        lfo.keyReset = v > kResetThreshold;
        break;
    }
}

// Any value but exact 0 puts the selection in force, even one below the switch's own threshold.
void applyStackSwitch(ApplyContext& c, int index, float v)
{
    auto& switches = c.r.stackSwitch;
    switches[static_cast<std::size_t>(index)] = v > kSwitchThreshold;
    const bool anyOn = std::find(switches.begin(), switches.end(), true) != switches.end();
    if (v != 0.0f)
        c.r.voiceSelectionActive = true;
    else if (!anyOn)
        c.r.voiceSelectionActive = false;
}

void applyVolume(ApplyContext& c, int, float v)
{
    const bool extended = c.extendedGain && c.r.engineVersion >= kExtendedGainVersion;
    c.r.outputGainTarget = (extended ? 8.0f : 4.0f) * unit(v) * unit(v);
}

void applyArpOn(ApplyContext& c, int, float v)
{
    const bool on = v > kSwitchThreshold;
    if (c.r.arp.on && !on)
        endArpNotes(c.r);
    c.r.arp.on = on;
}

void applyArpMode(ApplyContext& c, int, float v)
{
    setArpMode(c.r, static_cast<ArpMode>(indexFromValue(v, kArpModeOffset, 6)));
}

// Sounding voices keep the type that they latched, but no type inherits another's memory.
void applyFilterType(ApplyContext& c, int, float value)
{
    c.r.filterType = indexFromValue(value, kModeOffset, 18);
    for (std::size_t v = 0; v < kVoiceCount; ++v)
        clearFilter(c.r, v);
}

void applyMono(ApplyContext& c, int, float v)
{
    const bool on = v > kMonoThreshold;
    if (c.r.monoMode && !on && !c.r.arp.on)
        releaseAllVoices(c.r);
    c.r.monoMode = on;
}

void applyEffect(ApplyContext& c, int index, float v, int first)
{
    c.effects.setParameter(first + index, v);
}

std::uint8_t matrixId(float v)
{
    return static_cast<std::uint8_t>(indexFromValue(v, kMatrixOffset, 255));
}

MatrixRow& row(ApplyContext& c, int index)
{
    c.r.matrixStale = true;
    return c.r.matrix[static_cast<std::size_t>(index)];
}

constexpr ApplyRow kRows[] = {
    {kOsc1Shape, 5, applyOscillator<0>},
    {kOsc2Shape, 5, applyOscillator<1>},
    {kOsc3Shape, 1,
     [](ApplyContext& c, int, float v) {
         c.r.osc3Shape = static_cast<SubShape>(stepFromValue(v, 2));
     }},
    {kOsc3Level, 1, [](ApplyContext& c, int, float v) { c.r.osc3Level = unit(v); }},
    {kOscMix, 1, [](ApplyContext& c, int, float v) { c.r.oscMix = unit(v); }},
    {kNoiseColour, 1, [](ApplyContext& c, int, float v) { setNoiseColour(c, unit(v)); }},
    {kNoiseLevel, 1, [](ApplyContext& c, int, float v) { c.r.noiseLevel = unit(v); }},
    {kRingMod, 1, [](ApplyContext& c, int, float v) { c.r.ringMod = unit(v); }},
    {kPulseWidth, 1, [](ApplyContext& c, int, float v) { c.r.pulseWidth.target = unit(v); }},
    {kOscFm, 1, [](ApplyContext& c, int, float v) { c.r.fm.target = 4.0f * unit(v); }},
    {kAmpAttack, 1, [](ApplyContext& c, int, float v) { c.r.ampEnvelope.attack = unit(v); }},
    {kAmpDecay, 1, [](ApplyContext& c, int, float v) { c.r.ampEnvelope.decay = unit(v); }},
    {kAmpSustain, 1,
     [](ApplyContext& c, int, float v) { c.r.ampEnvelope.sustain = unit(v) * unit(v); }},
    {kAmpRelease, 1, [](ApplyContext& c, int, float v) { c.r.ampEnvelope.release = unit(v); }},
    {kFilterAttack, 1, [](ApplyContext& c, int, float v) { c.r.filterEnvelope.attack = unit(v); }},
    {kFilterDecay, 1, [](ApplyContext& c, int, float v) { c.r.filterEnvelope.decay = unit(v); }},
    {kFilterSustain, 1,
     [](ApplyContext& c, int, float v) { c.r.filterEnvelope.sustain = unit(v) * unit(v); }},
    {kFilterRelease, 1,
     [](ApplyContext& c, int, float v) { c.r.filterEnvelope.release = unit(v); }},
    {kFilterKeytrack, 1, [](ApplyContext& c, int, float v) { c.r.filterKeytrack = unit(v); }},
    {kFilterCutoff, 1, [](ApplyContext& c, int, float v) { c.r.cutoff.target = unit(v); }},
    {kFilterResonance, 1, [](ApplyContext& c, int, float v) { c.r.resonance = unit(v); }},
    {kFilterEnvAmount, 1, [](ApplyContext& c, int, float v) { c.r.filterEnvAmount = unit(v); }},
    {kFilterOffset, 1, [](ApplyContext& c, int, float v) { c.r.filterOffset = unit(v); }},
    {kOscSync, 1,
     [](ApplyContext& c, int, float v) { c.r.oscSync = v > kOscillatorSwitchThreshold; }},
    {kLfo1Shape, 6, applyLfo<0>},
    {kLfo1Shape + kLfoIdStride, 6, applyLfo<1>},
    {kLfo1Shape + 2 * kLfoIdStride, 6, applyLfo<2>},
    {kModAttack, 1, [](ApplyContext& c, int, float v) { c.r.modEnvelope.attack = unit(v); }},
    {kModDecay, 1, [](ApplyContext& c, int, float v) { c.r.modEnvelope.decay = unit(v); }},
    {kModSustain, 1,
     [](ApplyContext& c, int, float v) { c.r.modEnvelope.sustain = unit(v) * unit(v); }},
    {kModRelease, 1, [](ApplyContext& c, int, float v) { c.r.modEnvelope.release = unit(v); }},
    {kFmFeedback, 1, [](ApplyContext& c, int, float v) { c.r.fmFeedback = unit(v); }},
    {kVoice1, kMaxStack, applyStackSwitch},
    {kArpRange, 1,
     [](ApplyContext& c, int, float v) {
         c.r.arp.velocityBlend = unit(v);
         c.r.arp.rangeSemitones = static_cast<int>(2.0f * unit(v)) * 12;
     }},
    {kArpRate, 1,
     [](ApplyContext& c, int, float v) {
         c.r.arp.rate = unit(v);
         c.r.arp.rateHz = 0.1 * std::pow(1000.0, static_cast<double>(unit(v)));
     }},
    {kArpLength, 1,
     [](ApplyContext& c, int, float v) {
         c.r.arp.lengthShift = static_cast<int>(unit(v) * 62.0f) - 31;
         c.r.arp.gridStale = true;
     }},
    {kArpSwing, 1,
     [](ApplyContext& c, int, float v) {
         c.r.arp.swing = unit(v);
         c.r.arp.gridStale = true;
     }},
    {kVolume, 1, applyVolume},
    {kVoiceSpread, 1, [](ApplyContext& c, int, float v) { c.r.voiceSpread = unit(v); }},
    {kVoiceDetune, 1,
     [](ApplyContext& c, int, float v) { c.r.unisonDetune = stepFromValue(v, 128) / 2; }},
    {kVoices, 1,
     [](ApplyContext& c, int, float v) { c.r.unisonVoices = stepFromValue(v, 128) / 18 + 1; }},
    {kGlide, 1, [](ApplyContext& c, int, float v) { setGlide(c, unit(v)); }},
    {kPhaserType, kEq2Gain - kPhaserType + 1,
     [](ApplyContext& c, int index, float v) { applyEffect(c, index, v, kPhaserType); }},
    {kFmMode, 1,
     [](ApplyContext& c, int, float v) {
         c.r.fmMode = static_cast<FmMode>(indexFromValue(v, kModeOffset, 2));
     }},
    {kModWheel, 1,
     [](ApplyContext& c, int, float v) { c.r.modWheel = static_cast<double>(unit(v)); }},
    {kArpSync, 1, [](ApplyContext& c, int, float v) { c.r.arp.sync = v > kSwitchThreshold; }},
    {kArpOn, 1, applyArpOn},
    {kPhaserOn, kEffectSlots,
     [](ApplyContext& c, int index, float v) { applyEffect(c, index, v, kPhaserOn); }},
    {kArpMode, 1, applyArpMode},
    {kFilterType, 1, applyFilterType},
    {kMonoMode, 1, applyMono},
    {kModSource1, kMatrixRows,
     [](ApplyContext& c, int index, float v) { row(c, index).source = matrixId(v); }},
    {kModAmount1, kMatrixRows,
     [](ApplyContext& c, int index, float v) {
         row(c, index).amount = 2.0 * static_cast<double>(unit(v)) - 1.0;
     }},
    {kModDestination1, kMatrixRows,
     [](ApplyContext& c, int index, float v) { row(c, index).destination = matrixId(v); }},
    {kModVoices1, kMatrixRows,
     [](ApplyContext& c, int index, float v) { row(c, index).voices = matrixId(v); }},
    {kArpNote1, kArpSteps,
     [](ApplyContext& c, int index, float v) {
         c.r.arp.stepNote[static_cast<std::size_t>(index)] = unit(v);
         c.r.arp.gridStale = true;
     }},
    {kArpVelocity1, kArpSteps,
     [](ApplyContext& c, int index, float v) {
         c.r.arp.stepVelocity[static_cast<std::size_t>(index)] = unit(v);
         c.r.arp.gridStale = true;
     }},
    {kArpStepCount, 1,
     [](ApplyContext& c, int, float v) { c.r.arp.steps = static_cast<int>(unit(v) * 31.0f) + 1; }},
    {kPolyphony, 1,
     [](ApplyContext& c, int, float v) { setPolyphony(c.r, polyphonyFromValue(v)); }},
    {kPitchWheel, 1,
     [](ApplyContext& c, int, float v) {
         c.r.bendRaw = static_cast<int>((unit(v) - 0.5f) * 16384.0f);
         c.r.bendValue = 2.0 * (static_cast<double>(unit(v)) - 0.5);
     }},
};

// Position of each id's row in kRows, -1 for none.
constexpr auto kRowOfId = [] {
    std::array<std::int8_t, kParameterCount> rows{};
    rows.fill(-1);
    for (std::size_t i = 0; i < std::size(kRows); ++i)
        for (int id = kRows[i].first; id < kRows[i].first + kRows[i].count; ++id)
            rows[static_cast<std::size_t>(id)] = static_cast<std::int8_t>(i);
    return rows;
}();

} // namespace

OnePole noiseColourFilter(const Module& module, float colour)
{
    return module.highpassCoefficients(
        static_cast<double>(curve(std::clamp(colour, 0.0f, 1.0f), 5.0f, 20000.0f)));
}

int polyphonyFromValue(float value)
{
    return static_cast<int>(unit(value) * 64.0f) + kMinPolyphony;
}

void setNoiseFilter(EngineRecord& r, const Module& module, float colour)
{
    if (colour == r.noiseFilterColour)
        return;
    r.noiseFilterColour = colour;
    r.noiseFilter = noiseColourFilter(module, colour);
}

void applyParameter(ApplyContext& context, int id, float value)
{
    if (id < 0 || id >= kParameterCount || !std::isfinite(value))
        return;
    const int index = kRowOfId[static_cast<std::size_t>(id)];
    if (index < 0)
        return;
    const ApplyRow& applied = kRows[static_cast<std::size_t>(index)];
    applied.apply(context, id - applied.first, value);
}

void recomputeRateSettings(ApplyContext& context)
{
    context.r.noiseFilterColour = -1.0f;
    setNoiseColour(context, context.r.noiseColour);
    setGlide(context, context.r.glideAmount);
    for (LfoSettings& lfo : context.r.lfo)
        setLfoSmoothing(context, lfo);
}

} // namespace tolm
