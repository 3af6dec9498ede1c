#include "plugin/eventIntake.h"

#include "plugin/catalogue.h"

#include <algorithm>
#include <cstddef>

namespace tolm {

namespace {

constexpr std::uint8_t kControlChange = 0xB0;

// A channel message of any channel. Data bytes are kept as they came.
struct MidiMessage {
    std::int32_t offset = 0;
    std::uint8_t status = 0;
    std::uint8_t data1 = 0;
    std::uint8_t data2 = 0;

    int key() const { return data1 & 0x7F; }
    // A velocity byte of 128 and more is negative, so it ends the note.
    bool isNoteOn() const { return status == kNoteOn && static_cast<std::int8_t>(data2) > 0; }
};

// Data bytes of 128 and more are malformed and count as 0.
int dataValue(std::uint8_t byte)
{
    return byte < 128 ? byte : 0;
}

int lowestHeldKey(const ArpeggiatorState& arp)
{
    for (int key = 0; key < kKeyCount; ++key)
        if (arp.held[static_cast<std::size_t>(key)] != 0)
            return key;
    return -1;
}

void restartPattern(ArpeggiatorState& arp, std::int32_t offset)
{
    arp.phase = 0.0;
    arp.tickCounter = 0;
    arp.restartOffset = std::max(offset, 0);
}

void append(SynthCore& core, const MidiMessage& message, std::int32_t tag, std::uint8_t status)
{
    core.queue().append({message.offset, tag, 0, status, message.data1, message.data2});
}

void append(SynthCore& core, const MidiMessage& message, std::int32_t tag)
{
    append(core, message, tag, message.status);
}

// In mode "Voice 2/4/6/8" the keys play the even stacked voices; with mono on, one key does, and
// a new lowest key takes these voices over without a new attack.
void queueVoiceModeNoteOn(SynthCore& core, const MidiMessage& note, int lowestBefore)
{
    if (lowestBefore < 0 || !core.engine().record().monoMode)
        append(core, note, kEvenStackedVoices);
    else if (note.key() < lowestBefore)
        core.engine().retuneVoices(note.key(), kEvenStackedVoices);
}

void takeArpNoteOn(SynthCore& core, const MidiMessage& note)
{
    ArpeggiatorState& arp = core.engine().record().arp;
    const int lowestBefore = lowestHeldKey(arp);
    if (lowestBefore < 0 || arp.mode == ArpMode::modulation)
        restartPattern(arp, note.offset);
    arp.held[static_cast<std::size_t>(note.key())] = note.data2;
    if (arp.mode == ArpMode::voice)
        queueVoiceModeNoteOn(core, note, lowestBefore);
    else if (arp.mode == ArpMode::modulation)
        append(core, note, kAllStackedVoices);
}

// Voices that `key` is still to start in this block will belong to `heir`.
void moveQueuedNotes(EventQueue& queue, int key, int heir)
{
    for (int i = queue.count(); i-- > 0;) {
        QueuedEvent& event = queue[i];
        if ((event.data1 & 0x7F) != key)
            continue;
        if (event.status == kNoteOff || (event.data2 & 0x7F) == 0)
            return;
        event.data1 = static_cast<std::uint8_t>(heir);
    }
}

// The voices of a released lowest key move to the next held one, if there is one.
bool handOverVoices(SynthCore& core, int key, int lowestBefore)
{
    EngineRecord& record = core.engine().record();
    if (record.arp.mode != ArpMode::voice || !record.monoMode || key != lowestBefore)
        return false;
    const int heir = lowestHeldKey(record.arp);
    if (heir < 0)
        return false;
    core.engine().retuneVoices(heir, kEvenStackedVoices);
    moveQueuedNotes(core.queue(), key, heir);
    return true;
}

void takeArpNoteOff(SynthCore& core, const MidiMessage& note)
{
    ArpeggiatorState& arp = core.engine().record().arp;
    const int lowestBefore = lowestHeldKey(arp);
    arp.held[static_cast<std::size_t>(note.key())] = 0;
    if (arp.mode == ArpMode::modulation) {
        append(core, note, kAllStackedVoices);
        return;
    }
    const bool handedOver = handOverVoices(core, note.key(), lowestBefore);
    append(core, note, handedOver ? kNoStackedVoice : kAllStackedVoices, kNoteOff);
}

void takeNote(SynthCore& core, const MidiMessage& note)
{
    core.showKey(note.key(), note.isNoteOn());
    if (EditorHooks* editor = core.editor())
        editor->keyShown(note.key(), note.isNoteOn());
    if (!core.engine().record().arp.on)
        append(core, note, kAllStackedVoices);
    else if (note.isNoteOn())
        takeArpNoteOn(core, note);
    else
        takeArpNoteOff(core, note);
}

void moveMappedParameter(SynthCore& core, int controller, float value)
{
    const int parameter = core.midiMap().parameterOf(controller);
    if (parameter >= 0)
        core.setParameter(parameter, value);
}

// Controllers with a meaning of their own; all others move the parameter that the map gives them.
struct ControllerRow {
    int controller;
    void (*act)(SynthCore& core, int data);
};

double unitValue(int data)
{
    return data / 127.0;
}

// clang-format off
constexpr ControllerRow kControllers[] = {
    {0, [](SynthCore& core, int bank) { core.loadProgram(bank * kBankSize + core.currentProgram() % kBankSize); }},
    {1, [](SynthCore& core, int data) {
        core.engine().record().modWheel = unitValue(data);
        moveMappedParameter(core, 1, static_cast<float>(unitValue(data)));
    }},
    {2, [](SynthCore& core, int data) { core.engine().record().breath = unitValue(data); }},
    {4, [](SynthCore& core, int data) { core.engine().record().foot = unitValue(data); }},
    {11, [](SynthCore& core, int data) { core.engine().record().expression = unitValue(data); }},
    {64, [](SynthCore& core, int data) {
        core.engine().record().sustainPedal = static_cast<std::uint8_t>(data);
        core.engine().record().releaseEnabled = data < 64;
    }},
    {123, [](SynthCore& core, int) {
        core.engine().allNotesOff(true);
        core.engine().record().arp.currentStep = 0;
    }},
};
// clang-format on

void takeController(SynthCore& core, const MidiMessage& message)
{
    if (message.data1 >= kControllerCount)
        return;
    const int controller = message.data1;
    const int data = dataValue(message.data2);
    core.midiMap().learn(controller);
    for (const ControllerRow& row : kControllers) {
        if (row.controller == controller) {
            row.act(core, data);
            return;
        }
    }
    moveMappedParameter(core, controller, static_cast<float>(unitValue(data)));
}

void takePitchBend(SynthCore& core, const MidiMessage& message)
{
    const int bend = dataValue(message.data2) * 128 - 8192 + dataValue(message.data1);
    const double wheel = std::clamp(bend / 16384.0 + 0.5, 0.0, 1.0);
    core.setParameter(kPitchWheel, static_cast<float>(wheel));
    core.engine().record().bendValue = bend / 8192.0;
    core.engine().record().bendRaw = bend;
}

// True when a key was shown.
bool takeMessage(SynthCore& core, const MidiMessage& message)
{
    switch (message.status) {
    case kNoteOff:
    case kNoteOn:
        takeNote(core, message);
        return true;
    case kControlChange:
        takeController(core, message);
        break;
    case 0xC0:
        if (message.data1 < kBankSize)
            core.loadProgram(message.data1);
        break;
    case 0xD0:
        core.engine().record().aftertouch = unitValue(dataValue(message.data1));
        break;
    case 0xE0:
        takePitchBend(core, message);
        break;
    default: // polyphonic pressure and system messages
        break;
    }
    return false;
}

MidiMessage messageOf(const vst2::VstEvent& event)
{
    // The MIDI bytes of VstMidiEvent lie behind its two note fields.
    constexpr std::size_t kMidiBytes =
        offsetof(vst2::VstMidiEvent, midiData) - offsetof(vst2::VstEvent, data);
    const char* bytes = event.data + kMidiBytes;
    return {event.deltaFrames, static_cast<std::uint8_t>(bytes[0] & 0xF0),
            static_cast<std::uint8_t>(bytes[1]), static_cast<std::uint8_t>(bytes[2])};
}

bool anyKeyHeld(const ArpeggiatorState& arp)
{
    return std::any_of(arp.held.rbegin(), arp.held.rend(),
                       [](auto velocity) { return velocity != 0; });
}

// The on-screen keyboard has one mouse: its notes never hand stacked voices over.
void takeKeyboardArpNote(SynthCore& core, const MidiMessage& note)
{
    ArpeggiatorState& arp = core.engine().record().arp;
    if (note.isNoteOn() && arp.mode == ArpMode::modulation)
        restartPattern(arp, note.offset);
    arp.held[static_cast<std::size_t>(note.key())] = note.isNoteOn() ? note.data2 : 0;
    if (arp.mode == ArpMode::modulation)
        append(core, note, kAllStackedVoices);
    else if (!note.isNoteOn())
        append(core, note, kAllStackedVoices, kNoteOff);
    else if (arp.mode == ArpMode::voice)
        append(core, note, kEvenStackedVoices);
}

} // namespace

void takeHostEvents(SynthCore& core, const vst2::VstEvents& events)
{
    core.engine().record().arp.restartOffset = -1;
    bool keyShown = false;
    const vst2::VstEvent* const* list = events.events;
    for (std::int32_t i = 0; i < events.numEvents; ++i)
        if (list[i] != nullptr && list[i]->type == vst2::kMidiType)
            keyShown |= takeMessage(core, messageOf(*list[i]));
    if (keyShown)
        if (EditorHooks* editor = core.editor())
            editor->keysChanged();
}

void drainKeyboard(SynthCore& core)
{
    bool heldKeyFound = false;
    KeyboardNote played;
    while (core.keyboard().pop(played)) {
        const MidiMessage note{played.offset, played.status, played.key, played.velocity};
        if (note.status == kControlChange) {
            takeController(core, note);
            continue;
        }
        core.showKey(note.key(), note.isNoteOn());
        ArpeggiatorState& arp = core.engine().record().arp;
        if (!arp.on) {
            append(core, note, kAllStackedVoices);
            continue;
        }
        // A key held at any record's turn keeps the running pattern for the rest of the drain.
        heldKeyFound = heldKeyFound || anyKeyHeld(arp);
        if (!heldKeyFound)
            restartPattern(arp, note.offset);
        takeKeyboardArpNote(core, note);
    }
}

} // namespace tolm
