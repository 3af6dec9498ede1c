#pragma once
// Controllers that move every voice: modulation wheel, pitch bend and glide. Advanced once per
// engine call.

#include "engine/record.h"

namespace tolm {

// Smooths wheel and bend toward their targets; the bend in truncating integers, so that it stops a
// little short of a full deflection.
void updateControllers(EngineRecord& r);

// Decays the glide offset by `frames` frames. The decayed value serves the whole call.
void decayGlide(EngineRecord& r, int frames);

} // namespace tolm
