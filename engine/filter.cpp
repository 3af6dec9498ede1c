#include "engine/filter.h"

#include "engine/envelope.h"
#include "engine/filterKernels.h"
#include "engine/shapers.h"

#include <algorithm>
#include <cmath>

namespace tolm {

struct FilterType {
    int id;
    FilterKernel kernel;
    Shaper shaper = Shaper::none;
    bool saturates = false; // after the kernel
    bool split = false;     // takes two input buffers
};

namespace {

constexpr FilterType kFilterTypes[] = {
    {0, lowpass12},
    {1, lowpass24},
    {2, lowpass12, Shaper::distort},
    {3, combLowpass},
    {4, lowpass12, Shaper::crush},
    {5, ladder<4>, Shaper::none, true},
    {6, lowpass12, Shaper::follow},
    {7, ladder<4>},
    {8, lowpass24Lowpass12},
    {9, seriesFilter<kBand>},
    {10, seriesFilter<kNotch>},
    {11, seriesFilter<kHigh>},
    {12, splitFilter<kLow>, Shaper::none, false, true},
    {13, splitFilter<kBand>, Shaper::none, false, true},
    {14, splitFilter<kNotch>, Shaper::none, false, true},
    {15, splitFilter<kHigh>, Shaper::none, false, true},
    {16, sweep},
    {17, ladder<2>},
    {18, ladder<4>, Shaper::distort, true}, // internal: not in the menu
};

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

} // namespace

const FilterType& filterType(int id)
{
    for (const FilterType& type : kFilterTypes)
        if (type.id == id)
            return type;
    return kFilterTypes[0];
}

bool isSplit(const FilterType& type)
{
    return type.split;
}

void filterVoice(EngineRecord& r, std::size_t voice, const VoiceControl& control,
                 double sampleRateHz, std::span<float> buffer, std::span<const float> split,
                 std::span<const float> cutoffFm)
{
    VoiceSlot& slot = r.slot[voice];
    const FilterType& type = filterType(control.filterType);
    const auto frames = static_cast<int>(buffer.size());
    shape(type.shaper, buffer, control, sampleRateHz, slot);

    std::array<float, kMaxSliceFrames> position;
    std::array<float, kMaxSliceFrames> resonance;
    runFilterEnvelope(slot.filter, control.filterEnvelope,
                      std::span(position).first(buffer.size()));
    for (int i = 0; i < frames; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const float fm = cutoffFm.empty() ? 0.0f : cutoffFm[k];
        position[k] = (position[k] * control.filterEnv + fm + control.cutoff.at(i)) *
                      static_cast<float>(kCutoffScale);
        resonance[k] = std::clamp(control.resonance.at(i), 0.0f, 1.0f);
    }

    FilterCall call;
    call.voice = buffer;
    call.split = split;
    call.position = std::span(position).first(buffer.size());
    call.resonance = std::span(resonance).first(buffer.size());
    call.tables = &r.rateTables;
    call.coefficientLimit = coefficientLimit(control.resonance, frames);
    call.offset = control.filterOffset;
    call.comb = control.comb;
    call.combFrames = static_cast<float>(sampleRateHz) / control.osc1Hz;
    call.state = &slot.filterState;
    call.line = &r.combLine[voice];
    type.kernel(call);

    if (type.saturates)
        saturate(buffer, control.filterOffset);
    slot.filter.level = flushTiny(slot.filter.level, 1e-8f);
}

} // namespace tolm
