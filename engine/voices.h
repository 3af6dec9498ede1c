#pragma once
// Notes become voices: allocation, stealing, stacks, mono and poly play, resets.

#include "engine/record.h"

namespace tolm {

// The voice that the next note takes: a free one, else the oldest released one, else the oldest.
// Ties go to the lowest index among released voices and to the highest among all; songs rely on it.
int chooseVoice(const EngineRecord& r);

void playNote(EngineRecord& r, int key, int velocity, std::uint32_t mask);
void releaseNote(EngineRecord& r, int key, std::uint32_t mask);
// Moves every voice of the mask to `key`, sounding or not; no envelope is touched.
void retune(EngineRecord& r, int key, std::uint32_t mask);

// Releases the active voices of a stack position that the mask names.
void releaseStacked(EngineRecord& r, std::uint32_t mask);
// Releases every active voice and forgets the arpeggiator's keys.
void releaseAllVoices(EngineRecord& r);
// Ends a voice at once. Its next note starts from a level of 0.
void freeVoice(EngineRecord& r, int voice);
// Forgets what a voice's filter has heard.
void clearFilter(EngineRecord& r, std::size_t voice);
// Everything that sounds or is held ends; the effects are the caller's.
void clearVoices(EngineRecord& r);

// Sets the number of voices in use and frees those beyond it.
void setPolyphony(EngineRecord& r, int voices);

} // namespace tolm
