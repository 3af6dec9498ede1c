#include "engine/syncOscillator.h"

#include "engine/tableReader.h"

#include <cmath>

namespace tolm {

namespace {

constexpr int kFractionBits = 8;
constexpr int kResidualLength = 31; // entries that are added; the last of a row is 0
constexpr double kTurn = 1.0 / kPhaseTurn;
constexpr float kFullScale = 32768.0f;

// A rising ramp from -1 to 1.
float ramp(std::uint32_t phase)
{
    return (static_cast<float>(static_cast<double>(phase) * kTurn) - 0.5f) * 2.0f;
}

// Waveforms, -1..1 for a saw. `wrapShift` lists the phase offsets at which the waveform itself
// steps when its phase wraps, with the height of the fall.
struct SawWave {
    float at(std::uint32_t phase) const { return ramp(phase); }
    template <class F>
    void forEachWrap(F f) const
    {
        f(0u, 2.0f);
    }
};

struct PulseWave {
    std::uint32_t offset;

    float at(std::uint32_t phase) const { return ramp(phase) - ramp(phase + offset); }
    template <class F>
    void forEachWrap(F f) const
    {
        f(0u, 2.0f);
        f(offset, -2.0f);
    }
};

template <class Reader>
struct TableWave {
    Reader reader;

    float at(std::uint32_t phase) const
    {
        return static_cast<float>(reader.template between<kFractionBits>(
                   tableIndex(phase), tableFraction<kFractionBits>(phase))) /
               kFullScale;
    }
    template <class F>
    void forEachWrap(F) const
    {
    }
};

// The ring of corrections still to be played.
class StepRing {
public:
    explicit StepRing(VoiceSlot& slot) : slot_(slot)
    {
        if (!slot.syncRingValid) {
            slot.syncRing.fill(0.0f);
            slot.syncPosition = 0;
            slot.syncRingValid = true;
        }
    }
    float take()
    {
        float& entry = slot_.syncRing[slot_.syncPosition];
        const float value = entry;
        entry = 0.0f;
        slot_.syncPosition = (slot_.syncPosition + 1) % kSyncRingFrames;
        return value;
    }
    // A fall by `height` that happened `age` frames (0..1) before the frame that is played next.
    void addStep(float height, double age)
    {
        const int row =
            std::clamp(static_cast<int>(age * kResidualOffsets), 0, kResidualOffsets - 1);
        const auto& residual = constantTables().stepResidual[static_cast<std::size_t>(row)];
        for (std::size_t j = 0; j < kResidualLength; ++j)
            slot_.syncRing[(slot_.syncPosition + j) % kSyncRingFrames] += height * residual[j];
    }

private:
    VoiceSlot& slot_;
};

// Moves `phase` by `share` (0..1) of a frame's increment; the waveform's own steps on the way go
// into the ring. `rest` is the part of the frame that remains afterwards.
template <class Waveform>
std::uint32_t advance(const Waveform& wave, StepRing& ring, std::uint32_t phase,
                      std::int64_t increment, double share, double rest)
{
    const std::int64_t step = phaseStep(static_cast<double>(increment) * share);
    wave.forEachWrap([&](std::uint32_t offset, float height) {
        const std::uint32_t shifted = phase + offset;
        if (!wraps(shifted, step))
            return;
        const std::uint32_t end = shifted + static_cast<std::uint32_t>(step);
        const double past =
            increment > 0 ? static_cast<double>(end) : kPhaseTurn - static_cast<double>(end);
        const double age = rest + past / std::abs(static_cast<double>(increment));
        ring.addStep(increment > 0 ? height : -height, age);
    });
    return phase + static_cast<std::uint32_t>(step);
}

template <class Waveform>
void render(const Waveform& wave, FmMode mode, const VoiceControl& control, VoiceSlot& slot,
            std::uint32_t syncPhase, std::span<const float> osc1, std::span<float> out)
{
    StepRing ring(slot);
    const bool feedback = control.fmOn && mode == FmMode::feedback;
    const bool dual = control.fmOn && mode == FmMode::dual;
    const std::uint32_t syncIncrement = control.osc[0].increment;
    const std::int64_t plainIncrement = control.osc[1].increment;
    std::uint32_t& played = dual ? slot.osc2DualPhase : slot.osc2Phase;
    std::uint32_t other = dual ? slot.osc2Phase : slot.osc2DualPhase;

    for (std::size_t i = 0; i < out.size(); ++i) {
        const float value = (wave.at(played) + ring.take()) * kFullScale;
        out[i] = value;
        const auto frame = static_cast<int>(i);
        const std::int64_t increment = feedback ? feedbackIncrement(control, frame, osc1[i], value)
                                       : dual   ? dualIncrement(control, frame, osc1[i], value)
                                                : plainIncrement;

        const std::uint32_t before = syncPhase;
        syncPhase += syncIncrement;
        if (syncPhase >= before) {
            played = advance(wave, ring, played, increment, 1.0, 0.0);
            other += static_cast<std::uint32_t>(dual ? plainIncrement : 0);
            continue;
        }
        // Oscillator 1 has wrapped `age` frames before the next frame: oscillator 2 runs up to that
        // moment, falls to its start and goes on from there.
        const double age = static_cast<double>(syncPhase) / static_cast<double>(syncIncrement);
        const std::uint32_t last = advance(wave, ring, played, increment, 1.0 - age, age);
        ring.addStep(wave.at(last) - wave.at(0), age);
        played = static_cast<std::uint32_t>(phaseStep(static_cast<double>(increment) * age));
        if (dual)
            other =
                static_cast<std::uint32_t>(phaseStep(static_cast<double>(plainIncrement) * age));
    }
    if (dual)
        slot.osc2Phase = other;
}

} // namespace

void renderSyncedOscillator2(FmMode mode, const VoiceControl& control, VoiceSlot& slot,
                             std::uint32_t syncPhase, std::span<const float> osc1,
                             std::span<float> out)
{
    const OscillatorControl& o = control.osc[1];
    const auto run = [&](const auto& wave) {
        render(wave, mode, control, slot, syncPhase, osc1, out);
    };
    if (o.shape == OscillatorShape::saw)
        run(SawWave{});
    else if (o.shape == OscillatorShape::pulse)
        run(PulseWave{o.pulseOffset});
    else if (o.blend != 0)
        run(TableWave<BlendedTables>{{o.table, o.partner, o.blend}});
    else
        run(TableWave<SingleTable>{{o.table}});
}

} // namespace tolm
