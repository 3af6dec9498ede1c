// Every pattern of the menu plays what its name promises, at 120 bpm, and lets go with the keys.

#include "SynthRig.h"
#include "patch/factoryPatterns.h"
#include "patch/soundTextFields.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <ostream>
#include <sstream>
#include <string>

namespace tolm {
namespace {

using test::SynthRig;

constexpr double kRate = 48000.0;
constexpr double kEighth = 0.25; // seconds at 120 bpm
constexpr double kEighthTriplet = kEighth * 2.0 / 3.0;
constexpr double kSixteenth = 0.125;
constexpr int kLowestKey = 48;

struct Onset {
    int frame;
    int key;

    auto operator<=>(const Onset&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Onset& onset)
{
    return out << "{" << onset.frame << ", " << onset.key << "}";
}

// A score: per step the semitones over the lowest key that begin there, "." for nothing, several
// notes joined by "+"; behind it the keys held and how late every third of four steps is.
struct Claim {
    const char* name;
    double stepSeconds;
    const char* score;
    std::vector<int> held = {kLowestKey};
    double lateSteps = 0.0;
    int stack = 1; // stacked voices; of several only the odd ones count, which the pattern plays
};

const std::vector<int> kTriad = {48, 52, 55};
const std::vector<int> kFourKeys = {48, 52, 55, 59};
const std::vector<Claim> kClaims = {
    {"Octave Pulse", kEighth, "0 12"},
    {"Sixteen Roots", kSixteenth, "0 . 0 . 0 . 0 ."},
    {"Offbeat", kSixteenth, ". . 0 ."},
    {"Gallop", kSixteenth, "0 . 0 0"},
    {"Roll 3-3-2", kSixteenth, "0 0 12 0 0 12 0 12"},
    {"Major Climb", kSixteenth, "0 4 7 12"},
    {"Minor Climb", kSixteenth, "0 3 7 12"},
    {"Minor Wave", kEighthTriplet, "0 3 7 12 7 3"},
    {"Sus Ladder", kSixteenth, "0 5 7 12 14 12 7 5"},
    {"Penta Run", kSixteenth, "0 3 5 7 10 12 15 17"},
    {"Fifth Bounce", kEighth, "0 7 12 7"},
    {"Octave Fall", kSixteenth, "24 12 0 12"},
    {"Ninth Cascade", kSixteenth, "0 7 14 19 24 19 14 7"},
    {"Acid One", kSixteenth, "0 0 12 . 3 0 . 10 0 . 12 . 5 3 0 ."},
    {"Acid Two", kSixteenth, "0 . 0 12 0 . 15 . 10 . 0 0 7 . 3 ."},
    {"Tresillo Bass", kSixteenth, "0 . . 0 . . 0 ."},
    {"Walk Ten", kEighth, "0 2 3 5 7 8 7 5 3 2"},
    {"Waltz", kEighth, "0 . 7 . 12 ."},
    {"Seven Eight", kEighth, "0 . 7 . 12 10 7"},
    {"Broken Thirds", kSixteenth, "0 4 2 5 4 7 5 9"},
    {"Son Clave", kSixteenth, "* . . * . . * . . . * . * . . .", kTriad},
    {"Rumba Clave", kSixteenth, "* . . * . . . * . . * . * . . .", kTriad},
    {"Bossa", kSixteenth, "* . . * . . * . . . * . . * . .", kTriad},
    {"House Stabs", kSixteenth, ". . * . . . * . . . * . . . * .", kTriad},
    {"Euclid 5-16", kSixteenth, "* . . * . . * . . * . . * . . .", kTriad},
    {"Charleston", kSixteenth, "* . . . . . * . . . . . . . . .", kTriad, 4.0 / 32.0},
    {"Braid", kSixteenth, "0 4 7 4 11 7 4 7", kFourKeys},
    {"Alberti Hands", kEighth, "0 7 4 7", kTriad},
    {"Two Part", kEighth, "0+12 . 7+16 . 12+19 . 7+16 ."},
    {"Drone Tune", kEighth, "0+12 14 15 19 17 15 14 12"},
    {"Held And Rolling", kSixteenth, "0 12 0 12 7 12 0 12", {kLowestKey}, 0.0, 2},
    {"Fanfare", kSixteenth, "0 . 0 0 7 . 12 . . . . ."},
    {"Trance Gate", kSixteenth, ""},
    {"Filter Stairs", kSixteenth, ""},
};

const ProgramRecord* patternCalled(std::string_view name)
{
    for (std::size_t i = 0; i < factoryPatterns().size(); ++i)
        if (factoryPatternName(i) == name)
            return &factoryPatterns()[i];
    return nullptr;
}

std::vector<std::string> wordsOf(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<Onset> expectedOnsets(const Claim& claim, int passes)
{
    const std::vector<std::string> steps = wordsOf(claim.score);
    std::vector<Onset> onsets;
    for (std::size_t i = 0; i < static_cast<std::size_t>(passes) * steps.size(); ++i) {
        const std::size_t step = i % steps.size();
        const double late = step % 4 == 2 ? claim.lateSteps : 0.0;
        const double seconds = (static_cast<double>(i) + late) * claim.stepSeconds;
        const int frame = static_cast<int>(std::lround(seconds * kRate));
        std::string notes = steps[step];
        std::replace(notes.begin(), notes.end(), '+', ' ');
        for (const std::string& note : wordsOf(notes))
            if (note == "*")
                for (const int key : claim.held)
                    onsets.push_back({frame, key});
            else if (note != ".")
                onsets.push_back({frame, kLowestKey + std::stoi(note)});
    }
    std::sort(onsets.begin(), onsets.end());
    return onsets;
}

class PatternRig {
public:
    PatternRig(const ProgramRecord& pattern, int stack) : stack_(stack)
    {
        rig_.synth->setSampleRate(static_cast<float>(kRate));
        rig_.synth->setProgram(kProgramCount - 1);
        // The order in which choosing a pattern sets its values.
        set(pattern, kArpMode);
        for (int id = kArpVelocity1 + kArpSteps - 1; id >= kArpNote1; --id)
            set(pattern, id);
        for (const int id : {kArpStepCount, kArpSync, kArpRate, kArpLength, kArpSwing})
            set(pattern, id);
        const std::string voices = std::to_string(stack) + " voices";
        rig_.synth->setParameter(kVoices, *valueOfWords(kVoices, voices));
        rig_.synth->setParameter(kPolyphony, 1.0f);
        rig_.synth->setParameter(kArpOn, 1.0f);
        rig_.process(1);
    }

    void keys(const std::vector<int>& keys, bool down)
    {
        std::vector<SynthRig::Midi> events;
        for (const int key : keys)
            events.push_back({0, down ? 0x90 : 0x80, key, 100});
        rig_.send(events);
    }

    // What starts in the time, counted from its first frame.
    std::vector<Onset> play(double seconds)
    {
        constexpr int kBlock = 64;
        std::vector<Onset> onsets;
        const int frames = static_cast<int>(seconds * kRate);
        for (int end = kBlock; end <= frames; end += kBlock) {
            rig_.process(kBlock);
            for (std::size_t v = 0; v < kVoiceCount; ++v)
                if (isPattern(v) && rig_.record().voiceNote[v].age <= kBlock)
                    onsets.push_back({end - static_cast<int>(rig_.record().voiceNote[v].age),
                                      rig_.record().voiceNote[v].note});
        }
        std::sort(onsets.begin(), onsets.end());
        return onsets;
    }

    bool holdsANote()
    {
        for (std::size_t v = 0; v < kVoiceCount; ++v)
            if (rig_.record().voiceActive[v] != 0 && rig_.record().voiceReleased[v] == 0)
                return true;
        return false;
    }
    ArpeggiatorState& arp() { return rig_.arp(); }

private:
    void set(const ProgramRecord& from, int id)
    {
        rig_.synth->setParameter(id, from.values[static_cast<std::size_t>(id)]);
    }
    bool isPattern(std::size_t v)
    {
        return rig_.record().voiceActive[v] != 0 &&
               (stack_ == 1 || rig_.record().voiceUnisonIndex[v] % 2 == 1);
    }

    SynthRig rig_;
    int stack_;
};

TEST(Patterns, beginTheirNotesWhereTheirScoreHasThem)
{
    ASSERT_EQ(factoryPatterns().size(), kClaims.size() + 1); // the first is the user's own
    EXPECT_EQ(factoryPatternName(0), "User Pattern");
    for (const Claim& claim : kClaims) {
        SCOPED_TRACE(claim.name);
        const ProgramRecord* pattern = patternCalled(claim.name);
        ASSERT_TRUE(pattern);
        const auto steps = wordsOf(claim.score).size();
        if (steps == 0)
            continue; // moves modulation only
        const bool once = pattern->values[kArpMode] == static_cast<float>(ArpMode::oneShot);
        PatternRig rig(*pattern, claim.stack);
        rig.keys(claim.held, true);
        const double pass = static_cast<double>(steps) * claim.stepSeconds;
        const std::vector<Onset> played = rig.play(2.0 * pass - 0.002);
        const std::vector<Onset> expected = expectedOnsets(claim, once ? 1 : 2);
        ASSERT_EQ(played.size(), expected.size()) << testing::PrintToString(played);
        for (std::size_t i = 0; i < played.size(); ++i) {
            EXPECT_EQ(played[i].key, expected[i].key) << expected[i];
            EXPECT_NEAR(played[i].frame, expected[i].frame, 1) << expected[i];
        }
        rig.keys(claim.held, false);
        EXPECT_TRUE(rig.play(pass + 0.1).empty());
        EXPECT_FALSE(rig.holdsANote());
    }
}

TEST(Patterns, modulationPatternsMoveTheirSources)
{
    PatternRig gate(*patternCalled("Trance Gate"), 1);
    gate.keys(kTriad, true);
    for (const double level : {1.0, 0.02, 1.0, 1.0, 0.02, 1.0, 0.02, 1.0, 1.0}) {
        gate.play(kSixteenth / 2.0);
        EXPECT_NEAR(gate.arp().velocityOut, level, 1e-6);
        gate.play(kSixteenth / 2.0);
    }
    PatternRig stairs(*patternCalled("Filter Stairs"), 1);
    stairs.keys(kTriad, true);
    for (int step = 0; step < 16; ++step) {
        stairs.play(kSixteenth / 2.0);
        EXPECT_NEAR(stairs.arp().noteOut, (8 * step + 1) / 128.0, 1e-6);
        stairs.play(kSixteenth / 2.0);
    }
}

} // namespace
} // namespace tolm
