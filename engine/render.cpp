#include "engine/render.h"

#include "engine/envelope.h"
#include "engine/filter.h"
#include "engine/oscillator.h"
#include "engine/pitch.h"
#include "engine/voices.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace tolm {

namespace {

constexpr float kVoiceEnd = 1e-9f;
constexpr float kModEnd = 1e-8f;
constexpr float kSmallestGainStep = 1e-9f;

[[maybe_unused]] bool isFinite(std::span<const float> samples)
{
    return std::all_of(samples.begin(), samples.end(), [](float x) { return std::isfinite(x); });
}

// The voices that sound in this call, in ascending order.
struct Sounding {
    std::array<std::size_t, kVoiceCount> voice;
    std::size_t count = 0;

    std::span<const std::size_t> all() const { return std::span(voice).first(count); }
};

bool anySounding(const EngineRecord& r)
{
    const auto end = r.voiceActive.begin() + r.polyphony;
    return std::any_of(r.voiceActive.begin(), end,
                       [](std::uint32_t active) { return active != 0; });
}

void advanceLfos(VoiceSlot& slot, const std::array<std::uint32_t, kLfoCount>& increment, int frames)
{
    for (std::size_t n = 0; n < kLfoCount; ++n)
        slot.lfoPhase[n] += increment[n] * static_cast<std::uint32_t>(frames);
}

// Random draws and the noise colour make the order of voices matter here.
void controlStage(CallContext& call, RenderScratch& scratch, Sounding& sounding)
{
    EngineRecord& r = call.r;
    for (std::size_t v = 0; v < static_cast<std::size_t>(r.polyphony); ++v) {
        if (r.voiceActive[v] == 0) {
            advanceLfos(r.slot[v], call.lfoIncrement, call.frames);
            continue;
        }
        controlVoice(call, v, scratch.control[v]);
        sounding.voice[sounding.count++] = v;
    }
}

// All voices draw from one noise seed, so here too.
void oscillatorStage(CallContext& call, RenderScratch& scratch, const Sounding& sounding)
{
    const auto frames = static_cast<std::size_t>(call.frames);
    for (const std::size_t v : sounding.all()) {
        const VoiceControl& control = scratch.control[v];
        const OscillatorOutput out{std::span(scratch.voice[v]).first(frames),
                                   std::span(scratch.split[v]).first(frames),
                                   std::span(scratch.cutoffFm[v]).first(frames)};
        renderOscillators(call.r, v, control, filterType(control.filterType).split, out);
        assert(isFinite(out.voice));
    }
}

void releaseEnvelopes(EngineRecord& r, std::size_t voice)
{
    if (r.voiceReleased[voice] == 0)
        return;
    r.slot[voice].amp.stage = EnvelopeStage::release;
    r.slot[voice].filter.stage = EnvelopeStage::release;
}

// Voices of one kernel run in groups; nothing that they touch is shared, so their order is free.
void filterStage(CallContext& call, RenderScratch& scratch, const Sounding& sounding)
{
    struct Group {
        std::array<FilterInput, kFilterLanes> inputs;
        std::size_t count = 0;
    };
    std::array<Group, static_cast<std::size_t>(Kernel::count)> groups;
    EngineRecord& r = call.r;
    const auto frames = static_cast<std::size_t>(call.frames);
    const auto flush = [&](Group& group) {
        filterVoices(r, scratch.control, call.module.sampleRateHz(),
                     std::span(group.inputs).first(group.count));
        group.count = 0;
    };
    for (const std::size_t v : sounding.all()) {
        releaseEnvelopes(r, v);
        const VoiceControl& control = scratch.control[v];
        std::span<const float> fm;
        if (modulatesCutoff(r, control))
            fm = std::span(scratch.cutoffFm[v]).first(frames);
        const Kernel kernel = filterType(control.filterType).kernel;
        Group& group = groups[static_cast<std::size_t>(kernel)];
        group.inputs[group.count++] = {v, std::span(scratch.voice[v]).first(frames),
                                       std::span(scratch.split[v]).first(frames), fm};
        if (group.count == kFilterLanes)
            flush(group);
    }
    for (Group& group : groups)
        if (group.count > 0)
            flush(group);
    assert(std::all_of(sounding.all().begin(), sounding.all().end(), [&](std::size_t v) {
        return isFinite(std::span(scratch.voice[v]).first(frames));
    }));
}

// A short gain transient after note start, not an added sound. It stands beside the envelope, so
// that it is heard during the attack.
void addSpike(const EngineRecord& r, const VoiceControl& control, std::uint32_t age,
              std::span<float> levels)
{
    const auto length = static_cast<std::uint32_t>(r.rateTables.spikeFrames);
    for (std::size_t i = 0; i < levels.size() && age + i < length; ++i)
        levels[i] += control.spike * control.spikeTable[age + i];
}

// The buses and the voice's buffer never overlap.
void addScaled(float* __restrict bus, const float* __restrict samples, Ramp gain, int frames)
{
    if (gain.isConstant()) {
        for (int i = 0; i < frames; ++i)
            bus[i] += gain.start * samples[i];
        return;
    }
    for (int i = 0; i < frames; ++i)
        bus[i] += gain.at(i) * samples[i];
}

void addToBuses(const VoiceControl& c, std::span<float> samples, const RenderBuses& buses)
{
    const auto frames = static_cast<int>(samples.size());
    const Ramp send = c.effectsSend;
    const bool whole = send.start == 1.0f && send.slope == 0.0f;
    if (!whole) {
        SliceBuffer bypassed;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const float share = send.at(static_cast<int>(i));
            bypassed[i] = samples[i] * (1.0f - share);
            samples[i] *= share;
        }
        addScaled(buses.bypass[0], bypassed.data(), c.leftGain, frames);
        addScaled(buses.bypass[1], bypassed.data(), c.rightGain, frames);
    }
    addScaled(buses.effects[0], samples.data(), c.leftGain, frames);
    addScaled(buses.effects[1], samples.data(), c.rightGain, frames);
}

void amplitudeStage(CallContext& call, RenderScratch& scratch, const Sounding& sounding,
                    const RenderBuses& buses)
{
    EngineRecord& r = call.r;
    const auto frames = static_cast<std::size_t>(call.frames);
    for (const std::size_t v : sounding.all()) {
        const VoiceControl& control = scratch.control[v];
        const auto samples = std::span(scratch.voice[v]).first(frames);
        const std::uint32_t age = r.voiceNote[v].age;
        std::array<float, kMaxSliceFrames> levels;
        runAmpEnvelope(r.slot[v].amp, control.ampEnvelope, age, control.holdFrames,
                       std::span(levels).first(frames));
        if (control.spike != 0.0f)
            addSpike(r, control, age, std::span(levels).first(frames));
        for (std::size_t i = 0; i < frames; ++i)
            samples[i] *= levels[i];
        addToBuses(control, samples, buses);
    }
}

void finishVoices(CallContext& call, const RenderScratch& scratch, const Sounding& sounding)
{
    EngineRecord& r = call.r;
    for (const std::size_t v : sounding.all()) {
        const VoiceControl& control = scratch.control[v];
        VoiceSlot& slot = r.slot[v];
        if (control.usesModEnvelope) {
            runModEnvelope(slot.mod, control.modEnvelope, call.frames);
            slot.mod.level = flushTiny(slot.mod.level, kModEnd);
        }
        advanceLfos(slot, control.lfoIncrement, call.frames);
        r.voiceNote[v].age += static_cast<std::uint32_t>(call.frames);
        if (slot.amp.level < kVoiceEnd)
            freeVoice(r, static_cast<int>(v));
    }
}

void advanceRamps(EngineRecord& r, int frames)
{
    for (BlockRamp* ramp : {&r.cutoff, &r.pulseWidth, &r.fm})
        ramp->base += ramp->slope * static_cast<float>(frames);
    r.previousResonance = r.resonance;
}

} // namespace

bool renderSlice(EngineRecord& r, RenderScratch& scratch, const Module& module, double tempo,
                 int frames, const RenderBuses& buses)
{
    updateControllers(r);
    const bool sounds = anySounding(r);
    if (sounds) {
        decayGlide(r, frames);
        CallContext call = beginCall(r, module, tempo, frames);
        Sounding sounding;
        controlStage(call, scratch, sounding);
        oscillatorStage(call, scratch, sounding);
        filterStage(call, scratch, sounding);
        amplitudeStage(call, scratch, sounding, buses);
        finishVoices(call, scratch, sounding);
        advanceRamps(r, frames);
    }
    r.sampleClock += frames;
    return sounds;
}

float renderOutputStage(EngineRecord& r, int frames, float* const* outputs)
{
    if (r.outputGain < 0.0f)
        r.outputGain = r.outputGainTarget;
    if (frames <= 0)
        return r.outputGain;
    float slope = (r.outputGainTarget - r.outputGain) / static_cast<float>(frames);
    if (std::abs(slope) < kSmallestGainStep)
        slope = 0.0f;
    const Ramp gain{r.outputGain, slope};
    for (std::size_t channel = 0; channel < 2; ++channel) {
        float* samples = outputs[channel];
        for (int i = 0; i < frames; ++i)
            samples[i] *= gain.at(i);
        if (!r.oscSync)
            continue;
        float x = r.dcInput[channel];
        float y = r.dcOutput[channel];
        for (int i = 0; i < frames; ++i) {
            y = r.dcBlocker.b0 * (samples[i] - x) - r.dcBlocker.a1 * y;
            x = samples[i];
            samples[i] = y;
        }
        r.dcInput[channel] = flushTiny(x);
        r.dcOutput[channel] = flushTiny(y);
    }
    r.outputGain = r.outputGainTarget;
    return r.outputGain;
}

} // namespace tolm
