#pragma once
// The six effects behind the engine. The program decides in which order they run; the block driver
// walks its slots and calls `process` for each. Audio thread only.

#include "engine/constants.h"
#include "fx/DelayModulation.h"
#include "fx/FxDelay.h"
#include "fx/FxReverb.h"
#include "fx/FxVintagePhaser.h"
#include "fx/Random.h"
#include "fx/distortion.h"
#include "fx/equaliser.h"

#include <array>
#include <cstdint>

namespace tolm {

// Numbers that effect-order slots hold.
enum class EffectKind : std::int32_t {
    distortion = 0,
    equaliser1 = 1,
    equaliser2 = 2,
    phaser = 3,
    delay = 4,
    reverb = 5,
};

class EffectChain {
public:
    explicit EffectChain(Random& random);

    void setSampleRate(double hz);
    // Clears the memories of phaser, delay and reverb; distortion and equalisers keep theirs.
    void reset();
    // A parameter by its catalogue id: effect settings 79..109, switches 116..121.
    void setParameter(int id, float value);
    bool isOn(EffectKind kind) const { return on_[static_cast<std::size_t>(kind)]; }

    // Runs one effect in place on both channels if its switch is on. Any other slot content
    // (below 0 or above 5) runs nothing.
    void process(int slotContent, int frames, float* const* channels, float tempo,
                 const DelayModulation& modulation);

private:
    void setSetting(EffectKind kind, int index, float value);

    Distortion distortion_;
    EqualiserBand equaliser1_;
    EqualiserBand equaliser2_;
    FxVintagePhaser phaser_;
    FxDelay delay_;
    FxReverb reverb_;
    std::array<bool, kEffectSlots> on_{}; // by EffectKind
};

} // namespace tolm
