// The gain transient at a note's start, for both of its tables.

#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

// Triangle pulse of `seconds` rise and fall through a one-pole low-pass, scaled to `peak`.
std::vector<double> spike(double seconds, double hz, double peak, double rate)
{
    const int rise = static_cast<int>(seconds * rate);
    const double w = std::tan(kPi * hz / rate);
    std::vector<double> y;
    double x1 = 0.0;
    double y1 = 0.0;
    double highest = 0.0;
    for (int i = 0; i < static_cast<int>(rate) * 1024 / 44100; ++i) {
        const double x = i <= rise       ? static_cast<double>(i) / rise
                         : i <= 2 * rise ? static_cast<double>(2 * rise - i) / rise
                                         : 0.0;
        y1 = w / (w + 1.0) * (x + x1) - (w - 1.0) / (w + 1.0) * y1;
        x1 = x;
        y.push_back(y1);
        highest = std::max(highest, y1);
    }
    for (double& v : y)
        v *= peak / highest;
    return y;
}

// The spike does not pass through the amplitude envelope: it is there before the attack has begun.
TEST(VoiceSpike, addsItsTableTimesTheSoundBesideTheEnvelope)
{
    for (const double rate : {44100.0, 96000.0})
        for (const bool hard : {false, true}) {
            const std::vector<double> table =
                hard ? spike(0.00005, 300.0, 1.6, rate) : spike(0.00025, 60.0, 1.0, rate);
            ToneRig plain(rate);
            ToneRig spiked(rate);
            spiked.setRow(1, kConst, hard ? 85 : 55, 0.5); // a quarter
            for (ToneRig* rig : {&plain, &spiked}) {
                rig->set(kAmpAttack, 0.3f);
                // The hard one would start the filter envelope at its top; it moves nothing here.
                rig->set(kFilterEnvAmount, 0.0f);
            }
            plain.hold(60).osc1Phase = 0;
            spiked.on(60);
            spiked.slot().osc1Phase = 0;
            const int frames = static_cast<int>(table.size()) + 64;
            const Stereo full = plain.render(frames);
            const Stereo out = spiked.render(frames);
            const double attack = std::pow(
                0.1, 1000.0 / (2.0 * std::pow(10000.0, std::trunc(0.3 * 1024.0) / 1024.0) * rate));
            double distance = 1.0;
            for (std::size_t i = 0; i < out.left.size(); ++i) {
                distance *= attack;
                const double added = i < table.size() ? 0.25 * table[i] : 0.0;
                ASSERT_NEAR(static_cast<double>(out.left[i]),
                            static_cast<double>(full.left[i]) * (1.0 - distance + added), 2e-5)
                    << (hard ? "hard" : "soft") << " at " << rate << ", frame " << i;
            }
        }
}

} // namespace
} // namespace tolm
