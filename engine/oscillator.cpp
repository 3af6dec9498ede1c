#include "engine/oscillator.h"

#include "engine/syncOscillator.h"
#include "engine/tableRun.h"

#include <algorithm>
#include <array>

namespace tolm {

namespace {

constexpr int kOsc1FractionBits = 10;
constexpr int kOsc2FractionBits = 8;
constexpr float kFullScale = 32768.0f;

// The six detuned copies of a fat oscillator, read without interpolation.
template <class Reader>
struct FatSides {
    const Reader& reader;
    std::array<std::uint32_t, kFatVoices>& phase;
    const std::array<std::uint32_t, kFatVoices>& increment;

    std::int32_t sum(std::uint32_t offset) const
    {
        std::int32_t total = 0;
        for (const std::uint32_t p : phase)
            total += reader.at(tableIndex(p + offset));
        return total;
    }
    void advance() const
    {
        for (std::size_t i = 0; i < phase.size(); ++i)
            phase[i] += increment[i];
    }
};

// Value of a main oscillator at `phase`. A pulse is a saw minus the same saw shifted by the pulse
// width; both are interpolated with one fraction.
template <int bits, bool pulse, bool fat, class Reader>
std::int32_t readOscillator(const Reader& reader, const OscillatorControl& o,
                            const FatSides<Reader>& sides, std::uint32_t phase)
{
    const std::int32_t fraction = tableFraction<bits>(phase);
    std::int32_t value = reader.template between<bits>(tableIndex(phase), fraction);
    if constexpr (pulse)
        value -= reader.template between<bits>(tableIndex(phase + o.pulseOffset), fraction);
    if constexpr (fat && pulse)
        // The main term takes its weight twice; the sound of fat pulses depends on it.
        value = (value * o.mainWeight - sides.sum(o.pulseOffset) * o.sideWeight) / 1024;
    if constexpr (fat)
        value = (value * o.mainWeight + sides.sum(0) * o.sideWeight) / 1024;
    return value;
}

// ---- Unmodulated oscillators: a whole slice at a time ----------------------------------------
//
// The samples are those of readOscillator.

template <int bits>
void readShape(const OscillatorControl& o, std::uint32_t phase, std::uint32_t offset, int frames,
               IntBuffer& out)
{
    const TableRun run{phase, o.increment, offset, frames};
    if (o.shape == OscillatorShape::wavetable && o.blend != 0)
        readRun<bits>(BlendedTables{o.table, o.partner, o.blend}, run, out);
    else
        readRun<bits>(SingleTable{o.table}, run, out);
}

// Sum of the six fat voices, read without interpolation: two runs of three, whose phases and
// increments stay in registers.
template <class Reader>
void sumSides(const Reader& reader, const std::array<std::uint32_t, kFatVoices>& phases,
              const OscillatorControl& o, std::uint32_t offset, int frames,
              std::int32_t* __restrict out)
{
    constexpr std::size_t kRun = 3;
    static_assert(kFatVoices == 2 * kRun);
    std::fill_n(out, frames, 0);
    for (std::size_t side = 0; side < kFatVoices; side += kRun) {
        std::uint32_t a = phases[side] + offset;
        std::uint32_t b = phases[side + 1] + offset;
        std::uint32_t c = phases[side + 2] + offset;
        const std::uint32_t da = o.sideIncrement[side];
        const std::uint32_t db = o.sideIncrement[side + 1];
        const std::uint32_t dc = o.sideIncrement[side + 2];
        for (int i = 0; i < frames; ++i) {
            out[i] +=
                reader.at(tableIndex(a)) + reader.at(tableIndex(b)) + reader.at(tableIndex(c));
            a += da;
            b += db;
            c += dc;
        }
    }
}

void weigh(std::int32_t* __restrict value, std::int32_t mainWeight,
           const std::int32_t* __restrict sides, std::int32_t sideWeight, int frames)
{
    for (int i = 0; i < frames; ++i)
        value[i] = (value[i] * mainWeight + sides[i] * sideWeight) / 1024;
}

template <class Reader>
void addSides(const Reader& reader, const OscillatorControl& o,
              std::array<std::uint32_t, kFatVoices>& phases, int frames, std::int32_t* value)
{
    IntBuffer sides;
    if (o.shape == OscillatorShape::pulse) {
        // The main term takes its weight twice; the sound of fat pulses depends on it.
        sumSides(reader, phases, o, o.pulseOffset, frames, sides.data());
        weigh(value, o.mainWeight, sides.data(), -o.sideWeight, frames);
    }
    sumSides(reader, phases, o, 0, frames, sides.data());
    weigh(value, o.mainWeight, sides.data(), o.sideWeight, frames);
    for (std::size_t side = 0; side < kFatVoices; ++side)
        phases[side] += o.sideIncrement[side] * static_cast<std::uint32_t>(frames);
}

template <int bits>
void renderUnmodulated(const OscillatorControl& o, std::uint32_t& phase,
                       std::array<std::uint32_t, kFatVoices>& sidePhases, std::span<float> out)
{
    const int frames = static_cast<int>(out.size());
    IntBuffer value;
    readShape<bits>(o, phase, 0, frames, value);
    if (o.shape == OscillatorShape::pulse) {
        IntBuffer shifted;
        readShape<bits>(o, phase, o.pulseOffset, frames, shifted);
        for (std::size_t i = 0; i < out.size(); ++i)
            value[i] -= shifted[i];
    }
    if (o.fat && o.shape == OscillatorShape::wavetable)
        addSides(BlendedTables{o.table, o.partner, o.blend}, o, sidePhases, frames, value.data());
    else if (o.fat)
        addSides(SingleTable{o.table}, o, sidePhases, frames, value.data());
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = static_cast<float>(value[i]);
    phase += o.increment * static_cast<std::uint32_t>(frames);
}

// A synced wavetable is still fat; the naive saws and pulses of sync are not.
void addSyncedSides(const OscillatorControl& o, std::array<std::uint32_t, kFatVoices>& phases,
                    std::span<float> out)
{
    const int frames = static_cast<int>(out.size());
    IntBuffer sides;
    sumSides(BlendedTables{o.table, o.partner, o.blend}, phases, o, 0, frames, sides.data());
    const auto mainWeight = static_cast<float>(o.mainWeight) / 1024.0f;
    const auto sideWeight = static_cast<float>(o.sideWeight) / 1024.0f;
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = out[i] * mainWeight + static_cast<float>(sides[i]) * sideWeight;
    for (std::size_t side = 0; side < kFatVoices; ++side)
        phases[side] += o.sideIncrement[side] * static_cast<std::uint32_t>(frames);
}

// ---- Oscillator 2 with FM or as one-shot: frame by frame -------------------------------------

enum class Fm { none, feedback, dual };

template <bool pulse, bool fat, Fm fm, bool oneShot, class Reader>
void renderModulated(const Reader& reader, const VoiceControl& control, VoiceSlot& slot,
                     std::span<const float> osc1, std::span<float> out)
{
    const OscillatorControl& o = control.osc[1];
    auto sidePhase = slot.fatPhase[1];
    const FatSides<Reader> sides{reader, sidePhase, o.sideIncrement};
    std::uint32_t phase = slot.osc2Phase;
    std::uint32_t dualPhase = slot.osc2DualPhase;
    bool finished = slot.oneShotFinished;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::uint32_t played = fm == Fm::dual ? dualPhase : phase;
        auto value = static_cast<float>(
            readOscillator<kOsc2FractionBits, pulse, fat>(reader, o, sides, played));
        if constexpr (oneShot)
            value = finished ? 0.0f : value;
        std::int64_t increment = o.increment;
        if constexpr (fm == Fm::feedback)
            increment = feedbackIncrement(control, static_cast<int>(i), osc1[i], value);
        if constexpr (fm == Fm::dual)
            dualPhase += static_cast<std::uint32_t>(
                dualIncrement(control, static_cast<int>(i), osc1[i], value));
        if constexpr (oneShot)
            finished = finished || wraps(phase, increment);
        phase += static_cast<std::uint32_t>(increment);
        out[i] = value;
        if constexpr (fat)
            sides.advance();
    }
    slot.osc2Phase = phase;
    slot.osc2DualPhase = dualPhase;
    slot.oneShotFinished = finished;
    slot.fatPhase[1] = sidePhase;
}

// ---- Choice of the kernel, once per voice and call ------------------------------------------

// Calls f with a reader and std::bool_constants for pulse and fat.
template <class F>
void withShape(const OscillatorControl& o, F f)
{
    const auto withFat = [&](auto reader, auto pulse) {
        if (o.fat)
            f(reader, pulse, std::true_type{});
        else
            f(reader, pulse, std::false_type{});
    };
    if (o.shape == OscillatorShape::pulse)
        withFat(SingleTable{o.table}, std::true_type{});
    else if (o.shape == OscillatorShape::wavetable && o.blend != 0)
        withFat(BlendedTables{o.table, o.partner, o.blend}, std::false_type{});
    else
        withFat(SingleTable{o.table}, std::false_type{});
}

template <Fm fm>
using FmConstant = std::integral_constant<Fm, fm>;

template <class F>
void withFm(bool on, FmMode mode, F f)
{
    if (on && mode == FmMode::feedback)
        f(FmConstant<Fm::feedback>{});
    else if (on && mode == FmMode::dual)
        f(FmConstant<Fm::dual>{});
    else
        f(FmConstant<Fm::none>{});
}

void renderOscillator2(const EngineRecord& r, VoiceSlot& slot, const VoiceControl& control,
                       std::span<const float> osc1, std::span<float> out)
{
    if (!control.oneShot && (!control.fmOn || r.fmMode == FmMode::filter)) {
        renderUnmodulated<kOsc2FractionBits>(control.osc[1], slot.osc2Phase, slot.fatPhase[1], out);
        return;
    }
    withShape(control.osc[1], [&](auto reader, auto pulse, auto fat) {
        withFm(control.fmOn, r.fmMode, [&](auto fm) {
            if (control.oneShot)
                renderModulated<pulse(), fat(), fm(), true>(reader, control, slot, osc1, out);
            else
                renderModulated<pulse(), fat(), fm(), false>(reader, control, slot, osc1, out);
        });
    });
}

// ---- Sub oscillator and noise: what both put beside the main oscillators ---------------------

bool renderOscillator3(VoiceSlot& slot, const VoiceControl& control, std::span<float> side)
{
    if (control.osc3Level.isZero()) {
        slot.osc3Phase += control.osc3Increment * static_cast<std::uint32_t>(side.size());
        return false;
    }
    const SingleTable reader{control.osc3Table};
    const Ramp level = control.osc3Level;
    std::uint32_t phase = slot.osc3Phase;
    for (std::size_t i = 0; i < side.size(); ++i) {
        const std::int32_t value = reader.between<kOsc2FractionBits>(
            tableIndex(phase), tableFraction<kOsc2FractionBits>(phase));
        side[i] = static_cast<float>(value) * level.at(static_cast<int>(i)) * (1.0f / kFullScale);
        phase += control.osc3Increment;
    }
    slot.osc3Phase = phase;
    return true;
}

// The generator's state after n steps: seed * multiplier[n] + increment[n].
struct NoiseJump {
    std::array<std::uint32_t, kMaxSliceFrames + 1> multiplier{};
    std::array<std::uint32_t, kMaxSliceFrames + 1> increment{};
};

constexpr NoiseJump kNoiseJump = [] {
    NoiseJump jump;
    jump.multiplier[0] = 1;
    for (std::size_t n = 1; n <= kMaxSliceFrames; ++n) {
        jump.multiplier[n] = jump.multiplier[n - 1] * kLcgMultiplier;
        jump.increment[n] = jump.increment[n - 1] * kLcgMultiplier + kLcgIncrement;
    }
    return jump;
}();

bool renderNoise(EngineRecord& r, VoiceSlot& slot, const VoiceControl& control,
                 std::span<float> side, bool add)
{
    const bool silent =
        control.noiseLevel.isZero() && slot.noisePrevious == 0.0f && slot.noiseColoured == 0.0f;
    if (silent) {
        r.noiseSeed =
            r.noiseSeed * kNoiseJump.multiplier[side.size()] + kNoiseJump.increment[side.size()];
        return false;
    }
    const OnePole filter = control.noiseFilter;
    const Ramp level = control.noiseLevel;
    std::uint32_t seed = r.noiseSeed;
    float previous = slot.noisePrevious;
    float coloured = slot.noiseColoured;
    for (std::size_t i = 0; i < side.size(); ++i) {
        seed = seed * kLcgMultiplier + kLcgIncrement;
        const auto white = static_cast<float>(static_cast<std::int16_t>(seed >> 16));
        const float noise = white * level.at(static_cast<int>(i)) * (1.0f / kFullScale);
        coloured = filter.b0 * (noise - previous) - filter.a1 * coloured;
        previous = noise;
        side[i] = add ? side[i] + coloured : coloured;
    }
    r.noiseSeed = seed;
    slot.noisePrevious = previous;
    slot.noiseColoured = flushTiny(coloured);
    return true;
}

// ---- Mix ------------------------------------------------------------------------------------

void mixMain(const VoiceControl& c, const SliceBuffer& osc1, const SliceBuffer& osc2,
             std::span<float> out)
{
    const Ramp mix = c.oscMix;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const float m = mix.at(static_cast<int>(i));
        out[i] = (osc2[i] * m + osc1[i] * (1.0f - m)) * (1.0f / kFullScale);
    }
}

void mixRing(const VoiceControl& c, const SliceBuffer& osc1, const SliceBuffer& osc2,
             std::span<float> out)
{
    const Ramp ringMod = c.ringMod;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const float ring = ringMod.at(static_cast<int>(i));
        const float product = osc1[i] * osc2[i] * (1.0f / (kFullScale * kFullScale));
        out[i] = (1.0f - ring) * out[i] + ring * product;
    }
}

void mixSplit(const VoiceControl& c, const SliceBuffer& osc1, const SliceBuffer& osc2,
              const OscillatorOutput& out)
{
    const Ramp mix = c.oscMix;
    for (std::size_t i = 0; i < out.voice.size(); ++i) {
        const float m = mix.at(static_cast<int>(i));
        out.voice[i] = osc1[i] * (1.0f - m) * (1.0f / kFullScale);
        out.split[i] = osc2[i] * m * (1.0f / kFullScale);
    }
}

void addSide(const SliceBuffer& side, std::span<float> out)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] += side[i];
}

void writeCutoffFm(const VoiceControl& c, const SliceBuffer& osc1, const SliceBuffer& osc2,
                   std::span<float> out)
{
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] =
            c.fm1.at(static_cast<int>(i)) * osc1[i] * (1.0f / 128.0f) + osc2[i] * c.fm2 * 0.25f;
}

} // namespace

bool modulatesCutoff(const EngineRecord& r, const VoiceControl& control)
{
    return control.fmOn && r.fmMode == FmMode::filter;
}

void renderOscillators(EngineRecord& r, std::size_t voice, const VoiceControl& control,
                       bool splitFilter, const OscillatorOutput& out)
{
    const std::size_t frames = out.voice.size();
    VoiceSlot& slot = r.slot[voice];
    SliceBuffer osc1;
    SliceBuffer osc2;
    SliceBuffer side;
    const std::span osc1Span(osc1.data(), frames);
    const std::span osc2Span(osc2.data(), frames);
    const std::span sideSpan(side.data(), frames);

    const std::uint32_t syncPhase = slot.osc1Phase;
    renderUnmodulated<kOsc1FractionBits>(control.osc[0], slot.osc1Phase, slot.fatPhase[0],
                                         osc1Span);
    if (r.oscSync) {
        renderSyncedOscillator2(r.fmMode, control, slot, syncPhase, osc1Span, osc2Span);
        if (control.osc[1].fat && control.osc[1].shape == OscillatorShape::wavetable)
            addSyncedSides(control.osc[1], slot.fatPhase[1], osc2Span);
    } else {
        slot.syncRingValid = false;
        renderOscillator2(r, slot, control, osc1Span, osc2Span);
    }

    bool hasSide = renderOscillator3(slot, control, sideSpan);
    hasSide = renderNoise(r, slot, control, sideSpan, hasSide) || hasSide;

    if (splitFilter) {
        mixSplit(control, osc1, osc2, out);
    } else {
        mixMain(control, osc1, osc2, out.voice);
        if (!control.ringMod.isZero())
            mixRing(control, osc1, osc2, out.voice);
    }
    if (hasSide)
        addSide(side, splitFilter ? out.split : out.voice);
    if (modulatesCutoff(r, control))
        writeCutoffFm(control, osc1, osc2, out.cutoffFm);
}

} // namespace tolm
