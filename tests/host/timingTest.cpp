// Notes at their exact frames, and the musical time that the plug-in is told.

#include "tests/host/HostRig.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tolm {
namespace {

constexpr double kRate = 44100.0;

std::size_t frameOf(double seconds)
{
    return static_cast<std::size_t>(std::llround(seconds * kRate));
}

// 120 beats per minute, from quarter 1.5 on 75, from quarter 4 on 200.
std::string songWithTempoChanges()
{
    MidiTrack conductor;
    conductor.tempo(0, 500000).tempo(144, 800000).tempo(240, 300000);
    MidiTrack notes;
    notes.name("Lead").add(48, {0x90, 60, 127}).add(48, {60, 0}); // running status, velocity 0
    notes.add(96, {0x90, 64, 64}).add(0, {67, 32}).add(150, {0x80, 64, 0}).add(99, {67, 9});
    return midiFile(1, 96, {conductor.chunk(), notes.chunk(7)});
}

} // namespace

TEST(HostTiming, notesStandAtTheFramesOfTheTempoMapInEveryBlockLength)
{
    // Seconds: quarter 1.5 is 0.75, quarter 4 is 0.75 + 2.5 * 0.8 = 2.75.
    const double chordStart = 0.75 + 0.5 * 0.8;
    const double firstRelease = 0.75 + (342.0 / 96.0 - 1.5) * 0.8;
    const double secondRelease = 2.75 + (441.0 / 96.0 - 4.0) * 0.3;
    const double end = 2.75 + (448.0 / 96.0 - 4.0) * 0.3;
    const std::vector<Step> expected = {{0, 0.0f},
                                        {frameOf(0.25), 1.0f},
                                        {frameOf(0.5), 0.0f},
                                        {frameOf(chordStart), 96.0f / 127.0f},
                                        {frameOf(firstRelease), 32.0f / 127.0f},
                                        {frameOf(secondRelease), 0.0f}};
    const HostRig rig;
    rig.write("song.mid", songWithTempoChanges());
    for (const int block : {1, 63, 64, 512, 1000, 8192}) {
        SCOPED_TRACE(block);
        const Sound sound = rig.render(
            "song.mid --bits 32f --tail 0.25 --set Right=Faults --block " + std::to_string(block));
        expectSteps(sound.left, expected);
        EXPECT_EQ(sound.left.size(), frameOf(end) + frameOf(0.25));
        expectSteps(sound.right, {{0, 0.0f}}); // no fault in how the plug-in was driven
    }
}

TEST(HostTiming, theHostTempoFollowsTheSongUnlessOneIsGiven)
{
    const HostRig rig;
    rig.write("song.mid", songWithTempoChanges());
    // One-frame blocks show the first frame at or after each change.
    expectSteps(rig.render("song.mid --bits 32f --block 1").right,
                {{0, 0.12f}, {frameOf(0.75), 0.075f}, {frameOf(2.75), 0.2f}});
    const Sound fast = rig.render("song.mid --bits 32f --bpm 240 --tail 0");
    expectSteps(fast.right, {{0, 0.24f}});
    EXPECT_EQ(stepsOf(fast.left)[1].frame, frameOf(0.5 * 0.25));
    EXPECT_EQ(fast.left.size(), frameOf(448.0 / 96.0 * 0.25));
}

TEST(HostTiming, positionBarAndSignatureAreTold)
{
    MidiTrack track; // four beats of 4/4, then 3/8
    track.tempo(0, 500000).add(40, {0xFF, 0x58, 4, 3, 3, 24, 8}).add(60, {0x90, 60, 100});
    const HostRig rig;
    rig.write("song.mid", midiFile(0, 10, {track.chunk()}));
    const Sound position =
        rig.render("song.mid --bits 32f --block 100 --tail 0 --set Right=Position");
    for (const std::size_t frame : {0u, 44100u, 100000u})
        EXPECT_NEAR(position.right[frame] * 1000.0f,
                    static_cast<double>(frame / 100 * 100) / kRate * 2.0, 1e-3);
    const Sound signature =
        rig.render("song.mid --bits 32f --block 1 --tail 0 --set Right=Signature");
    expectSteps(signature.right, {{0, 0.1f}, {frameOf(2.0), 0.0375f}});
    const Sound bar = rig.render("song.mid --bits 32f --block 1 --tail 0 --set Right=Bar");
    expectSteps(bar.right, {{0, 0.0f},
                            {frameOf(2.0), 0.004f},
                            {frameOf(2.75), 0.0055f},
                            {frameOf(3.5), 0.007f},
                            {frameOf(4.25), 0.0085f}});
}

TEST(HostTiming, clockTimeFilesIgnoreTempo)
{
    MidiTrack track; // 25 frames a second, 40 ticks each: a tick is a millisecond
    track.tempo(0, 100000).add(250, {0x90, 60, 127}).add(500, {0x80, 60, 0});
    const HostRig rig;
    rig.write("song.mid", midiFile(0, (256 - 25) << 8 | 40, {track.chunk()}));
    expectSteps(rig.render("song.mid --bits 32f").left,
                {{0, 0.0f}, {frameOf(0.25), 1.0f}, {frameOf(0.75), 0.0f}});
}

TEST(HostTiming, notesLeftHangingEndWithTheSong)
{
    MidiTrack track;
    track.add(96, {0x93, 60, 127}).add(96, {0xB3, 64, 127});
    const HostRig rig;
    rig.write("song.mid", midiFile(0, 96, {track.chunk(96)}));
    expectSteps(rig.render("song.mid --bits 32f").left,
                {{0, 0.0f}, {frameOf(0.5), 1.0f}, {frameOf(1.5), 0.0f}});
}

TEST(HostTiming, manyEventsInOneBlockReachThePlugInInPortions)
{
    MidiTrack track; // 400 notes of one tick, a tick being 2 frames
    for (int i = 0; i < 400; ++i)
        track.add(i == 0 ? 0 : 1, {0x90, 60, 127}).add(1, {0x80, 60, 0});
    const HostRig rig;
    rig.write("song.mid", midiFile(0, 22050, {track.chunk()}));
    const Sound sound =
        rig.render("song.mid --bits 32f --bpm 60 --block 8192 --tail 1 --set Right=Faults");
    expectSteps(sound.right, {{0, 0.0f}});
    const std::vector<Step> steps = stepsOf(sound.left);
    ASSERT_EQ(steps.size(), 800u);
    for (std::size_t i = 0; i < steps.size(); ++i)
        EXPECT_EQ(steps[i].frame, 2 * i);
}

} // namespace tolm
