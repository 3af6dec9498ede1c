#include "engine/pitch.h"

#include "fx/Module.h"

#include <cmath>

namespace tolm {

namespace {

constexpr double kWheelSilence = 0.00001;
constexpr int kBendWeights = 128;
constexpr int kBendScale = 8192; // full deflection

} // namespace

void updateControllers(EngineRecord& r)
{
    const double k = r.modWheelSmoothingFactor;
    r.modWheelSmoothed = r.modWheel * k + (1.0 - k) * r.modWheelSmoothed;
    if (r.modWheelSmoothed < kWheelSilence)
        r.modWheelSmoothed = 0.0;

    const int w = r.bendSmoothing;
    r.bendSmoothed = (r.bendRaw * w + (kBendWeights - w) * r.bendSmoothed) / kBendWeights;
    const int range = r.bendSmoothed >= 0 ? r.bendUpRange.load(std::memory_order_relaxed)
                                          : r.bendDownRange.load(std::memory_order_relaxed);
    r.bendOffset = r.bendSmoothed * range * kPitchUnitsPerSemitone / kBendScale;
}

void decayGlide(EngineRecord& r, int frames)
{
    if (!r.glideOn || r.glideOffset == 0.0f)
        return;
    r.glideOffset *= std::pow(r.glideCoefficient, static_cast<float>(frames));
    r.glideOffset = flushTiny(r.glideOffset);
}

} // namespace tolm
