// The sound of today against the sound that was stored: a change that nobody meant shows.
//
// Of every case golden.txt keeps samples at fixed frames (they show phase and shape) and the levels
// of consecutive stretches (they show everything between). To store today's sound:
//     TOLM_STORE_GOLDEN=1 build/release/tests/render/render_tests --gtest_filter='Golden.*'

#include "plugin/catalogue.h"
#include "plugin/paramText.h"
#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

namespace tolm::test {

namespace {

constexpr int kFrames = 66150;
constexpr int kProbes = 96;
constexpr int kStretches = 12;
// Kernels may round differently from one processor's path to the next; a wrong coefficient, table
// or order of events is far above this.
constexpr double kSmallestSnrDb = 60.0;
constexpr double kLargestLevelDb = 0.02;

const char* const kFile = TOLM_SOURCE_DIR "/tests/render/golden.txt";

struct Setting {
    int id;
    float value;
};

struct Case {
    std::string name; // in the file
    const char* program;
    std::vector<Setting> settings;
    int key = 48;
    int run = 0; // notes that follow one another so fast that voices are stolen
};

// A program per category, and the kinds of effect, filter and oscillator that these leave out.
const std::vector<Case> kCases = {
    {"arpeggiated", "Clockwork Minor", {}},
    {"bass", "Rubber Acid", {}, 33},
    {"chords", "Minor Seven Stab", {}},
    {"drums", "Box Wood", {}, 60},
    {"keyboards", "Amber Tines", {}},
    {"leads", "Torn Sync", {}, 60},
    {"mallets", "Rosewood Bars", {}, 60},
    {"pads", "Bowed Aurora", {}},
    {"plucked", "Comb Strings", {}},
    {"soundEffects", "Turbine Gate", {}},
    {"synths", "Comp Engine", {}},
    {"textures", "Slow Machinery", {}},
    {"wind", "Willow Flute", {}, 60},
    {"fm", "Init Patch", {{kOsc1Shape, 0.7f}, {kOsc2Shape, 0.7f}, {kOscFm, 0.2f}}},
    {"equalisers", "Init Patch", {{kEq1On, 1.0f}, {kEq2On, 1.0f}, {kEq2Gain, 0.9f}}},
    {"polyphony", "Amber Tines", {{kPolyphony, 0.0f}}, 36, 40},
    {"monoLine", "Round Anchor", {{kMonoMode, 1.0f}, {kGlide, 0.6f}}, 36, 20},
};

// "Init Patch" through every type of every effect, one at a time. Neighbouring values with one text
// are one type; its middle is played.
std::vector<Case> effectTypes()
{
    struct Effect {
        const char* name;
        int on;
        int type;
    };
    constexpr Effect kEffects[] = {{"distortion", kDistOn, kDistType},
                                   {"phaser", kPhaserOn, kPhaserType},
                                   {"delay", kDelayOn, kDelayType},
                                   {"reverb", kReverbOn, kReverbType},
                                   {"equaliser", kEq1On, kEq1Type}};
    constexpr int kProbedValues = 512;
    std::vector<Case> cases;
    for (const Effect& effect : kEffects) {
        const auto textAt = [&effect](int probe) {
            const float value = static_cast<float>(probe) / kProbedValues;
            return std::string(parameterText(effect.type, value, {}).view());
        };
        for (int first = 0; first <= kProbedValues;) {
            int end = first;
            while (end <= kProbedValues && textAt(end) == textAt(first))
                ++end;
            const float middle = static_cast<float>(first + end - 1) / (2.0f * kProbedValues);
            cases.push_back({std::string(effect.name) + ' ' + textAt(first),
                             "Init Patch",
                             {{effect.on, 1.0f},
                              {effect.type, middle},
                              {kEq1Type + 3, 0.8f},
                              {kAmpSustain, 0.4f}}});
            first = end;
        }
    }
    return cases;
}

// Numbers of one case in the order of the file: probes, then levels.
using Numbers = std::vector<double>;
using Store = std::map<std::string, Numbers>;

Numbers measure(const Stereo& sound)
{
    Numbers numbers;
    const std::size_t frames = sound.frames();
    const std::size_t stride = frames / (kProbes + 1) / 2 * 2 + 1;
    for (std::size_t i = 1; i <= kProbes; ++i) {
        const std::vector<float>& channel = i % 2 == 0 ? sound.left : sound.right;
        numbers.push_back(channel[std::min(i * stride, frames - 1)]);
    }
    for (std::size_t i = 0; i < kStretches; ++i) {
        double sum = 0.0;
        for (std::size_t n = i * frames / kStretches; n < (i + 1) * frames / kStretches; ++n)
            sum += std::pow(sound.left[n], 2.0) + std::pow(sound.right[n], 2.0);
        numbers.push_back(std::sqrt(sum / static_cast<double>(frames) * kStretches / 2.0));
    }
    return numbers;
}

Stereo play(const Case& c)
{
    PluginRig rig;
    rig.tempo = 120.0;
    rig.selectProgram(c.program);
    for (const Setting& setting : c.settings)
        rig.set(setting.id, setting.value);
    std::vector<Message> music = {noteOn(0, c.key),
                                  noteOn(5000, c.key + 7, 80),
                                  {20000, {0xB0, 1, 70}},
                                  noteOff(40000, c.key),
                                  noteOff(44000, c.key + 7)};
    for (int i = 0; i < c.run; ++i) {
        music.push_back(noteOn(700 * i, c.key + 5 * i % 24));
        music.push_back(noteOff(700 * i + 8000, c.key + 5 * i % 24));
    }
    std::stable_sort(music.begin(), music.end(),
                     [](const Message& a, const Message& b) { return a.frame < b.frame; });
    return rig.render(kFrames, music);
}

Store readStore()
{
    Store store;
    std::ifstream stream(kFile);
    std::string name;
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        if (line[0] != ' ') {
            name = line;
            continue;
        }
        std::istringstream numbers(line);
        for (double number = 0.0; numbers >> number;)
            store[name].push_back(number);
    }
    return store;
}

void writeStore(const std::vector<std::pair<std::string, Numbers>>& cases)
{
    std::ofstream stream(kFile);
    stream << "# Stored sound: samples at fixed frames, then levels. goldenTest.cpp writes it.\n";
    for (const auto& [name, numbers] : cases) {
        stream << name;
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            char text[32];
            std::snprintf(text, sizeof text, "%s%.7g", i % 8 == 0 ? "\n  " : " ", numbers[i]);
            stream << text;
        }
        stream << '\n';
    }
}

struct Difference {
    double snrDb = 0.0;   // of the probes
    double levelDb = 0.0; // largest change of a stretch
};

Difference differenceOf(const Numbers& stored, const Numbers& now)
{
    double level = 0.0;
    double error = 1e-30;
    for (std::size_t i = 0; i < kProbes; ++i) {
        level += stored[i] * stored[i];
        error += (stored[i] - now[i]) * (stored[i] - now[i]);
    }
    Difference difference{10.0 * std::log10(level / error), 0.0};
    for (std::size_t i = kProbes; i < stored.size(); ++i) {
        // Silence has no level in dB; -100 dB of full scale is silence enough.
        const double change = 20.0 * std::log10((now[i] + 1e-5) / (stored[i] + 1e-5));
        difference.levelDb = std::max(difference.levelDb, std::abs(change));
    }
    return difference;
}

} // namespace

TEST(Golden, everyCaseSoundsAsStored)
{
    std::vector<std::pair<std::string, Numbers>> all;
    for (const std::vector<Case>& cases : {kCases, effectTypes()})
        for (const Case& c : cases)
            all.emplace_back(c.name, measure(play(c)));
    if (std::getenv("TOLM_STORE_GOLDEN") != nullptr) {
        writeStore(all);
        GTEST_SKIP() << "stored " << kFile;
    }
    const Store store = readStore();
    EXPECT_EQ(store.size(), all.size());
    for (const auto& [name, now] : all) {
        SCOPED_TRACE(name);
        const auto stored = store.find(name);
        ASSERT_NE(stored, store.end()) << "nothing is stored for it";
        ASSERT_EQ(stored->second.size(), now.size());
        const Difference difference = differenceOf(stored->second, now);
        EXPECT_GT(difference.snrDb, kSmallestSnrDb);
        EXPECT_LT(difference.levelDb, kLargestLevelDb);
    }
}

// What the comparison is there for: small unmeant changes fail it.
TEST(Golden, aSmallChangeFailsTheComparison)
{
    for (const Setting change : {Setting{kFilterCutoff, 0.01f}, Setting{kOsc2Fine, 0.02f},
                                 Setting{kFilterResonance, 0.02f}, Setting{kAmpRelease, 0.02f}}) {
        Case changed = kCases[11];
        PluginRig rig;
        rig.selectProgram(changed.program);
        changed.settings = {{change.id, rig.get(change.id) + change.value}};
        const Difference difference =
            differenceOf(measure(play(kCases[11])), measure(play(changed)));
        EXPECT_LT(difference.snrDb, kSmallestSnrDb) << change.id;
    }
}

} // namespace tolm::test
