#include "engine/arpeggiator.h"

#include "engine/voices.h"
#include "plugin/menus.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr float kNothing = 1.0f; // grid value of a tick without a step; as a step it is a tie
constexpr int kTie = 128;
constexpr float kSilent = 1e-5f; // step notes and velocities up to here do not count
constexpr int kSwingTicks = 48;
constexpr int kSwungStep = 2; // of each group of four
constexpr std::uint8_t kReleaseVelocity = 64;
constexpr double kTickScale = 0.0146484375; // 60 seconds over 4096
constexpr double kArpRateSteps = 20.01;
constexpr auto kOddMask = static_cast<std::uint32_t>(kOddStackedVoices);

// A step value as a number: 0 rest, 1..127 note (1 is the base key), 128 and above nothing or tie.
int stepNumber(float value)
{
    return static_cast<int>(value * 128.0f) & 255;
}

// One tick of one block: what the mode functions need.
struct Tick {
    EngineRecord& r;
    ArpeggiatorState& arp;
    EngineOwner& owner;
    int frame;
    float note;
    float velocity;
    int number; // stepNumber of the note

    void send(std::uint8_t status, int key, int sentVelocity) const
    {
        QueuedEvent event;
        event.offset = frame;
        event.tag = arp.mode == ArpMode::voice ? kOddStackedVoices : kAllStackedVoices;
        event.status = status;
        event.data1 = static_cast<std::uint8_t>(std::clamp(key, 0, kKeyCount - 1));
        event.data2 = static_cast<std::uint8_t>(std::clamp(sentVelocity, 0, 127));
        owner.appendEvent(event);
    }
    void noteOff(int key) const
    {
        if (key >= 0)
            send(kNoteOff, key, kReleaseVelocity);
    }
    int heldVelocity(int key) const { return arp.held[static_cast<std::size_t>(key)]; }
    // The held key's velocity, blended toward the step's by "Arp Range".
    int blendedVelocity(int key) const
    {
        const float b = arp.velocityBlend;
        return static_cast<int>((1.0f - b) * static_cast<float>(heldVelocity(key)) +
                                b * arp.velocityOut * 127.0f);
    }
};

void playChord(const Tick& tick)
{
    for (int key = kKeyCount - 1; key >= 0; --key) {
        if (tick.heldVelocity(key) == 0)
            continue;
        const bool on = tick.number > 0;
        tick.send(on ? kNoteOn : kNoteOff, key, tick.blendedVelocity(key));
    }
}

// Simple, One Shot and Dynamic. The lowest held key is the base; key 0 cannot be one and silences
// the pattern while it is held, and key 127 is never seen.
void playOnBaseKey(const Tick& tick)
{
    ArpeggiatorState& arp = tick.arp;
    const auto end = arp.held.begin() + (kKeyCount - 1);
    const auto isHeld = [](std::uint8_t velocity) { return velocity != 0; };
    const auto found = std::find_if(arp.held.begin(), end, isHeld);
    const int base = found == end ? -1 : static_cast<int>(found - arp.held.begin());
    if (base < 1) {
        arp.soundingNote = -1;
        return;
    }
    arp.soundingNote = base + tick.number - 1;
    if (arp.mode != ArpMode::dynamic) {
        tick.send(kNoteOn, arp.soundingNote, tick.blendedVelocity(base));
        return;
    }
    // The step's velocity picks which of the further held keys replaces the base.
    int further = static_cast<int>(tick.velocity * 128.0f) / 16;
    for (auto key = found; further > 0 && key != end;) {
        key = std::find_if(key + 1, end, isHeld);
        if (key != end && --further == 0)
            arp.soundingNote =
                static_cast<int>(key - arp.held.begin()) + 12 * ((tick.number - 1) / 12);
    }
    tick.send(kNoteOn, arp.soundingNote, tick.heldVelocity(base));
}

// Voice 2/4/6/8: walks up through the held keys.
void playWalk(const Tick& tick)
{
    ArpeggiatorState& arp = tick.arp;
    bool found = false;
    int cursor = arp.secondNote;
    for (int tries = 0; tries < kKeyCount && !found; ++tries) {
        cursor = (cursor + 1) % kKeyCount;
        found = tick.heldVelocity(cursor) != 0;
    }
    if (found)
        arp.secondNote = cursor;
    arp.soundingNote = arp.secondNote + tick.number + arp.transpose - 1;
    if (found)
        tick.send(kNoteOn, arp.soundingNote, tick.blendedVelocity(cursor));
}

// Lowest held key up to 126; 0 counts as none.
int duophonicBase(const ArpeggiatorState& arp)
{
    for (int key = 0; key < kKeyCount - 1; ++key)
        if (arp.held[static_cast<std::size_t>(key)] != 0)
            return key;
    return -1;
}

void playDuophonicRow(const Tick& tick, int number, int& sounding)
{
    if (number >= kTie)
        return;
    tick.noteOff(sounding);
    if (number == 0)
        return;
    const int base = duophonicBase(tick.arp);
    sounding = -1;
    if (base > 0) {
        sounding = base + number - 1;
        tick.send(kNoteOn, sounding, tick.heldVelocity(base));
    }
}

void playDuophonic(const Tick& tick)
{
    playDuophonicRow(tick, tick.number, tick.arp.soundingNote);
    playDuophonicRow(tick, stepNumber(tick.velocity), tick.arp.secondNote);
    tick.arp.velocityOut = 0.5f;
}

void playStep(const Tick& tick)
{
    ArpeggiatorState& arp = tick.arp;
    if (arp.mode == ArpMode::duophonic) {
        playDuophonic(tick);
        return;
    }
    if (tick.number >= kTie)
        return;
    if (tick.velocity > kSilent) {
        if (arp.mode != ArpMode::dynamic) {
            arp.velocityOut = tick.velocity;
        } else if (tick.number == 0) {
            tick.noteOff(arp.soundingNote);
            return;
        }
    }
    if (tick.number > 0)
        arp.noteOut = tick.note;
    if (arp.mode == ArpMode::chord)
        playChord(tick);
    if (arp.mode == ArpMode::chord || arp.mode == ArpMode::modulation)
        return;
    tick.noteOff(arp.soundingNote);
    if (tick.number == 0)
        return;
    if (arp.mode == ArpMode::voice)
        playWalk(tick);
    else
        playOnBaseKey(tick);
}

// False when a finished One Shot pattern skips the rest of the frame.
bool fireTick(EngineRecord& r, EngineOwner& owner, int frame)
{
    ArpeggiatorState& arp = r.arp;
    const std::uint32_t passTicks = static_cast<std::uint32_t>(kArpTicksPerStep * arp.steps);
    const std::uint32_t tickIndex = arp.tickCounter++;
    if (arp.mode == ArpMode::oneShot && tickIndex >= passTicks)
        return false;
    const std::size_t position = tickIndex % passTicks;
    arp.currentStep = static_cast<std::uint32_t>(position) / kArpTicksPerStep;
    if (position == 0 && arp.mode != ArpMode::duophonic)
        arp.secondNote = -1; // the walk starts again with each pass
    const float note = arp.gridNote[position];
    playStep({r, arp, owner, frame, note, arp.gridVelocity[position], stepNumber(note)});
    return true;
}

void release(EngineRecord& r, int key)
{
    if (key >= 0)
        releaseNote(r, std::min(key, kKeyCount - 1), 0xFFFFFFFFu);
}

} // namespace

void buildArpGrid(ArpeggiatorState& arp)
{
    arp.gridNote.fill(kNothing);
    arp.gridVelocity.fill(kNothing);
    const int swing = static_cast<int>((arp.swing - 0.5f) * kSwingTicks);
    for (int step = 0; step < kArpSteps; ++step) {
        const auto s = static_cast<std::size_t>(step);
        int position = step * kArpTicksPerStep;
        if (arp.stepNote[s] <= kSilent)
            position += arp.lengthShift;
        if (step % 4 == kSwungStep)
            position += swing;
        const auto p = static_cast<std::size_t>(std::clamp(position, 0, kArpTicks - 1));
        arp.gridNote[p] = arp.stepNote[s];
        arp.gridVelocity[p] = arp.stepVelocity[s];
    }
    arp.gridStale = false;
}

double arpTickFrames(const ArpeggiatorState& arp, double sampleRateHz, double tempo)
{
    if (!arp.sync)
        return sampleRateHz / (kArpTicksPerStep * arp.rateHz);
    const auto last = static_cast<int>(std::size(kArpLengths)) - 1;
    const int index =
        std::clamp(static_cast<int>(kArpRateSteps * static_cast<double>(arp.rate)), 0, last);
    // 128 units a beat, of which a sixty-fourth note is 8.
    return sampleRateHz * kTickScale * (kArpLengths[index].sixtyFourths * 8.0) / tempo;
}

void runPattern(EngineRecord& r, EngineOwner& owner, double sampleRateHz, int frames)
{
    ArpeggiatorState& arp = r.arp;
    if (arp.gridStale)
        buildArpGrid(arp);
    const double tickFrames = arpTickFrames(arp, sampleRateHz, owner.hostTempo());
    for (int frame = 0; frame < std::min(frames, kArpBufferFrames); ++frame) {
        if (frame == arp.restartOffset) {
            arp.phase = tickFrames + 1e-15;
            arp.restartOffset = -1;
        }
        if (arp.restartOffset < 0 && arp.phase >= tickFrames) {
            arp.phase -= tickFrames;
            if (!fireTick(r, owner, frame))
                continue;
        }
        r.arpNoteBuffer[static_cast<std::size_t>(frame)] = arp.noteOut;
        r.arpVelocityBuffer[static_cast<std::size_t>(frame)] = arp.velocityOut;
        arp.phase += 1.0;
    }
}

void setArpMode(EngineRecord& r, ArpMode mode)
{
    ArpeggiatorState& arp = r.arp;
    const ArpMode left = arp.mode;
    arp.mode = mode;
    if (left == mode || !arp.on)
        return;
    // The second note of the Duophonic mode is a cursor in the others.
    if (left == ArpMode::duophonic)
        release(r, arp.secondNote);
    if (left == ArpMode::duophonic || left == ArpMode::voice)
        arp.secondNote = -1;
    // Mode Voice 2/4/6/8 splits the stacks: the pattern ends its notes on the odd voices only, the
    // keys take the even ones along. What another mode started on whole stacks would never end
    // whole, so the pattern's note ends here and the odd voices change hands silent.
    if (left == ArpMode::voice || mode == ArpMode::voice) {
        if (left != ArpMode::voice)
            release(r, arp.soundingNote);
        releaseStacked(r, kOddMask);
        arp.soundingNote = -1;
    }
}

void endArpNotes(EngineRecord& r)
{
    ArpeggiatorState& arp = r.arp;
    if (arp.mode == ArpMode::voice)
        releaseStacked(r, kOddMask); // the even voices belong to the keys
    else
        release(r, arp.soundingNote);
    arp.soundingNote = -1;
    if (arp.mode == ArpMode::duophonic)
        release(r, arp.secondNote);
    arp.secondNote = -1;
    if (arp.mode == ArpMode::chord)
        for (int key = 0; key < kKeyCount; ++key)
            if (arp.held[static_cast<std::size_t>(key)] != 0)
                release(r, key);
    arp.held.fill(0);
}

} // namespace tolm
