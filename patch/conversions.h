#pragma once
// Brings programs saved by older versions up to the current record, so that they sound as they did.

#include "patch/ProgramRecord.h"
#include "patch/programStore.h"

namespace tolm {

enum class LoadPath { bank, singleProgram };

// Runs the steps of the path that `version` needs. Values end finite but are not clamped to 0..1:
// old sounds may rely on amounts beyond it.
void convertProgram(ProgramRecord& record, int version, LoadPath path);

// Since version 4 ring modulation fades against the other sources, before it was added on top of
// them, up to three times as loud. Keeps the old balance and makes up the level with the volume.
inline constexpr int kFirstBalancedVersion = 4;
void rebalanceRingModulation(ProgramRecord& record);

void resetEffectOrder(ProgramRecord& record);

// Older programs carry their category as a prefix of the name, "PAD Warm": moves it into
// "PatchCategory". Visits the whole store. With `reset` programs without prefix lose theirs.
void takeCategoriesFromNames(ProgramStore& store, bool reset);

} // namespace tolm
