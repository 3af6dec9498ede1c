#include "fx/FxDelay.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace tolm {

namespace {

constexpr double kRate = 44100.0;
constexpr float kFeedback = 0.6f;
constexpr int kLeftNote = 13;  // 1/16: a quarter of a beat
constexpr int kRightNote = 16; // 1/32

float note(int index)
{
    return (static_cast<float>(index) + 0.5f) / 20.001f;
}

float typeValue(int mode)
{
    return mode == 8 ? 1.0f : (static_cast<float>(mode) + 0.1f) / 8.0f;
}

// Only repeats are heard.
struct Rig {
    FxDelay delay;

    explicit Rig(int mode, float feedback = 0.0f, float colour = 0.5f, int left = kLeftNote,
                 int right = kRightNote)
    {
        delay.setParameter(FxDelay::type, typeValue(mode));
        delay.setParameter(FxDelay::feedback1, feedback);
        delay.setParameter(FxDelay::steps1, note(left));
        delay.setParameter(FxDelay::steps2, note(right));
        delay.setParameter(FxDelay::colour, colour);
        delay.setParameter(FxDelay::dryWet, 1.0f);
    }
    Stereo play(Stereo s, float tempo = 120.0f, const DelayModulation& modulation = {})
    {
        s.inBlocks([&](int n, float* const* ch) { delay.process(n, ch, tempo, modulation); });
        return s;
    }
};

std::size_t beats(double count, float tempo = 120.0f)
{
    return static_cast<std::size_t>(count * kRate * 60.0 / tempo);
}

struct Repeat {
    int lefts, rights;                // at lefts * left time + rights * right time
    std::optional<float> left, right; // outputs
};

// Compares the first repeats of an impulse.
void expectRepeats(int mode, float inLeft, float inRight, const std::vector<Repeat>& repeats,
                   const std::vector<float>& tempi = {60.0f, 120.0f, 173.3f})
{
    for (const float tempo : tempi) {
        const std::size_t l = beats(0.25, tempo), r = beats(0.125, tempo);
        const Stereo s = Rig(mode, kFeedback).play(Stereo::impulse(4 * l, inLeft, inRight), tempo);
        for (const Repeat& e : repeats) {
            SCOPED_TRACE(testing::Message()
                         << mode << " at " << tempo << ": " << e.lefts << "L+" << e.rights << "R");
            const std::size_t at =
                static_cast<std::size_t>(e.lefts) * l + static_cast<std::size_t>(e.rights) * r;
            EXPECT_NEAR(s.left[at], e.left.value_or(s.left[at]), 1e-4f);
            EXPECT_NEAR(s.right[at], e.right.value_or(s.right[at]), 1e-4f);
        }
    }
}

// Feedback of the shorter right side, so that both lose as much per second.
const float kRightFeedback = std::sqrt(kFeedback);

} // namespace

TEST(Delay, separateSidesRepeatAtTheirTimesAndDecayAlike)
{
    expectRepeats(0, 1.0f, 0.5f,
                  {{0, 0, 0.0f, 0.0f},
                   {1, 0, 1.0f, {}},
                   {2, 0, -kFeedback, {}},
                   {3, 0, kFeedback * kFeedback, {}},
                   {0, 1, 0.0f, 0.5f},
                   {0, 3, {}, 0.5f * kRightFeedback * kRightFeedback}});
}

TEST(Delay, pingPongModesCrossOverByTheirShare)
{
    constexpr float kOwnShares[] = {0.0f, 0.25f, 0.5f, 0.75f, 0.9f};
    const float second = -0.5f * kFeedback;  // from the right ring
    const float third = -kFeedback * second; // into the left ring again
    for (int mode = 1; mode < 6; ++mode) {
        const float own = kOwnShares[mode - 1];
        expectRepeats(mode, 1.0f, 0.0f,
                      {{0, 1, 0.0f, 0.0f},
                       {1, 0, own * 0.5f, 0.5f},
                       {1, 1, second, own * second},
                       {2, 1, own * third, third}});
    }
}

TEST(Delay, multiTapReadsOneRingTwice)
{
    const float back = 0.5f * kRightFeedback;
    // At 120 the left time would be twice the right one, and the repeats would fall together.
    expectRepeats(6, 0.0f, 1.0f,
                  {{0, 1, 0.025f, 0.5f},
                   {1, 0, 0.475f, 0.0f},
                   {0, 2, 0.025f * back, 0.5f * back},
                   {1, 1, (0.95f + 0.05f) * 0.5f * back, 0.5f * back}},
                  {60.0f, 173.3f});
}

TEST(Delay, diffuseSmearsRepeatsWithoutLosingEnergy)
{
    for (const int mode : {7, 8}) {
        const std::size_t l = beats(0.25);
        const Stereo s = Rig(mode).play(Stereo::impulse(4 * l, 1.0f, 1.0f));
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
    constexpr double kBeats[] = {6.0, 4.0, 8.0 / 3}; // then halves
    for (int index = 0; index < 21; ++index) {
        const double count = kBeats[index % 3] / std::exp2(index / 3);
        const auto expected = static_cast<std::size_t>(count * kRate * 0.5 + 1e-6);
        const Stereo s = Rig(0, 0.0f, 0.5f, index).play(Stereo::impulse(expected + 10, 1.0f, 0.0f));
        EXPECT_NEAR(s.left[expected], 1.0f, 1e-5f) << index;
    }
    // 6 beats at 20 bpm are 793800 frames: the left time wraps to 793800 - 3 * 262144, the right
    // one is held just below the ring.
    const Stereo s =
        Rig(0, 0.0f, 0.5f, 0, 0).play(Stereo::impulse(262144 + 100, 1.0f, 1.0f), 20.0f);
    EXPECT_NEAR(s.left[793800 - 3 * 262144], 1.0f, 1e-5f);
    EXPECT_NEAR(s.right[262142], 1.0f, 1e-5f);
}

TEST(Delay, hopelessTempoCountsAs120)
{
    for (const float tempo : {0.0f, -5.0f, 1e9f, NAN, INFINITY}) {
        const Stereo s = Rig(0).play(Stereo::impulse(beats(0.25) + 10, 1.0f, 0.0f), tempo);
        EXPECT_NEAR(s.left[beats(0.25)], 1.0f, 1e-5f) << tempo;
    }
}

TEST(Delay, lfoMovesBothTapsAlikeAndInterpolates)
{
    std::array<float, kTableSize> table{};
    table[0] = 1.0f; // half way between the last entry and the first: 0.5
    DelayModulation modulation{0, 0xFFFFFFFFu - (1u << 20) + 1, 0.2f, table.data()};
    const Stereo impulse = Stereo::impulse(12000, 1.0f, 1.0f);
    const Stereo swept = Rig(0, 0.0f, 0.5f, kLeftNote, kLeftNote).play(impulse, 120.0f, modulation);
    // 5512 * (1 + 0.5 * 0.5 * 0.2) = 5787.6
    for (const auto* channel : {&swept.left, &swept.right}) {
        EXPECT_NEAR((*channel)[5787], 0.4f, 2e-3f);
        EXPECT_NEAR((*channel)[5788], 0.6f, 2e-3f);
    }
    modulation.phase = 5u << 21; // an entry of 0: the plain time
    const Stereo plain = Rig(0).play(impulse, 120.0f, modulation);
    EXPECT_NEAR(plain.left[5512], 1.0f, 1e-6f);
    EXPECT_NEAR(plain.right[2756], 1.0f, 1e-6f);
}

TEST(Delay, colourDarkensBelowAndThinsOutAboveTheMiddle)
{
    const auto heard = [](float colour) {
        return Rig(0, 0.0f, colour).play(Stereo::impulse(12000, 1.0f, 0.0f)).left;
    };
    // Low-passes up to 20 kHz, then high-passes from 20 Hz.
    for (const auto& [colour, hz] : {std::pair{0.0f, 200.0 * std::pow(100.0, 1.0 - 64.0 / 64.01)},
                                     {63.5f / 128.0f, 200.0 * std::pow(100.0, 1.0 - 1.0 / 64.01)},
                                     {96.0f / 128.0f, 20.0 * std::pow(750.0, 32.0 / 64.01)},
                                     {1.0f, 20.0 * std::pow(750.0, 64.0 / 64.01)}})
        EXPECT_NEAR(decibels(magnitudeAt(heard(colour), hz, kRate)), -3.01, 0.03) << colour;
    const std::vector<float> open = heard(0.5f);
    EXPECT_EQ(energy(open, 5512, 5513), energy(open, 0, open.size()));
}

TEST(Delay, fullFeedbackOnItsResonanceStaysBounded)
{
    Stereo s(400000);
    s.fill(8.0f);
    s = Rig(6, 1.0f, 0.5f, 20, 20).play(s, 1000.0f); // feedback is added, so that it piles up
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
    const std::vector<float> table = Stereo::sine(2048, 1.0, 2048.0).left;
    for (const Row& row :
         {Row{3.0f, 1000.0f, 20, 19}, Row{-0.4f, 120.0f, kLeftNote, kRightNote},
          Row{0.0f, 1000.0f, 20, 20}, Row{0.0f, 40.0f, 0, 20}, Row{2.5f, 1.0f, 0, 1}})
        for (int mode = 0; mode < FxDelay::kModeCount; ++mode)
            for (const float colour : {0.3f, 0.5f}) {
                SCOPED_TRACE(testing::Message() << mode << " depth " << row.depth);
                const auto played = [&](int blockFrames) {
                    Rig rig(mode, 0.9f, colour, row.left, row.right);
                    rig.delay.setSampleRate(8000.0);
                    Stereo s = Stereo::noise(3000, 0.5f);
                    DelayModulation modulation{kIncrement, 0, row.depth, table.data()};
                    for (int done = 0; done < s.frames(); done += blockFrames) {
                        const int count = std::min(blockFrames, s.frames() - done);
                        float* channels[] = {s.left.data() + done, s.right.data() + done};
                        rig.delay.process(count, channels, row.tempo, modulation);
                        modulation.phase += kIncrement * static_cast<std::uint32_t>(count);
                    }
                    return s;
                };
                const Stereo frameByFrame = played(1);
                for (const int blockFrames : {37, 64, 1000})
                    EXPECT_EQ(distance(played(blockFrames), frameByFrame), 0.0f) << blockFrames;
            }
}

TEST(Delay, resetLeavesNoTrace)
{
    for (int mode = 0; mode < FxDelay::kModeCount; ++mode) {
        Rig rig(mode, 0.9f, 0.3f);
        rig.play(Stereo::noise(9000, 1.0f));
        rig.delay.reset();
        EXPECT_EQ(rig.play(Stereo(20000)).peak(), 0.0f) << mode;
    }
}

} // namespace tolm
