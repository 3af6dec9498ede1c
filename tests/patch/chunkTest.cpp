// Chunks: what is written, what is read and where it lands, and what is turned away.

#include "tests/patch/chunkRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tolm {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kMin = std::numeric_limits<std::int32_t>::min();
constexpr int kMax = std::numeric_limits<std::int32_t>::max();

TEST(ChunkWriter, writesHeaderAndTheCurrentBankByteForByte)
{
    Rig rig;
    rig.store->record(257).reserved[3] = 9;
    rig.program = 300;
    rig.bank = 2;
    rig.bendUp = 64;
    rig.bendDown = 7;
    rig.engineVersion = 14;
    const auto bytes = rig.write();
    ASSERT_EQ(bytes.size(), 235560u);
    const int header[] = {329, 128, 300, 20, 64, 7, 16, 2, 14, 0};
    for (std::size_t i = 0; i < 10; ++i)
        EXPECT_EQ(get32(bytes, 4 * i), header[i]) << i;
    for (int slot = 0; slot < 128; ++slot) { // the record in memory is the format on this machine
        const std::size_t at = 40 + static_cast<std::size_t>(slot) * 1840;
        ASSERT_EQ(std::memcmp(&bytes[at], &rig.store->record(256 + slot), 1840), 0) << slot;
    }
    EXPECT_TRUE(rig.untouched(255));
}

struct Rejected {
    const char* what;
    bool isPreset;
    ChunkBytes chunk;
    std::size_t size; // that the host hands over
};

TEST(ChunkReader, rejectedChunksChangeNothingButTheBendRanges)
{
    const std::size_t legacy = 1104;
    const Rejected cases[] = {
        {"only a header", false, ChunkBytes(128), 40},
        {"one byte short", false, ChunkBytes(128), 235559},
        {"preset one byte short", true, ChunkBytes(1), 40 + 1839},
        {"legacy one byte short", true, ChunkBytes(2, 9, legacy), 40 + 2 * 1104 - 1},
        {"old values in a bank are full records", false, ChunkBytes(2, 9, legacy), 40 + 2 * 1104},
        {"negative count", false, ChunkBytes(2).field(4, -1), 3720},
        {"lowest count", true, ChunkBytes(2).field(4, kMin), 3720},
        {"highest count", false, ChunkBytes(2).field(4, kMax), 3720},
        // 2334222 * 1840 is 2^32 + 1184: a small size in 32 bits
        {"count that wraps in 32 bits", false, ChunkBytes(2).field(4, 2334229), 3720},
        {"negative legacy count", true, ChunkBytes(2, 9, legacy).field(4, -1), 2248},
        {"legacy without programs", true, ChunkBytes(0, 9, legacy), 40},
        {"preset without programs", true, ChunkBytes(0), 40},
        {"negative program", true, ChunkBytes(128).field(8, -1), 235560},
        {"program 384", true, ChunkBytes(128).field(8, 384), 235560},
        {"program far away", true, ChunkBytes(128).field(8, kMin), 235560},
        {"legacy program 384", true, ChunkBytes(2, 9, legacy).field(8, 384), 2248},
        {"source at the count", true, ChunkBytes(2).field(8, 2), 3720},
        {"old full bank does not wrap", true, ChunkBytes(128, 11).field(8, 200), 235560},
        {"version 1", false, ChunkBytes(128, 1), 235560},
        {"version 1 preset", true, ChunkBytes(128, 1), 235560},
        {"lowest version", false, ChunkBytes(128, kMin), 235560},
        {"version 1, cut off", false, ChunkBytes(128, 1), 40},
    };
    Rig rig;
    for (const Rejected& row : cases) {
        SCOPED_TRACE(row.what);
        ChunkBytes chunk = row.chunk;
        chunk.field(16, 9).field(20, 10);
        chunk.bytes.resize(row.size);
        rig.program = 5;
        rig.bendUp = rig.bendDown = 0;
        const ChunkResult result = rig.read(chunk, row.isPreset);
        EXPECT_FALSE(result.loaded);
        EXPECT_EQ(result.message,
                  get32(chunk.bytes, 24) < 2 ? ChunkMessage::veryOld : ChunkMessage::none);
        EXPECT_THAT(rig.log, ElementsAre("bend"));
        EXPECT_EQ(rig.bendUp, 9);
        EXPECT_EQ(rig.bendDown, 10);
        EXPECT_TRUE(rig.untouched());
    }
    for (std::size_t size = 0; size < 40; ++size) {
        ChunkBytes chunk(0, 1);
        chunk.bytes.resize(size);
        EXPECT_FALSE(rig.read(chunk, size % 2 == 0).loaded);
        EXPECT_THAT(rig.log, IsEmpty());
    }
    EXPECT_TRUE(rig.untouched());
}

TEST(ChunkReader, bendRangesAreHeldToSixtyFourSemitones)
{
    Rig rig;
    for (auto [stored, taken] :
         {std::pair(-1, 0), {0, 0}, {64, 64}, {65, 64}, {kMin, 0}, {kMax, 64}}) {
        rig.read(ChunkBytes(0, 1).field(16, stored).field(20, 64 - taken), false);
        EXPECT_EQ(rig.bendUp, taken);
        EXPECT_EQ(rig.bendDown, 64 - taken);
    }
}

TEST(ChunkReader, bankGoesWhereItsIndexOrTheFilePutsIt)
{
    struct Row {
        int count, version, index;
        bool fromFile;
        int currentBank, first;
    };
    const Row rows[] = {
        {128, 16, 0, false, 1, 0},    {128, 16, 1, false, 0, 128}, {128, 16, 2, false, 0, 256},
        {128, 12, 2, false, 0, 256},  {128, 11, 2, false, 0, 0},   {127, 16, 2, false, 0, 0},
        {129, 16, 1, false, 0, 0},    {384, 16, 1, false, 2, 0},   {128, 16, 3, false, 2, 0},
        {128, 16, 4, false, 2, 0},    {128, 16, -1, false, 2, 0},  {128, 16, kMin, false, 2, 0},
        {128, 16, kMax, false, 2, 0}, {128, 16, 0, true, 2, 256},  {128, 16, 2, true, 1, 128},
        {128, 16, 3, true, 1, 128},   {128, 11, 2, true, 1, 0},    {1, 16, 2, true, 1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.index) + " of version " + std::to_string(row.version));
        Rig rig;
        rig.bank = row.currentBank;
        rig.fromFile = row.fromFile;
        ASSERT_TRUE(
            rig.read(ChunkBytes(row.count, row.version).field(28, row.index), false).loaded);
        for (int p = 0; p < kProgramCount; ++p)
            ASSERT_EQ(rig.untouched(p), p < row.first || p >= row.first + row.count) << p;
    }
    Rig rig; // more programs than the store holds are left out
    ChunkBytes chunk(400);
    chunk.name(383, "the last").name(384, "one too many");
    ASSERT_TRUE(rig.read(chunk, false).loaded);
    EXPECT_EQ(rig.store->name(383), "the last");
    EXPECT_EQ(rig.store->name(0), "");
}

TEST(ChunkReader, bankSelectsItsProgramWrappedIntoTheStore)
{
    Rig rig;
    for (int saved : {0, 383, 384, 1000, -1, -384, -385, kMin, kMax}) {
        const std::int64_t wide = saved;
        const std::string expected = std::to_string((wide + 384LL * 10000000) % 384);
        rig.read(ChunkBytes(1).field(8, saved), false);
        EXPECT_THAT(rig.log, ElementsAre("bend", "pause", "engine", "set " + expected,
                                         "load " + expected, "resume"));
    }
}

TEST(ChunkReader, onlyHostBanksSetTheEngineVersion)
{
    for (auto [version, slow] : {std::pair(14, true), {15, false}, {-3, true}, {kMax, false}}) {
        Rig rig;
        rig.read(ChunkBytes(128).field(32, version), false);
        EXPECT_EQ(rig.engineVersion, version);
        EXPECT_EQ(rig.wheelFactor, slow ? 1.0 : 0.1);
        EXPECT_EQ(rig.bendSmoothing, slow ? 128 : 16);
        Rig untouched;
        untouched.read(ChunkBytes(128).field(32, version), true);
        untouched.fromFile = true;
        untouched.read(ChunkBytes(128).field(32, version), false);
        EXPECT_EQ(untouched.engineVersion, 16);
        EXPECT_EQ(untouched.wheelFactor, 0.1);
    }
}

TEST(ChunkReader, singleProgramComesFromTheRightRecordAndReplacesOnlyTheCurrent)
{
    struct Row {
        int count, version, field, source;
    };
    const Row rows[] = {
        {128, 16, 5, 5},     {128, 12, 200, 72},  {128, 16, 383, 127},
        {128, 11, 100, 100}, {384, 16, 200, 200}, {1, 16, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.field);
        Rig rig;
        rig.program = 301;
        rig.bank = 2;
        ChunkBytes chunk(row.count, row.version);
        chunk.field(8, row.field);
        chunk.name(row.source, "wanted").value(row.source, 62, 1.0f);
        ASSERT_TRUE(rig.read(chunk, true).loaded);
        EXPECT_EQ(rig.store->name(301), "wanted");
        EXPECT_EQ(rig.store->value(301, 62), 1.0f); // voice switches stay on this path
        for (int p = 0; p < kProgramCount; ++p)
            ASSERT_EQ(rig.untouched(p), p != 301) << p;
        EXPECT_THAT(rig.log, ElementsAre("bend", "pause", "set 301", "load 301", "resume"));
    }
}

TEST(ChunkReader, onlyVersionTwoProgramsAskToBeSavedAgain)
{
    Rig rig;
    for (int version = 2; version <= 17; ++version)
        for (bool isPreset : {false, true}) {
            const ChunkResult result = rig.read(ChunkBytes(128, version), isPreset);
            EXPECT_TRUE(result.loaded);
            EXPECT_EQ(result.message, version == 2 && isPreset ? ChunkMessage::resaveOldProgram
                                                               : ChunkMessage::none);
        }
    EXPECT_STREQ(chunkMessageText(ChunkMessage::resaveOldProgram),
                 "Old patch: Please resave after conversion.");
}

TEST(ChunkReader, hostileRecordsEndInTextsThatEndAndFiniteValues)
{
    const float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(), -1.0e38f, 3.0e38f, -1.0f / 3.0f};
    for (int version = 2; version <= 16; ++version)
        for (const std::size_t each : {1840u, 1104u}) {
            Rig rig;
            ChunkBytes chunk(3, version, each);
            std::fill(chunk.bytes.begin() + 40, chunk.bytes.end(), 'x');
            for (int id = 0; id < (each == 1840 ? 329 : 258); ++id)
                for (int record = 0; record < 3; ++record)
                    chunk.value(record, id, bad[(id * 3 + record * 2 + version) % 5]);
            ASSERT_TRUE(rig.read(chunk, each == 1104).loaded);
            for (int p = 0; p < 3; ++p) {
                EXPECT_LE(rig.store->name(p).size(), 31u);
                EXPECT_LE(rig.store->description(p).size(), 479u);
                for (int id = 0; id < 329; ++id)
                    ASSERT_TRUE(std::isfinite(rig.store->value(p, id))) << version << ' ' << id;
            }
        }
}

} // namespace
} // namespace tolm
