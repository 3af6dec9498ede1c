#pragma once
// Loading and saving chunks into and out of a playing synth. User-interface thread.

#include "patch/chunk.h"
#include "plugin/SynthCore.h"

#include <cstdint>
#include <span>

namespace tolm {

// What the next saved chunk says besides the programs.
ChunkState chunkState(SynthCore& core);

// Blocks are silent while the programs are replaced. A chunk that is rejected, or one that comes
// while a host has stopped for good inside a block, leaves everything but the bend ranges alone.
ChunkResult loadChunk(SynthCore& core, std::span<const std::uint8_t> bytes, bool singleProgram,
                      bool fromFile);

} // namespace tolm
