// The pattern through the whole plug-in: the same in blocks of any size, and what the intake of
// keys leaves sounding.

#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tolm {
namespace {

using test::SynthRig;

TEST(ArpeggiatorBlocks, anyBlockSizeEndsAtTheSameTick)
{
    constexpr int kFrames = 30000;
    constexpr int kRestart = 5;
    for (const int block : {1000, 8192, 10000, 30000}) {
        SCOPED_TRACE(block);
        SynthRig rig;
        rig.synth->setSampleRate(44100.0f);
        rig.synth->setBlockSize(block);
        rig.synth->setParameter(kArpSync, 0.0f);
        rig.synth->setParameter(kArpRate, 0.7f);
        rig.synth->setParameter(kArpStepCount, 1.0f);
        rig.synth->setParameter(kArpMode, 0.0f);
        rig.synth->setParameter(kArpOn, 1.0f);
        for (int step = 0; step < kArpSteps; ++step)
            rig.synth->setParameter(kArpNote1 + step, static_cast<float>(step + 1) / 128.0f);
        rig.process(1);
        rig.send({{kRestart, 0x90, 60, 100}});
        for (int at = 0; at < kFrames; at += block)
            rig.process(std::min(block, kFrames - at));
        const double step = 44100.0 / (0.1 * std::pow(1000.0, double(0.7f)));
        const int last = static_cast<int>((kFrames - 1 - kRestart) / step);
        EXPECT_EQ(rig.arp().soundingNote, 60 + last % kArpSteps);
        EXPECT_EQ(rig.arp().currentStep, static_cast<unsigned>(last % kArpSteps));
    }
}

TEST(ArpeggiatorBlocks, aQueuedNoteFollowsTheHandOver)
{
    SynthRig rig;
    rig.synth->setParameter(kArpMode, 1.0f);
    rig.synth->setParameter(kMonoMode, 1.0f);
    rig.synth->setParameter(kArpOn, 1.0f);
    rig.process(1);
    rig.send({{0, 0x90, 60, 100}, {2, 0x90, 67, 90}, {4, 0x80, 60, 0}});
    ASSERT_EQ(rig.queued().size(), 2u);
    EXPECT_EQ(rig.queued()[0].data1, 67);
    rig.process(64);
    EXPECT_EQ(rig.record().voiceActive[0], 1u);
    EXPECT_EQ(rig.record().voiceNote[0].note, 67);
    EXPECT_EQ(rig.record().voiceReleased[0], 0u);
    rig.send({{0, 0x80, 67, 0}});
    rig.process(64);
    EXPECT_TRUE(rig.record().voiceReleased[0] != 0 || rig.record().voiceActive[0] == 0);
}

} // namespace
} // namespace tolm
