#include "plugin/SynthCore.h"

#include "engine/apply.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr int kInitialBlockCapacity = 1024;
// The arpeggiator's buffers hold no more; longer blocks are processed in pieces.
constexpr int kMaxBlockCapacity = kArpBufferFrames;

bool isParameter(int id)
{
    return id >= 0 && id < kParameterCount;
}

bool isStored(int id)
{
    return id >= 0 && id < kStoredParameterCount;
}

float finiteOrZero(float value)
{
    return std::isfinite(value) ? value : 0.0f;
}

} // namespace

SynthCore::SynthCore(SettingsStore& settings, TempoSource& tempo)
    : engine_(*this),
      midiMap_(settings),
      tempoSource_(tempo),
      polyphony_(engine_.record().polyphony)
{
    // A number above 5 runs nothing. The first program load gives every slot its effect.
    for (std::size_t slot = 0; slot < effectOrder_.size(); ++slot)
        effectOrder_[slot].store(static_cast<int>(slot) + 1, std::memory_order_relaxed);
    setBlockCapacity(kInitialBlockCapacity);
}

void SynthCore::changeParameter(int id, float value, bool tellEditor)
{
    if (!isParameter(id))
        return;
    value = finiteOrZero(value);
    store(id, value);
    pending_.mark(id);
    applyWhenIdle();
    if (tellEditor)
        if (EditorHooks* shown = editor())
            shown->parameterChanged(id, value);
}

void SynthCore::applyWhenIdle()
{
    if (!running_.load(std::memory_order_relaxed))
        if (const GuardHold hold = GuardHold::attempt(guard_))
            applyPending();
}

void SynthCore::request(Request what)
{
    requests_.fetch_or(static_cast<unsigned>(what), std::memory_order_release);
    applyWhenIdle();
}

void SynthCore::reapplyProgram()
{
    for (int id = 0; id < kStoredParameterCount; ++id)
        pending_.mark(id);
    applyWhenIdle();
}

void SynthCore::serve(unsigned requests)
{
    const auto asked = [requests](Request what) {
        return (requests & static_cast<unsigned>(what)) != 0;
    };
    if (asked(Request::silence)) {
        engine_.allNotesOff(true);
        for (std::atomic<bool>& key : keyDown_)
            key.store(false, std::memory_order_relaxed);
        engine_.record().anyKeyDown = false;
    } else if (asked(Request::releaseNotes)) {
        engine_.allNotesOff(false);
    }
    if (asked(Request::silence) || asked(Request::restartArp))
        engine_.record().arp.currentStep = 0;
}

void SynthCore::applyPending()
{
    if (requests_.load(std::memory_order_relaxed) != 0)
        serve(requests_.exchange(0, std::memory_order_acquire));
    pending_.drain([this](int id) { apply(id); });
}

void SynthCore::store(int id, float value)
{
    if (isStored(id))
        engine_.programBank().setValue(currentProgram(), id, value);
    if (id == kPolyphony)
        polyphony_.store(polyphonyFromValue(value), std::memory_order_relaxed);
    if (id == kPitchWheel)
        pitchWheel_.store(value, std::memory_order_relaxed);
}

void SynthCore::apply(int id)
{
    if (isStored(id))
        engine_.setEngineParameter(id, storedValue(id));
    else if (id == kPitchWheel)
        engine_.setEngineParameter(id, pitchWheel_.load(std::memory_order_relaxed));
}

float SynthCore::storedValue(int id) const
{
    return isStored(id) ? engine_.programBank().value(currentProgram(), id) : 0.0f;
}

void SynthCore::setParameter(int id, float value)
{
    if (!isParameter(id))
        return;
    value = finiteOrZero(value);
    store(id, value);
    engine_.setEngineParameter(id, value);
    if (EditorHooks* shown = editor())
        shown->parameterChanged(id, value);
}

void SynthCore::loadProgram(int program)
{
    if (program < 0 || program >= kProgramCount)
        return;
    currentBank_.store(program / kBankSize, std::memory_order_relaxed);
    currentProgram_.store(program, std::memory_order_relaxed);
    pending_.clear();
    engine_.loadProgram(program);
    if (EditorHooks* shown = editor())
        shown->programChanged(program);
}

void SynthCore::setEffectOrder(int slot, int kind)
{
    if (slot >= 0 && slot < kEffectSlots)
        effectOrder_[static_cast<std::size_t>(slot)].store(kind, std::memory_order_relaxed);
}

int SynthCore::effectOrder(int slot) const
{
    return effectOrder_[static_cast<std::size_t>(slot)].load(std::memory_order_relaxed);
}

bool SynthCore::keyDown(int key) const
{
    return keyDown_[static_cast<std::size_t>(key & 0x7F)].load(std::memory_order_relaxed);
}

void SynthCore::showKey(int key, bool down)
{
    keyDown_[static_cast<std::size_t>(key & 0x7F)].store(down, std::memory_order_relaxed);
    if (down)
        return;
    // The lowest key does not count.
    bool any = false;
    for (int k = kKeyCount - 1; k >= 1 && !any; --k)
        any = keyDown(k);
    engine_.record().anyKeyDown = any;
}

void SynthCore::setBlockCapacity(int frames)
{
    const int capacity = std::clamp(frames, 1, kMaxBlockCapacity);
    const auto size = static_cast<std::size_t>(capacity);
    auto left = std::make_unique<float[]>(size);
    auto right = std::make_unique<float[]>(size);
    bypass_ = {std::move(left), std::move(right)};
    blockCapacity_ = capacity;
}

} // namespace tolm
