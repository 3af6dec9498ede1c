// Readable scores: sounds, repeats, controllers and what is wrong with a line.

#include "tools/score.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tolm {
namespace {

Score scoreOf(const std::string& text)
{
    const std::filesystem::path path = std::filesystem::path(TOLM_BUILD_DIR) / "scoreTest.score";
    std::ofstream(path) << text;
    const Score score = readScore(path.string());
    std::filesystem::remove(path);
    return score;
}

std::string errorOf(const std::string& text)
{
    try {
        scoreOf(text);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "accepted";
}

TEST(Scores, repeatLinesAndNameSounds)
{
    const Score score = scoreOf("track Bass\nsound Round Anchor@-2\nx3 C2:1 R:1 G2:2 |\n");
    ASSERT_EQ(score.tracks.size(), 1u);
    EXPECT_EQ(score.tracks[0].sound, "Round Anchor@-2");
    EXPECT_EQ(score.tracks[0].beat, 12.0);
    EXPECT_EQ(score.tracks[0].events.size(), 12u); // on and off of six notes
}

TEST(Scores, controllersMoveBesideTheMusic)
{
    const Score score = scoreOf("track A\ntrack B\nC4:1 wheel=0>1:2 C4:2 bend=-1 pedal=1 R:1 |\n");
    const ScoreTrack& track = score.tracks[1];
    EXPECT_EQ(track.beat, 4.0);
    std::vector<int> wheel;
    for (const ScoreEvent& event : track.events)
        if (event.message[0] == '\xB1' && event.message[1] == 1)
            wheel.push_back(event.message[2]);
    EXPECT_EQ(wheel.front(), 0);
    EXPECT_EQ(wheel.back(), 127);
    EXPECT_TRUE(std::is_sorted(wheel.begin(), wheel.end()));
    EXPECT_GT(wheel.size(), 40u);
    const auto at = [&](const std::string& message) {
        for (const ScoreEvent& event : track.events)
            if (event.message == message)
                return event.tick;
        return std::int64_t{-1};
    };
    EXPECT_EQ(at(midiBytes({0xB1, 1, 127})), 3 * kTicksPerBeat); // the ramp's end
    EXPECT_EQ(at(midiBytes({0xE1, 0, 0})), 3 * kTicksPerBeat);
    EXPECT_EQ(at(midiBytes({0xB1, 64, 127})), 3 * kTicksPerBeat);
}

TEST(Scores, errorsNameTheLine)
{
    const auto endsWith = [](const char* text) { return ::testing::EndsWith(text); };
    EXPECT_THAT(errorOf("track A\nC4:1 |\n"), ::testing::HasSubstr(":2: a bar line at beat 1"));
    EXPECT_THAT(errorOf("track A\nwheal=1\n"), endsWith(":2: no such control: \"wheal\""));
    EXPECT_THAT(errorOf("track A\nwheel=0>2:1\n"), endsWith(":2: no number in range: \"2\""));
    EXPECT_THAT(errorOf("track A\nwheel=0>1\n"), endsWith(":2: a ramp is \"FROM>TO:BEATS\""));
    EXPECT_THAT(errorOf("track A\nx0 C4:1\n"), endsWith(":2: no number in range: \"0\""));
    EXPECT_THAT(errorOf("C4:1\n"), endsWith(":1: music before the first track"));
}

TEST(Scores, theMidiFilesOfTheDemoAreTheirs)
{
    const std::filesystem::path folder = std::filesystem::path(TOLM_SOURCE_DIR) / "data" / "demo";
    int scores = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::filesystem::path path = entry.path();
        if (path.extension() != ".score")
            continue;
        ++scores;
        const std::string expected = midiFile(readScore(path.string()));
        std::ifstream file(path.replace_extension(".mid"), std::ios::binary);
        const std::string found{std::istreambuf_iterator<char>(file), {}};
        EXPECT_TRUE(found == expected) << path << ": tolm-score SCORE -o MID makes it anew";
    }
    EXPECT_GE(scores, 4);
}

} // namespace
} // namespace tolm
