// Every factory sound plays, at its proper level, and ends.

#include "factoryBank.h"
#include "plugin/catalogue.h"
#include "tools/audition/Phrase.h"
#include "tools/audition/measure.h"
#include "tools/audition/parallel.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

constexpr double kAudibleDb = -60.0;
constexpr double kMostMonoLossDb = 3.0; // two unrelated channels lose exactly this much
constexpr double kSoftestLufs = -36.0;  // at velocity 40
constexpr double kLongestFadeSeconds = 20.0;
constexpr int kLowKey = 24;
constexpr int kMiddleKey = 48;
constexpr int kHighKey = 96;

struct Heard {
    Figures soft, usual, hard;
    Figures low, high; // C1 and C7
    double peakBeforeNotesDb = 0.0;
};

Figures strike(const ProgramRecord& program, int key, int velocity, double seconds,
               double tailSeconds = 0.0)
{
    return figuresOf(play(program, heldKeys({&key, 1}, seconds, velocity), tailSeconds));
}

Heard hear(const ProgramRecord& program)
{
    Heard heard;
    heard.soft = strike(program, kMiddleKey, 20, 0.5);
    heard.hard = strike(program, kMiddleKey, 127, 0.5);
    heard.low = strike(program, kLowKey, 100, 0.5);
    heard.high = strike(program, kHighKey, 100, 0.5);
    heard.usual = strike(program, kMiddleKey, 100, 0.7, kLongestFadeSeconds);
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

TEST(FactorySounds, soundCleanlyAtEveryStrokeAndKey)
{
    forEachSound([](const Heard& heard) {
        for (const Figures* figures :
             {&heard.soft, &heard.usual, &heard.hard, &heard.low, &heard.high}) {
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

// With the category's phrase: the hardest stroke does not hurt, a soft one is still there.
TEST(FactorySounds, keepTheirLoudnessInsideTheHands)
{
    struct Loud {
        double hard = 0.0;
        double soft = 0.0;
    };
    const auto& sounds = factorySounds();
    std::vector<Loud> loud(sounds.size());
    const auto momentary = [&](std::size_t i, int velocity) {
        const int category = categoryOf(sounds[i].record);
        return loudnessOf(play(sounds[i].record, categoryPhrase(category, velocity), 0.5))
            .momentary;
    };
    forAll(
        sounds.size(),
        [&](std::size_t i) {
            loud[i] = {momentary(i, 127), momentary(i, 40)};
        },
        [](std::size_t) {});
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        SCOPED_TRACE(sounds[i].record.name.data());
        EXPECT_LT(loud[i].hard, loudestStroke(categoryOf(sounds[i].record)));
        EXPECT_GT(loud[i].soft, kSoftestLufs);
    }
}

TEST(FactorySounds, surviveTheSumToMono)
{
    forEachSound([](const Heard& heard) { EXPECT_LT(heard.usual.monoLossDb, kMostMonoLossDb); });
}

} // namespace
} // namespace tolm
