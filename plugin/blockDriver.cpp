#include "plugin/blockDriver.h"

#include "plugin/blockWalk.h"
#include "plugin/eventIntake.h"
#include "plugin/floatMode.h"

#include <algorithm>

namespace tolm {

namespace {

// Outside this range (or when it is no number) a host's tempo is not believed.
constexpr double kSlowestTempo = 1.0;
constexpr double kFastestTempo = 1000.0;

double believableTempo(double beatsPerMinute)
{
    return beatsPerMinute >= kSlowestTempo && beatsPerMinute <= kFastestTempo ? beatsPerMinute
                                                                              : kDefaultTempo;
}

// Lets the engine render and play into the buses of one block.
class EnginePlayer {
public:
    EnginePlayer(SynthCore& core, float* const* outputs, OutputMode mode)
        : core_(core), outputs_(outputs), mode_(mode)
    {
    }

    void render(int start, int frames)
    {
        float* const effectsBus[] = {outputs_[0] + start, outputs_[1] + start};
        float* const bypassBus[] = {core_.bypassChannel(0) + start, core_.bypassChannel(1) + start};
        core_.engine().renderVoices(frames, effectsBus, bypassBus, mode_ == OutputMode::replace);
    }

    void play(const QueuedEvent& event)
    {
        const int key = event.data1 & 0x7F;
        const int velocity = event.data2 & 0x7F;
        const auto mask = static_cast<std::uint32_t>(event.tag);
        if (event.status == kNoteOff || velocity == 0) {
            core_.engine().noteOff(key, mask);
            return;
        }
        core_.engine().noteOn(key, velocity, mask);
        if (EditorHooks* editor = core_.editor())
            editor->noteActivity();
    }

private:
    SynthCore& core_;
    float* const* outputs_;
    OutputMode mode_;
};

void runEffects(SynthCore& core, int frames, float* const* outputs)
{
    Tolm& engine = core.engine();
    const auto tempo = static_cast<float>(core.hostTempo());
    for (int slot = 0; slot < kEffectSlots; ++slot)
        engine.effects().process(core.effectOrder(slot), frames, outputs, tempo,
                                 engine.delayModulation());
}

void addBypass(const SynthCore& core, int frames, float* const* outputs)
{
    for (int channel = 0; channel < 2; ++channel) {
        const float* from = core.bypassChannel(channel);
        float* to = outputs[channel];
        for (int i = 0; i < frames; ++i)
            to[i] += from[i];
    }
}

// At most core.blockCapacity() frames, whose events are in the queue.
void processPiece(SynthCore& core, float* const* outputs, int frames, OutputMode mode)
{
    Tolm& engine = core.engine();
    engine.startBlock(frames);
    if (engine.record().arp.on)
        engine.runArpeggiator(frames);
    else
        engine.record().arp.phase += 1.0; // counts blocks while idle

    EnginePlayer player(core, outputs, mode);
    walkBlock(core.queue(), frames, player);
    engine.updateGlobalModulation();
    runEffects(core, frames, outputs);
    addBypass(core, frames, outputs);
    engine.advanceDelayModulation(frames);
    engine.applyOutputStage(frames, outputs);
    engine.endBlock();
}

void processLongBlock(SynthCore& core, float* const* outputs, int frames, OutputMode mode)
{
    EventDealer dealer(core.queue(), frames);
    int length = 0;
    for (int start = 0; start < frames; start += length) {
        length = std::min(frames - start, core.blockCapacity());
        dealer.deal(start, start + length, core.queue());
        float* const piece[] = {outputs[0] + start, outputs[1] + start};
        processPiece(core, piece, length, mode);
        // A restart that lies in a later piece comes nearer.
        std::int32_t& restart = core.engine().record().arp.restartOffset;
        if (restart >= length)
            restart -= length;
    }
}

void silence(float* const* outputs, int frames)
{
    std::fill_n(outputs[0], frames, 0.0f);
    std::fill_n(outputs[1], frames, 0.0f);
}

} // namespace

void processBlock(SynthCore& core, float* const* outputs, int frames, OutputMode mode)
{
    const bool hasOutputs = outputs != nullptr && outputs[0] != nullptr && outputs[1] != nullptr;
    // Asked while the guard is free: a host may answer by calling back.
    const double tempo = frames > 0 ? core.tempoSource().beatsPerMinute() : 0.0;
    const GuardHold hold = GuardHold::attempt(core.guard());
    if (hold && frames <= 0) {
        core.applyPending();
        core.engine().endBlock(); // ramps snap; events wait for frames to be played in
        return;
    }
    if (!hold || !hasOutputs) {
        core.queue().clear();
        if (hasOutputs && frames > 0 && mode == OutputMode::replace)
            silence(outputs, frames);
        return;
    }
    const FlushDenormals flushDenormals;
    core.applyPending();
    core.setTempo(believableTempo(tempo));
    drainKeyboard(core);
    if (frames <= core.blockCapacity())
        processPiece(core, outputs, frames, mode);
    else
        processLongBlock(core, outputs, frames, mode);
    core.meters().update(core.engine().record(), outputs, frames);
    core.queue().clear();
    // A restart beyond the block's end never comes.
    core.engine().record().arp.restartOffset = -1;
}

} // namespace tolm
