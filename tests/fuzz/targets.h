#pragma once
// What the fuzzers call with every input. A broken promise ends the process.

#include <cstdint>
#include <span>

namespace tolm::fuzz {

using Input = std::span<const std::uint8_t>;

// One control byte, then a chunk: see chunkTarget.cpp.
void chunkTarget(Input input);
// One control byte, then a preset file: see presetFileTarget.cpp.
void presetFileTarget(Input input);
// A text of readable sounds.
void soundTextTarget(Input input);

void require(bool kept, const char* promise);

} // namespace tolm::fuzz
