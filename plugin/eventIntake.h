#pragma once
// From MIDI to the queue of a block: notes are queued with their time, or held for the arpeggiator;
// controllers, bend, pressure and program changes act at once. Audio thread, under the guard.

#include "plugin/SynthCore.h"
#include "vst2/abi.h"

namespace tolm {

// The host's events of the coming block, in their order; other than MIDI events are ignored.
void takeHostEvents(SynthCore& core, const vst2::VstEvents& events);

// The notes played on the editor's keyboard since the last block.
void drainKeyboard(SynthCore& core);

} // namespace tolm
