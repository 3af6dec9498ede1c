// Whatever is wrong gives one line on standard error, a failing status and no file.

#include "host/Failure.h"
#include "host/Song.h"
#include "tests/host/HostRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace tolm {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

std::string goodSong()
{
    MidiTrack track;
    track.name("Keys").tempo(0, 500000).add(0, {0x90, 60, 100}).add(96, {60, 0});
    track.add(0, {0xF0, 2, 1, 0xF7}).add(5, {0xE0, 0, 64}).add(0, {0xD0, 3});
    return midiFile(1, 96, {track.chunk(), track.chunk()});
}

void expectRefused(const Outcome& outcome, const std::string& message)
{
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, StartsWith("tolm-render: "));
    EXPECT_THAT(outcome.err, HasSubstr(message));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
}

} // namespace

TEST(HostBadInput, isNamedInOneLineAndLeavesNoFile)
{
    const std::pair<const char*, const char*> rows[] = {
        {"-o out.wav", "nothing to play"},
        {"-o out.wav --notes ''", "no such note"},
        {"--notes C4", "name one output"},
        {"-o out.wav none.mid", "cannot open the MIDI file \"none.mid\""},
        {"-o out.wav .", "is a directory"},
        {"-o out.wav text.mid", "no playable MIDI file: no header"},
        {"-o out.wav song.mid --notes C4", "exclude each other"},
        {"-o none/out.wav song.mid", "cannot write"},
        {"-o /dev/null song.mid", "not a regular file"},
        {"-o out.wav song.mid --program Hlaf", "no program \"Hlaf\"; nearest: \"Half\""},
        {"-o out.wav song.mid --program 3", "no program 3: there are 3"},
        {"-o out.wav song.mid --set Levle=1", "nearest: \"Level\""},
        {"-o out.wav song.mid --set Level", "takes NAME=VALUE"},
        {"-o out.wav song.mid --set Right=Wrong", "\"Right\" has no value \"Wrong\""},
        {"-o out.wav song.mid --set Level=1.5", "\"Level\" has no value \"1.5\""},
        {"-o out.wav song.mid --set 'Pitch=30 kHz'", "\"Pitch\" has no value \"30 kHz\""},
        {"-o out.wav song.mid --set 'Pitch=30 ms'", "\"Pitch\" has no value"},
        {"-o out.wav song.mid --part Key=Half", "no track \"Key\"; nearest: \"Keys\""},
        {"-o out.wav song.mid --part Keys", "takes TRACK=PROGRAM"},
        {"-o out.wav song.mid --bank none.fxb", "cannot open the preset file"},
        {"-o out.wav song.mid --bits 20", "takes one of"},
        {"-o out.flac song.mid --bits 32f", "flac holds 16 or 24 bits"},
        {"-o out.wav song.mid --format mp3", "takes one of"},
        {"-o out.wav song.mid --block 0", "--block"},
        {"-o out.wav song.mid --tail -1", "--tail"},
        {"-o out.wav song.mid --bpm nan", "--bpm"},
        {"-o out.wav song.mid --frob", "--frob"},
        {"-o out.wav --notes 'H4 1'", "no such note: \"H4\""},
        {"-o out.wav --notes 'G#9 1'", "no such note"},
        {"-o out.wav --notes 'C4@128 1'", "no velocity"},
        {"-o out.wav --notes 'C4 0'", "no length"},
        {"-o out.wav --notes 'C4 99999' --bpm 1", "more than 24 hours"},
        {"-o out.wav song.mid --all-programs dir", "name one output"},
    };
    const HostRig rig;
    rig.write("song.mid", goodSong());
    rig.write("text.mid", "Dear Sir, this is not music.");
    for (const auto& [arguments, message] : rows) {
        SCOPED_TRACE(arguments);
        expectRefused(rig.run(arguments), message);
        EXPECT_EQ(rig.files(), (std::vector<std::string>{"song.mid", "text.mid"}));
    }
    EXPECT_THAT(rig.read("plugin.log"), ::testing::Not(HasSubstr("left on")));
    EXPECT_EQ(rig.run("-o out.wav song.mid").status, 0);
}

TEST(HostBadInput, whatIsNoInstrumentIsRefused)
{
    const HostRig rig;
    rig.write("text.so", "no library");
    const std::string play = " -o out.wav --notes C4";
    expectRefused(rig.runPlain("--plugin none.so" + play), "no such plug-in: \"none.so\"");
    expectRefused(rig.runPlain("--plugin ." + play), "no such plug-in");
    expectRefused(rig.runPlain("--plugin text.so" + play), "cannot load the plug-in");
    expectRefused(rig.runPlain("--plugin " TOLM_NO_PLUGIN + play), "is no VST 2.4 plug-in");
    expectRefused(rig.run(play, "effect"), "is an effect, not an instrument");
    expectRefused(rig.run(play, "nan"), "values that are no numbers");
    EXPECT_EQ(rig.files(), std::vector<std::string>{"text.so"});
}

TEST(HostBadInput, anOldFileSurvivesAFailedRender)
{
    const HostRig rig;
    rig.write("out.wav", "precious");
    expectRefused(rig.run("-o out.wav --notes C4", "nan"), "no numbers");
    EXPECT_EQ(rig.read("out.wav"), "precious");
    EXPECT_EQ(rig.files(), std::vector<std::string>{"out.wav"});
}

TEST(HostBadInput, anInterruptedRenderLeavesNothing)
{
    const HostRig rig;
    const Outcome outcome = rig.runPlain("--plugin " TOLM_TEST_PLUGIN
                                         " -o out.wav --notes 'C4 2000' --rate 384000 --block 1 & "
                                         "pid=$!; sleep 0.3; kill -TERM $pid; wait $pid");
    expectRefused(outcome, "interrupted");
    EXPECT_TRUE(rig.files().empty());
}

TEST(HostBadInput, damagedSongsAreReadOrRefused)
{
    const std::string good = goodSong();
    const HostRig rig;
    std::mt19937 random(1);
    int refused = 0;
    for (int round = 0; round < 2000; ++round) {
        std::string bytes = good;
        for (int i = 0; i < 3; ++i)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        if (round % 4 == 0)
            bytes.resize(random() % bytes.size());
        rig.write("song.mid", bytes);
        try {
            const Song song = readMidiFile(rig.path("song.mid"));
            for (const Track& track : song.tracks)
                for (const TimedMessage& message : track.messages)
                    ASSERT_LT(message.bytes[1] | message.bytes[2], 128);
        } catch (const Failure&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 500); // among them all that are cut short
    EXPECT_LT(refused, 2000);
}

} // namespace tolm
