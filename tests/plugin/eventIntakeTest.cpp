// MIDI into the queue, the arpeggiator's key table and the controllers.

#include "plugin/eventIntake.h"
#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

using test::SynthRig;

TEST(EventIntake, queuesNotesOfAllChannelsInTheirOrderAndNothingElse)
{
    SynthRig rig;
    rig.send({{30, 0x93, 60, 100}, {10, 0x8F, 60, 64}, {5, 0x90, 61, 0}, {0, 0x90, 64, 200}});
    EXPECT_EQ(rig.answerOfEvents, 1);
    EXPECT_EQ(rig.queued(), "30 on 60 100, 10 off 60 64, 5 on 61 0, 0 on 64 200");
    EXPECT_FALSE(rig.core().keyDown(64)); // a velocity byte of 200 is negative
    rig.core().queue().clear();
    rig.send({{0, 0x90, 60, 100, vst2::kSysExType}, {0, 0xA0, 60, 5}, {0, 0xF8, 0, 0}});
    EXPECT_EQ(rig.queued(), "");
    EXPECT_EQ(rig.synth->processEvents(nullptr), 1);
    vst2::VstEvents wrong;
    wrong.numEvents = -5;
    EXPECT_EQ(rig.synth->processEvents(&wrong), 1);
}

TEST(EventIntake, countsEventsInEightBits)
{
    for (const int sent : {255, 256, 257}) {
        SynthRig rig;
        std::vector<SynthRig::Midi> list;
        for (int i = 0; i < sent; ++i)
            list.push_back({i, 0x90, i & 0x7F, 1 + i / 128});
        rig.send(list);
        EXPECT_EQ(rig.core().queue().count(), sent % 256);
        if (sent == 257) {
            EXPECT_EQ(rig.queued(), "256 on 0 3");
        }
    }
}

TEST(EventIntake, showsHeldKeysButDoesNotCountTheLowest)
{
    SynthRig rig;
    rig.send({{0, 0x90, 0, 100}, {0, 0x90, 60, 100}, {0, 0x90, 188, 100}});
    EXPECT_TRUE(rig.core().keyDown(60)); // 188 & 127 is 60 too
    rig.send({{0, 0x80, 61, 0}});
    EXPECT_TRUE(rig.record().anyKeyDown);
    rig.send({{0, 0x80, 60, 0}});
    EXPECT_TRUE(rig.core().keyDown(0));
    EXPECT_FALSE(rig.record().anyKeyDown);
}

TEST(EventIntake, movesControllersAtOnceAndKeepsTheQueue)
{
    SynthRig rig;
    rig.send({{50, 0x90, 60, 100},
              {90, 0xB0, 1, 127},
              {0, 0xB5, 2, 64},
              {0, 0xB0, 4, 32},
              {0, 0xB0, 11, 1},
              {0, 0xB0, 64, 64},
              {0, 0xD0, 127, 0},
              {0, 0xB0, 74, 127}});
    EXPECT_EQ(rig.queued(), "50 on 60 100");
    EXPECT_EQ(rig.record().modWheel, 1.0);
    EXPECT_EQ(rig.core().storedValue(kModWheel), 1.0f);
    EXPECT_EQ(rig.record().breath, 64.0 / 127.0);
    EXPECT_EQ(rig.record().foot, 32.0 / 127.0);
    EXPECT_EQ(rig.record().expression, 1.0 / 127.0);
    EXPECT_EQ(rig.record().aftertouch, 1.0);
    EXPECT_EQ(rig.record().sustainPedal, 64);
    EXPECT_FALSE(rig.record().releaseEnabled);
    EXPECT_EQ(rig.core().storedValue(kFilterCutoff), 1.0f);
    EXPECT_TRUE(rig.told.empty());
    rig.arp().currentStep = 9;
    rig.send({{0, 0xB0, 64, 63}, {0, 0xB0, 123, 0}});
    EXPECT_TRUE(rig.record().releaseEnabled);
    EXPECT_EQ(rig.arp().currentStep, 0u);
}

TEST(EventIntake, bendsOverTheWholeRange)
{
    SynthRig rig;
    struct Row {
        int low, high, raw;
    };
    // Data bytes of 128 and more are malformed and count as 0.
    for (const Row& row : {Row{127, 127, 8191}, {0, 0, -8192}, {0, 64, 0}, {255, 255, -8192}}) {
        rig.send({{0, 0xE0, row.low, row.high}});
        EXPECT_EQ(rig.record().bendRaw, row.raw);
        EXPECT_EQ(rig.record().bendValue, row.raw / 8192.0);
    }
}

TEST(EventIntake, selectsProgramsAndBanks)
{
    SynthRig rig;
    struct Row {
        int start, status, data1, data2, program;
    };
    constexpr Row kRows[] = {
        {200, 0xC0, 5, 0, 5},  {5, 0xB0, 0, 1, 133}, {5, 0xB0, 0, 3, 5},
        {300, 0xB0, 0, 0, 44}, {7, 0xC0, 128, 0, 7}, {127, 0xB0, 0, 2, 383},
    };
    for (const Row& row : kRows) {
        rig.synth->setProgram(row.start);
        rig.send({{0, row.status, row.data1, row.data2}});
        EXPECT_EQ(rig.synth->getProgram(), row.program);
        EXPECT_EQ(rig.core().currentBank(), row.program / 128);
    }
}

TEST(EventIntake, learnsAControllerAndMovesTheParameterAtOnce)
{
    SynthRig rig;
    rig.core().midiMap().armLearn(4);
    rig.send({{0, 0xB0, 1, 10}, {0, 0xB0, 0, 0}, {0, 0xB0, 7, 127}});
    EXPECT_EQ(rig.core().storedValue(4), 1.0f);
    rig.send({{0, 0xB0, 7, 0}});
    EXPECT_EQ(rig.core().storedValue(4), 0.0f);
    // These may be learnt, but keep their own meaning only.
    rig.core().midiMap().armLearn(3);
    rig.synth->setParameter(3, 0.25f);
    rig.send({{0, 0xB0, 2, 127}});
    EXPECT_EQ(rig.core().midiMap().parameterOf(2), 3);
    EXPECT_EQ(rig.core().storedValue(3), 0.25f);
}

class ArpIntake : public ::testing::Test {
protected:
    void start(ArpMode mode, bool mono = false)
    {
        rig.arp().on = true;
        rig.arp().mode = mode;
        rig.record().monoMode = mono;
        rig.core().queue().clear();
        rig.arp().held.fill(0);
        rig.arp().phase = 77.0;
        rig.arp().tickCounter = 5;
    }
    bool restarted(int offset)
    {
        const bool did = rig.arp().restartOffset == offset && rig.arp().phase == 0.0 &&
                         rig.arp().tickCounter == 0;
        rig.arp().phase = 77.0;
        rig.arp().tickCounter = 5;
        return did;
    }

    SynthRig rig;
};

TEST_F(ArpIntake, holdsKeysInsteadOfPlayingThem)
{
    for (const auto mode : {ArpMode::simple, ArpMode::oneShot, ArpMode::chord, ArpMode::dynamic,
                            ArpMode::duophonic}) {
        start(mode);
        rig.send({{7, 0x90, 60, 100}});
        EXPECT_TRUE(restarted(7));
        rig.send({{9, 0x90, 64, 90}});
        EXPECT_EQ(rig.arp().restartOffset, -1);
        EXPECT_EQ(rig.queued(), "");
        EXPECT_EQ(rig.arp().held[60], 100);
        rig.send({{3, 0x90, 60, 0}, {4, 0x80, 64, 1}});
        EXPECT_EQ(rig.queued(), "3 off 60 0, 4 off 64 1");
        EXPECT_EQ(rig.arp().held[60] + rig.arp().held[64], 0);
    }
}

TEST_F(ArpIntake, modulationModePlaysKeysAndRestartsAtEach)
{
    start(ArpMode::modulation);
    rig.send({{7, 0x90, 60, 100}});
    EXPECT_TRUE(restarted(7));
    rig.send({{9, 0x90, 64, 90}});
    EXPECT_TRUE(restarted(9));
    rig.send({{3, 0x90, 60, 0}});
    EXPECT_EQ(rig.queued(), "7 on 60 100, 9 on 64 90, 3 on 60 0");
}

TEST_F(ArpIntake, voiceModePlaysKeysOnTheEvenVoices)
{
    start(ArpMode::voice);
    rig.send({{7, 0x90, 60, 100}, {8, 0x90, 50, 90}, {9, 0x80, 50, 0}});
    EXPECT_EQ(rig.queued(), "7 on 60 100 for 85, 8 on 50 90 for 85, 9 off 50 0");
}

TEST_F(ArpIntake, voiceModeWithMonoHandsTheVoicesOn)
{
    start(ArpMode::voice, true);
    // The first key plays; a higher and a lower one do not; the middle one's release releases it;
    // the lowest one's release only hands over; the last one's release ends the sound.
    rig.send({{1, 0x90, 60, 100},
              {2, 0x90, 67, 90},
              {3, 0x90, 50, 80},
              {4, 0x80, 60, 0},
              {5, 0x80, 50, 0},
              {6, 0x80, 67, 0}});
    EXPECT_EQ(rig.queued(), "1 on 60 100 for 85, 4 off 60 0, 5 off 50 0 for 0, 6 off 67 0");
    // What a key handed over before it was played sounds as its heir, and ends with it.
    start(ArpMode::voice, true);
    rig.send({{0, 0x90, 60, 100}, {2, 0x90, 67, 90}, {4, 0x80, 60, 0}});
    EXPECT_EQ(rig.queued(), "0 on 67 100 for 85, 4 off 60 0 for 0");
    start(ArpMode::voice, true); // an earlier stroke of that key has ended and stays its own
    rig.send({{0, 0x90, 60, 9}, {1, 0x80, 60, 0}});
    rig.send({{2, 0x90, 60, 9}, {3, 0x90, 67, 9}, {4, 0x80, 60, 0}});
    EXPECT_EQ(rig.queued(), "0 on 60 9 for 85, 1 off 60 0, 2 on 67 9 for 85, 4 off 60 0 for 0");
}

class KeyboardDrain : public ArpIntake {
protected:
    // The queue after notes of the on-screen keyboard were drained.
    std::string drained(std::initializer_list<SynthRig::Midi> notes)
    {
        rig.core().queue().clear();
        for (const SynthRig::Midi& note : notes)
            rig.core().keyboard().push(static_cast<std::uint8_t>(note.status), note.data1,
                                       static_cast<std::uint8_t>(note.data2));
        drainKeyboard(rig.core());
        return rig.queued();
    }
};

TEST_F(KeyboardDrain, treatsTheArpeggiatorsModesInItsOwnWay)
{
    EXPECT_EQ(drained({{0, 0x90, 300, 100}, {0, 0x80, -4, 0}}), "0 on 127 100, 0 off 0 0");
    EXPECT_TRUE(rig.core().keyDown(127));
    start(ArpMode::simple);
    EXPECT_EQ(drained({{0, 0x90, 60, 100}, {0, 0x80, 60, 0}}), "0 off 60 0");
    EXPECT_TRUE(restarted(0));
    start(ArpMode::voice, true); // no hand-over here
    EXPECT_EQ(drained({{0, 0x90, 60, 100}, {0, 0x90, 50, 90}, {0, 0x80, 50, 0}}),
              "0 on 60 100 for 85, 0 on 50 90 for 85, 0 off 50 0");
    start(ArpMode::modulation);
    EXPECT_EQ(drained({{0, 0x90, 62, 100}, {0, 0x80, 62, 0}}), "0 on 62 100, 0 off 62 0");
}

TEST_F(KeyboardDrain, keepsARunningPatternWhileKeysAreHeld)
{
    start(ArpMode::chord);
    rig.arp().held[40] = 100;
    rig.arp().restartOffset = -1;
    drained({{0, 0x90, 60, 100}});
    EXPECT_EQ(rig.arp().restartOffset, -1);
    rig.arp().held.fill(0);
    rig.arp().held[40] = 100;
    drained({{0, 0x80, 40, 0}, {0, 0x90, 60, 100}}); // once held, for the whole drain
    EXPECT_EQ(rig.arp().restartOffset, -1);
    rig.arp().held.fill(0);
    drained({{0, 0x80, 99, 0}}); // even a stray release restarts when nothing is held
    EXPECT_TRUE(restarted(0));
}

TEST(KeyboardNoteQueue, holds128NotesAndDropsMore)
{
    KeyboardNoteQueue queue;
    KeyboardNote note;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 130; ++i)
            EXPECT_EQ(queue.push(kNoteOn, i % 128, 1), i < 128);
        for (int i = 0; i < 128; ++i) {
            ASSERT_TRUE(queue.pop(note));
            EXPECT_EQ(note.key, i);
        }
        EXPECT_FALSE(queue.pop(note));
    }
}

} // namespace
} // namespace tolm
