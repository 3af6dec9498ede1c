// No filter type blows up, at any rate.

#include "tests/engine/spectrum.h"
#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

constexpr int kTypes = 19; // 0..18

TEST(Filter, everyTypeStaysBoundedThroughCutoffJumpsAtFullResonance)
{
    for (const double rate : {8000.0, 32000.0, 44100.0, 96000.0, 384000.0})
        for (int type = 0; type < kTypes; ++type) {
            ToneRig rig(rate);
            rig.set(kOsc2Shape, shapeValue(0));
            rig.set(kFilterType, static_cast<float>(type));
            rig.set(kFilterResonance, 1.0f);
            rig.set(kFilterOffset, 0.5f);
            rig.set(kOscMix, 0.5f);
            rig.set(kNoiseLevel, 1.0f);
            rig.hold(40);
            std::uint32_t dice = 12345u;
            double highest = 0.0;
            for (int i = 0; i < 40; ++i) {
                dice = dice * 1664525u + 1013904223u;
                rig.set(kFilterCutoff, (dice >> 31) != 0 ? 1.0f : 0.1f);
                if (i % 8 == 0)
                    rig.set(kFilterOffset, static_cast<float>((dice >> 16) & 255u) / 255.0f);
                highest = std::max(highest, peak(rig.render(128).left));
            }
            // Two resonant sections in series, at a voice gain of 0.2, reach 165 at 8 kHz.
            EXPECT_LT(highest, 400.0) << "type " << type << " at " << rate;
            EXPECT_GT(highest, 0.001) << "type " << type << " at " << rate;
        }
}

} // namespace
} // namespace tolm
