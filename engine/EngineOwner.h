#pragma once
// What the engine needs of the object that owns it, and the event record that both exchange.

#include <cstdint>

namespace tolm {

// A timed note of one host block, 16 bytes as the host side keeps 256 of them.
struct QueuedEvent {
    std::int32_t offset = 0; // frame inside the current block
    // Which of a key's stacked voices the event starts or releases, a bit per voice.
    std::int32_t tag = -1;
    std::int32_t extra = 0;  // passed to noteOn unchanged, always 0
    std::uint8_t status = 0; // 0x80 or 0x90
    std::uint8_t data1 = 0;  // key 0..127
    std::uint8_t data2 = 0;  // velocity 0..127
};
static_assert(sizeof(QueuedEvent) == 16);

inline constexpr std::int32_t kAllStackedVoices = -1;
inline constexpr std::int32_t kEvenStackedVoices = 0x55; // stacked voices 0, 2, 4, 6
inline constexpr std::int32_t kOddStackedVoices = 0xAA;  // stacked voices 1, 3, 5, 7
inline constexpr std::int32_t kNoStackedVoice = 0;

inline constexpr std::uint8_t kNoteOff = 0x80;
inline constexpr std::uint8_t kNoteOn = 0x90;

// Called by the engine on whatever thread drives it; implementations neither block nor allocate.
class EngineOwner {
public:
    virtual ~EngineOwner() = default;

    virtual bool hostIsOwnHost() const = 0;
    virtual double hostTempo() const = 0; // beats per minute, 120 when unknown
    // The current program's stored value, id 0..328.
    virtual float getParameter(int id) const = 0;
    // Stores (ids below 329), applies to the engine at once and shows the value in the editor.
    virtual void setParameter(int id, float value) = 0;
    // Puts an effect kind 0..5 into a slot 0..5 of the chain.
    virtual void setEffectOrder(int slot, int kind) = 0;
    // Appends to the queue of the current block.
    virtual void appendEvent(const QueuedEvent& event) = 0;
};

} // namespace tolm
