#pragma once
// The 32-step pattern sequencer: walks its grid tick by tick, appends notes to the owner's queue
// and writes the "Arp Note" and "Arp Vel" signals.

#include "engine/EngineOwner.h"
#include "engine/record.h"

namespace tolm {

// Lays the 32 steps out on 1024 ticks. Rests are moved by the length, the third step of each group
// of four by the swing; a later step on the same tick overwrites.
void buildArpGrid(ArpeggiatorState& arp);

// Frames per tick (32 ticks a step), free or in time with `tempo` beats per minute.
double arpTickFrames(const ArpeggiatorState& arp, double sampleRateHz, double tempo);

// Runs the pattern over one block of at most kArpBufferFrames.
void runPattern(EngineRecord& r, EngineOwner& owner, double sampleRateHz, int frames);

// Releases what the arpeggiator has started and forgets its keys.
void endArpNotes(EngineRecord& r);
// Changes the mode, and ends what the new mode would not end by itself.
void setArpMode(EngineRecord& r, ArpMode mode);

} // namespace tolm
