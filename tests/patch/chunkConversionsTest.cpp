// What happens to programs of older versions, step by step, on both paths.

#include "tests/patch/chunkRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace tolm {
namespace {

using namespace test;

constexpr int kNever = 0;
constexpr int kAlways = 99;

// A value of the crafted program, and what it becomes when the chunk is older than a version.
struct Expectation {
    int id;
    double before, after;
    int bankBelow, singleBelow;
};

const Expectation kSteps[] = {
    // ring modulation 0.5: x = 1.5, k = 0.4
    {15, 0.5, 0.6, kNever, 4},
    {11, 0.8, 0.32, kNever, 4},
    {14, 0.5, 0.2, kNever, 4},
    {74, 0.5, 0.7905694150420949, kNever, 4},
    {32, 1.0, 0.0, kNever, 5},
    {57, 0.3, 0.0, kNever, 5},
    {58, 0.3, 0.5, kNever, 5},
    {59, 0.3, 0.0, kNever, 5},
    {60, 0.3, 0.5, kNever, 5},
    {33, 0.7, 0.7, kNever, kNever}, // LFO 1 is a sine: 0.7 * 3 = 2.1
    {35, 0.3, 0.5, kNever, 5},
    {42, 0.4, 0.4, kNever, kNever}, // a pulse: 1.2
    {44, 0.3, 0.3, kNever, kNever},
    {51, 0.99, 0.99, kNever, kNever}, // a sine: 2.97
    {53, 0.3, 0.5, kNever, 5},
    {115, 0.9, 0.9, kNever, kNever}, // off: truncates to 0
    {114, 0.0, 1.0, kAlways, 5},
    {89, 0.3, 0.3, kNever, kNever},
    {90, 0.9, 0.3, 8, 8},
    {321, 0.8, 0.4, 9, 9},
    // row 1 to the filter type, row 2 to FM 1, row 3 free, row 4 free too
    {192, 13.1, 13.1, kNever, kNever},
    {160, 0.55, 0.900001, kNever, 11},
    {193, 30.0, 30.0, kNever, kNever},
    {161, 0.2, 0.2, kNever, kNever},
    {130, 3.0, 7.0, 12, 12},
    {162, 0.1, 0.7, 12, 12},
    {194, 0.9, 91.0, 12, 12},
    {17, 0.4, 0.25, 12, 12},
    {4, 0.4844, 67.0 / 128, 13, 13}, // wave 62
    {9, 0.2, 43.0 / 128, 13, 13},    // 25.6: wave 25
    // rows 5..7 to the squared destinations, row 8 to a neighbour
    {196, 49.000001, 49.000001, kNever, kNever},
    {164, 0.25, 0.375, 14, 14},
    {197, 50.0, 50.0, kNever, kNever},
    {165, 0.75, 0.625, 14, 14},
    {198, 25.9, 25.9, kNever, kNever},
    {166, 1.0, 1.0, 14, 14},
    {199, 26.0, 26.0, kNever, kNever},
    {167, 0.25, 0.25, kNever, kNever},
    // rows 25 and 26 are stored but not read by the engine
    {216, 49.0, 49.0, kNever, kNever},
    {184, 0.25, 0.25, kNever, kNever},
    {217, 13.0, 13.0, kNever, kNever},
    {185, 0.25, 0.25, kNever, kNever},
    {323, 5.0, 0.0, 16, 16},
    {324, 4.0, 1.0, 16, 16},
    {325, 3.0, 2.0, 16, 16},
    {326, 2.0, 3.0, 16, 16},
    {327, 1.0, 4.0, 16, 16},
    {328, 0.0, 5.0, 16, 16},
    {62, 1.0, 0.0, kAlways, kNever},
    {65, 1.0, 0.0, kAlways, kNever},
    {69, 1.0, 0.0, kAlways, kNever},
};

TEST(ChunkConversions, everyVersionRunsItsOwnStepsOnEachPath)
{
    for (int version : {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 2147483647})
        for (bool isPreset : {false, true}) {
            SCOPED_TRACE("version " + std::to_string(version) + (isPreset ? " program" : " bank"));
            ChunkBytes chunk(128, version);
            std::map<int, double> expected;
            for (int id = 0; id < 329; ++id) { // nothing else may move
                chunk.value(0, id, 0.0625f);
                expected[id] = 0.0625;
            }
            for (int voice = 62; voice <= 69; ++voice)
                expected[voice] = isPreset ? 0.0625 : 0.0;
            for (int row = 8; row < 24; ++row) { // taken, so that only row 3 is the first free
                chunk.value(0, 192 + row, 1.0f);
                expected[192 + row] = 1.0;
            }
            for (const Expectation& step : kSteps) {
                chunk.value(0, step.id, static_cast<float>(step.before));
                const bool runs = version < (isPreset ? step.singleBelow : step.bankBelow) ||
                                  (!isPreset && step.bankBelow == kAlways);
                expected[step.id] = runs ? step.after : step.before;
            }
            if (version < 7 && !isPreset)
                expected[322] = 0.0; // categories are taken from names
            Rig rig;
            ASSERT_TRUE(rig.read(chunk, isPreset).loaded);
            for (const auto& [id, value] : expected)
                EXPECT_NEAR(rig.store->value(0, id), value, 2e-6 * std::max(1.0, value))
                    << "id " << id;
        }
}

float fmAfterLoad(Rig& rig, ChunkBytes& chunk, bool isPreset)
{
    EXPECT_TRUE(rig.read(chunk, isPreset).loaded);
    return rig.store->value(0, 17);
}

TEST(ChunkConversions, fmMovesOnlyWhenARowOfTheEngineUsesItAndOneIsFree)
{
    for (bool isPreset : {false, true}) {
        Rig rig;
        ChunkBytes full(128, 11);
        full.value(0, 17, 0.8f);
        for (int row = 0; row < 32; ++row)
            full.value(0, 192 + row, row < 24 ? 30.0f : 0.0f); // free rows only where none is read
        EXPECT_FLOAT_EQ(fmAfterLoad(rig, full, isPreset), 0.2f);
        for (int row = 0; row < 32; ++row)
            EXPECT_EQ(rig.store->value(0, 192 + row), row < 24 ? 30.0f : 0.0f);

        ChunkBytes unused(128, 11);
        unused.value(0, 17, 0.8f).value(0, 192 + 24, 30.0f).value(0, 192, 29.99f);
        EXPECT_FLOAT_EQ(fmAfterLoad(rig, unused, isPreset), 0.2f);

        ChunkBytes last(128, 11);
        last.value(0, 17, 0.8f).value(0, 192 + 23, 30.4f);
        EXPECT_FLOAT_EQ(fmAfterLoad(rig, last, isPreset), 0.25f);
        EXPECT_EQ(rig.store->value(0, 192), 91.0f);
        EXPECT_EQ(rig.store->value(0, 128), 7.0f);
        EXPECT_FLOAT_EQ(rig.store->value(0, 160), 0.9f);
    }
}

TEST(ChunkConversions, wavesAreRenumberedOnceAndCutToWholeNumbers)
{
    const std::map<int, int> moves = {{62, 67}, {43, 60}, {44, 61}, {45, 62}, {46, 63},
                                      {48, 64}, {24, 45}, {2, 44},  {25, 43}};
    for (int wave = 0; wave <= 128; ++wave)
        for (float offset : {0.0f, 0.004f}) {
            Rig rig;
            ChunkBytes chunk(1, 12);
            const float stored = static_cast<float>(wave) / 128.0f + offset;
            chunk.value(0, 4, stored).value(0, 9, stored);
            ASSERT_TRUE(rig.read(chunk, wave % 2 == 0).loaded);
            const int expected = moves.contains(wave) ? moves.at(wave) : wave;
            ASSERT_EQ(rig.store->value(0, 4), static_cast<float>(expected) / 128.0f) << wave;
            ASSERT_EQ(rig.store->value(0, 9), static_cast<float>(expected) / 128.0f) << wave;
        }
}

struct NamedCategory {
    std::string name, kept;
    float category; // negative: as it was
};

TEST(ChunkConversions, categoriesComeFromNamePrefixesInTheWholeStore)
{
    const std::pair<const char*, float> prefixes[] = {
        {"ARP", 1},  {"SEQ", 1},  {"BAS", 2},  {"CHD", 3},  {"DRM", 4},  {"KEY", 5},
        {"LED", 6},  {"MAL", 7},  {"PAD", 8},  {"PLK", 9},  {"SFX", 10}, {"EFX", 10},
        {"SYN", 11}, {"TEX", 12}, {"ATM", 12}, {"WND", 13},
    };
    std::vector<NamedCategory> cases = {
        {"PAD PAD Two", "PAD Two", 8},
        {"PAD_Two", "Two", 8},
        {"PADLock", "ock", 8},
        {"PAD", "", 8},
        {"PAD ", "", 8},
        {"pad low", "pad low", -1},
        {"PA", "PA", -1},
        {"", "", -1},
        {" PAD", " PAD", -1},
        {"PAD 0123456789012345678901234567", "012345678901234567890123456", 8},
    };
    for (const auto& [prefix, category] : prefixes)
        cases.push_back({prefix + std::string(" Rain"), "Rain", category});
    struct Load {
        int version;
        bool isPreset, reads, resets;
    };
    for (const Load& load : {Load{6, false, true, true}, Load{7, false, false, false},
                             Load{2, true, true, false}, Load{16, true, true, false}}) {
        SCOPED_TRACE("version " + std::to_string(load.version));
        Rig rig;
        int program = 383; // far from what is loaded
        for (const NamedCategory& row : cases) {
            rig.store->setName(program, row.name);
            rig.store->setValue(program--, 322, 5.5f);
        }
        ASSERT_TRUE(rig.read(ChunkBytes(1, load.version), load.isPreset).loaded);
        program = 383;
        for (const NamedCategory& row : cases) {
            const bool matches = load.reads && row.category >= 0;
            const float unmatched = load.resets ? 0.0f : 5.5f;
            EXPECT_EQ(rig.store->name(program), matches ? row.kept : row.name.substr(0, 31));
            EXPECT_EQ(rig.store->value(program--, 322), matches ? row.category : unmatched)
                << row.name;
        }
    }
}

} // namespace
} // namespace tolm
