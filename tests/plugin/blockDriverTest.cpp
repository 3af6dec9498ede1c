// Where a block is cut, what is played where, and what a block does to the synth.

#include "plugin/blockDriver.h"
#include "SynthRig.h"
#include "plugin/blockWalk.h"
#include "plugin/catalogue.h"
#include "tests/render/allocations.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tolm {
namespace {

using test::SynthRig;

// Writes down slices as "start+frames" and events as "key@position", these also alone.
struct Recorder {
    std::string log, events;
    int position = 0;
    int blockStart = 0;

    void render(int start, int frames)
    {
        log += std::to_string(start) + "+" + std::to_string(frames) + " ";
        position = start + frames;
    }
    void play(const QueuedEvent& event)
    {
        const std::string key = std::to_string(event.data1) + "@";
        log += key + std::to_string(position) + " ";
        events += key + std::to_string(blockStart + position) + " ";
    }
};

EventQueue queueOf(std::initializer_list<std::pair<int, int>> offsetsAndKeys)
{
    EventQueue queue;
    for (const auto& [offset, key] : offsetsAndKeys)
        queue.append({offset, -1, 0, kNoteOn, static_cast<std::uint8_t>(key), 100});
    return queue;
}

TEST(BlockWalk, cutsAtEventsAndAt64Frames)
{
    struct Row {
        int frames;
        EventQueue queue;
        const char* log;
        int lastSlice;
    };
    const Row kRows[] = {
        {130, queueOf({}), "0+64 64+64 128+2 ", 0},
        {64, queueOf({}), "0+64 ", 64},
        {65, queueOf({}), "0+64 64+1 ", 0},
        {64, queueOf({{100, 1}}), "0+64 ", 64},
        {64, queueOf({{64, 1}}), "0+64 ", 64},
        {64, queueOf({{63, 1}}), "0+63 1@63 63+1 ", 1},
        {100, queueOf({{0, 1}, {80, 2}}), "1@0 0+64 64+16 2@80 80+20 ", 20},
        {100, queueOf({{80, 1}, {10, 2}, {-5, 3}}), "0+64 64+16 1@80 2@80 3@80 80+20 ", 20},
        {200, queueOf({{10, 1}}), "0+10 1@10 10+64 74+64 138+62 ", 0},
    };
    for (const Row& row : kRows) {
        Recorder recorder;
        EXPECT_EQ(walkBlock(row.queue, row.frames, recorder), row.lastSlice) << row.log;
        EXPECT_EQ(recorder.log, row.log);
    }
}

// In pieces of any length, events act at the frames at which the whole block would have had them.
TEST(BlockWalk, dealsALongBlockOutWithoutMovingAnEvent)
{
    const EventQueue events =
        queueOf({{70, 1}, {-3, 2}, {75, 3}, {20, 4}, {500, 5}, {199, 6}, {200, 7}});
    for (const int piece : {1, 7, 64, 71, 100, 200, 1000}) {
        EventDealer dealer(events, 200);
        Recorder recorder;
        for (int start = 0; start < 200; start += piece) {
            const int length = std::min(piece, 200 - start);
            EventQueue queue;
            dealer.deal(start, start + length, queue);
            recorder.blockStart = start;
            recorder.position = 0;
            walkBlock(queue, length, recorder);
        }
        EXPECT_EQ(recorder.events, "1@70 2@70 3@75 4@75 6@199 ") << "pieces of " << piece;
    }
}

TEST(BlockDriver, believesOnlySaneTempos)
{
    SynthRig rig;
    const auto tempoAfterBlock = [&rig](double tempo, std::int32_t flags = vst2::kTempoValid) {
        rig.time.emplace();
        rig.time->tempo = tempo;
        rig.time->flags = flags;
        rig.process(32);
        return rig.core().hostTempo();
    };
    for (const double sane : {1.0, 97.5, 1000.0})
        EXPECT_EQ(tempoAfterBlock(sane), sane);
    for (const double wild : {0.0, 0.99, -120.0, 1000.1, double(NAN), double(INFINITY)}) {
        tempoAfterBlock(90.0);
        EXPECT_EQ(tempoAfterBlock(wild), 120.0);
    }
    EXPECT_EQ(tempoAfterBlock(90.0, vst2::kPpqPosValid), 120.0);
    tempoAfterBlock(90.0);
    rig.time.reset();
    rig.process(32);
    EXPECT_EQ(rig.core().hostTempo(), 120.0);
}

TEST(BlockDriver, emptiesTheQueueButNotForABlockOfNoFrames)
{
    SynthRig rig;
    rig.arp().phase = 0.0;
    rig.send({{0, 0x90, 60, 100}, {5000, 0x90, 61, 100}});
    rig.process(0);
    EXPECT_EQ(rig.core().queue().count(), 2);
    rig.process(64);
    EXPECT_EQ(rig.core().queue().count(), 0);
    EXPECT_EQ(rig.arp().phase, 1.0) << "blocks in which the arpeggiator is idle are counted";
}

TEST(BlockDriver, restartsThePatternAtItsFrameInAnyPieceOfALongBlock)
{
    SynthRig rig;
    rig.synth->setBlockSize(100);
    rig.synth->setParameter(kArpOn, 1.0f);
    rig.process(1);
    rig.send({{250, 0x90, 60, 100}});
    rig.process(260);
    // The first tick fires at the key's own frame, in the third piece, and the clock runs from
    // there.
    EXPECT_EQ(rig.arp().tickCounter, 1u);
    EXPECT_NEAR(rig.arp().phase, 10.0, 1e-6);
    EXPECT_EQ(rig.arp().restartOffset, -1);
    // A restart at or behind the block's end never comes.
    rig.send({{0, 0x80, 60, 0}, {700, 0x90, 62, 100}});
    rig.process(260);
    EXPECT_EQ(rig.arp().restartOffset, -1);
}

TEST(BlockDriver, isSilentAndDropsEventsWhileSomebodyElseHoldsTheEngine)
{
    SynthRig rig;
    const GuardHold hold = GuardHold::attempt(rig.core().guard());
    ASSERT_TRUE(hold);
    rig.send({{0, 0x90, 60, 100}});
    EXPECT_EQ(rig.answerOfEvents, 1);
    EXPECT_TRUE(rig.queued().empty());
    rig.process(100);
    for (std::size_t i = 0; i < 100; ++i)
        ASSERT_EQ(rig.left[i] + rig.right[i], 0.0f);
    // Accumulating, silence adds nothing.
    std::vector<float> kept(100, 3.0f);
    float* outputs[] = {kept.data(), kept.data()};
    rig.synth->process(nullptr, outputs, 100);
    EXPECT_EQ(kept, std::vector<float>(100, 3.0f));
}

TEST(BlockDriver, allocatesNothing)
{
    SynthRig rig;
    rig.synth->resume();
    rig.synth->setBlockSize(100);
    rig.time.emplace();
    std::vector<float> left(1000), right(1000);
    float* outputs[] = {left.data(), right.data()};
    const std::vector<SynthRig::Midi> events = {
        {0, 0x90, 60, 90}, {6, 0xB0, 7, 90}, {9, 0xC0, 3, 0}, {9, 0xE0, 5, 6}, {12, 0x80, 60, 0}};
    constexpr int kListsOwn = 2; // what the rig takes to hand events over
    for (const float arpOn : {0.0f, 1.0f}) {
        for (const int frames : {64, 100, 1000, 0, 1}) {
            rig.synth->setParameter(kArpOn, arpOn);
            rig.core().midiMap().armLearn(4);
            rig.core().keyboard().push(kNoteOn, 60, 100);
            const long before = test::allocationCount();
            rig.send(events);
            rig.synth->processReplacing(nullptr, outputs, frames);
            rig.synth->process(nullptr, outputs, frames);
            EXPECT_EQ(test::allocationCount() - before, kListsOwn) << frames;
        }
    }
    const long before = test::allocationCount();
    rig.synth->setBlockSize(64);
    EXPECT_GT(test::allocationCount(), before) << "the counter does not work";
}

} // namespace
} // namespace tolm
