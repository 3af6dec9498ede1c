#include "fx/FxDelay.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

#include <array>

namespace tolm {

namespace {

constexpr double kRate = 44100.0;
constexpr float kFeedback = 0.6f;
constexpr int kLeftNote = 13;  // 1/16: a quarter of a beat
constexpr int kRightNote = 16; // 1/32
constexpr float kTempi[] = {60.0f, 120.0f, 173.3f};

float note(int index)
{
    return (static_cast<float>(index) + 0.5f) / 20.001f;
}

float typeValue(int mode)
{
    return mode == 8 ? 1.0f : (static_cast<float>(mode) + 0.1f) / 8.0f;
}

// Only repeats are heard.
void apply(FxDelay& d, int mode, float feedback, float colour = 0.5f)
{
    d.setParameter(FxDelay::type, typeValue(mode));
    d.setParameter(FxDelay::feedback1, feedback);
    d.setParameter(FxDelay::steps1, note(kLeftNote));
    d.setParameter(FxDelay::steps2, note(kRightNote));
    d.setParameter(FxDelay::colour, colour);
    d.setParameter(FxDelay::dryWet, 1.0f);
}

void run(FxDelay& d, Stereo& s, float tempo, const DelayModulation& modulation = {})
{
    s.inBlocks([&](int n, float* const* ch) { d.process(n, ch, tempo, modulation); });
}

std::size_t beats(double count, float tempo)
{
    return static_cast<std::size_t>(count * kRate * 60.0 / static_cast<double>(tempo));
}

struct Repeat {
    int lefts, rights; // at lefts * left time + rights * right time
    float left, right; // outputs
};

// Compares the first repeats of an impulse; `fbR` is the right feedback of unequal times.
void expectRepeats(const Stereo& s, std::size_t l, std::size_t r,
                   const std::vector<Repeat>& repeats)
{
    for (const Repeat& e : repeats) {
        const std::size_t at =
            static_cast<std::size_t>(e.lefts) * l + static_cast<std::size_t>(e.rights) * r;
        SCOPED_TRACE(testing::Message() << e.lefts << "L+" << e.rights << "R");
        EXPECT_NEAR(s.left[at], e.left, 1e-5f);
        EXPECT_NEAR(s.right[at], e.right, 1e-5f);
    }
}

} // namespace

TEST(Delay, separateSidesRepeatAtTheirTimesAndDecayAlike)
{
    for (const float tempo : kTempi) {
        SCOPED_TRACE(tempo);
        const std::size_t l = beats(0.25, tempo), r = beats(0.125, tempo);
        FxDelay d;
        apply(d, 0, kFeedback);
        Stereo s = Stereo::impulse(4 * l, 1.0f, 0.5f);
        run(d, s, tempo);
        const float fbR = std::pow(kFeedback, static_cast<float>(r) / static_cast<float>(l));
        expectRepeats(s, l, r,
                      {{0, 0, 0.0f, 0.0f},
                       {1, 0, 1.0f, s.right[l]},
                       {2, 0, -kFeedback, s.right[2 * l]},
                       {3, 0, kFeedback * kFeedback, s.right[3 * l]}});
        expectRepeats(s, l, r, {{0, 1, 0.0f, 0.5f}, {0, 3, s.left[3 * r], 0.5f * fbR * fbR}});
        EXPECT_NEAR(energy(s.left, 0, s.left.size()), 1.0 + 0.36 + 0.1296, 1e-4); // nothing else
    }
}

TEST(Delay, pingPongModesCrossOverByTheirShare)
{
    constexpr float kOwnShares[] = {0.0f, 0.25f, 0.5f, 0.75f, 0.9f};
    for (int mode = 1; mode < 6; ++mode) {
        for (const float tempo : kTempi) {
            SCOPED_TRACE(testing::Message() << mode << " " << tempo);
            const std::size_t l = beats(0.25, tempo), r = beats(0.125, tempo);
            FxDelay d;
            apply(d, mode, kFeedback);
            Stereo s = Stereo::impulse(3 * l, 1.0f, 0.0f);
            run(d, s, tempo);
            const float own = kOwnShares[mode - 1];
            const float second = -0.5f * kFeedback;  // from the right ring
            const float third = -kFeedback * second; // into the left ring again
            expectRepeats(s, l, r,
                          {{1, 0, own * 0.5f, 0.5f},
                           {1, 1, second, own * second},
                           {2, 1, own * third, third}});
        }
    }
}

TEST(Delay, multiTapReadsOneRingTwice)
{
    for (const float tempo : kTempi) {
        SCOPED_TRACE(tempo);
        const std::size_t l = beats(0.25, tempo), r = beats(0.125, tempo);
        FxDelay d;
        apply(d, 6, kFeedback);
        Stereo s = Stereo::impulse(3 * l, 0.0f, 1.0f);
        run(d, s, tempo);
        const float back =
            0.5f * std::pow(kFeedback, static_cast<float>(r) / static_cast<float>(l));
        expectRepeats(s, l, r, {{0, 1, 0.025f, 0.5f}});
        if (l == 2 * r) // the repeats would fall together
            continue;
        expectRepeats(s, l, r,
                      {{1, 0, 0.475f, 0.0f},
                       {0, 2, 0.025f * back, 0.5f * back},
                       {1, 1, (0.95f + 0.05f) * 0.5f * back, 0.5f * back}});
    }
}

TEST(Delay, diffuseSmearsRepeatsWithoutLosingEnergy)
{
    for (const int mode : {7, 8}) {
        FxDelay d;
        apply(d, mode, 0.0f);
        const std::size_t l = beats(0.25, 120.0f);
        Stereo s = Stereo::impulse(4 * l, 1.0f, 1.0f);
        run(d, s, 120.0f);
        // Two all-passes of 100 and 292 frames, -0.2 at once and -0.96 one length later.
        EXPECT_NEAR(s.left[l], 0.04f, 1e-5f);
        EXPECT_NEAR(s.left[l + 100], 0.192f, 1e-5f);
        EXPECT_NEAR(s.left[l + 292], 0.192f, 1e-5f);
        EXPECT_NEAR(s.left[l + 392], 0.9216f, 1e-5f);
        EXPECT_NEAR(energy(s.left, 0, s.left.size()), 1.0, 1e-4);
        EXPECT_NEAR(energy(s.right, 0, s.right.size()), 1.0, 1e-4);
    }
}

TEST(Delay, everyNoteValueAndTheEndsOfTheRing)
{
    constexpr double kBeats[] = {6.0, 4.0, 8.0 / 3, 3.0, 2.0, 4.0 / 3, 1.5}; // then halves
    for (int index = 0; index < 21; ++index) {
        FxDelay d;
        apply(d, 0, 0.0f);
        d.setParameter(FxDelay::steps1, index == 20 ? 1.0f : note(index));
        const double count = kBeats[index % 3] / std::exp2(index / 3);
        const auto expected = static_cast<std::size_t>(count * kRate * 0.5 + 1e-6);
        Stereo s = Stereo::impulse(expected + 10, 1.0f, 0.0f);
        run(d, s, 120.0f);
        EXPECT_NEAR(s.left[expected], 1.0f, 1e-5f) << index;
    }
    // 6 beats at 20 bpm are 793800 frames: the left time wraps to 793800 - 3 * 262144, the right
    // one is held just below the ring.
    FxDelay d;
    apply(d, 0, 0.0f);
    d.setParameter(FxDelay::steps1, 0.0f);
    d.setParameter(FxDelay::steps2, 0.0f);
    Stereo s = Stereo::impulse(262144 + 100, 1.0f, 1.0f);
    run(d, s, 20.0f);
    EXPECT_NEAR(s.left[793800 - 3 * 262144], 1.0f, 1e-5f);
    EXPECT_NEAR(s.right[262142], 1.0f, 1e-5f);
}

TEST(Delay, hopelessTempoCountsAs120)
{
    for (const float tempo : {0.0f, -5.0f, 1e9f, NAN, INFINITY}) {
        FxDelay d;
        apply(d, 0, 0.0f);
        Stereo s = Stereo::impulse(beats(0.25, 120.0f) + 10, 1.0f, 0.0f);
        run(d, s, tempo);
        EXPECT_NEAR(s.left[beats(0.25, 120.0f)], 1.0f, 1e-5f) << tempo;
    }
}

TEST(Delay, lfoMovesBothTapsAlikeAndInterpolates)
{
    std::array<float, kTableSize> table;
    table.fill(0.0f);
    table[0] = 1.0f; // half way between the last entry and the first: 0.5
    DelayModulation modulation{0, 0xFFFFFFFFu - (1u << 20) + 1, 0.2f, table.data()};
    FxDelay d;
    apply(d, 0, 0.0f);
    d.setParameter(FxDelay::steps2, note(kLeftNote));
    Stereo s = Stereo::impulse(12000, 1.0f, 1.0f);
    run(d, s, 120.0f, modulation);
    // 5512 * (1 + 0.5 * 0.5 * 0.2) = 5787.6
    for (const auto* channel : {&s.left, &s.right}) {
        EXPECT_NEAR((*channel)[5787], 0.4f, 2e-3f);
        EXPECT_NEAR((*channel)[5788], 0.6f, 2e-3f);
    }
    modulation.phase = 5u << 21; // an entry of 0: the plain time
    FxDelay plain;
    apply(plain, 0, 0.0f);
    s = Stereo::impulse(12000, 1.0f, 1.0f);
    run(plain, s, 120.0f, modulation);
    EXPECT_NEAR(s.left[5512], 1.0f, 1e-6f);
    EXPECT_NEAR(s.right[2756], 1.0f, 1e-6f);
}

TEST(Delay, colourDarkensBelowAndThinsOutAboveTheMiddle)
{
    struct Row {
        float value;
        double cornerHz; // 0: passes
    };
    const Row rows[] = {{0.0f, 200.0 * std::pow(100.0, -64.0 / 64.01 + 1.0)},
                        {63.5f / 128.0f, 200.0 * std::pow(100.0, -1.0 / 64.01 + 1.0)},
                        {0.5f, 0.0},
                        {96.0f / 128.0f, 20.0 * std::pow(750.0, 32.0 / 64.01)},
                        {1.0f, 20.0 * std::pow(750.0, 64.0 / 64.01)}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.value);
        FxDelay d;
        apply(d, 0, 0.0f, row.value);
        Stereo s = Stereo::impulse(12000, 1.0f, 0.0f);
        run(d, s, 120.0f);
        if (row.cornerHz == 0.0)
            EXPECT_EQ(energy(s.left, 5512, 5513), energy(s.left, 0, s.left.size()));
        else
            EXPECT_NEAR(decibels(magnitudeAt(s.left, row.cornerHz, kRate)), -3.01, 0.03);
    }
}

TEST(Delay, fullFeedbackOnItsResonanceStaysBounded)
{
    FxDelay d;
    apply(d, 6, 1.0f); // feedback is added: a constant input piles up
    d.setParameter(FxDelay::steps1, 1.0f);
    d.setParameter(FxDelay::steps2, 1.0f);
    Stereo s(400000);
    std::fill(s.left.begin(), s.left.end(), 8.0f);
    std::fill(s.right.begin(), s.right.end(), 8.0f);
    run(d, s, 1000.0f);
    EXPECT_LE(s.peak(), 256.0f);
    EXPECT_GT(s.peak(), 200.0f);
}

// A deep sweep brings the taps across the write position and around the ring; a still time may lie
// near it or at the ring's end.
TEST(Delay, blocksOfAnySizeSoundLikeFrameByFrame)
{
    struct Row {
        float depth, tempo;
        int left, right;
    };
    constexpr std::uint32_t kIncrement = 2u << 21;
    std::array<float, 2048> table;
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<float>(std::sin(2.0 * kPi * static_cast<double>(i) / 2048.0));
    for (const Row& row :
         {Row{3.0f, 1000.0f, 20, 19}, Row{-0.4f, 120.0f, kLeftNote, kRightNote},
          Row{0.0f, 1000.0f, 20, 20}, Row{0.0f, 40.0f, 0, 20}, Row{2.5f, 1.0f, 0, 1}})
        for (int mode = 0; mode < FxDelay::kModeCount; ++mode)
            for (const float colour : {0.3f, 0.5f}) {
                SCOPED_TRACE(testing::Message() << mode << " depth " << row.depth);
                const auto played = [&](int blockFrames) {
                    FxDelay delay;
                    delay.setSampleRate(8000.0);
                    apply(delay, mode, 0.9f, colour);
                    delay.setParameter(FxDelay::steps1, note(row.left));
                    delay.setParameter(FxDelay::steps2, note(row.right));
                    Stereo s = Stereo::noise(3000, 0.5f);
                    DelayModulation modulation{kIncrement, 0, row.depth, table.data()};
                    for (int done = 0; done < s.frames(); done += blockFrames) {
                        const int count = std::min(blockFrames, s.frames() - done);
                        float* channels[] = {s.left.data() + done, s.right.data() + done};
                        delay.process(count, channels, row.tempo, modulation);
                        modulation.phase += kIncrement * static_cast<std::uint32_t>(count);
                    }
                    return s;
                };
                const Stereo frameByFrame = played(1);
                for (const int blockFrames : {37, 64, 1000}) {
                    const Stereo blocks = played(blockFrames);
                    EXPECT_EQ(distance(blocks.left, frameByFrame.left), 0.0f) << blockFrames;
                    EXPECT_EQ(distance(blocks.right, frameByFrame.right), 0.0f) << blockFrames;
                }
            }
}

TEST(Delay, resetLeavesNoTrace)
{
    for (int mode = 0; mode < FxDelay::kModeCount; ++mode) {
        FxDelay d;
        apply(d, mode, 0.9f, 0.3f);
        Stereo s = Stereo::noise(9000, 1.0f);
        run(d, s, 120.0f);
        d.reset();
        Stereo silence(20000);
        run(d, silence, 120.0f);
        EXPECT_EQ(silence.peak(), 0.0f) << mode;
    }
}

} // namespace tolm
