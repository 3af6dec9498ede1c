#include "engine/control.h"

#include "engine/envelope.h"
#include "engine/lfo.h"
#include "engine/matrix.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr int kMiddleKey = 60;
constexpr int kMiddlePitch = kMiddleKey * kPitchUnitsPerSemitone; // 7680
constexpr int kFullFat = 1024;
constexpr int kFatPerStep = 64; // the setting 0..128 reaches full at 16
constexpr double kHeadroom = 0.2;
constexpr double kLargestGain = 1e6;
constexpr float kKeytrackPerUnit = 3.90625e-05f; // 0.06 of cutoff per octave of notes
constexpr float kFm1Scale = 1.0f / 4096.0f;
constexpr float kFm2Scale = 1.0f / 32768.0f;
constexpr float kNoPreviousCutoff = -99.0f;
constexpr float kLargestCutoff = 1e4f;
constexpr float kLargestFm = 1.0f; // a thousand times what the parameter reaches

// The two oscillators deliberately spread their fat voices by slightly different powers.
constexpr double kFatExponents[kMainOscillators][2] = {{1.9, 3.12}, {1.88, 3.16}};

float toFloat(double x)
{
    return static_cast<float>(x);
}
float unitFloat(double x)
{
    return static_cast<float>(std::clamp(x, 0.0, 1.0));
}

Ramp rampTo(float& previous, float target, float perFrame)
{
    const float start = previous < 0.0f ? target : previous;
    previous = target;
    return {start, (target - start) * perFrame};
}

Ramp cutoffRamp(float& previous, float target, float perFrame)
{
    const float start = previous < kNoPreviousCutoff ? target : previous;
    previous = target;
    return {start, (target - start) * perFrame};
}

VoiceModulation modulationFromSettings(const EngineRecord& r)
{
    VoiceModulation m;
    for (std::size_t osc = 0; osc < kMainOscillators; ++osc) {
        const OscillatorSettings& settings = r.oscillator[osc];
        m.wavePosition[osc] = settings.wave * 1024;
        m.fatAmount[osc] = settings.fat * kFatPerStep;
        m.fatFactor[osc] = static_cast<double>(settings.fatFactor);
    }
    m.detune = r.unisonDetune;
    m.panSpread = static_cast<double>(r.voiceSpread);
    m.oscMix = static_cast<double>(r.oscMix);
    m.osc3Level = static_cast<double>(r.osc3Level);
    m.noiseLevel = static_cast<double>(r.noiseLevel);
    m.noiseColour = static_cast<double>(r.noiseColour);
    m.ringMod = static_cast<double>(r.ringMod);
    m.pulseWidth = static_cast<double>(r.pulseWidth.base);
    m.fm1 = static_cast<double>(r.fm.base);
    m.fm2 = static_cast<double>(r.fmFeedback);
    m.filterEnv = static_cast<double>(r.filterEnvAmount);
    m.filterOffset = static_cast<double>(r.filterOffset);
    m.filterKeytrack = static_cast<double>(r.filterKeytrack);
    m.amp = r.ampEnvelope;
    m.filter = r.filterEnvelope;
    m.mod = r.modEnvelope;
    for (std::size_t n = 0; n < kLfoCount; ++n)
        m.lfoRate[n] = static_cast<double>(r.lfo[n].rate);
    return m;
}

// ---- Pitch ----------------------------------------------------------------------------------

int oscillatorPitch(const EngineRecord& r, std::size_t voice, std::size_t osc,
                    const VoiceModulation& m, int wave)
{
    const float notePitch = r.voiceNote[voice].pitch;
    std::int64_t pitch;
    if (r.glideOn) {
        pitch = static_cast<std::int64_t>(notePitch + r.glideOffset);
    } else {
        // Tracking moves in whole semitones.
        const int note = static_cast<int>(notePitch) / kPitchUnitsPerSemitone;
        const std::int64_t tracked = (note - kMiddleKey) * m.keytrack[osc] / 1024;
        pitch = kMiddlePitch + kPitchUnitsPerSemitone * tracked;
    }
    const int stackCentre = r.unisonVoices / 2;
    const int stackStep = static_cast<int>(r.voiceUnisonIndex[voice]) - stackCentre;
    const OscillatorSettings& settings = r.oscillator[osc];
    pitch += kFirstKeyPitch + r.bendOffset + m.pitch + m.oscPitch[osc];
    pitch += kPitchUnitsPerSemitone * settings.coarse + settings.fine;
    pitch += stackStep * std::clamp<std::int64_t>(m.detune, 0, 64);
    if (settings.shape == OscillatorShape::wavetable)
        pitch += wavePitchOffset(wave);
    return static_cast<int>(std::clamp<std::int64_t>(pitch, 0, kPitchCount - 1));
}

std::uint32_t incrementOf(const CallContext& call, int pitch)
{
    const double hz = static_cast<double>(call.r.pitch[static_cast<std::size_t>(pitch)]);
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(hz * call.phaseScale));
}

// ---- Oscillators ----------------------------------------------------------------------------

const FatFactors& fatFactors(FatFactors& cached, double factor, std::size_t osc)
{
    const double r = std::clamp(factor, 0.5, 2.0);
    if (cached.factor == r)
        return cached;
    const double a = std::pow(r, kFatExponents[osc][0]);
    const double b = std::pow(r, kFatExponents[osc][1]);
    cached.factor = r;
    cached.ratio = {r, a, b, 1.0 / r, 1.0 / a, 1.0 / b};
    return cached;
}

void setFat(VoiceSlot& slot, OscillatorControl& o, std::size_t osc, const VoiceModulation& m)
{
    const auto amount =
        static_cast<std::int32_t>(std::min<std::int64_t>(m.fatAmount[osc], kFullFat));
    o.fat = amount > 0 && o.shape != OscillatorShape::sine;
    if (!o.fat)
        return;
    o.mainWeight = kFullFat - amount / 2;
    o.sideWeight = o.mainWeight * amount / kFullFat;
    const FatFactors& factors = fatFactors(slot.fat[osc], m.fatFactor[osc], osc);
    for (std::size_t i = 0; i < kFatVoices; ++i)
        o.sideIncrement[i] = static_cast<std::uint32_t>(
            static_cast<std::uint64_t>(static_cast<double>(o.increment) * factors.ratio[i]));
}

void setTables(OscillatorControl& o, int pitch, int wave, std::int64_t position)
{
    const ConstantTables& tables = constantTables();
    const auto semitone = static_cast<std::size_t>(pitch / kPitchUnitsPerSemitone);
    switch (o.shape) {
    case OscillatorShape::saw:
    case OscillatorShape::pulse:
        o.table = tables.saw[semitone].data();
        break;
    case OscillatorShape::sine:
        o.table = tables.sine.data();
        break;
    case OscillatorShape::wavetable: {
        // Octave 0 serves keys up to 59, octave 5 those from 108.
        const int octave = std::clamp((static_cast<int>(semitone) - 84) / 12, 0, kWaveOctaves - 1);
        const auto row = static_cast<std::size_t>(wave);
        o.table = tables.waves[row][static_cast<std::size_t>(octave)].data();
        o.partner = tables.waves[row + 1][static_cast<std::size_t>(octave)].data();
        o.blend = static_cast<std::int32_t>(position & 1023);
        break;
    }
    }
}

void setOscillator3(const CallContext& call, std::size_t voice, const VoiceModulation& m,
                    VoiceControl& control, int osc1Pitch, int wave)
{
    const EngineRecord& r = call.r;
    const ConstantTables& tables = constantTables();
    int pitch = osc1Pitch;
    control.osc3Increment = control.osc[0].increment / 2;
    if (r.oscillator[0].shape == OscillatorShape::wavetable && wavePitchOffset(wave) != 0) {
        // The sub oscillator follows the key, not the stretched wave.
        pitch = oscillatorPitch(r, voice, 0, m, 0);
        control.osc3Increment = incrementOf(call, std::max(0, pitch - kPitchUnitsPerOctave));
    }
    const int semitone = std::max(0, pitch / kPitchUnitsPerSemitone - 12);
    control.osc3Table = r.osc3Shape == SubShape::saw
                            ? tables.saw[static_cast<std::size_t>(semitone)].data()
                        : r.osc3Shape == SubShape::pulse ? tables.square.data()
                                                         : tables.triangle.data();
}

void setOscillators(CallContext& call, std::size_t voice, const VoiceModulation& m,
                    VoiceControl& control)
{
    const EngineRecord& r = call.r;
    const auto width = static_cast<std::uint64_t>(std::clamp(m.pulseWidth, 0.0, 1.0) * 65536.0);
    int osc1Pitch = 0;
    int osc1Wave = 0;
    for (std::size_t osc = 0; osc < kMainOscillators; ++osc) {
        OscillatorControl& o = control.osc[osc];
        const std::int64_t position = std::max<std::int64_t>(0, m.wavePosition[osc]);
        const auto wave = static_cast<int>(std::min<std::int64_t>(position >> 10, kWaveCount - 1));
        const int pitch = oscillatorPitch(r, voice, osc, m, wave);
        o.shape = r.oscillator[osc].shape;
        o.increment = incrementOf(call, pitch);
        o.pulseOffset = static_cast<std::uint32_t>(width << 16);
        setTables(o, pitch, wave, position);
        setFat(call.r.slot[voice], o, osc, m);
        if (osc == 0) {
            osc1Pitch = pitch;
            osc1Wave = wave;
        }
    }
    control.osc1Hz = r.pitch[static_cast<std::size_t>(osc1Pitch)];
    setOscillator3(call, voice, m, control, osc1Pitch, osc1Wave);
}

void setMix(CallContext& call, VoiceSlot& slot, const VoiceModulation& m, VoiceControl& control)
{
    const float perFrame = call.perFrame;
    const float fm1 = std::clamp(toFloat(m.fmDepth) * std::max(0.0f, toFloat(m.fm1)) * kFm1Scale,
                                 -kLargestFm, kLargestFm);
    control.fm2 = unitFloat(m.fm2) * kFm2Scale;
    control.fmOn = m.fmOn || m.fm1 > 0.0 || m.fm2 > 0.0;
    control.fm1 = rampTo(slot.previous.fm, fm1, perFrame);
    control.oneShot = m.oneShot;
    control.oscMix = rampTo(slot.previous.oscMix, unitFloat(m.oscMix), perFrame);
    control.osc3Level =
        rampTo(slot.previous.osc3Level, toFloat(std::max(0.0, m.osc3Level)), perFrame);
    control.ringMod = rampTo(slot.previous.ringMod, unitFloat(m.ringMod), perFrame);
    control.noiseLevel =
        rampTo(slot.previous.noiseLevel, toFloat(std::max(0.0, m.noiseLevel)), perFrame);
    control.noiseFilter = call.r.noiseFilter;
}

// ---- Filter, gains, envelopes ---------------------------------------------------------------

void setFilter(CallContext& call, std::size_t voice, const VoiceModulation& m,
               VoiceControl& control)
{
    const EngineRecord& r = call.r;
    float cutoff = r.cutoff.base + toFloat(m.cutoff);
    const float tracking = toFloat(m.filterKeytrack);
    if (tracking != 0.0f)
        cutoff += r.voiceNote[voice].pitch * kKeytrackPerUnit * tracking;
    cutoff = std::clamp(cutoff, -kLargestCutoff, kLargestCutoff);
    control.filterType = static_cast<int>(r.voiceFilterType[voice]);
    control.cutoff = cutoffRamp(call.r.slot[voice].previous.cutoff, cutoff, call.perFrame);
    control.resonance = call.resonance;
    control.resonance.start += toFloat(m.resonance);
    control.filterEnv = toFloat(m.filterEnv);
    control.filterOffset = unitFloat(m.filterOffset);
    control.comb = toFloat(m.comb);
}

// Position in the stereo field of voice k of a stack of n, for a spread of 1. Odd stacks are not
// scaled to their size: the outer voices of five lie beyond the edges and are clamped later.
double stackPan(int k, int n)
{
    const int half = n / 2;
    if (n % 2 != 0)
        return k - half;
    return k < half ? static_cast<double>(k + 1) / half : static_cast<double>(half - k - 1) / half;
}

void setGains(CallContext& call, std::size_t voice, const VoiceModulation& m, VoiceControl& control)
{
    const EngineRecord& r = call.r;
    VoiceSlot& slot = call.r.slot[voice];
    const std::uint32_t k = r.voiceUnisonIndex[voice];
    if (m.levelExponent != slot.levelExponent) {
        slot.levelExponent = m.levelExponent;
        slot.levelFactor = std::pow(10.0, m.levelExponent);
    }
    const double volume = 1.0 + std::max(-1.0, m.volume);
    double gain = kHeadroom * slot.levelFactor * m.lfo3Amp * volume * volume;
    gain = std::clamp(gain, -kLargestGain, kLargestGain);
    if (r.voiceSelectionActive && !r.stackSwitch[k])
        gain = 0.0;

    const double spread = std::clamp(m.panSpread, 0.0, 1.0);
    const double pan =
        std::clamp(m.pan + spread * stackPan(static_cast<int>(k), r.unisonVoices), -1.0, 1.0);
    const double left = pan > 0.0 ? gain * (1.0 - pan) : gain;
    const double right = pan < 0.0 ? gain * (1.0 + pan) : gain;
    control.leftGain = rampTo(slot.previous.leftGain, toFloat(left), call.perFrame);
    control.rightGain = rampTo(slot.previous.rightGain, toFloat(right), call.perFrame);
    control.effectsSend =
        rampTo(slot.previous.effectsSend, unitFloat(m.effectsSend), call.perFrame);

    control.spike = toFloat(m.spike);
    control.spikeTable =
        m.hardSpike ? r.rateTables.hardSpike.data() : r.rateTables.softSpike.data();
}

void setEnvelopes(EngineRecord& r, std::size_t voice, const VoiceModulation& m,
                  VoiceControl& control)
{
    const RateTables& tables = r.rateTables;
    VoiceSlot& slot = r.slot[voice];
    control.ampEnvelope = exponentialCoefficients(tables, m.amp, r.releaseEnabled);
    control.filterEnvelope = exponentialCoefficients(tables, m.filter, r.releaseEnabled);
    control.holdFrames = static_cast<std::uint32_t>(m.holdFrames);
    control.usesModEnvelope = m.usesModEnvelope;
    if (m.usesModEnvelope)
        control.modEnvelope = modCoefficients(tables, m.mod, r.releaseEnabled);
    const bool firstBlock = r.voiceNote[voice].age == 0;
    if (firstBlock && m.hardSpike && timeIndex(m.filter.attack) == 0) {
        slot.filter.level = 1.0f;
        slot.filter.stage = EnvelopeStage::decay;
    }
}

} // namespace

CallContext beginCall(EngineRecord& r, const Module& module, double tempo, int frames)
{
    const float perFrame = 1.0f / static_cast<float>(frames);
    CallContext call{r,
                     module,
                     tempo,
                     frames,
                     perFrame,
                     {},
                     {},
                     kPhaseTurn / module.sampleRateHz(),
                     modulationFromSettings(r)};
    for (std::size_t n = 0; n < kLfoCount; ++n) {
        LfoSettings& lfo = r.lfo[n];
        call.lfoIncrement[n] =
            lfoFrequency(lfo.frequency, lfo, lfo.rate, tempo, module.sampleRateHz()).increment;
    }
    call.resonance = {r.previousResonance, (r.resonance - r.previousResonance) * perFrame};
    return call;
}

void controlVoice(CallContext& call, std::size_t voice, VoiceControl& control)
{
    EngineRecord& r = call.r;
    VoiceSlot& slot = r.slot[voice];
    const double rate = call.module.sampleRateHz();
    VoiceModulation m = call.settings;
    for (std::size_t n = 0; n < kLfoCount; ++n) {
        // A rate that a row moves is known only after this reading: the last call's stands in.
        const bool moved = r.voiceNote[voice].age != 0 && slot.lfoIncrement[n] != 0;
        const std::uint32_t increment = moved ? slot.lfoIncrement[n] : call.lfoIncrement[n];
        m.lfo[n] = static_cast<double>(readLfo(r, voice, n, increment, call.frames, rate));
    }
    evaluateMatrix(call, voice, m);
    for (std::size_t n = 0; n < kLfoCount; ++n) {
        control.lfoIncrement[n] = call.lfoIncrement[n];
        slot.lfoIncrement[n] = 0;
        if (m.lfoRateModulated[n]) {
            control.lfoIncrement[n] = slot.lfoIncrement[n] =
                lfoFrequency(slot.lfoFrequency[n], r.lfo[n], toFloat(m.lfoRate[n]), call.tempo,
                             rate)
                    .increment;
        }
    }
    setEnvelopes(r, voice, m, control);
    setOscillators(call, voice, m, control);
    setMix(call, slot, m, control);
    setFilter(call, voice, m, control);
    setGains(call, voice, m, control);
}

} // namespace tolm
