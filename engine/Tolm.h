#pragma once
// The synthesis engine: 72 voices, their modulation, the arpeggiator and the effect chain. A thin
// class over EngineRecord; the stages are free functions in the files beside it.
//
// One thread at a time drives it: the audio thread, or a thread that holds the plug-in's processing
// guard. Nothing here blocks, and nothing but construction and setSampleRate allocates.

#include "engine/EngineOwner.h"
#include "engine/record.h"
#include "engine/render.h"
#include "fx/Module.h"
#include "fx/effectChain.h"
#include "patch/programStore.h"

#include <memory>

namespace tolm {

class Tolm final : public Module {
public:
    explicit Tolm(EngineOwner& owner);
    ~Tolm() override;

    Tolm(const Tolm&) = delete;
    Tolm& operator=(const Tolm&) = delete;

    ProgramStore& programBank() { return programs_; }
    const ProgramStore& programBank() const { return programs_; }
    EngineRecord& record() { return *record_; }
    const EngineRecord& record() const { return *record_; }
    EffectChain& effects() { return effects_; }
    EngineOwner& owner() { return owner_; }
    // Restarts the random generator, so that a render repeats exactly.
    void seed(std::uint32_t value);

    // Rebuilds every table that depends on the rate; the caller resets the voices afterwards.
    // Rates are clamped to 1 kHz..768 kHz.
    void setSampleRate(double hz);

    // Key 0..127, velocity 1..127, one bit of `mask` per stacked voice.
    void noteOn(int key, int velocity, std::uint32_t mask);
    void noteOff(int key, std::uint32_t mask);
    // Moves the masked voices to `key`; no envelope is touched.
    void retuneVoices(int key, std::uint32_t mask);
    // Silences everything at once and clears the memories of the effects.
    void resetVoices();
    // Soft: releases every active voice. Hard: resetVoices.
    void allNotesOff(bool hard);

    // Resets the voices and sends every stored value of the program, in id order, through the
    // owner's setParameter; then hands it the effect order.
    void loadProgram(int program);
    // One parameter 0..348 into engine or effect state. Other ids are ignored.
    void setEngineParameter(int id, float value);

    // One host block: startBlock, runArpeggiator when it is on, renderVoices slice by slice,
    // updateGlobalModulation, the effects, advanceDelayModulation, applyOutputStage, endBlock.
    void startBlock(int frames);
    // Advances the pattern over the block and appends its notes to the owner's queue.
    void runArpeggiator(int frames);
    // Renders 1..64 frames into both stereo buses, which are cleared first. False when no voice
    // sounded. With `replace` off the effects bus is added to instead.
    bool renderVoices(int frames, float* const* effectsBus, float* const* bypassBus, bool replace);
    // Once per block after the voices: controller curves and the delay's LFO.
    void updateGlobalModulation();
    const DelayModulation& delayModulation() const;
    void advanceDelayModulation(int frames);
    // Master gain ramp and, with oscillator sync on, the DC blocker. Returns the gain reached.
    float applyOutputStage(int frames, float* const* outputs);
    void endBlock();

private:
    EngineOwner& owner_;
    std::unique_ptr<EngineRecord> record_;
    std::unique_ptr<RenderScratch> scratch_;
    ProgramStore programs_;
    EffectChain effects_;
};

} // namespace tolm
