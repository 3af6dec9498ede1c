// Oscillators, noise and mix, sample by sample against a model of their own.

#include "tests/engine/spectrum.h"
#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

constexpr double kLsb = 1.0 / 32768.0;

// One oscillator in 64-bit integers, division truncating toward zero.
struct Model {
    int shape = 0;
    int bits = 10;
    int wave = 0;  // first of the two waves
    int blend = 0; // of 1024
    int fat = 0;   // of 1024
    double detune = 1.0;
    double powers[2] = {1.9, 3.12};
    int pitch = 0;
    double width = 0.5;
    std::uint32_t phase = 0;
    std::array<std::uint32_t, 6> side{};

    const std::int16_t* table(int w) const
    {
        const ConstantTables& t = constantTables();
        const int semitone = pitch >> 7;
        if (shape == 2)
            return t.sine.data();
        if (shape < 2)
            return t.saw[static_cast<std::size_t>(semitone)].data();
        const int octave = std::clamp((semitone - 84) / 12, 0, 5);
        return t.waves[static_cast<std::size_t>(w)][static_cast<std::size_t>(octave)].data();
    }
    std::int64_t read(const std::int16_t* t, std::uint32_t index, std::int64_t fraction) const
    {
        const std::int64_t a = t[index];
        return a + (t[(index + 1) % 2048] - a) * fraction / (1 << bits);
    }
    std::int64_t at(std::uint32_t p, std::int64_t fraction) const
    {
        const std::int64_t a = read(table(wave), p >> 21, fraction);
        if (shape != 3)
            return a;
        const std::int64_t b = read(table(wave + 1), p >> 21, fraction);
        return (a * (1024 - blend) + b * blend) / 1024;
    }
    std::int64_t sides(std::uint32_t offset) const
    {
        std::int64_t sum = 0;
        for (const std::uint32_t p : side)
            sum += at(p + offset, 0);
        return sum;
    }
    std::int64_t whole(std::uint32_t p) const
    {
        const std::int64_t fraction = (p >> (21 - bits)) & ((1 << bits) - 1);
        const auto offset =
            static_cast<std::uint32_t>(static_cast<std::uint64_t>(width * 65536.0) * 65536u);
        std::int64_t v = at(p, fraction);
        if (shape == 1)
            v -= at(p + offset, fraction);
        if (fat == 0 || shape == 2)
            return v;
        const std::int64_t main = 1024 - fat / 2;
        const std::int64_t each = main * fat / 1024;
        if (shape == 1)
            v = (v * main - sides(offset) * each) / 1024;
        return (v * main + sides(0) * each) / 1024;
    }
    double value(std::uint32_t p) const { return static_cast<double>(whole(p)); }
    double value() const { return value(phase); }
    std::uint32_t step() const { return stepOfPitch(pitch, kRate); }
    void advance()
    {
        const double a = std::pow(detune, powers[0]);
        const double b = std::pow(detune, powers[1]);
        const double ratios[] = {detune, a, b, 1.0 / detune, 1.0 / a, 1.0 / b};
        for (std::size_t i = 0; i < 6; ++i)
            side[i] += static_cast<std::uint32_t>(static_cast<std::uint64_t>(step() * ratios[i]));
        phase += step();
    }
    double next()
    {
        const double now = value();
        advance();
        return now;
    }
};

struct Case {
    int shape;
    float fat;
    float wave;
    float width;
    int key;
};

constexpr Case kCases[] = {
    {0, 0.0f, 0.0f, 0.5f, 60},  {0, 0.05f, 0.0f, 0.5f, 48}, {0, 1.0f, 0.0f, 0.5f, 100},
    {1, 0.0f, 0.0f, 0.25f, 36}, {1, 0.07f, 0.0f, 0.3f, 60}, {1, 0.6f, 0.0f, 0.5f, 72},
    {2, 0.5f, 0.0f, 0.5f, 84},  {3, 0.0f, 0.08f, 0.5f, 59}, {3, 0.04f, 0.2f, 0.5f, 60},
    {3, 0.0f, 1.0f, 0.5f, 110}, {0, 0.0f, 0.0f, 0.5f, 0},   {0, 0.0f, 0.0f, 0.5f, 127},
    {1, 0.0f, 0.0f, 1.0f, 60}, // silence
};

void setUp(ToneRig& rig, const Case& c, int osc)
{
    const int stride = 5 * osc;
    rig.set({{kOsc1Shape + stride, shapeValue(c.shape)}, {kOsc1Fat + stride, c.fat}});
    rig.set({{kOsc1Wave + stride, c.wave}, {kPulseWidth, c.width}});
    rig.set(kOscMix, static_cast<float>(osc));
}

Model modelOf(const Case& c, int osc = 0)
{
    Model m;
    m.shape = c.shape;
    m.bits = osc == 0 ? 10 : 8;
    m.wave = std::min(static_cast<int>(c.wave * 128.0f + 0.001f), 69);
    m.fat = std::min(static_cast<int>(c.fat * 128.0f) * 64, 1024);
    m.detune = 1.0f + 0.01f * c.fat;
    if (osc == 1) {
        m.powers[0] = 1.88;
        m.powers[1] = 3.16;
    }
    const int waveOffset = m.wave >= 65 ? -4608 : m.wave >= 63 ? -1536 : m.wave >= 60 ? -5102 : 0;
    m.pitch = std::min(pitchOfKey(c.key) + (c.shape == 3 ? waveOffset : 0), kPitchCount - 1);
    m.width = c.width;
    return m;
}
// A plain oscillator of a shape.
Model plainModel(int shape, int key, int osc = 0)
{
    return modelOf({shape, 0.0f, 0.0f, 0.5f, key}, osc);
}

// The mix frame by frame, in steps of 16 bits.
template <class Next>
void expectMix(ToneRig& rig, int frames, double tolerance, Next next)
{
    int frame = 0;
    for (const double sample : rig.mix(frames))
        ASSERT_NEAR(sample / kLsb, next(), tolerance) << "frame " << frame++;
}

TEST(Oscillator, everyShapeFatOrPlainFollowsTheModel)
{
    for (int osc = 0; osc < 2; ++osc)
        for (const Case& c : kCases) {
            SCOPED_TRACE(testing::Message()
                         << "oscillator " << osc + 1 << ", case " << &c - kCases);
            ToneRig rig;
            setUp(rig, c, osc);
            VoiceSlot& slot = rig.hold(c.key);
            Model m = modelOf(c, osc);
            m.phase = 123456789u;
            (osc == 0 ? slot.osc1Phase : slot.osc2Phase) = m.phase;
            for (std::size_t i = 0; i < 6; ++i)
                slot.fatPhase[static_cast<std::size_t>(osc)][i] = m.side[i] =
                    static_cast<std::uint32_t>(i) * 777777777u;
            expectMix(rig, 400, 1.0, [&] { return m.next(); });
        }
}

TEST(Oscillator, wavePositionsCrossFadeAndStopAtBothEnds)
{
    struct Position {
        int setting;
        double amount; // of trunc(100 a + 0.001) waves
        int wave;
        int blend;
    };
    // Source "MWheel" at 0.5 gives steps of 512/1024 wave; -3 % counts as -2 because 0.001 is
    // added before the truncation.
    for (const auto& [setting, amount, wave, blend] :
         {Position{10, 0.01, 10, 512}, Position{10, 0.04, 12, 0}, Position{10, -0.03, 9, 0},
          Position{2, -0.5, 0, 0}, Position{50, 0.99, 69, 512}}) {
        SCOPED_TRACE(wave);
        ToneRig rig;
        setUp(rig, {3, 0.0f, static_cast<float>(setting) / 128.0f, 0.5f, 60}, 0);
        rig.record().modWheel = rig.record().modWheelSmoothed = 0.5;
        rig.setRow(1, 3, 15, amount);
        Model m = modelOf({3, 0.0f, static_cast<float>(wave) / 128.0f, 0.5f, 60});
        m.blend = blend;
        rig.hold(60).osc1Phase = 0;
        expectMix(rig, 200, 1.0, [&] { return m.next(); });
    }
}

TEST(Oscillator, pitchesTrackKeysTuningAndWavesToTheUnit)
{
    struct Tuning {
        int key;
        float coarse;
        float fine;
        double tracking; // 2: no row
        int bend;
        int pitch;
    };
    for (const Tuning& t : {
             Tuning{60, 0.5f, 0.5f, 2.0, 0, 12288},
             {127, 1.0f, 0.5f, 2.0, 8000, 19967}, // clamped at both ends
             {0, 0.0f, 0.5f, 2.0, -8000, 0},
             {61, 0.5f, 1.0f, 2.0, 0, 12288 + 128 + 64},
             {73, 0.5f, 0.0f, 0.0, 0, 12288 - 64},      // no tracking: key 60
             {73, 0.5f, 0.5f, 0.5, 0, 12288 + 6 * 128}, // trunc(13 / 2)
             {47, 0.5f, 0.5f, 0.5, 0, 12288 - 6 * 128}, // toward zero
             {64, 0.5f, 0.5f, -1.0, 0, 12288 - 4 * 128},
         }) {
        for (std::size_t osc = 0; osc < 2; ++osc) {
            ToneRig rig;
            const int stride = static_cast<int>(osc) * 5;
            rig.set({{kOsc1Shape, 0.0f}, {kOsc2Shape, 0.0f}, {kOsc1Coarse + stride, t.coarse}});
            rig.set(kOsc1Fine + stride, t.fine);
            if (t.tracking < 2.0)
                rig.setRow(1, kConst, 53 + static_cast<int>(osc), t.tracking);
            rig.record().bendSmoothed = rig.record().bendRaw = t.bend;
            rig.record().bendUpRange = rig.record().bendDownRange = 24;
            VoiceSlot& slot = rig.hold(t.key);
            slot.osc1Phase = slot.osc2Phase = 0;
            rig.render(1, 1);
            const std::uint32_t moved = osc == 0 ? slot.osc1Phase : slot.osc2Phase;
            EXPECT_EQ(moved, stepOfPitch(t.pitch, kRate)) << t.key << ' ' << t.tracking;
        }
    }
    EXPECT_NEAR(stepOfPitch(pitchOfKey(69), kRate) * kRate / kPhaseTurn, 440.0, 1e-3);
}

TEST(Oscillator, oscillator3PlaysItsTablesAnOctaveBelowTheKey)
{
    const ConstantTables& tables = constantTables();
    const int key = 64;
    const std::int16_t* sources[] = {tables.saw[static_cast<std::size_t>(key + 36 - 12)].data(),
                                     tables.square.data(), tables.triangle.data()};
    // Wave 66 sounds three octaves lower; the sub oscillator does not.
    for (float wave : {0.0f, 66.0f / 128.0f})
        for (int shape = 0; shape < 3; ++shape) {
            SCOPED_TRACE(shape);
            ToneRig rig;
            setUp(rig, {1, 0.0f, 0.0f, 0.0f, key}, 1); // oscillator 2 is silent
            rig.set({{kOsc1Shape, shapeValue(3)}, {kOsc1Wave, wave}});
            rig.set({{kOsc3Shape, static_cast<float>(shape) / 2.0f}, {kOsc3Level, 0.5f}});
            std::uint32_t phase = rig.hold(key).osc3Phase = 99999999u;
            Model m;
            m.bits = 8;
            const std::uint32_t step = wave == 0.0f ? stepOfPitch(pitchOfKey(key), kRate) / 2
                                                    : stepOfPitch(pitchOfKey(key) - 1536, kRate);
            expectMix(rig, 300, 0.5, [&] {
                const std::int64_t value = m.read(sources[shape], phase >> 21, (phase >> 13) & 255);
                phase += step;
                return 0.5 * static_cast<double>(value);
            });
        }
}

TEST(Oscillator, mixAndRingModulationFollowTheirFormulaAndRampOverACall)
{
    for (const auto& [mix, ring] : {std::pair{0.25f, 0.0f}, {0.5f, 1.0f}, {0.75f, 0.4f}}) {
        ToneRig rig;
        rig.set({{kOsc1Shape, shapeValue(2)}, {kOsc2Shape, shapeValue(0)}});
        rig.set(kOsc2Coarse, 43.5f / 72.0f); // seven semitones up
        VoiceSlot& slot = rig.hold(60);
        rig.mix(64);
        rig.set({{kOscMix, mix}, {kRingMod, ring}});
        Model a = plainModel(2, 60);
        Model b = plainModel(0, 67, 1);
        a.phase = slot.osc1Phase;
        b.phase = slot.osc2Phase;
        int frame = 0;
        expectMix(rig, 192, 0.5, [&, mix = mix, ring = ring] {
            const double share = std::min(frame++ / 64.0, 1.0);
            const double m = share * mix;
            const double r = share * ring;
            const double o1 = a.next();
            const double o2 = b.next();
            return (1.0 - r) * (o2 * m + o1 * (1.0 - m)) + r * o1 * o2 / 32768.0;
        });
    }
}

// ---- Frequency modulation -------------------------------------------------------------------

// A phase at which the slowest saw reads exactly `value`.
std::uint32_t sawPhaseOf(int value)
{
    Model m;
    for (std::uint32_t p = 1u << 28; p < 0xF0000000u; p += 1u << 11)
        if (m.whole(p) == value)
            return p;
    ADD_FAILURE() << "no phase reads " << value;
    return 0;
}

TEST(OscillatorFm, incrementsRunBackwardsButNeverStandStill)
{
    // "Osc FM" at 1 is 4, so oscillator 1 bends by its 16-bit value / 1024.
    for (const int o1 : {1024, 512, 0, -512, -1024, -2048, -8192}) {
        for (const FmMode mode : {FmMode::feedback, FmMode::dual}) {
            ToneRig rig;
            rig.set({{kOsc1Coarse, 0.0f}, {kOsc2Coarse, 1.0f}, {kOscFm, 1.0f}});
            rig.set(kFmMode, static_cast<float>(mode));
            VoiceSlot& slot = rig.hold(0);
            slot.osc1Phase = sawPhaseOf(o1);
            slot.osc2Phase = slot.osc2DualPhase = 1000u;
            rig.render(1, 1);
            const std::int64_t plain = stepOfPitch(pitchOfKey(36), kRate);
            std::int64_t bent = plain * (1024 + o1) / 1024;
            const bool dual = mode == FmMode::dual;
            if (dual)
                EXPECT_EQ(slot.osc2Phase, static_cast<std::uint32_t>(1000 + plain)) << o1;
            else if (bent == 0)
                bent = 1;
            // What bends is truncated on its own: one unit of 2^32 either way.
            const std::uint32_t moved = (dual ? slot.osc2DualPhase : slot.osc2Phase) - 1000u;
            const auto off = static_cast<std::int32_t>(moved - static_cast<std::uint32_t>(bent));
            EXPECT_LE(std::abs(off), bent == 1 ? 0 : 1) << o1;
        }
    }
}

TEST(OscillatorFm, bothPhaseModesFollowTheModelWithFeedback)
{
    for (const FmMode mode : {FmMode::feedback, FmMode::dual}) {
        ToneRig rig;
        rig.set({{kOsc1Shape, shapeValue(2)}, {kOsc2Shape, shapeValue(2)}, {kOscMix, 1.0f}});
        rig.set({{kOscFm, 0.02f}, {kFmFeedback, 0.15f}, {kFmMode, static_cast<float>(mode)}});
        VoiceSlot& slot = rig.hold(57);
        slot.osc1Phase = slot.osc2Phase = slot.osc2DualPhase = 0;
        Model a = plainModel(2, 57);
        Model b = plainModel(2, 57, 1);
        const double fm1 = 4.0 * 0.02 / 4096.0;
        const double fm2 = (mode == FmMode::dual ? 4.0 : 1.0) * 0.15 / 32768.0;
        double phase = 0.0; // turns of 2^32
        expectMix(rig, 400, 4.0, [&] {
            const double o2 = b.value(static_cast<std::uint32_t>(static_cast<std::int64_t>(phase)));
            phase += std::trunc(b.step() * (1.0 + fm1 * a.next() + fm2 * o2));
            return o2;
        });
    }
}

TEST(OscillatorFm, filterModeMovesTheCutoffAndLeavesThePhasesAlone)
{
    ToneRig rig;
    rig.set({{kOsc1Shape, shapeValue(2)}, {kOsc2Shape, shapeValue(2)}});
    rig.set({{kOsc2Coarse, 43.5f / 72.0f}, {kFilterCutoff, 0.5f}, {kOscFm, 0.001f}});
    rig.set({{kFmFeedback, 0.3f}, {kFmMode, 2.0f}});
    VoiceSlot& slot = rig.hold(60);
    slot.osc1Phase = slot.osc2Phase = 0;
    Model a = plainModel(2, 60);
    Model b = plainModel(2, 67, 1);
    SvfModel filter;
    for (const float sample : rig.render(400).left) {
        const double o1 = a.next();
        const double moved = 0.004 / 4096.0 * o1 / 128.0 + 0.3 / 32768.0 * b.next() / 4.0;
        ASSERT_NEAR(sample / kVoiceGain, filter.low(o1 / 32768.0, moved + 0.5), 2e-3);
    }
    EXPECT_EQ(slot.osc2Phase, b.phase);
}

// ---- One-shot, noise, sync ------------------------------------------------------------------

TEST(Oscillator, oneShotPlaysOneCycleFromItsStartUnlessSynced)
{
    for (const bool sync : {false, true}) {
        ToneRig rig;
        rig.set({{kOscMix, 1.0f}, {kOscSync, sync ? 1.0f : 0.0f}});
        rig.setRow(1, kConst, 93, 1.0);
        rig.slot().osc2Phase = 77777777u;
        rig.hold(60);
        if (sync) {
            rig.render(2048);
            EXPECT_GT(peak(rig.render(512).left), 0.05);
            continue;
        }
        Model m = plainModel(0, 60, 1);
        bool finished = false;
        expectMix(rig, 400, 1.0, [&] {
            const std::uint32_t before = m.phase;
            const double value = finished ? 0.0 : m.next();
            finished = finished || m.phase < before;
            return value;
        });
        EXPECT_TRUE(finished);
    }
}

TEST(Oscillator, noiseTakesOneSeedPerFrameAndVoiceAndHasItsColour)
{
    for (float colour : {0.0f, 0.4f, 1.0f}) {
        SCOPED_TRACE(colour);
        ToneRig rig;
        setUp(rig, {1, 0.0f, 0.0f, 0.0f, 60}, 0); // a pulse of no width is silent
        rig.set({{kNoiseLevel, 0.5f}, {kNoiseColour, colour}});
        rig.hold(60);
        rig.hold(64, 1);
        rig.record().noiseSeed = 4242u;
        const double w = std::tan(kPi * 5.0 * std::pow(4000.0, colour) / kRate);
        std::uint32_t seed = 4242u;
        std::vector<double> expected(256);
        double previous[2] = {};
        double coloured[2] = {};
        for (std::size_t slice = 0; slice < 256; slice += 64)
            for (std::size_t v = 0; v < 2; ++v)
                for (std::size_t i = slice; i < slice + 64; ++i) {
                    seed = seed * 214013u + 2531011u;
                    const double n = 0.5 * static_cast<std::int16_t>(seed >> 16);
                    coloured[v] = (n - previous[v] - (w - 1.0) * coloured[v]) / (w + 1.0);
                    previous[v] = n;
                    expected[i] += coloured[v];
                }
        auto next = expected.begin();
        expectMix(rig, 256, 1.0, [&] { return *next++; });
        EXPECT_EQ(rig.record().noiseSeed, seed);
    }
}

TEST(OscillatorSync, phaseRestartsAtTheFractionOfTheFrameLeft)
{
    for (int shape : {0, 1, 2, 3}) {
        ToneRig rig;
        rig.set({{kOsc2Shape, shapeValue(shape)}, {kOsc2Coarse, 0.75f}, {kOscSync, 1.0f}});
        VoiceSlot& slot = rig.hold(80);
        std::uint32_t first = slot.osc1Phase = 5u;
        std::uint32_t second = slot.osc2Phase = 123u;
        const std::uint32_t step1 = stepOfPitch(pitchOfKey(80), kRate);
        const std::uint32_t step2 = stepOfPitch(pitchOfKey(98), kRate);
        for (int i = 0; i < 500; ++i) {
            rig.render(1, 1);
            const std::uint32_t before = first;
            first += step1;
            const double q = static_cast<double>(first) / static_cast<double>(step1);
            second = first < before ? static_cast<std::uint32_t>(static_cast<double>(step2) * q)
                                    : second + step2;
            ASSERT_EQ(slot.osc1Phase, first) << i;
            ASSERT_EQ(slot.osc2Phase, second) << "shape " << shape << ", frame " << i;
        }
    }
}

TEST(OscillatorSync, aliasesLieFarBelowANaiveSync)
{
    const int key = 84;
    const double hz = 440.0 * std::exp2((key - 69) / 12.0);
    const double fifth = std::exp2(7.0 / 12.0);
    const auto ramp = [](double p) { return 2.0 * (p - std::floor(p)) - 1.0; };
    for (int shape : {0, 1}) {
        ToneRig rig;
        setUp(rig, {shape, 0.0f, 0.0f, 0.3f, key}, 1);
        rig.set({{kOsc2Coarse, 43.5f / 72.0f}, {kOscSync, 1.0f}});
        rig.hold(key);
        rig.mix(512);
        const std::vector<double> sound = rig.mix(32768);
        const std::vector<float> synced(sound.begin(), sound.end());
        std::vector<float> naive;
        for (int i = 0; i < 32768; ++i) {
            const double first = hz / kRate * i;
            const double p = (first - std::floor(first)) * fifth;
            naive.push_back(static_cast<float>(ramp(p) - (shape == 1 ? ramp(p + 0.3) : 0.0)));
        }
        // Wanted partials agree, folded ones in the audible middle do not.
        const auto ratio = [&](double at) {
            return amplitudeAt(synced, at, kRate) / amplitudeAt(naive, at, kRate);
        };
        for (int k = 1; k <= 5; ++k)
            EXPECT_NEAR(db(ratio(k * hz)), 0.0, 0.8) << k;
        double power = 0.0;
        for (int k = 39; k <= 45; ++k)
            power += std::pow(ratio(std::abs(k * hz - kRate)), 2.0) / 7.0;
        EXPECT_LT(10.0 * std::log10(power), -25.0) << "shape " << shape;
    }
}

} // namespace
} // namespace tolm
