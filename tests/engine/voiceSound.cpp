// Every key sounds at its pitch, measured in the sound itself.

#include "tests/engine/spectrum.h"
#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

#include <complex>

namespace tolm {
namespace {

double keyHz(int key)
{
    return 440.0 * std::exp2((key - 69) / 12.0);
}

// Frequency of a steady tone near `guess`, from the phase that it gains between two windows.
double frequencyOf(std::span<const float> signal, double guess)
{
    const std::size_t half = signal.size() / 2;
    const auto phasor = [&](std::size_t start) {
        std::complex<double> sum = 0.0;
        for (std::size_t i = 0; i < half; ++i) {
            const double window = 0.5 - 0.5 * std::cos(2.0 * kPi * static_cast<double>(i) /
                                                       static_cast<double>(half));
            const double seconds = static_cast<double>(start + i) / kRate;
            sum += window * static_cast<double>(signal[start + i]) *
                   std::polar(1.0, -2.0 * kPi * guess * seconds);
        }
        return sum;
    };
    const double turn = std::arg(phasor(half) / phasor(0));
    return guess + turn / (2.0 * kPi) * kRate / static_cast<double>(half);
}

// The pitch table ends at key 119; the keys above it sound like its last entry.
TEST(VoiceSound, everyKeyUpToTheEndOfThePitchTableIsInTune)
{
    for (int key = 0; key <= 119; ++key) {
        ToneRig rig;
        rig.set(kOsc1Shape, shapeValue(2));
        rig.hold(key);
        rig.render(4096);
        // Longer for low keys, whose cycles are; over many turns high keys would be ambiguous.
        const Stereo out = rig.render(key < 24 ? 88200 : key < 90 ? 22050 : 2205);
        const double hz = frequencyOf(out.left, keyHz(key));
        ASSERT_NEAR(1200.0 * std::log2(hz / keyHz(key)), 0.0, 2.0) << "key " << key;
    }
}

} // namespace
} // namespace tolm
