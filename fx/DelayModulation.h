#pragma once
// How LFO 2 sweeps the delay time: written once per block by the engine's global modulation pass.

#include <cstdint>

namespace tolm {

struct DelayModulation {
    std::int32_t increment = 0; // of the phase, per frame
    std::uint32_t phase = 0;    // a whole turn is 2^32
    float depth = 0.0f;
    const float* table = nullptr; // 2048 entries -1..1, LFO 2's shape; entry 2048 is entry 0
};

} // namespace tolm
