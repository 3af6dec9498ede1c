#include "engine/voices.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr std::uint32_t kAllMask = 0xFFFFFFFFu;

std::size_t keyIndex(int key)
{
    return static_cast<std::size_t>(key & (kKeyCount - 1));
}

float keyPitch(int key)
{
    return static_cast<float>(key * kPitchUnitsPerSemitone);
}

bool inMask(std::uint32_t mask, std::uint32_t stackIndex)
{
    return mask == kAllMask || ((mask >> stackIndex) & 1u) != 0;
}

void restartEnvelopes(VoiceSlot& slot)
{
    slot.amp.stage = EnvelopeStage::attack;
    slot.filter.stage = EnvelopeStage::attack;
    slot.mod.stage = EnvelopeStage::attack;
}

void startVoice(EngineRecord& r, std::size_t v, int stackIndex, int key, int velocity)
{
    r.voiceNote[v] = {0, keyPitch(key), static_cast<std::uint8_t>(key),
                      static_cast<std::uint8_t>(velocity)};
    r.voiceFilterType[v] = static_cast<std::uint32_t>(r.filterType);
    r.voiceUnisonIndex[v] = static_cast<std::uint32_t>(stackIndex);
    r.voiceReleased[v] = 0;
    r.voiceActive[v] = 1;

    // Levels and oscillator phases stay as they are, so a stolen voice does not click.
    VoiceSlot& slot = r.slot[v];
    restartEnvelopes(slot);
    slot.previous = {};
    slot.oneShotFinished = false;
    r.voiceRandom[v] = static_cast<float>(r.random.next()) / 16383.0f - 1.0f;
    for (std::size_t n = 0; n < kLfoCount; ++n)
        if (r.lfo[n].keyReset)
            slot.lfoPhase[n] = 0;
    slot.syncRingValid = false;
}

void releaseVoice(EngineRecord& r, std::size_t v)
{
    r.voiceReleased[v] = 1;
    r.slot[v].mod.stage = EnvelopeStage::release;
}

void setEveryPitch(EngineRecord& r, int key)
{
    for (std::size_t v = 0; v < static_cast<std::size_t>(r.polyphony); ++v)
        r.voiceNote[v].pitch = keyPitch(key);
}

void startStack(EngineRecord& r, int key, int velocity, std::uint32_t mask)
{
    for (int u = 0; u < r.unisonVoices; ++u)
        if (inMask(mask, static_cast<std::uint32_t>(u)))
            startVoice(r, static_cast<std::size_t>(chooseVoice(r)), u, key, velocity);
}

// A released voice of the mono stack starts again at the new key; a held one only changes pitch.
void playLegato(EngineRecord& r, int key, int velocity)
{
    for (std::size_t u = 0; u < static_cast<std::size_t>(r.unisonVoices); ++u) {
        if (r.voiceReleased[u] != 0) {
            restartEnvelopes(r.slot[u]);
            r.voiceNote[u] = {0, keyPitch(key), static_cast<std::uint8_t>(key),
                              static_cast<std::uint8_t>(velocity)};
            r.retriggerPending = true;
        }
        r.voiceReleased[u] = 0;
        r.voiceFilterType[u] = static_cast<std::uint32_t>(r.filterType);
    }
}

void playMono(EngineRecord& r, int key, int velocity)
{
    const float soundingPitch = r.voiceNote[0].pitch + r.glideOffset;
    r.monoHeld[keyIndex(key)] = 1;
    const auto stackEnd = r.voiceActive.begin() + r.unisonVoices;
    if (std::any_of(r.voiceActive.begin(), stackEnd, [](std::uint32_t a) { return a != 0; })) {
        playLegato(r, key, velocity);
    } else {
        r.retriggerPending = true;
        startStack(r, key, velocity, kAllMask);
    }
    if (r.retriggerPending) {
        r.glideOffset = 0.0f;
        r.retriggerPending = false;
    } else {
        r.glideOffset = soundingPitch - keyPitch(key);
        setEveryPitch(r, key);
    }
}

// The glide offset belongs to the engine: a new note shifts every sounding voice by its interval.
void playPoly(EngineRecord& r, int key, int velocity, std::uint32_t mask)
{
    const float soundingPitch = keyPitch(r.lastNote) + r.glideOffset;
    r.glideOffset = r.retriggerPending ? 0.0f : soundingPitch - keyPitch(key);
    r.retriggerPending = false;
    startStack(r, key, velocity, mask);
}

void releaseSoundingAt(EngineRecord& r, int key, std::uint32_t mask)
{
    for (std::size_t v = 0; v < static_cast<std::size_t>(r.polyphony); ++v)
        if (r.voiceActive[v] != 0 && r.voiceNote[v].pitch == keyPitch(key) &&
            inMask(mask, r.voiceUnisonIndex[v]))
            releaseVoice(r, v);
}

// Falls back to the highest held key; without one the stack is released.
void releaseMono(EngineRecord& r, int key, std::uint32_t mask)
{
    const auto held = std::find(r.monoHeld.rbegin(), r.monoHeld.rend(), std::uint8_t{1});
    if (held == r.monoHeld.rend()) {
        // Also for a key that is not the sounding one: a note that began in another mode must not
        // outlive the last key.
        releaseStacked(r, mask);
        return;
    }
    if (key != r.lastNote) {
        // Nor may one outlive its own key when the arpeggiator has moved `lastNote` since.
        releaseSoundingAt(r, key, mask);
        return;
    }
    const int next = static_cast<int>(std::distance(held, r.monoHeld.rend())) - 1;
    r.glideOffset = r.voiceNote[0].pitch + r.glideOffset - keyPitch(next);
    setEveryPitch(r, next);
    r.lastNote = next;
}

void releasePoly(EngineRecord& r, int key, std::uint32_t mask)
{
    for (std::size_t v = kVoiceCount; v-- > 0;) {
        // A mono line that was played legato sounds at another key than the one that started it.
        const bool sounds = r.voiceNote[v].note == key || r.voiceNote[v].pitch == keyPitch(key);
        if (r.voiceActive[v] != 0 && sounds && inMask(mask, r.voiceUnisonIndex[v]))
            releaseVoice(r, v);
    }
}

} // namespace

int chooseVoice(const EngineRecord& r)
{
    const auto count = static_cast<std::size_t>(r.polyphony);
    int oldestReleased = -1;
    std::uint32_t releasedAge = 0;
    std::size_t oldest = 0;
    std::uint32_t age = 0;
    for (std::size_t v = 0; v < count; ++v) {
        if (r.voiceActive[v] == 0)
            return static_cast<int>(v);
        if (r.voiceReleased[v] != 0 && r.voiceNote[v].age > releasedAge) {
            releasedAge = r.voiceNote[v].age;
            oldestReleased = static_cast<int>(v);
        }
        if (r.voiceNote[v].age >= age) {
            age = r.voiceNote[v].age;
            oldest = v;
        }
    }
    return oldestReleased >= 0 ? oldestReleased : static_cast<int>(oldest);
}

void playNote(EngineRecord& r, int key, int velocity, std::uint32_t mask)
{
    r.noteOnSinceBlock = true;
    if (r.monoMode && !r.arp.on)
        playMono(r, key, velocity);
    else
        playPoly(r, key, velocity, mask);
    r.lastNote = key;
    r.anyKeyDown = true;
}

void releaseNote(EngineRecord& r, int key, std::uint32_t mask)
{
    r.monoHeld[keyIndex(key)] = 0;
    if (r.monoMode && !r.arp.on)
        releaseMono(r, key, mask);
    else
        releasePoly(r, key, mask);
}

void retune(EngineRecord& r, int key, std::uint32_t mask)
{
    for (std::size_t v = 0; v < static_cast<std::size_t>(r.polyphony); ++v) {
        if (inMask(mask, r.voiceUnisonIndex[v])) {
            r.voiceNote[v].pitch = keyPitch(key);
            r.voiceNote[v].note = static_cast<std::uint8_t>(key);
        }
    }
}

void releaseStacked(EngineRecord& r, std::uint32_t mask)
{
    for (std::size_t v = 0; v < static_cast<std::size_t>(r.polyphony); ++v)
        if (r.voiceActive[v] != 0 && inMask(mask, r.voiceUnisonIndex[v]))
            releaseVoice(r, v);
}

void releaseAllVoices(EngineRecord& r)
{
    r.arp.held.fill(0);
    for (std::size_t v = 0; v < kVoiceCount; ++v)
        if (r.voiceActive[v] != 0)
            releaseVoice(r, v);
    r.anyKeyDown = false;
}

void freeVoice(EngineRecord& r, int voice)
{
    const auto v = static_cast<std::size_t>(voice);
    r.voiceActive[v] = 0;
    r.voiceReleased[v] = 0;
    VoiceSlot& slot = r.slot[v];
    slot.amp.level = 0.0f;
    slot.filter.level = 0.0f;
    slot.mod.level = 0.0f;
    clearFilter(r, v);
}

void clearFilter(EngineRecord& r, std::size_t voice)
{
    r.slot[voice].filterState.fill(0.0f);
    r.combLine[voice].filled = 0;
}

void clearVoices(EngineRecord& r)
{
    r.releaseEnabled = true;
    r.arp.held.fill(0);
    r.arp.velocityOut = 0.5f;
    r.arp.noteOut = 0.0f;
    r.arp.soundingNote = -1;
    r.arp.secondNote = -1;
    r.arp.transpose = 0;
    r.arp.phase = 0.0;
    r.retriggerPending = true;
    r.monoHeld.fill(0);
    r.voiceActive.fill(0);
    r.voiceReleased.fill(0);
    for (CombLine& line : r.combLine)
        line.filled = 0;
    for (VoiceSlot& slot : r.slot) {
        slot = {};
        for (std::uint32_t* phase :
             {&slot.osc1Phase, &slot.osc2Phase, &slot.osc3Phase, &slot.osc2DualPhase})
            *phase = static_cast<std::uint32_t>(r.random.next()) * 65535u;
    }
    r.glideOffset = 0.0f;
    r.bendRaw = 0;
    r.bendValue = 0.0;
    r.bendOffset = 0;
    r.lastNote = -1;
}

void setPolyphony(EngineRecord& r, int voices)
{
    r.polyphony = std::clamp(voices, kMinPolyphony, kVoiceCount);
    for (int v = r.polyphony; v < kVoiceCount; ++v)
        if (r.voiceActive[static_cast<std::size_t>(v)] != 0)
            freeVoice(r, v);
}

} // namespace tolm
