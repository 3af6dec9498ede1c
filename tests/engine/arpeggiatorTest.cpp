// What the pattern plays and when, against lists worked out by hand: with a tick of L frames, tick
// k after a restart at frame r falls on frame r + ceil(k L).

#include "tests/engine/rig.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

namespace tolm {
namespace {

struct Hit {
    int frame;
    bool on;
    int key;
    int velocity;
    int tag = -1;

    bool operator==(const Hit&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Hit& h)
{
    return out << "{" << h.frame << (h.on ? " on " : " off ") << h.key << " v" << h.velocity << " t"
               << h.tag << "}";
}
using Hits = std::vector<Hit>;

constexpr int kTieStep = 128;
constexpr double kSixteenth = kRate * 60.0 / 120.0 / 4.0 / 32.0; // frames per tick at 120 bpm

int tickFrame(int restart, double tickFrames, int tick)
{
    return restart + static_cast<int>(std::ceil(tick * tickFrames));
}
// Of sixteenths from frame 0.
int at(int tick)
{
    return tickFrame(0, kSixteenth, tick);
}

class Arp : public ::testing::Test {
protected:
    using Keys = std::vector<std::pair<int, int>>; // held keys and their velocities

    Arp()
    {
        rig.set(kArpOn, 1.0f);
        rig.set(kArpSync, 1.0f);
        rig.set(kArpRate, 0.51f); // int(20.01 * 0.51) = 10: 1/16
        rig.set(kArpLength, 0.5f);
        rig.set(kArpSwing, 0.5f);
        rig.set(kArpRange, 0.0f);
    }

    // A fresh start at a frame.
    void start(ArpMode mode, const std::vector<int>& notes, const std::vector<int>& velocities,
               const Keys& keys, int frame = 0)
    {
        rig.engine.resetVoices();
        rig.set(kArpMode, static_cast<float>(mode));
        rig.set(kArpStepCount, static_cast<float>(notes.size() - 1) / 31.0f + 0.001f);
        for (std::size_t i = 0; i < notes.size(); ++i) {
            const int step = static_cast<int>(i);
            rig.set(kArpNote1 + step, static_cast<float>(notes[i]) / 128.0f);
            const int velocity = i < velocities.size() ? velocities[i] : 64;
            rig.set(kArpVelocity1 + step, static_cast<float>(velocity) / 128.0f);
        }
        for (const auto& [key, velocity] : keys)
            hold(key, velocity);
        restart(frame);
    }
    void hold(int key, int velocity)
    {
        r.arp.held[static_cast<std::size_t>(key)] = static_cast<std::uint8_t>(velocity);
    }
    void restart(int frame)
    {
        r.arp.phase = 0.0;
        r.arp.tickCounter = 0;
        r.arp.restartOffset = frame;
    }
    // The pattern's notes of the next frames, counted from the first of them.
    Hits play(int frames, int block = 512)
    {
        Hits hits;
        for (int start = 0; start < frames; start += block) {
            const int n = std::min(block, frames - start);
            rig.queue.clear();
            rig.engine.startBlock(n);
            rig.engine.runArpeggiator(n);
            for (const QueuedEvent& e : rig.queue)
                hits.push_back({start + e.offset, e.status == kNoteOn, e.data1, e.data2, e.tag});
            rig.engine.endBlock();
        }
        return hits;
    }

    EngineRig rig;
    EngineRecord& r = rig.engine.record();
};

// A rest ends the sounding note but does not forget it: the next tick ends it once more.
TEST_F(Arp, firesOnTheGridInEveryBlockSize)
{
    for (const int block : {1, 7, 64, 511, 512, 4096, 8192}) {
        SCOPED_TRACE(block);
        start(ArpMode::simple, {1, 0, 13, kTieStep, 8}, {}, {{60, 100}});
        EXPECT_EQ(play(at(160), block), (Hits{{at(0), true, 60, 100},
                                              {at(32), false, 60, 64},
                                              {at(64), false, 60, 64},
                                              {at(64), true, 72, 100},
                                              {at(128), false, 72, 64},
                                              {at(128), true, 67, 100}}));
    }
    start(ArpMode::simple, {kTieStep, kTieStep}, {}, {{60, 100}});
    EXPECT_TRUE(play(44100).empty()); // nothing but ties
}

TEST_F(Arp, stepLengthFollowsTempoAndRate)
{
    struct Row {
        bool sync;
        float rate;
        double tempo;
        double tickFrames;
    };
    // 128 units of a beat in 4096 ticks a minute and tempo; free 0.1 * 1000^rate steps a second.
    for (const Row& row :
         {Row{true, 0.0f, 120.0, kRate * 0.5 * 3.0 / 32.0},     // 1/2*
          Row{true, 0.21f, 97.0, kRate * 60.0 / 97.0 / 32.0},   // index 4: 1/4
          Row{true, 0.41f, 140.0, kRate * 20.0 / 140.0 / 32.0}, // index 8: 1/8T
          Row{true, 0.9999f, 60.0, kRate / 48.0 / 32.0},        // 20.008 is index 20: 1/128T
          Row{true, 0.999f, 60.0, kRate / 32.0 / 32.0},         // index 19: 1/128
          Row{false, 0.0f, 120.0, kRate / 3.2}, Row{false, 1.0f, 120.0, kRate / 3200.0},
          Row{false, 0.9f, 120.0, kRate / (3.2 * std::pow(1000.0, double(0.9f)))}}) {
        SCOPED_TRACE(row.rate);
        rig.set(kArpSync, row.sync ? 1.0f : 0.0f);
        rig.set(kArpRate, row.rate);
        rig.tempo = row.tempo;
        start(ArpMode::simple, {1, 0}, {}, {{60, 100}}, 3);
        const int off = tickFrame(3, row.tickFrames, 32);
        EXPECT_EQ(play(off + 1, 8192), (Hits{{3, true, 60, 100}, {off, false, 60, 64}}));
    }
}

TEST_F(Arp, lengthMovesRestsAndSwingMovesThirdSteps)
{
    struct Row {
        float length, swing;
        int restTick;  // of the rest in step 1
        int swungTick; // of the note in step 2
    };
    for (const Row& row : {Row{0.5f, 0.5f, 32, 64}, Row{0.0f, 0.0f, 1, 40}, Row{1.0f, 1.0f, 63, 88},
                           Row{0.25f, 0.75f, 16, 76}}) {
        SCOPED_TRACE(row.length);
        rig.set(kArpLength, row.length);
        rig.set(kArpSwing, row.swing);
        start(ArpMode::simple, {1, 0, 5, kTieStep}, {}, {{60, 100}});
        EXPECT_EQ(play(at(120)), (Hits{{at(0), true, 60, 100},
                                       {at(row.restTick), false, 60, 64},
                                       {at(row.swungTick), false, 60, 64},
                                       {at(row.swungTick), true, 64, 100}}));
    }
}

TEST_F(Arp, rangeBlendsTheKeysVelocityTowardTheSteps)
{
    // The second note's velocity step is 0, so the first one's value stays.
    for (const auto& [range, velocity] : {std::pair{0.0f, 40}, {1.0f, 127}, {0.5f, 83}}) {
        rig.set(kArpRange, range);
        start(ArpMode::simple, {1, 0, 1, 0}, {128, 0, 0, 0}, {{60, 40}});
        const Hits hits = play(at(65));
        ASSERT_EQ(hits.size(), 4u);
        EXPECT_EQ(hits[0].velocity, velocity);
        EXPECT_EQ(hits[3].velocity, velocity);
    }
}

TEST_F(Arp, keysAtTheEdgesOfTheRange)
{
    for (const ArpMode mode :
         {ArpMode::simple, ArpMode::oneShot, ArpMode::dynamic, ArpMode::duophonic}) {
        SCOPED_TRACE(static_cast<int>(mode));
        const int velocity = mode == ArpMode::duophonic ? kTieStep : 0;
        const auto heard = [&](const Keys& keys) {
            start(mode, {24}, {velocity}, keys);
            return play(64);
        };
        EXPECT_TRUE(heard({{0, 100}, {60, 100}}).empty());         // key 0 hides the keys above it
        EXPECT_TRUE(heard({{127, 100}}).empty());                  // never seen
        EXPECT_EQ(heard({{126, 90}}), (Hits{{0, true, 127, 90}})); // 149 is clamped
    }
}

TEST_F(Arp, oneShotEndsAfterOnePass)
{
    start(ArpMode::oneShot, {1, 0}, {}, {{60, 100}});
    EXPECT_EQ(play(10 * at(64)).size(), 2u);
    restart(5);
    EXPECT_EQ(play(10 * at(64)).size(), 3u); // the note of the first pass ends once more
}

TEST_F(Arp, chordRetriggersEveryHeldKeyFromTheTop)
{
    start(ArpMode::chord, {1, 0}, {}, {{0, 10}, {60, 40}, {127, 73}});
    EXPECT_EQ(play(at(32) + 1), (Hits{{0, true, 127, 73},
                                      {0, true, 60, 40},
                                      {0, true, 0, 10},
                                      {at(32), false, 127, 73},
                                      {at(32), false, 60, 40},
                                      {at(32), false, 0, 10}}));
}

TEST_F(Arp, dynamicStepsPickFurtherKeys)
{
    // d = velocity / 16: base, second, third, more than are held; a note an octave up.
    start(ArpMode::dynamic, {1, 1, 14, 1, 0, 0}, {15, 16, 32, 48, 16, 0},
          {{50, 90}, {57, 20}, {62, 30}});
    EXPECT_EQ(play(at(192)), (Hits{{at(0), true, 50, 90},
                                   {at(32), false, 50, 64},
                                   {at(32), true, 57, 90},
                                   {at(64), false, 57, 64},
                                   {at(64), true, 74, 90}, // third key, one octave up
                                   {at(96), false, 74, 64},
                                   {at(96), true, 50, 90},
                                   {at(128), false, 50, 64},
                                   {at(160), false, 50, 64}})); // the note is still remembered
}

TEST_F(Arp, duophonicPlaysTwoRows)
{
    start(ArpMode::duophonic, {1, kTieStep, 0, kTieStep}, {8, 5, kTieStep, 0}, {{60, 77}});
    EXPECT_EQ(play(at(128)), (Hits{{at(0), true, 60, 77},
                                   {at(0), true, 67, 77},
                                   {at(32), false, 67, 64},
                                   {at(32), true, 64, 77},
                                   {at(64), false, 60, 64},
                                   {at(96), false, 64, 64}}));
    EXPECT_EQ(r.arp.velocityOut, 0.5f);
}

TEST_F(Arp, voiceModeWalksUpOnTheOddVoices)
{
    start(ArpMode::voice, {1, 1, 13, 0}, {}, {{60, 10}, {64, 20}});
    EXPECT_EQ(play(at(128)), (Hits{{at(0), true, 60, 10, 0xAA},
                                   {at(32), false, 60, 64, 0xAA},
                                   {at(32), true, 64, 20, 0xAA},
                                   {at(64), false, 64, 64, 0xAA},
                                   {at(64), true, 72, 10, 0xAA},
                                   {at(96), false, 72, 64, 0xAA}}));
    // The walk starts again with the pass; the note that ended is named once more.
    EXPECT_EQ(play(40), (Hits{{0, false, 72, 64, 0xAA}, {0, true, 60, 10, 0xAA}}));
}

TEST_F(Arp, modulationModeOnlyMovesItsOutputs)
{
    start(ArpMode::modulation, {32, 0, kTieStep, 96}, {16, 0, 100, 128}, {{60, 100}}, 10);
    const int frames = 8192;
    EXPECT_TRUE(play(frames, frames).empty());
    const int second = tickFrame(10, kSixteenth, 32);
    EXPECT_EQ(r.arpVelocityBuffer[9], 0.5f);
    for (int i : {10, second - 1, second, frames - 1}) {
        EXPECT_EQ(r.arpNoteBuffer[static_cast<std::size_t>(i)], 0.25f); // a rest keeps the note
        EXPECT_EQ(r.arpVelocityBuffer[static_cast<std::size_t>(i)], 0.125f);
    }
    const int fourth = tickFrame(10, kSixteenth, 96) - 2 * frames;
    EXPECT_TRUE(play(frames, frames).empty());
    EXPECT_TRUE(play(fourth + 1, fourth + 1).empty());
    EXPECT_EQ(r.arpNoteBuffer[static_cast<std::size_t>(fourth - 1)], 0.25f);
    EXPECT_EQ(r.arpNoteBuffer[static_cast<std::size_t>(fourth)], 0.75f);
    EXPECT_EQ(r.arpVelocityBuffer[static_cast<std::size_t>(fourth)], 1.0f);
}

TEST_F(Arp, ticksRunOnWithoutKeysButStartNothing)
{
    start(ArpMode::simple, {1}, {}, {{60, 100}});
    EXPECT_EQ(play(100).size(), 1u);
    hold(60, 0);
    EXPECT_EQ(play(at(32)), (Hits{{at(32) - 100, false, 60, 64}}));
    EXPECT_TRUE(play(2 * at(32)).empty());
}

TEST_F(Arp, switchingOffEndsItsNotesButNotTheKeysOfVoiceMode)
{
    rig.set(kVoices, 0.15f); // two stacked voices
    start(ArpMode::voice, {1}, {}, {{60, 100}});
    rig.on(60, 100, kEvenStackedVoices);
    rig.render(64, 64);
    EXPECT_EQ(rig.sounding(), 2);
    rig.set(kArpOn, 0.0f);
    EXPECT_EQ(r.voiceReleased[0], 0u);
    EXPECT_EQ(r.voiceReleased[1], 1u);
    EXPECT_EQ(r.arp.held[60], 0);
    rig.off(60);
    EXPECT_EQ(r.voiceReleased[0], 1u);
}

TEST_F(Arp, enteringVoiceModeEndsThePatternsWholeStacks)
{
    rig.set(kVoices, 0.15f);
    start(ArpMode::simple, {8}, {}, {{60, 100}});
    rig.render(64, 64);
    EXPECT_EQ(rig.sounding(), 2);
    rig.set(kArpMode, 1.0f);
    EXPECT_EQ(r.voiceReleased[0] + r.voiceReleased[1], 2u);
    EXPECT_EQ(r.arp.soundingNote, -1);
}

} // namespace
} // namespace tolm
