// Filter types: magnitude responses against the maths of their sections, and bounds.

#include "tests/engine/spectrum.h"
#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

#include <functional>

namespace tolm {
namespace {

using Complex = std::complex<double>;

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
    rig.set({{kFilterType, static_cast<float>(s.type)}, {kFilterCutoff, s.cutoff}});
    rig.set({{kFilterResonance, s.resonance}, {kFilterOffset, s.offset}, {kOscMix, s.oscMix}});
}

// Measured gain of a type at harmonics of a low saw, in reference to what the open two-pole filter
// makes of the same saw. Both oscillators play it.
class Response {
public:
    explicit Response(const Setting& s) : sound_(play(s)) {}

    double gain(int harmonic) const
    {
        static const std::vector<float> saw = play({0, 1.0f, 0.0f, 0.0f});
        const double hz = harmonic * kSawHz;
        return amplitudeAt(sound_, hz, kRate) / amplitudeAt(saw, hz, kRate) *
               std::abs(sectionAt(2047.0, 0.0, hz).low);
    }

private:
    static std::vector<float> play(const Setting& s)
    {
        ToneRig rig;
        setFilter(rig, s);
        VoiceSlot& slot = rig.hold(kSawKey);
        slot.osc1Phase = slot.osc2Phase = 0;
        rig.render(8192);
        return rig.render(8192).left;
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
    for (const float resonance : {0.0f, 0.5f, 1.0f})
        for (const int sections : {1, 2})
            expectResponse({sections - 1, 1600.5f / 2048.0f, resonance, 0.0f}, [&](double hz) {
                return std::pow(sectionAt(1600.0, resonance, hz).low, sections);
            });
}

TEST(FilterResponse, seriesTypesRelateTheirSectionsByTheOffset)
{
    const double position = 1500.5;
    for (const float offset : {0.2f, 0.5f, 0.55f, 0.9995f})
        for (const int type : {9, 10, 11}) {
            const double o = offset;
            const double ratio = o <= 0.5 ? 0.5 * std::pow(4.0, o) : 0.25 * std::pow(16.0, o);
            expectResponse({type, 1500.5f / 2048.0f, 0.6f, offset}, [&](double hz) {
                const SectionGain g = sectionAt(position, 0.6, hz);
                const Complex first = type == 9 ? g.band : type == 10 ? g.notch() : g.high;
                return o >= 0.999 ? first : first * sectionAt(position * ratio, 0.6, hz).low;
            });
        }
}

TEST(FilterResponse, splitTypesFilterTheOscillatorsApart)
{
    const double position = 1500.5;
    for (const float offset : {0.25f, 0.6f})
        for (int type = 12; type <= 15; ++type) {
            const double ratio = 0.5 * std::pow(4.0, offset);
            expectResponse({type, 1500.5f / 2048.0f, 0.3f, offset, 0.0f}, [&](double hz) {
                const SectionGain g = sectionAt(position, 0.3, hz);
                return type == 12 ? g.low : type == 13 ? g.band : type == 14 ? g.notch() : g.high;
            });
            expectResponse({type, 1500.5f / 2048.0f, 0.3f, offset, 1.0f},
                           [&](double hz) { return sectionAt(position * ratio, 0.3, hz).low; });
        }
}

TEST(FilterResponse, sweepMorphsFromLowOverBandToHigh)
{
    for (const float offset : {0.0f, 0.25f, 0.5f, 1.0f}) {
        const double o = offset;
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
    // One octave, far above a corner at the bottom of the range; the least drive of type 2 is still
    // linear enough.
    for (const auto& [type, slope, offset] :
         {std::tuple{2, 12.0, 0.0f}, {17, 12.0, 0.5f}, {7, 24.0, 0.5f}}) {
        const Response r({type, 0.2f, 0.0f, offset});
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
            EXPECT_NEAR(db(r.gain(1)), -7.0, 10.0) << type << ' ' << resonance;
        }
        EXPECT_NEAR(last, 20.0, 10.0);
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

TEST(Filter, everyTypeStaysBoundedThroughCutoffJumpsAtFullResonance)
{
    for (const double rate : {8000.0, 32000.0, 44100.0, 96000.0, 384000.0})
        for (int type = 0; type < 19; ++type) {
            ToneRig rig(rate);
            rig.set({{kOsc2Shape, shapeValue(0)}, {kFilterType, static_cast<float>(type)}});
            rig.set({{kFilterResonance, 1.0f}, {kFilterOffset, 0.5f}, {kOscMix, 0.5f}});
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

TEST(Filter, keyTrackingMovesTheCutoff)
{
    ToneRig tracked;
    tracked.set({{kFilterCutoff, 0.5f}, {kFilterKeytrack, 1.0f}});
    ToneRig plain;
    plain.set(kFilterCutoff, 0.5f + 60.0f * 0.06f / 12.0f); // 0.06 per octave of notes
    for (ToneRig* rig : {&tracked, &plain})
        rig->hold(60).osc1Phase = 0;
    const Stereo a = tracked.render(2048);
    const Stereo b = plain.render(2048);
    for (std::size_t i = 0; i < a.left.size(); ++i)
        ASSERT_NEAR(a.left[i], b.left[i], 2e-3f) << i;
}

TEST(Filter, aNewTypeClearsEveryStateButSoundingVoicesKeepTheirType)
{
    ToneRig rig;
    rig.hold(60);
    rig.render(512);
    ASSERT_NE(rig.slot().filterState[0], 0.0f);
    rig.set(kFilterType, 7.0f);
    EXPECT_EQ(rig.slot().filterState, decltype(VoiceSlot::filterState){});
    EXPECT_EQ(rig.sounding(), 1);
    EXPECT_EQ(rig.record().voiceFilterType[0], 0u);
    rig.on(64);
    EXPECT_EQ(rig.record().voiceFilterType[1], 7u);
}

} // namespace
} // namespace tolm
