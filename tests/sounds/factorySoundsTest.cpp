// Every factory sound plays, at its proper level, and ends.

#include "patch/soundTextRules.h"
#include "plugin/catalogue.h"
#include "tools/audition/measure.h"
#include "tools/audition/parallel.h"
#include "tools/soundFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <set>

namespace tolm {
namespace {

constexpr double kAudibleDb = -60.0;
constexpr double kMostMonoLossDb = 3.0; // two unrelated channels lose exactly this much
constexpr double kLongestFadeSeconds = 20.0;

const std::vector<Sound>& factorySounds()
{
    static const std::vector<Sound> sounds =
        readDirectory(std::filesystem::path(TOLM_SOURCE_DIR) / "data" / "factory");
    return sounds;
}

struct Heard {
    Figures soft, usual, hard;
    double peakBeforeNotesDb = 0.0;
};

Figures strike(const ProgramRecord& program, int velocity, double seconds, double tailSeconds)
{
    constexpr int kMiddleKey[] = {48};
    return figuresOf(play(program, heldKeys(kMiddleKey, seconds, velocity), tailSeconds));
}

Heard hear(const ProgramRecord& program)
{
    Heard heard;
    heard.soft = strike(program, 20, 0.5, 0.0);
    heard.hard = strike(program, 127, 0.5, 0.0);
    heard.usual = strike(program, 100, 0.7, kLongestFadeSeconds);
    heard.peakBeforeNotesDb = figuresOf(play(program, silentPhrase(0.1), 0.0)).peakDb;
    return heard;
}

const std::vector<Heard>& heardSounds()
{
    static const std::vector<Heard> heard = [] {
        std::vector<Heard> all(factorySounds().size());
        forAll(
            all.size(), [&](std::size_t i) { all[i] = hear(factorySounds()[i].record); },
            [](std::size_t) {});
        return all;
    }();
    return heard;
}

template <class Check>
void forEachSound(Check&& check)
{
    for (std::size_t i = 0; i < heardSounds().size(); ++i) {
        SCOPED_TRACE(factorySounds()[i].record.name.data());
        check(heardSounds()[i]);
    }
}

TEST(FactorySounds, areSilentUntilAKeyGoesDown)
{
    forEachSound([](const Heard& heard) { EXPECT_LT(heard.peakBeforeNotesDb, -100.0); });
}

TEST(FactorySounds, soundCleanlyAtEveryStroke)
{
    forEachSound([](const Heard& heard) {
        for (const Figures* figures : {&heard.soft, &heard.usual, &heard.hard}) {
            EXPECT_TRUE(figures->finite);
            EXPECT_GT(figures->peakDb, kAudibleDb);
            EXPECT_LT(figures->peakDb, 0.0);
        }
        EXPECT_GT(heard.hard.peakDb, heard.soft.peakDb);
    });
}

TEST(FactorySounds, endAfterTheKeyIsReleased)
{
    forEachSound(
        [](const Heard& heard) { EXPECT_LT(heard.usual.fadeSeconds, kLongestFadeSeconds - 0.1); });
}

TEST(FactorySounds, surviveTheSumToMono)
{
    forEachSound([](const Heard& heard) { EXPECT_LT(heard.usual.monoLossDb, kMostMonoLossDb); });
}

TEST(FactorySounds, haveNamesOfTheirOwn)
{
    std::set<std::string> names;
    for (const Sound& sound : factorySounds()) {
        std::string name(withoutMark(nameOf(sound.record)));
        std::transform(name.begin(), name.end(), name.begin(), [](char c) {
            return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        });
        EXPECT_TRUE(names.insert(name).second) << name;
    }
}

} // namespace
} // namespace tolm
