// The readable form of sounds: amounts, round trips, error messages, hostile texts.

#include "patch/soundText.h"

#include "plugin/catalogue.h"
#include "plugin/menus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

namespace tolm {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr const char* kFile = "keys.toml";

SoundTextStatus read(const std::string& text, std::vector<Sound>& sounds)
{
    return readSounds(text, kFile, blankRecord(), sounds);
}

std::string errorOf(const std::string& text)
{
    std::vector<Sound> sounds;
    const SoundTextStatus error = read(text, sounds);
    EXPECT_TRUE(sounds.empty());
    return error ? error->text() : "accepted";
}

ProgramRecord recordOf(const std::string& lines)
{
    std::vector<Sound> sounds;
    const SoundTextStatus error = read("[[program]]\nname = \"Test\"\n" + lines, sounds);
    EXPECT_FALSE(error) << error->text();
    return sounds.empty() ? ProgramRecord{} : sounds.front().record;
}

// Values at the places where encodings could lose bits: exact words, plain floats, extremes.
float randomValue(std::mt19937& random)
{
    const auto below = [&random](unsigned n) { return static_cast<float>(random() % n); };
    const float values[] = {0.0f,
                            1.0f,
                            below(129) / 128.0f,
                            below(101) / 100.0f,
                            std::ldexp(below(1000), -30),
                            below(1 << 24) / 16777216.0f};
    return values[random() % std::size(values)];
}

int randomId(std::mt19937& random, std::span<const MenuEntry> menu)
{
    const int id = menu[random() % menu.size()].id;
    return id == kSeparatorId ? 0 : id;
}

ProgramRecord randomRecord(std::mt19937& random)
{
    ProgramRecord record = blankRecord();
    const std::string name = "R \"" + std::to_string(random() % 100000) + "\\";
    std::copy(name.begin(), name.end(), record.name.begin());
    for (unsigned i = 0; i < random() % 480; ++i)
        record.description[i] = static_cast<char>(' ' + random() % 95);
    const auto set = [&record](int id, float value) {
        record.values[static_cast<std::size_t>(id)] = value;
    };
    for (int id = 0; id <= kPatchCategory; ++id)
        if (std::strcmp(kCatalogue[id].name, "Reserved") != 0)
            set(id, randomValue(random));
    set(kFmMode, static_cast<float>(randomId(random, kFmModeMenu)));
    set(kArpMode, static_cast<float>(randomId(random, kArpModeMenu)));
    set(kFilterType, static_cast<float>(random() % 18));
    set(kPatchCategory, static_cast<float>(random() % 14));
    const ProgramRecord blank = blankRecord();
    for (int row = 0; row < kStoredMatrixRows; ++row) {
        const bool used = row < kMatrixRows && random() % 3 > 0;
        for (const int group : {kModSource1, kModAmount1, kModDestination1, kModVoices1})
            set(group + row, blank.values[static_cast<std::size_t>(group + row)]);
        if (!used)
            continue;
        set(kModSource1 + row, static_cast<float>(randomId(random, kSourceMenu)));
        set(kModDestination1 + row, static_cast<float>(randomId(random, kDestinationMenu)));
        set(kModVoices1 + row, static_cast<float>(random() % 27));
        set(kModAmount1 + row, randomValue(random));
    }
    for (int slot = kEffectSlots - 1; slot > 0; --slot)
        std::swap(record.values[static_cast<std::size_t>(kEffectOrder1 + slot)],
                  record.values[kEffectOrder1 + random() % static_cast<unsigned>(slot + 1)]);
    return record;
}

TEST(SoundText, everyWholePercentSurvivesTheEnginesTruncation)
{
    for (int percent = -100; percent <= 100; ++percent) {
        const std::string text = std::to_string(percent) + "e-2";
        const double amount = std::stod(text);
        const float stored = storedAmount(amount);
        ASSERT_GE(stored, 0.0f);
        ASSERT_LE(stored, 1.0f);
        // What the engine does: twice the value minus one in floats, then double arithmetic.
        const float twice = stored * 2.0f;
        const double engine = static_cast<double>(twice - 1.0f);
        EXPECT_EQ(std::trunc(engine * 100.0), percent);
        EXPECT_NEAR(engine, amount, 2.0e-7) << "the nudge must stay inaudible";
        EXPECT_GE(std::fabs(engine), std::fabs(amount));
        if (percent >= 0) {
            EXPECT_EQ(std::trunc(engine * 100.0 + 0.001), percent);
        }
    }
}

TEST(SoundText, randomRecordsSurviveTextToTheLastBit)
{
    std::mt19937 random(1);
    for (int round = 0; round < 150; ++round) {
        const ProgramRecord base = round % 2 ? randomRecord(random) : blankRecord();
        const std::vector<ProgramRecord> records{randomRecord(random), randomRecord(random)};
        std::string text;
        const SoundTextStatus failed = writeSounds(records, base, round % 14, text);
        ASSERT_FALSE(failed) << failed->text();
        std::vector<Sound> sounds;
        const SoundTextStatus error = readSounds(text, kFile, base, sounds);
        ASSERT_FALSE(error) << error->text() << "\n" << text;
        ASSERT_EQ(sounds.size(), records.size());
        std::vector<ProgramRecord> again;
        for (std::size_t i = 0; i < records.size(); ++i) {
            again.push_back(sounds[i].record);
            ASSERT_EQ(std::memcmp(&records[i], &sounds[i].record, sizeof records[i]), 0) << text;
        }
        std::string second;
        ASSERT_FALSE(writeSounds(again, base, round % 14, second));
        EXPECT_EQ(text, second);
    }
}

TEST(SoundText, wordsStandForWhatTheEngineMakesOfTheirValues)
{
    const auto value = [](const std::string& line, int id) {
        return recordOf(line).values[static_cast<std::size_t>(id)];
    };
    const struct {
        const char* key;
        int id;
        int first, last;
        const char *before, *after; // of the number
        int (*engine)(float);
    } numbers[] = {
        {"Osc 1 Coarse", kOsc1Coarse, -36, 36, "", " st",
         [](float v) { return static_cast<int>(v * 72.0f + 0.0001f) - 36; }},
        {"Osc 1 Wave", kOsc1Wave, 0, kWaveCount - 1, "wave ", "",
         [](float v) { return static_cast<int>(v * 128.0f + 0.001f); }},
        {"Voices", kVoices, 1, kMaxStack, "", " voices",
         [](float v) { return static_cast<int>(v * 128.0f) / 18 + 1; }},
        {"Poly", kPolyphony, 8, 72, "", " voices",
         [](float v) { return static_cast<int>(v * 64.0f) + 8; }},
        {"Arp Steps", kArpStepCount, 1, kArpSteps, "", " steps",
         [](float v) { return static_cast<int>(v * 31.0f) + 1; }},
    };
    const auto line = [](const char* key, const std::string& word) {
        return '"' + std::string(key) + "\" = \"" + word + '"';
    };
    for (const auto& row : numbers)
        for (int n = row.first; n <= row.last; ++n) {
            const std::string text = line(row.key, row.before + std::to_string(n) + row.after);
            EXPECT_EQ(row.engine(value(text, row.id)), n) << text;
        }
    const char* shapes[] = {"Saw", "Pulse", "Sine", "Wavetbl"};
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(static_cast<int>(value(line("Osc 2 Shape", shapes[k]), kOsc2Shape) * 3.0f), k);
    for (int i = 0; i <= 20; ++i) {
        const float arp = value(line("Arp Rate", kArpLengths[i].name), kArpRate);
        EXPECT_EQ(static_cast<int>(20.01f * arp), i);
        const float delay = value(line("FX Delay Rate-L", kDelayLengths[i].name), kDelayRateLeft);
        EXPECT_EQ(static_cast<int>(20.001f * delay), i);
    }
    EXPECT_EQ(value("\"Filter Type\" = \"LP Ladder 24dB\"", kFilterType), 7.0f);
    EXPECT_EQ(value("\"Arp Mode\" = \"Mode: Duophonic\"", kArpMode), 6.0f);
    EXPECT_EQ(value("\"Arp notes\" = [\".\", \"-\", 0, 12]", kArpNote1 + 1), 1.0f);
    EXPECT_EQ(value("\"Arp notes\" = [\".\", \"-\", 0, 12]", kArpNote1 + 3) * 128.0f, 13.0f);
}

TEST(SoundText, aMatrixReplacesTheRowsOfTheInitialPatch)
{
    ProgramRecord base = blankRecord();
    base.values[kModSource1 + 1] = 3.0f;
    std::vector<Sound> sounds;
    const std::string text = "[[program]]\nname = \"T\"\nmatrix = [ {from = \"Const\", to = "
                             "\"Pitch Semi\", amount = 0.12, voices = \"Odd\"} ]\n";
    ASSERT_FALSE(readSounds(text, kFile, base, sounds));
    const auto& values = sounds.at(0).record.values;
    EXPECT_EQ(values[kModSource1], 7.0f);
    EXPECT_EQ(values[kModDestination1], 1.0f);
    EXPECT_EQ(values[kModVoices1], 25.0f);
    EXPECT_EQ(values[kModSource1 + 1], 0.0f);
}

TEST(SoundText, errorsNameFileLineAndKey)
{
    const std::string start = "[[program]]\nname = \"Test\"\n";
    const struct {
        std::string text, where, what;
    } cases[] = {
        {start + "\"Filter Cutof\" = 0.5", "keys.toml:3: Filter Cutof: ", "unknown key"},
        {start + "\"Reserved\" = 0.5", "keys.toml:3: Reserved: ", "unknown key"},
        {start + "\"ModSrc1\" = 1.0", "keys.toml:3: ModSrc1: ", "unknown key"},
        {start + "\"Filter Cutoff\" = 1.5", "keys.toml:3: Filter Cutoff: ", "out of range"},
        {start + "\"Filter Cutoff\" = nan", "keys.toml:3: Filter Cutoff: ", "out of range"},
        {start + "\"Filter Cutoff\" = \"wide\"", "keys.toml:3: Filter Cutoff: ", "wide"},
        {start + "\"Filter Cutoff\" = true", "keys.toml:3: Filter Cutoff: ", "no switch"},
        {start + "\"Filter Cutoff\" = [1]", "keys.toml:3: Filter Cutoff: ", "number"},
        {start + "\"Osc 1 Coarse\" = \"+37 st\"", "keys.toml:3: Osc 1 Coarse: ", "+37 st"},
        {start + "\"Filter Type\" = 18", "keys.toml:3: Filter Type: ", "out of range"},
        {start + "\"Filter Type\" = \"-\"", "keys.toml:3: Filter Type: ", "\"-\""},
        {start + "matrix = [\n{from = \"Wheel\", to = \"Volume\", amount = 1}]",
         "keys.toml:4: from: ", "Wheel"},
        {start + "matrix = [{from = \"MWheel\", amount = 1}]", "keys.toml:3: matrix: ", "needs"},
        {start + "matrix = [{from = \"MWheel\", to = \"Volume\", amount = 1.01}]",
         "keys.toml:3: amount: ", "out of range"},
        {start + "\"Arp notes\" = [0, 127]", "keys.toml:3: Arp notes: ", "out of range"},
        {start + "\"Arp notes\" = [\"x\"]", "keys.toml:3: Arp notes: ", "step"},
        {start + "\"Effect order\" = [\"Delay\", \"Delay\"]",
         "keys.toml:3: Effect order: ", "once"},
        {start + "name = \"Twice\"", "keys.toml:3", ""},
        {"[[program]]\nname = \"\"", "keys.toml:2: name: ", "empty"},
        {"[[program]]\nname = \"+\"", "keys.toml:2: name: ", "empty"},
        {"[[program]]\nname = \"An Overly Long Name Here\"", "keys.toml:2: name: ", "23"},
        {"[[program]]\nname = \"+PAD of Stars\"", "keys.toml:2: name: ", "PAD"},
        {"[[program]]\nname = \"Tab\\tName\"", "keys.toml:2: name: ", "plain"},
        {"[[program]]\nname = \"Blank \"", "keys.toml:2: name: ", "blanks"},
        {"[[program]]\n\"Volume\" = 0.5", "keys.toml:1: name: ", "no name"},
        {"category = \"Kazoos\"", "keys.toml:1: category: ", "Kazoos"},
        {"\nauthor = 1", "keys.toml:2: author: ", "unknown key"},
        {"[[program]", "keys.toml:1", ""},
        {start + "\"Volume\" = \xCC\x8D", "keys.toml:3: ", "ASCII"},
        {start + "\xC3\xA9 = 1", "keys.toml:3: ", "ASCII"},
        {"[[program]]\nname = \"A # \xC3\xA9\"", "keys.toml:2: ", "ASCII"},
        {"[[program]]\nname = \"A \\\" # \xC3\xA9\"", "keys.toml:2: ", "ASCII"},
    };
    for (const auto& c : cases) {
        EXPECT_THAT(errorOf(c.text), StartsWith(c.where)) << c.text;
        EXPECT_THAT(errorOf(c.text), HasSubstr(c.what)) << c.text;
    }
}

TEST(SoundText, commentsMayBeInAnyLanguage)
{
    std::vector<Sound> sounds;
    const SoundTextStatus error = read(
        "\xEF\xBB\xBF# f\xC3\xBCr \"B\xC3\xA4sse\"\n[[program]]\nname = \"A # 'B\" # l\xC3\xA0\n",
        sounds);
    ASSERT_FALSE(error) << error->text();
    ASSERT_EQ(sounds.size(), 1u);
    EXPECT_STREQ(sounds[0].record.name.data(), "A # 'B");
}

TEST(SoundText, whatHasNoWordsIsRefusedAndNotLost)
{
    const struct {
        const char* what;
        void (*change)(ProgramRecord&);
    } cases[] = {
        {"reserved value", [](ProgramRecord& r) { r.values[39] = 0.1f; }},
        {"reserved byte", [](ProgramRecord& r) { r.reserved[3] = 1; }},
        {"row 25", [](ProgramRecord& r) { r.values[kModSource1 + 24] = 1.0f; }},
        {"unknown source", [](ProgramRecord& r) { r.values[kModSource1] = 3.000001f; }},
        {"value above 1", [](ProgramRecord& r) { r.values[kVolume] = 1.5f; }},
        {"NaN", [](ProgramRecord& r) { r.values[kVolume] = std::nanf(""); }},
        {"negative zero", [](ProgramRecord& r) { r.values[kVolume] = -0.0f; }},
        {"no permutation", [](ProgramRecord& r) { r.values[kEffectOrder1] = 1.0f; }},
        {"bytes behind a name", [](ProgramRecord& r) { r.name[20] = 'x'; }},
        {"unterminated name", [](ProgramRecord& r) { r.name.fill('n'); }},
    };
    for (const auto& c : cases) {
        ProgramRecord record = blankRecord();
        record.name[0] = 'N';
        std::string text;
        ASSERT_FALSE(writeSounds({&record, 1}, blankRecord(), 0, text));
        c.change(record);
        text.clear();
        EXPECT_TRUE(writeSounds({&record, 1}, blankRecord(), 0, text)) << c.what;
        EXPECT_EQ(text, "") << c.what;
    }
}

TEST(PatternText, takesTheArpeggiatorsKeysAndNoOthers)
{
    const auto read = [](const std::string& lines, std::vector<Sound>& patterns) {
        const auto error = readPatterns("[[pattern]]\n" + lines, kFile, blankRecord(), patterns);
        return error ? error->text() : "accepted";
    };
    std::vector<Sound> patterns;
    EXPECT_EQ(read("name = \"Up\"\n\"Arp notes\" = [0, \".\", 12, \"-\"]\n\"Arp Rate\" = \"1/8\"",
                   patterns),
              "accepted");
    ASSERT_EQ(patterns.size(), 1u);
    EXPECT_EQ(patterns[0].record.values[kArpNote1 + 2], storedStep(12));
    EXPECT_EQ(patterns[0].record.values[kArpNote1 + 3], 1.0f);
    EXPECT_EQ(read("name = \"Up\"\n\"Volume\" = 0.5", patterns),
              "keys.toml:3: Volume: a pattern has no such key");
    EXPECT_EQ(read("\"Arp notes\" = [0]", patterns), "keys.toml:1: name: the pattern has no name");
    EXPECT_EQ(read("name = \"Up\"\n\"Arp notes\" = [0, 3,\n200]", patterns),
              "keys.toml:4: Arp notes: out of range");
    EXPECT_EQ(patterns.size(), 1u);
}

} // namespace
} // namespace tolm
