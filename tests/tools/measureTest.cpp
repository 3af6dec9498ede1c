// What the measures of the audition say about signals whose figures are known.

#include "tools/audition/measure.h"
#include "tools/audition/envelope.h"
#include "tools/audition/spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace tolm {
namespace {

using Signal = std::function<double(double seconds)>;

double sine(double hz, double seconds)
{
    return std::sin(2.0 * std::numbers::pi * hz * seconds);
}

Rendering renderingOf(const Signal& left, const Signal& right, double heldSeconds,
                      double tailSeconds = 0.0)
{
    Rendering r;
    const auto frames = static_cast<std::size_t>((heldSeconds + tailSeconds) * kAuditionRateHz);
    for (std::size_t i = 0; i < frames; ++i) {
        const double seconds = static_cast<double>(i) / kAuditionRateHz;
        r.left.push_back(static_cast<float>(left(seconds)));
        r.right.push_back(static_cast<float>(right(seconds)));
    }
    r.keyUpFrame = static_cast<std::size_t>(heldSeconds * kAuditionRateHz);
    return r;
}
Rendering mono(const Signal& signal, double heldSeconds, double tailSeconds = 0.0)
{
    return renderingOf(signal, signal, heldSeconds, tailSeconds);
}
Spectra wholeSpectra(const Rendering& r)
{
    return spectraOf(r, 0, r.keyUpFrame);
}

// 20 dB in `seconds`.
double fall(double t, double seconds)
{
    return std::pow(10.0, -t / seconds);
}

TEST(Envelope, decaysAndReleasesTakeAsLongAsTheyDo)
{
    const Rendering struck =
        mono([](double t) { return 0.5 * fall(t, 0.4) * sine(440.0, t); }, 1.5);
    EXPECT_NEAR(decaySeconds(envelopeOf(struck), struck.keyUpFrame), 0.4, 0.02);
    const Rendering held =
        mono([](double t) { return 0.5 * (t < 1.0 ? 1.0 : fall(t - 1.0, 0.25)) * sine(440.0, t); },
             1.0, 1.0);
    EXPECT_EQ(decaySeconds(envelopeOf(held), held.keyUpFrame), kNever);
    EXPECT_NEAR(releaseSeconds(envelopeOf(held), held.keyUpFrame), 0.25, 0.02);
}

TEST(Envelope, attacksAreRisesAndNotBeats)
{
    const Rendering swell =
        mono([](double t) { return std::min(t / 0.2, 1.0) * sine(440.0, t); }, 1.0);
    EXPECT_NEAR(attackMs(envelopeOf(swell), 0.5), 160.0, 10.0);
    const Rendering beating =
        mono([](double t) { return 0.5 * (sine(440.0, t) + sine(440.7, t)); }, 4.0);
    EXPECT_LE(attackMs(envelopeOf(beating), 4.0), 10.0);
}

TEST(Envelope, modulationIsItsDepth)
{
    const auto tremolo = [](double hz) {
        return mono([hz](double t) { return 0.5 * (1.0 + 0.3 * sine(hz, t)) * sine(440.0, t); },
                    2.0);
    };
    const Rendering slow = tremolo(5.0);
    EXPECT_NEAR(modulationPercent(slow, 0, slow.keyUpFrame), 30.0, 4.0);
    const Rendering fast = tremolo(18.0);
    EXPECT_LT(modulationPercent(fast, 0, fast.keyUpFrame), 4.0);
}

TEST(Envelope, onsetsAreCounted)
{
    const Rendering pulses =
        mono([](double t) { return fall(std::fmod(t, 0.25), 0.1) * sine(300.0, t); }, 2.0);
    EXPECT_EQ(onsetCount(pulses), 8);
}

TEST(Envelope, fluxIsTheTurningOfTheSpectrum)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> noise(-1.0, 1.0);
    const auto fluxOf = [](const Rendering& r) { return fluxPercent(r, 0, r.keyUpFrame); };
    EXPECT_LT(fluxOf(mono([](double t) { return 0.5 * fall(t, 1.0) * sine(440.0, t); }, 2.0)), 0.1);
    EXPECT_GT(fluxOf(mono([&](double) { return noise(random); }, 1.0)), 10.0);
    const Rendering steps =
        mono([](double t) { return sine(std::fmod(t, 0.2) < 0.1 ? 300.0 : 900.0, t); }, 2.0);
    EXPECT_NEAR(fluxOf(steps), 100.0 / 4.7, 6.0); // all of it, every 4.7 pieces
}

TEST(Spectrum, centroidAndWidthFollowTheSignal)
{
    const Rendering two = mono([](double t) { return sine(500.0, t) + sine(1500.0, t); }, 1.0);
    EXPECT_NEAR(centroidHz(wholeSpectra(two)), 1000.0, 5.0);
    EXPECT_LT(widthDb(wholeSpectra(two), 16000.0), -90.0);
    const auto low = [](double t) { return sine(110.0, t); };
    const auto both = [&](double t) { return low(t) + sine(1000.0, t); };
    const Rendering wideAbove = renderingOf(
        both, [&](double t) { return low(t) - sine(1000.0, t); }, 1.0);
    EXPECT_LT(widthDb(wholeSpectra(wideAbove), 200.0), -30.0);
    EXPECT_NEAR(widthDb(wholeSpectra(wideAbove), 16000.0), 0.0, 0.1);
    EXPECT_NEAR(lowShare(wholeSpectra(wideAbove)), 0.5, 0.01);
}

TEST(Spectrum, harmonicityTellsTonesFromNoise)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> noise(-1.0, 1.0);
    const auto shareOf = [](const Rendering& r) {
        return harmonicity(spectraOf(r, 0, r.keyUpFrame, 65536), 220.0);
    };
    const Signal tone = [](double t) {
        return 0.3 * (sine(220.0, t) + sine(660.0, t) + sine(1100.0, t));
    };
    EXPECT_GT(shareOf(mono(tone, 1.4)), 0.99);
    EXPECT_GT(shareOf(mono([](double t) { return sine(110.0, t); }, 1.4)), 0.99); // a sub-octave
    EXPECT_LT(shareOf(mono([](double t) { return sine(290.0, t); }, 1.4)), 0.01);
    EXPECT_LT(shareOf(mono([&](double) { return noise(random); }, 1.4)), 0.5);
    const Rendering hiss = mono([&](double) { return noise(random); }, 1.0);
    EXPECT_GT(flatness(wholeSpectra(hiss)), 0.8);
    EXPECT_LT(flatness(wholeSpectra(mono(tone, 1.0))), 0.05);
}

TEST(Spectrum, tonesOfAChordAreCountedFromItsKey)
{
    const auto tonesOf = [](std::initializer_list<int> semitones) {
        const Rendering r = mono(
            [&](double t) {
                double sum = 0.0;
                for (const int semitone : semitones)
                    for (int harmonic = 1; harmonic <= 6; ++harmonic)
                        sum +=
                            0.1 / harmonic * sine(harmonic * 220.0 * std::exp2(semitone / 12.0), t);
                return sum;
            },
            1.4);
        return fundamentalCount(spectraOf(r, 0, r.keyUpFrame, 65536), 220.0);
    };
    EXPECT_EQ(tonesOf({0}), 1);
    EXPECT_EQ(tonesOf({0, 12}), 1);
    EXPECT_EQ(tonesOf({0, 3, 7, 10}), 4);
    EXPECT_EQ(tonesOf({-12, 0, 5, 9}), 4); // with the fifth that the lower octave brings
    EXPECT_EQ(tonesOf({3, 7}), 0);
}

TEST(Figures, anOffsetStandsAndAnOnsetDoesNot)
{
    const Rendering shifted = mono([](double t) { return 0.01 + 0.3 * sine(50.0, t); }, 2.0);
    EXPECT_NEAR(figuresOf(shifted).offsetDb, -40.0, 0.1);
    const Rendering struck = mono(
        [](double t) {
            const double since = std::fmod(t, 0.5);
            return 0.5 * fall(since, 0.1) * sine(60.0, since);
        },
        2.0);
    EXPECT_LT(figuresOf(struck).offsetDb, -60.0);
}

} // namespace
} // namespace tolm
