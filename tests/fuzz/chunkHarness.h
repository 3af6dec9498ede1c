#pragma once
// Feeds bytes to the chunk reader and checks what it promises.

#include "patch/chunk.h"
#include "tests/fuzz/targets.h"

namespace tolm::fuzz {

struct ChunkInput {
    Input bytes;
    bool isPreset = false;
    bool fromFile = false;
    bool writeBack = false; // also save what was loaded and load it again
    int program = 0;
};

void feedChunk(const ChunkInput& input);

} // namespace tolm::fuzz
