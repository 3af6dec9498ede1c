#include "engine/filter.h"

#include "engine/envelope.h"
#include "engine/shapers.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

// By id. Id 18 is internal: no menu offers it.
constexpr FilterType kFilterTypes[] = {
    {0, Kernel::lowpass12},
    {1, Kernel::lowpass24},
    {2, Kernel::lowpass12, Shaper::distort},
    {3, Kernel::comb},
    {4, Kernel::lowpass12, Shaper::crush},
    {5, Kernel::ladder24, Shaper::none, true},
    {6, Kernel::lowpass12, Shaper::follow},
    {7, Kernel::ladder24},
    {8, Kernel::lowpass24Lowpass12},
    {9, Kernel::seriesBand},
    {10, Kernel::seriesNotch},
    {11, Kernel::seriesHigh},
    {12, Kernel::splitLow, Shaper::none, false, true},
    {13, Kernel::splitBand, Shaper::none, false, true},
    {14, Kernel::splitNotch, Shaper::none, false, true},
    {15, Kernel::splitHigh, Shaper::none, false, true},
    {16, Kernel::sweep},
    {17, Kernel::ladder12},
    {18, Kernel::ladder24, Shaper::distort, true},
};
constexpr int kTypeCount = static_cast<int>(std::size(kFilterTypes));
static_assert(kFilterTypes[kTypeCount - 1].id == kTypeCount - 1);

// A state-variable section with damping q is stable below sqrt(q^2 + 4) - q; the lowest limit of a
// call is that of its highest damping. Never reached at 44.1 kHz and above.
float coefficientLimit(const Ramp& resonance, int frames)
{
    const float least = std::min(resonance.at(0), resonance.at(frames - 1));
    const float q = std::clamp(1.0f - 0.9f * least, 0.0f, 1.0f);
    return 0.97f * (std::sqrt(q * q + 4.0f) - q);
}

void shape(Shaper shaper, std::span<float> buffer, const VoiceControl& control, double sampleRateHz,
           VoiceSlot& slot)
{
    switch (shaper) {
    case Shaper::none:
        break;
    case Shaper::distort:
        distort(buffer, control.filterOffset);
        break;
    case Shaper::crush:
        crush(buffer, control.filterOffset);
        break;
    case Shaper::follow:
        followHighpass(buffer, control.filterOffset, control.osc1Hz, sampleRateHz, slot);
        break;
    }
}

void preparePosition(FilterCall& call, VoiceSlot& slot, const VoiceControl& control,
                     std::span<const float> cutoffFm)
{
    const std::size_t frames = call.frames;
    runFilterEnvelope(slot.filter, control.filterEnvelope, std::span(call.position).first(frames));
    slot.filter.level = flushTiny(slot.filter.level, 1e-8f);
    // Scaled to table indices at once: by a power of two, so exactly. Copies, so that the compiler
    // need not fear that the buffers overlap them.
    constexpr auto kScale = static_cast<float>(kCutoffScale);
    const Ramp cutoff{control.cutoff.start * kScale, control.cutoff.slope * kScale};
    const Ramp resonance = control.resonance;
    const float amount = control.filterEnv * kScale;
    const auto frameCount = static_cast<int>(frames);
    float* position = call.position.data();
    for (int i = 0; i < frameCount; ++i)
        position[i] = position[i] * amount + cutoff.at(i);
    for (std::size_t i = 0; i < cutoffFm.size(); ++i)
        position[i] += cutoffFm[i] * kScale;
    float* clamped = call.resonance.data();
    if (resonance.isConstant()) {
        std::fill_n(clamped, frames, std::clamp(resonance.start, 0.0f, 1.0f));
        return;
    }
    for (int i = 0; i < frameCount; ++i)
        clamped[i] = atMost(atLeast(resonance.at(i), 0.0f), 1.0f);
}

void prepare(FilterCall& call, EngineRecord& r, const VoiceControl& control, double sampleRateHz,
             const FilterInput& input)
{
    VoiceSlot& slot = r.slot[input.index];
    const FilterType& type = filterType(control.filterType);
    shape(type.shaper, input.voice, control, sampleRateHz, slot);
    std::copy(input.voice.begin(), input.voice.end(), call.voice.begin());
    if (type.split)
        std::copy(input.split.begin(), input.split.end(), call.split.begin());
    call.frames = input.voice.size();
    preparePosition(call, slot, control, input.cutoffFm);
    call.tables = &r.rateTables;
    call.coefficientLimit = coefficientLimit(control.resonance, static_cast<int>(call.frames));
    call.offset = control.filterOffset;
    call.comb = control.comb;
    call.combFrames = static_cast<float>(sampleRateHz) / control.osc1Hz;
    call.state = &slot.filterState;
    call.line = &r.combLine[input.index];
}

} // namespace

const FilterType& filterType(int id)
{
    return kFilterTypes[id >= 0 && id < kTypeCount ? id : 0];
}

void filterVoices(EngineRecord& r, const PerVoice<VoiceControl>& control, double sampleRateHz,
                  std::span<const FilterInput> inputs)
{
    std::array<FilterCall, kFilterLanes> calls;
    for (std::size_t lane = 0; lane < inputs.size(); ++lane)
        prepare(calls[lane], r, control[inputs[lane].index], sampleRateHz, inputs[lane]);
    const FilterType& first = filterType(control[inputs[0].index].filterType);
    filterKernel(first.kernel)(std::span(calls).first(inputs.size()));
    for (std::size_t lane = 0; lane < inputs.size(); ++lane) {
        const FilterInput& input = inputs[lane];
        const VoiceControl& c = control[input.index];
        std::copy_n(calls[lane].voice.begin(), input.voice.size(), input.voice.begin());
        if (filterType(c.filterType).saturates)
            saturate(input.voice, c.filterOffset);
    }
}

} // namespace tolm
