// Programs, parameters, banks and note lists as typed.

#include "tests/host/HostRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace tolm {
namespace {

using ::testing::HasSubstr;

std::string presetFile(const std::string& kind, std::size_t nameBytes, const std::string& chunk,
                       const std::string& plugin = "Test")
{
    const auto number = [](std::size_t n) { return bigEndian(static_cast<std::uint32_t>(n), 4); };
    return "CcnK" + number(nameBytes + 24 + chunk.size()) + kind + number(1) + plugin + number(1) +
           number(3) + std::string(nameBytes, '\0') + number(chunk.size()) + chunk;
}

} // namespace

TEST(HostCommandLine, programsAndParametersAreListed)
{
    const HostRig rig;
    EXPECT_EQ(rig.run("--list-programs").out, "   0  Full\n   1  Half\n   2  Quarter\n");
    const std::string list = rig.run("--list-parameters --set 'pitch=2 kHz'").out;
    EXPECT_THAT(list, HasSubstr("   0  Level                                1.000000  1.00\n"));
    EXPECT_THAT(list, HasSubstr("   1  Right                                0.000000  Tempo\n"));
    EXPECT_THAT(list, HasSubstr("2000.0 Hz\n"));
    EXPECT_EQ(rig.read("plugin.log"), "closed\nclosed\n");
}

TEST(HostCommandLine, parametersAreSetByNumberAndByDisplay)
{
    struct Row {
        const char* setting;
        const char* name;
        double value;
        double tolerance;
    };
    const Row rows[] = {
        {"Level=0.25", "Level", 0.25, 1e-6},
        {" level = 0.5 ", "Level", 0.5, 1e-6},
        {"0=0", "Level", 0.0, 1e-6},
        {"Right=Bar", "Right", 2.5 / 6.0, 2e-3}, // the middle of its range
        {"Right=faults", "Right", 1.0, 1e-6},
        {"Pitch=440 Hz", "Pitch", std::log10(22.0) / 3, 1e-4},
        {"Pitch=440", "Pitch", std::log10(22.0) / 3, 1e-4},
        {"Pitch=1.234kHz", "Pitch", std::log10(61.7) / 3, 1e-4},
        {"Pitch=20000.0 hz", "Pitch", 1.0, 1e-6},
    };
    const HostRig rig;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.setting);
        const Outcome outcome =
            rig.run("--list-parameters --set '" + std::string(row.setting) + "'");
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const std::size_t line = outcome.out.find(row.name);
        ASSERT_NE(line, std::string::npos);
        EXPECT_NEAR(std::atof(outcome.out.c_str() + line + 36), row.value, row.tolerance);
    }
}

TEST(HostCommandLine, programIsChosenByNameOrIndexAndHoldsAgainstTheSong)
{
    MidiTrack track;
    track.add(0, {0xC5, 2}).add(0, {0x90, 60, 127}).add(96, {0x80, 60, 0});
    const HostRig rig;
    rig.write("song.mid", midiFile(0, 96, {track.chunk()}));
    EXPECT_NEAR(rig.render("song.mid").left[0], 0.25, 1e-6);
    EXPECT_NEAR(rig.render("song.mid --program half").left[0], 0.5, 1e-6);
    EXPECT_NEAR(rig.render("song.mid --program 0").left[0], 1.0, 1e-6);
}

TEST(HostCommandLine, banksAndProgramsReachThePlugInAsTheirKind)
{
    const HostRig rig;
    rig.write("a.fxb", presetFile("FBCh", 128, "\x05\x02"));
    rig.write("a.fxp", presetFile("FPCh", 28, "\x04"));
    const std::string note = "--notes C4@127 --set Right=Chunk --program Half --bank ";
    const Sound bank = rig.render(note + "a.fxb");
    EXPECT_NEAR(bank.right[0], 0.17, 1e-6);
    EXPECT_NEAR(bank.left[0], 0.5, 1e-6);
    EXPECT_NEAR(rig.render(note + "a.fxp").right[0], 0.24, 1e-6);
}

TEST(HostCommandLine, noteListsPlayChordsRestsAndVelocities)
{
    const HostRig rig;
    const Sound sound = rig.render("--rate 8000 --bits 32f --bpm 60 --notes "
                                   "'C4+E4@32 0.5, R 0.25,C#-1@127 .125, Bb3@64,C-1@1 2'");
    expectSteps(sound.left, {{0, 64.0f / 127.0f},
                             {4000, 0.0f},
                             {6000, 1.0f},
                             {7000, 64.0f / 127.0f},
                             {15000, 1.0f / 127.0f},
                             {31000, 0.0f}});
    EXPECT_EQ(sound.left.size(), 31000u + 16000u);
}

TEST(HostCommandLine, presetFilesThatDoNotFitAreRefused)
{
    const HostRig rig;
    const std::string whole = presetFile("FBCh", 128, "chunk");
    const std::pair<std::string, const char*> rows[] = {
        {presetFile("FBCh", 128, "chunk", "Else"), "belongs to another plug-in"},
        {whole.substr(0, whole.size() - 1), "cut short"},
        {whole.substr(0, 100), "cut short"},
        {"CcnK", "neither a bank nor a program"},
        {std::string(200, 'x'), "neither a bank nor a program"},
        {presetFile("FxCk", 28, ""), "holds no chunk"},
        {presetFile("FxXX", 28, ""), "kind is unknown"},
    };
    for (const auto& [bytes, message] : rows) {
        rig.write("a.fxb", bytes);
        const Outcome outcome = rig.run("-o out.wav --notes C4 --bank a.fxb");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.err, HasSubstr(message));
        EXPECT_EQ(rig.files().size(), 1u);
    }
}

} // namespace tolm
