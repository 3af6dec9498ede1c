// Sounds as text, as preset files and as what Tolm plays: the whole way and back.

#include "tests/host/HostRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tolm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kBeep = R"(category = "Leads"

[[program]]
name = "Beep"
description = "One plain tone."
"Osc 1 Coarse" = 0.5
"Osc 1 Fine" = 0.5
"Osc 2 Coarse" = 0.5
"Osc 2 Fine" = 0.5
"Filter Cutoff" = 1.0
"Amp Sustain" = 1.0
"Volume" = 0.5
"Arp Sync" = 1.0
"Poly" = 0.25
)";

class SoundExchange : public ::testing::Test {
protected:
    void convert(const std::string& arguments) const
    {
        const Outcome outcome = rig.runBank(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
    }
    const HostRig rig;
};

TEST_F(SoundExchange, aTextBecomesAProgramFileAndTheSameTextAgain)
{
    rig.write("beep.toml", kBeep);
    convert("fxp beep.toml -o first.fxp");
    EXPECT_EQ(rig.read("first.fxp").size(), 235620u);
    EXPECT_EQ(rig.read("first.fxp").substr(28, 5), std::string("Beep\0", 5));
    convert("text first.fxp -o once.toml");
    convert("fxp once.toml -o second.fxp");
    EXPECT_TRUE(rig.read("first.fxp").substr(60) == rig.read("second.fxp").substr(60));
    EXPECT_THAT(rig.read("once.toml"), HasSubstr("\"PatchCategory\" = \"Leads\""));
}

TEST_F(SoundExchange, aBankKeepsItsSoundsInOrderAndLeavesOutFreePlaces)
{
    const std::string text = std::string(kBeep) + "\n[[program]]\nname = \"Deep\"\n" +
                             "\"Volume\" = 0.25\n\"Arp On\" = true\n";
    rig.write("two.toml", text);
    convert("fxb two.toml -o two.fxb");
    EXPECT_EQ(rig.read("two.fxb").size(), 235720u);
    convert("text two.fxb -o again.toml");
    const std::string again = rig.read("again.toml");
    EXPECT_LT(again.find("Beep"), again.find("Deep"));
    EXPECT_EQ(again.find("Init"), again.npos) << again;
    convert("fxb again.toml -o again.fxb");
    convert("text again.fxb -o third.toml");
    EXPECT_EQ(rig.read("third.toml"), again);
}

TEST_F(SoundExchange, anInitialPatchBesideTheTextFillsWhatItLeavesOut)
{
    rig.write("init.toml", "[[program]]\nname = \"Start\"\n\"Volume\" = 0.75\n");
    rig.write("a.toml", "[[program]]\nname = \"A\"\n\"Filter Cutoff\" = 0.5\n");
    convert("fxp a.toml -o a.fxp");
    convert("text a.fxp -o b.toml");
    EXPECT_EQ(rig.read("b.toml").find("Volume"), std::string::npos);
    std::filesystem::create_directory(rig.path("elsewhere"));
    convert("text a.fxp -o elsewhere/c.toml");
    EXPECT_THAT(rig.read("elsewhere/c.toml"), HasSubstr("\"Volume\" = 0.75"));
}

TEST_F(SoundExchange, badTextsAndFilesGetOneLineAndLeaveNothing)
{
    rig.write("key.toml", "[[program]]\nname = \"A\"\n\"Filter Cutof\" = 0.5\n");
    rig.write("value.toml", "[[program]]\nname = \"A\"\n\n\"Filter Cutoff\" = 1.5\n");
    rig.write("none.toml", "");
    rig.write("noise.fxp", std::string(300, 'x'));
    const std::pair<const char*, const char*> rows[] = {
        {"fxp key.toml -o x.fxp", "tolm-bank: key.toml:3: Filter Cutof: "},
        {"fxb value.toml -o x.fxb", "tolm-bank: value.toml:4: Filter Cutoff: "},
        {"fxp none.toml -o x.fxp", "tolm-bank: none.toml: exactly one program"},
        {"fxp missing.toml -o x.fxp", "tolm-bank: missing.toml: cannot be read"},
        {"text noise.fxp -o x.toml", "tolm-bank: noise.fxp: is no whole preset file"},
        {"text missing.fxb -o x.toml", "tolm-bank: missing.fxb: is no whole preset file"},
    };
    for (const auto& [arguments, line] : rows) {
        const Outcome outcome = rig.runBank(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments;
        EXPECT_THAT(outcome.err, StartsWith(line));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
    EXPECT_THAT(rig.files(), ElementsAre("key.toml", "noise.fxp", "none.toml", "value.toml"));
}

TEST_F(SoundExchange, tolmPlaysProgramAndBankFilesAndTellsThemApart)
{
    rig.write("beep.toml", kBeep);
    convert("fxp beep.toml -o beep.fxp");
    convert("fxb beep.toml -o beep.fxb");
    convert("fxb beep.toml -o misnamed.fxp");
    const auto play = [this](const std::string& file) {
        return rig.runPlain("--plugin " TOLM_PLUGIN " -o out.wav --notes 'A4 1' " + file);
    };
    for (const char* file : {"misnamed.fxp", "none.fxp"}) {
        const Outcome outcome = play("--program " + std::string(file));
        EXPECT_NE(outcome.status, 0);
        EXPECT_EQ(outcome.err.find("is a bank: use --bank") != std::string::npos,
                  file == std::string("misnamed.fxp"));
    }
    EXPECT_FALSE(std::filesystem::exists(rig.path("out.wav")));
    // Oscillators start anywhere, so the files are compared by pitch and not by sample: 440 Hz rise
    // through zero 110 times in a quarter of a second.
    for (const char* file : {"--program beep.fxp", "--bank beep.fxb --program Beep"}) {
        const Outcome outcome = play(file);
        ASSERT_EQ(outcome.status, 0) << outcome.err;
        const Sound sound = rig.readSound("out.wav");
        int rises = 0;
        for (std::size_t i = 11025; i < 22050; ++i)
            rises += sound.left[i - 1] < 0.0f && sound.left[i] >= 0.0f;
        EXPECT_NEAR(rises, 110, 2) << file;
    }
    const Outcome list =
        rig.runPlain("--plugin " TOLM_PLUGIN " --program beep.fxp --list-programs");
    EXPECT_THAT(list.out, StartsWith("   0  Beep\n"));
}

} // namespace
} // namespace tolm
