// What ends up in the sound file: containers, sample formats, levels, channels.

#include "tests/host/HostRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>

namespace tolm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kOneNote = "--notes 'C4@64 1'";

} // namespace

TEST(HostSoundFile, everyContainerAndDepthHoldsTheLevelToItsLastBit)
{
    struct Row {
        const char* file;
        const char* arguments;
        int format;
        double step;
    };
    const Row rows[] = {
        {"a.wav", "--bits 16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1.0 / 32768.0},
        {"a.wav", "", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 1.0 / 8388608.0},
        {"a.wav", "--bits 32f", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1e-7},
        {"a.flac", "--bits 16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 1.0 / 32768.0},
        {"a.flac", "", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1.0 / 8388608.0},
        {"a.snd", "--format flac --bits 24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1.0 / 8388608.0},
    };
    const HostRig rig;
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.file) + " " + row.arguments);
        const std::string arguments =
            std::string(kOneNote) + " --rate 48000 -o " + row.file + " " + row.arguments;
        ASSERT_EQ(rig.run(arguments).status, 0);
        const Sound sound = rig.readSound(row.file);
        EXPECT_EQ(sound.format, row.format);
        EXPECT_EQ(sound.sampleRateHz, 48000);
        ASSERT_EQ(sound.left.size(), 24000u + 96000u); // a beat at 120, and the tail
        EXPECT_NEAR(sound.left[23999], 64.0 / 127.0, row.step);
        EXPECT_EQ(sound.left[24000], 0.0f);
        const std::string bytes = rig.read(row.file);
        ASSERT_EQ(rig.run(arguments).status, 0);
        EXPECT_TRUE(rig.read(row.file) == bytes) << "a second render differs";
    }
    EXPECT_THAT(rig.files(), ElementsAre("a.flac", "a.snd", "a.wav"));
}

TEST(HostSoundFile, closingLineTellsLengthPeakAndRms)
{
    const HostRig rig;
    // Mono to both sides: a second of 0.5 and a second of silence.
    const Outcome plain = rig.run("-o out.wav --notes 'C4@127 2' --program Half --tail 1", "mono");
    EXPECT_EQ(plain.out, "out.wav: 2.000 s, peak -6.0 dBFS, RMS -9.0 dBFS\n");
    EXPECT_EQ(plain.err, "");
    const Outcome loud = rig.run("-o out.wav --notes 'C4@127 2' --gain 6 --tail 0 --rate 8000");
    EXPECT_THAT(loud.out, HasSubstr("peak 6.0 dBFS"));
    EXPECT_THAT(loud.out, HasSubstr("8000 samples clipped at full scale"));
    EXPECT_NEAR(rig.readSound("out.wav").left[100], 1.0f, 1e-6f); // not wrapped around
    EXPECT_THAT(rig.run("-o out.wav --notes 'R 1'", "mono").out, HasSubstr("peak -inf dBFS"));
}

TEST(HostSoundFile, monoAndAccumulatingPlugInsSoundAlike)
{
    const HostRig rig;
    const Sound mono = rig.render(kOneNote, "mono");
    EXPECT_EQ(mono.left, mono.right);
    const Sound usual = rig.render(kOneNote);
    const Sound accumulating = rig.render(kOneNote, "accumulate");
    EXPECT_EQ(mono.left, usual.left);
    EXPECT_EQ(accumulating.left, usual.left);
    EXPECT_EQ(accumulating.right, usual.right);
}

TEST(HostSoundFile, partsHaveInstancesOfTheirOwnAndAreMixed)
{
    MidiTrack bass, lead, pad;
    bass.name("Bass").add(0, {0x90, 36, 127}).add(96, {0x80, 36, 0});
    lead.name("Lead").add(48, {0xC0, 0}).add(0, {0x90, 72, 127}).add(96, {0x80, 72, 0});
    pad.name("Pad").add(0, {0x90, 60, 127}).add(24, {0x80, 60, 0});
    const HostRig rig;
    rig.write("song.mid",
              midiFile(1, 96, {MidiTrack().chunk(), bass.chunk(), lead.chunk(), pad.chunk()}));
    const Sound sound = rig.render("song.mid --bits 32f --rate 9600 --part Bass=Half "
                                   "--part 'Lead=Quarter@-20' --program 1 --set Level=0.5");
    // Half a second a quarter: 50 frames a tick.
    const float pad0 = 0.25f, bass0 = 0.25f, lead0 = 0.0125f;
    expectSteps(
        sound.left,
        {{0, bass0 + pad0}, {1200, bass0}, {2400, bass0 + lead0}, {4800, lead0}, {7200, 0.0f}});
    EXPECT_EQ(rig.read("plugin.log"), "closed\nclosed\nclosed\n");
}

TEST(HostSoundFile, everyProgramGetsAFileOfItsOwn)
{
    const HostRig rig;
    ASSERT_EQ(rig.run(std::string(kOneNote) + " --all-programs sounds/new --format flac").status,
              0);
    double level = 64.0 / 127.0;
    for (const char* name : {"000 Full.flac", "001 Half.flac", "002 Quarter.flac"}) {
        EXPECT_NEAR(rig.readSound(std::string("sounds/new/") + name).left[0], level, 1e-6) << name;
        level /= 2.0;
    }
}

} // namespace tolm
