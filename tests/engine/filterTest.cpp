// Filter types: magnitude responses against the maths of their sections.

#include "tests/engine/spectrum.h"
#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

#include <functional>

namespace tolm {
namespace {

using Complex = std::complex<double>;

constexpr double kRate = 44100.0;
constexpr int kSawKey = 33;
constexpr double kSawHz = 55.0;

// Transfer functions of one state-variable section at a cutoff index.
struct SectionGain {
    Complex low;
    Complex band;
    Complex high;
    Complex notch() const { return high + low; }
};

SectionGain sectionAt(double index, double resonance, double hz)
{
    const double f = svfCoefficientAt(std::clamp(std::trunc(index), 0.0, 2047.0), kRate);
    const double q = 1.0 - 0.9 * resonance;
    const Complex z1 = std::polar(1.0, -2.0 * kPi * hz / kRate);
    // hp = x - z1 lp - q z1 bp, bp = f hp / (1 - z1), lp = f bp / (1 - z1).
    const Complex integrator = f / (1.0 - z1);
    SectionGain g;
    g.high = 1.0 / (1.0 + z1 * integrator * (q + integrator));
    g.band = g.high * integrator;
    g.low = g.band * integrator;
    return g;
}

struct Setting {
    int type;
    float cutoff;
    float resonance;
    float offset;
    float oscMix = 0.0f;
};

void setFilter(ToneRig& rig, const Setting& s)
{
    rig.set(kFilterType, static_cast<float>(s.type));
    rig.set(kFilterCutoff, s.cutoff);
    rig.set(kFilterResonance, s.resonance);
    rig.set(kFilterOffset, s.offset);
    rig.set(kOscMix, s.oscMix);
}

constexpr int kHarmonicCount = 300;
constexpr std::size_t kWindow = 8192;

// Amplitude of a harmonic of the saw under a Hann window, by a rotating phasor.
double harmonicAmplitude(const std::vector<float>& sound, int harmonic)
{
    const double turn = 2.0 * kPi * harmonic * kSawHz / kRate;
    const Complex step = std::polar(1.0, -turn);
    const Complex windowStep = std::polar(1.0, 2.0 * kPi / static_cast<double>(kWindow));
    Complex phasor = 1.0;
    Complex window = 1.0;
    Complex sum = 0.0;
    for (std::size_t i = 0; i < kWindow; ++i, phasor *= step, window *= windowStep)
        sum += static_cast<double>(sound[i]) * (0.5 - 0.5 * window.real()) * phasor;
    return std::abs(sum);
}

// Measured gain of a type at harmonics of a low saw, in reference to what the open two-pole filter
// makes of the same saw. Both oscillators play it.
class Response {
public:
    explicit Response(const Setting& s) : sound_(play(s)) {}

    double gain(int harmonic) const
    {
        static const std::vector<float> saw = play({0, 1.0f, 0.0f, 0.0f});
        static std::array<double, kHarmonicCount> input{};
        double& amplitude = input[static_cast<std::size_t>(harmonic)];
        if (amplitude == 0.0)
            amplitude = harmonicAmplitude(saw, harmonic) /
                        std::abs(sectionAt(2047.0, 0.0, harmonic * kSawHz).low);
        return harmonicAmplitude(sound_, harmonic) / amplitude;
    }

private:
    static std::vector<float> play(const Setting& s)
    {
        ToneRig rig;
        setFilter(rig, s);
        VoiceSlot& slot = rig.hold(kSawKey);
        slot.osc1Phase = slot.osc2Phase = 0;
        rig.render(8192);
        return rig.render(static_cast<int>(kWindow)).left;
    }

    std::vector<float> sound_;
};

constexpr int kHarmonics[] = {2, 5, 10, 18, 20, 22, 30, 60, 120, 290};

void expectResponse(const Setting& s, const std::function<Complex(double hz)>& formula)
{
    const Response measured(s);
    for (const int k : kHarmonics) {
        const double expected = db(std::abs(formula(k * kSawHz)));
        if (expected < -65.0)
            continue; // 16-bit and interpolation noise of the saw
        EXPECT_NEAR(db(measured.gain(k)), expected, 0.1)
            << "type " << s.type << ", resonance " << s.resonance << ", offset " << s.offset
            << ", harmonic " << k;
    }
}

TEST(FilterResponse, lowpassesFollowTheirFormula)
{
    // A section resonates at about a third of its table frequency, here near 1.4 kHz.
    for (const float resonance : {0.0f, 0.5f, 1.0f}) {
        const double r = static_cast<double>(resonance);
        const float cutoff = 1600.5f / 2048.0f;
        expectResponse({0, cutoff, resonance, 0.0f},
                       [&](double hz) { return sectionAt(1600.0, r, hz).low; });
        expectResponse({1, cutoff, resonance, 0.0f}, [&](double hz) {
            return sectionAt(1600.0, r, hz).low * sectionAt(1600.0, r, hz).low;
        });
    }
}

TEST(FilterResponse, seriesTypesRelateTheirSectionsByTheOffset)
{
    const double position = 1500.5;
    for (const float offset : {0.2f, 0.5f, 0.55f, 0.9995f}) {
        const double o = static_cast<double>(offset);
        const double ratio = o <= 0.5 ? 0.5 * std::pow(4.0, o) : 0.25 * std::pow(16.0, o);
        const auto second = [&](double hz) {
            return o >= 0.999 ? Complex(1.0) : sectionAt(position * ratio, 0.6, hz).low;
        };
        const float cutoff = static_cast<float>(position / 2048.0);
        expectResponse({9, cutoff, 0.6f, offset},
                       [&](double hz) { return sectionAt(position, 0.6, hz).band * second(hz); });
        expectResponse({10, cutoff, 0.6f, offset}, [&](double hz) {
            return sectionAt(position, 0.6, hz).notch() * second(hz);
        });
        expectResponse({11, cutoff, 0.6f, offset},
                       [&](double hz) { return sectionAt(position, 0.6, hz).high * second(hz); });
    }
}

TEST(FilterResponse, splitTypesFilterTheOscillatorsApart)
{
    const double position = 1500.5;
    const float cutoff = static_cast<float>(position / 2048.0);
    for (const float offset : {0.25f, 0.6f}) {
        const double ratio = 0.5 * std::pow(4.0, static_cast<double>(offset));
        const auto first = [&](int type, double hz) {
            const SectionGain g = sectionAt(position, 0.3, hz);
            return type == 12 ? g.low : type == 13 ? g.band : type == 14 ? g.notch() : g.high;
        };
        for (int type = 12; type <= 15; ++type) {
            expectResponse({type, cutoff, 0.3f, offset, 0.0f},
                           [&](double hz) { return first(type, hz); });
            expectResponse({type, cutoff, 0.3f, offset, 1.0f},
                           [&](double hz) { return sectionAt(position * ratio, 0.3, hz).low; });
        }
    }
}

TEST(FilterResponse, sweepMorphsFromLowOverBandToHigh)
{
    for (const float offset : {0.0f, 0.25f, 0.5f, 1.0f}) {
        const double o = static_cast<double>(offset);
        expectResponse({16, 1600.5f / 2048.0f, 0.5f, offset}, [&](double hz) {
            const SectionGain g = sectionAt(1600.0, 0.5, hz);
            const double low = std::max(0.0, 1.0 - 2.0 * o);
            const double high = std::max(0.0, 2.0 * o - 1.0);
            return low * g.low + (1.0 - low - high) * g.band + high * g.high;
        });
    }
}

TEST(FilterResponse, slopesAreWhatTheNamesPromise)
{
    struct Slope {
        int type;
        double perOctave;
    };
    // One octave, far above a corner at the bottom of the range.
    for (const auto& [type, slope] :
         {Slope{0, 12.0}, Slope{1, 24.0}, Slope{2, 12.0}, Slope{17, 12.0}, Slope{7, 24.0}}) {
        Setting s{type, 0.2f, 0.0f, 0.5f};
        if (type == 2)
            s.offset = 0.0f; // the least drive is still linear enough
        const Response r(s);
        EXPECT_NEAR(db(r.gain(8) / r.gain(16)), slope, 0.05 * slope) << "type " << type;
    }
}

TEST(FilterResponse, laddersResonateAndKeepTheirLevel)
{
    for (const int type : {7, 17}) {
        double last = -100.0;
        for (const float resonance : {0.0f, 0.5f, 1.0f}) {
            const Response r({type, 0.7f, resonance, 0.5f});
            double highest = 0.0;
            for (int k = 20; k <= 60; ++k)
                highest = std::max(highest, r.gain(k));
            const double over = db(highest / r.gain(1));
            EXPECT_GT(over, last + 1.0) << "type " << type << " at " << resonance;
            last = over;
            EXPECT_GT(db(r.gain(1)), -18.0) << type << ' ' << resonance;
            EXPECT_LT(db(r.gain(1)), 3.0) << type << ' ' << resonance;
        }
        EXPECT_GT(last, 10.0);
        EXPECT_LT(last, 30.0);
    }
}

TEST(FilterResponse, combTeethFollowTheOffset)
{
    // At the middle of the offset the delay is one period: all harmonics stand on teeth. A ratio of
    // 2 halves the delay: odd harmonics fall between the teeth.
    const Response plain({3, 1.0f, 0.9f, 0.5f});
    const Response octaveUp({3, 1.0f, 0.9f, 0.75f});
    for (int k = 3; k < 20; k += 2) {
        EXPECT_NEAR(db(plain.gain(k) / plain.gain(k + 1)), 0.0, 2.5) << k;
        EXPECT_LT(db(octaveUp.gain(k) / octaveUp.gain(k + 1)), -12.0) << k;
    }
}

TEST(Filter, keyTrackingAndEnvelopeMoveTheIndex)
{
    // 0.06 of cutoff per octave of notes.
    ToneRig tracked;
    tracked.set(kFilterCutoff, 0.5f);
    tracked.set(kFilterKeytrack, 1.0f);
    ToneRig plain;
    plain.set(kFilterCutoff, 0.5f + 60.0f * 128.0f * 3.90625e-5f);
    ToneRig enveloped;
    enveloped.set(kFilterCutoff, 0.4f);
    enveloped.set(kFilterEnvAmount, 0.5f);
    ToneRig* rigs[] = {&tracked, &plain, &enveloped};
    for (ToneRig* rig : rigs) {
        VoiceSlot& slot = rig->hold(60);
        slot.osc1Phase = 0;
        slot.filter = {2.0f * 60.0f * 128.0f * 3.90625e-5f + 0.2f, EnvelopeStage::sustain};
    }
    const Stereo a = tracked.render(2048);
    const Stereo b = plain.render(2048);
    const Stereo c = enveloped.render(2048);
    for (std::size_t i = 0; i < a.left.size(); ++i) {
        ASSERT_NEAR(a.left[i], b.left[i], 2e-3f) << i;
        ASSERT_NEAR(c.left[i], b.left[i], 2e-3f) << i;
    }
}

TEST(Filter, stateIsForgottenWhenTheTypeChangesButSoundingVoicesKeepTheirs)
{
    ToneRig rig;
    rig.hold(60);
    rig.render(512);
    ASSERT_NE(rig.slot().filterState[0], 0.0f);
    rig.set(kFilterType, 7.0f);
    EXPECT_EQ(rig.slot().filterState[0], 0.0f);
    EXPECT_EQ(rig.record().voiceFilterType[0], 0u);
    rig.on(64);
    EXPECT_EQ(rig.record().voiceFilterType[1], 7u);
}

} // namespace
} // namespace tolm
