// What the pattern plays and when, against lists worked out by hand: with a tick of L frames, tick
// k after a restart at frame r falls on frame r + ceil(k L).
//
// Lists read "0+60v100 32-60": key 60 starts at tick 0 with velocity 100 and ends at tick 32 with
// velocity 64, unless another one is named.

#include "tests/engine/rig.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace tolm {
namespace {

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
        rig.set({{kArpOn, 1.0f}, {kArpSync, 1.0f}});
        rig.set(kArpRate, 0.51f); // int(20.01 * 0.51) = 10: 1/16
        rig.set({{kArpLength, 0.5f}, {kArpSwing, 0.5f}, {kArpRange, 0.0f}});
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
    // The list of the next frames, whose first one is a tick.
    std::string play(int frames, int block = 512, double tickFrames = kSixteenth)
    {
        std::ostringstream list;
        const int first = std::max(r.arp.restartOffset, 0);
        for (int start = 0; start < frames; start += block) {
            const int n = std::min(block, frames - start);
            rig.queue.clear();
            rig.engine.startBlock(n);
            rig.engine.runArpeggiator(n);
            for (const QueuedEvent& e : rig.queue) {
                const int frame = start + e.offset;
                const int tick = static_cast<int>((frame - first) / tickFrames);
                list << (list.tellp() == 0 ? "" : " ");
                if (tickFrame(first, tickFrames, tick) == frame)
                    list << tick;
                else
                    list << "frame " << frame;
                list << (e.status == kNoteOn ? '+' : '-') << int{e.data1};
                if (e.status == kNoteOn || e.data2 != 64)
                    list << 'v' << int{e.data2};
                list << (e.tag == kOddStackedVoices ? " odd" : "");
            }
            rig.engine.endBlock();
        }
        return list.str();
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
        EXPECT_EQ(play(at(160), block), "0+60v100 32-60 64-60 64+72v100 128-72 128+67v100");
    }
    start(ArpMode::simple, {kTieStep, kTieStep}, {}, {{60, 100}});
    EXPECT_EQ(play(44100), ""); // nothing but ties
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
        rig.set({{kArpSync, row.sync ? 1.0f : 0.0f}, {kArpRate, row.rate}});
        rig.tempo = row.tempo;
        start(ArpMode::simple, {1, 0}, {}, {{60, 100}}, 3);
        EXPECT_EQ(play(tickFrame(3, row.tickFrames, 32) + 1, 8192, row.tickFrames),
                  "0+60v100 32-60");
    }
}

TEST_F(Arp, lengthMovesRestsAndSwingMovesThirdSteps)
{
    struct Row {
        float length, swing;
        const char* list; // a rest in step 1, a note in step 2
    };
    for (const Row& row : {Row{0.5f, 0.5f, "0+60v100 32-60 64-60 64+64v100"},
                           Row{0.0f, 0.0f, "0+60v100 1-60 40-60 40+64v100"},
                           Row{1.0f, 1.0f, "0+60v100 63-60 88-60 88+64v100"},
                           Row{0.25f, 0.75f, "0+60v100 16-60 76-60 76+64v100"}}) {
        rig.set({{kArpLength, row.length}, {kArpSwing, row.swing}});
        start(ArpMode::simple, {1, 0, 5, kTieStep}, {}, {{60, 100}});
        EXPECT_EQ(play(at(120)), row.list);
    }
}

TEST_F(Arp, rangeBlendsTheKeysVelocityTowardTheSteps)
{
    // The second note's velocity step is 0, so the first one's value stays.
    for (const auto& [range, list] : {std::pair{0.0f, "0+60v40 32-60 64-60 64+60v40"},
                                      {0.5f, "0+60v83 32-60 64-60 64+60v83"},
                                      {1.0f, "0+60v127 32-60 64-60 64+60v127"}}) {
        rig.set(kArpRange, range);
        start(ArpMode::simple, {1, 0, 1, 0}, {128, 0, 0, 0}, {{60, 40}});
        EXPECT_EQ(play(at(65)), list);
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
        EXPECT_EQ(heard({{0, 100}, {60, 100}}), ""); // key 0 hides the keys above it
        EXPECT_EQ(heard({{127, 100}}), "");          // never seen
        EXPECT_EQ(heard({{126, 90}}), "0+127v90");   // 149 is clamped
    }
}

TEST_F(Arp, oneShotEndsAfterOnePass)
{
    start(ArpMode::oneShot, {1, 0}, {}, {{60, 100}});
    EXPECT_EQ(play(10 * at(64)), "0+60v100 32-60");
    restart(5);
    // The note of the first pass ends once more.
    EXPECT_EQ(play(10 * at(64)), "0-60 0+60v100 32-60");
}

TEST_F(Arp, chordRetriggersEveryHeldKeyFromTheTop)
{
    start(ArpMode::chord, {1, 0}, {}, {{0, 10}, {60, 40}, {127, 73}});
    EXPECT_EQ(play(at(32) + 1), "0+127v73 0+60v40 0+0v10 32-127v73 32-60v40 32-0v10");
}

TEST_F(Arp, dynamicStepsPickFurtherKeys)
{
    // d = velocity / 16: base, second, third (an octave up), more than are held.
    start(ArpMode::dynamic, {1, 1, 14, 1, 0, 0}, {15, 16, 32, 48, 16, 0},
          {{50, 90}, {57, 20}, {62, 30}});
    EXPECT_EQ(play(at(192)), "0+50v90 32-50 32+57v90 64-57 64+74v90 96-74 96+50v90 128-50 160-50");
}

TEST_F(Arp, duophonicPlaysTwoRows)
{
    start(ArpMode::duophonic, {1, kTieStep, 0, kTieStep}, {8, 5, kTieStep, 0}, {{60, 77}});
    EXPECT_EQ(play(at(128)), "0+60v77 0+67v77 32-67 32+64v77 64-60 96-64");
    EXPECT_EQ(r.arp.velocityOut, 0.5f);
}

TEST_F(Arp, voiceModeWalksUpOnTheOddVoices)
{
    start(ArpMode::voice, {1, 1, 13, 0}, {}, {{60, 10}, {64, 20}});
    EXPECT_EQ(play(at(128)), "0+60v10 odd 32-60 odd 32+64v20 odd 64-64 odd 64+72v10 odd 96-72 odd");
    // The walk starts again with the pass; the note that ended is named once more.
    EXPECT_EQ(play(40), "0-72 odd 0+60v10 odd");
}

TEST_F(Arp, modulationModeOnlyMovesItsOutputs)
{
    start(ArpMode::modulation, {32, 0, kTieStep, 96}, {16, 0, 100, 128}, {{60, 100}}, 10);
    const int frames = 8192;
    EXPECT_EQ(play(frames, frames), "");
    const int second = tickFrame(10, kSixteenth, 32);
    EXPECT_EQ(r.arpVelocityBuffer[9], 0.5f);
    for (int i : {10, second - 1, second, frames - 1}) {
        EXPECT_EQ(r.arpNoteBuffer[static_cast<std::size_t>(i)], 0.25f); // a rest keeps the note
        EXPECT_EQ(r.arpVelocityBuffer[static_cast<std::size_t>(i)], 0.125f);
    }
    const int fourth = tickFrame(10, kSixteenth, 96) - 2 * frames;
    EXPECT_EQ(play(frames, frames), "");
    EXPECT_EQ(play(fourth + 1, fourth + 1), "");
    EXPECT_EQ(r.arpNoteBuffer[static_cast<std::size_t>(fourth - 1)], 0.25f);
    EXPECT_EQ(r.arpNoteBuffer[static_cast<std::size_t>(fourth)], 0.75f);
    EXPECT_EQ(r.arpVelocityBuffer[static_cast<std::size_t>(fourth)], 1.0f);
}

TEST_F(Arp, ticksRunOnWithoutKeysButStartNothing)
{
    start(ArpMode::simple, {1}, {}, {{60, 100}});
    EXPECT_EQ(play(100), "0+60v100");
    hold(60, 0);
    EXPECT_EQ(play(at(32)), "frame " + std::to_string(at(32) - 100) + "-60");
    EXPECT_EQ(play(2 * at(32)), "");
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
