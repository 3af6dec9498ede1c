#pragma once
// What plays inside the plug-in: the engine and everything that its two kinds of callers share.
//
// The audio thread drives it through eventIntake and blockDriver. Other threads change parameters
// (stored at once, applied by the audio thread at its next call) and load programs (under the
// processing guard, while blocks are silent). As the engine's owner it also takes the engine's own
// wishes; those arrive only while the guard is held and act at once.

#include "engine/EngineOwner.h"
#include "engine/Tolm.h"
#include "plugin/EditorHooks.h"
#include "plugin/MeterBoard.h"
#include "plugin/ProcessingGuard.h"
#include "plugin/eventQueue.h"
#include "plugin/midiMap.h"
#include "plugin/pendingParameters.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <span>

namespace tolm {

// Where a host block's tempo comes from.
class TempoSource {
public:
    virtual ~TempoSource() = default;
    // Beats per minute, or 0 when the host knows none. Audio thread.
    virtual double beatsPerMinute() = 0;
};

class SynthCore final : public EngineOwner {
public:
    SynthCore(SettingsStore& settings, TempoSource& tempo);

    Tolm& engine() { return engine_; }
    const Tolm& engine() const { return engine_; }
    MidiMap& midiMap() { return midiMap_; }
    ProcessingGuard& guard() { return guard_; }
    EventQueue& queue() { return queue_; }
    KeyboardNoteQueue& keyboard() { return keyboard_; }
    TempoSource& tempoSource() { return tempoSource_; }
    MeterBoard& meters() { return meters_; }

    EditorHooks* editor() const { return editor_.load(std::memory_order_acquire); }
    void setEditor(EditorHooks* editor) { editor_.store(editor, std::memory_order_release); }
    void setHostIsOwnHost(bool is) { hostIsOwnHost_.store(is, std::memory_order_relaxed); }
    // While running, changes from other threads wait for the audio thread.
    void setRunning(bool running) { running_.store(running, std::memory_order_relaxed); }

    // Any thread. Ids outside 0..348 are dropped, values that are not finite become 0.
    void changeParameter(int id, float value, bool tellEditor);
    // Any thread. What the editor asks for all at once; done by the audio thread before its next
    // call, or immediately while nothing plays. Notes end before changes made after the request.
    enum class Request : std::uint8_t {
        releaseNotes = 1, // held and arpeggiated notes go into their release
        restartArp = 2,   // the arpeggiator's step counter
        silence = 4,      // everything ends at once, effects included
    };
    void request(Request what);
    // All stored values of the current program go to the engine again, in id order.
    void reapplyProgram();
    // The current program's stored value, 0 for ids that are not stored.
    float storedValue(int id) const;
    float pitchWheel() const { return pitchWheel_.load(std::memory_order_relaxed); }
    // Applies what other threads changed; the caller holds the guard.
    void applyPending();

    int currentProgram() const { return currentProgram_.load(std::memory_order_relaxed); }
    int currentBank() const { return currentBank_.load(std::memory_order_relaxed); }
    // The bank 0..2 that chunks and the browser show, until the next program load.
    void setCurrentBank(int bank) { currentBank_.store(bank, std::memory_order_relaxed); }
    // Held by whoever reads or writes names, descriptions and whole programs: hosts save from
    // threads of their own. Never taken on the audio thread, and never by one who holds the guard.
    std::mutex& textLock() const { return textLock_; }
    // The caller holds the guard. Other programs than 0..383 are ignored.
    void loadProgram(int program);
    // Without loading it: for the plug-in's end.
    void resetCurrentProgram() { currentProgram_.store(0, std::memory_order_relaxed); }
    // Not on the audio thread: runs `change` while nobody else drives the engine. False when the
    // guard could not be had; then nothing happened.
    template <class Change>
    bool whileSilent(Change&& change)
    {
        const GuardHold hold = GuardHold::patiently(guard_);
        if (hold)
            change();
        return static_cast<bool>(hold);
    }

    // Voices in use as the stored value has them; the engine's default until one is stored.
    int polyphony() const { return polyphony_.load(std::memory_order_relaxed); }
    int effectOrder(int slot) const;
    bool keyDown(int key) const;
    // Shows a key as held or not, and works out whether any is. Audio thread.
    void showKey(int key, bool down);

    // The bus that bypasses the effects, blockCapacity() frames a channel.
    int blockCapacity() const { return blockCapacity_; }
    float* bypassChannel(int channel) const
    {
        return bypass_[static_cast<std::size_t>(channel)].get();
    }
    // Under the guard, or before anything plays.
    void setBlockCapacity(int frames);
    void setTempo(double beatsPerMinute) { tempo_ = beatsPerMinute; }

    // EngineOwner: called while the guard is held.
    bool hostIsOwnHost() const override { return hostIsOwnHost_.load(std::memory_order_relaxed); }
    double hostTempo() const override { return tempo_; }
    float getParameter(int id) const override { return storedValue(id); }
    void setParameter(int id, float value) override;
    void setEffectOrder(int slot, int kind) override;
    void appendEvent(const QueuedEvent& event) override { queue_.append(event); }

private:
    void store(int id, float value);
    void apply(int id);
    void serve(unsigned requests);
    void applyWhenIdle();

    Tolm engine_;
    ProcessingGuard guard_;
    mutable std::mutex textLock_;
    MidiMap midiMap_;
    TempoSource& tempoSource_;
    EventQueue queue_;
    KeyboardNoteQueue keyboard_;
    PendingParameters pending_;
    std::atomic<unsigned> requests_{0};
    MeterBoard meters_;
    std::atomic<float> pitchWheel_{0.5f}; // the one value with an effect that no program stores
    std::atomic<EditorHooks*> editor_{nullptr};
    std::atomic<bool> hostIsOwnHost_{false};
    std::atomic<bool> running_{false};
    std::atomic<int> currentProgram_{0};
    std::atomic<int> currentBank_{0};
    std::atomic<int> polyphony_;
    std::array<std::atomic<int>, kEffectSlots> effectOrder_;
    std::array<std::atomic<bool>, kKeyCount> keyDown_{};
    double tempo_ = kDefaultTempo;
    int blockCapacity_ = 0;
    std::array<std::unique_ptr<float[]>, 2> bypass_;
};

} // namespace tolm
