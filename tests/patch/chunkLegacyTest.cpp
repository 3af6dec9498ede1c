// The oldest layout against its description written out value by value.

#include "tests/patch/chunkRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tolm {
namespace {

using namespace test;
using ::testing::ElementsAre;

using Values = std::array<float, 329>;

// Old ids that had changed places, and amounts that were square roots.
void adjust(std::vector<float>& old)
{
    std::swap(old[12], old[13]);
    old[61] = old[62];
    old[70] = old[69];
    std::copy(old.begin() + 81, old.begin() + 96, old.begin() + 80);
    for (std::size_t row = 0; row < 16; ++row) {
        const int d = int(old[160 + row] + 0.000001f);
        const double x = std::clamp((old[144 + row] - 0.5) * 2, -1.0, 1.0);
        if (d == 25 || d == 49 || d == 50 || d == 5 || d == 6)
            old[144 + row] =
                static_cast<float>(0.5 + std::copysign(std::sqrt(std::abs(x)) * 0.5, x));
    }
}

Values repaired(const std::vector<float>& old)
{
    Values v{};
    for (std::size_t i = 0; i < 258; ++i) // the matrix got twice its 16 rows
        v[i < 144 ? i : i < 192 ? i + (i / 16 - 8) * 16 : i + 64] = old[i];
    std::size_t on = 116;
    for (const std::size_t level : {83u, 88u, 94u, 100u})
        v[on++] = v[level] > 0;
    for (const std::size_t gain : {104u, 109u})
        v[on++] = std::fabs(v[gain] - 0.5) > 0.001;
    v[96] = 0;
    for (std::size_t k = 0; k < 32; ++k) {
        if (int(v[125]) == 5) {
            v[288 + k] = v[288 + k] / 2;
        } else {
            const float copy = v[256 + k];
            v[288 + k] = copy > 0.9999f ? 0 : copy;
            v[256 + k] = copy > 0.9999f ? 1.0f : copy > 0 ? 1.0f / 128 : 0;
        }
    }
    if (int(v[126] + 0.001f) == 7) {
        v[31] = v[29];
        v[126] = 3;
        v[29] = 0;
    }
    for (std::size_t i = 176; i < 192; ++i)
        v[i] = 0.5f;
    if (v[60] > 0.001f) {
        std::size_t row = 0;
        while (row < 23 && int(v[128 + row]) != 0)
            ++row;
        v[128 + row] = 7;
        v[160 + row] = v[60] / 2 + 0.5f;
        v[192 + row] = 55;
        v[60] = 0;
    }
    if (int(v[91] * 4 + 0.001f) == 2) {
        v[91] = 0;
        v[96] = 0.67f;
    }
    if (v[125] > 0)
        v[115] = 1;
    const int type = int(v[97] * 4 + 0.001f);
    if (type == 4)
        v[98] = 1;
    if (type < 2)
        v[99] = 0;
    for (std::size_t i = 62; i < 70; ++i)
        v[i] = 0;
    std::copy_backward(v.begin() + 90, v.begin() + 100, v.begin() + 101);
    v[79] = 0.2f;
    v[73] = 0.5f;
    v[114] = 1;
    for (std::size_t i = 0; i < 6; ++i)
        v[323 + i] = static_cast<float>(i);
    return v;
}

// Random programs whose selectors often meet the cases that the repairs look for.
std::vector<float> oldProgram(std::minstd_rand& random)
{
    std::vector<float> old(258);
    for (float& value : old)
        value = random() % 4 == 0 ? 0.0f : static_cast<float>(random() % 101) / 100.0f;
    const float destinations[] = {0, 5, 6, 25, 49, 50, 7, 26.000002f};
    for (std::size_t row = 0; row < 16; ++row) {
        old[128 + row] = static_cast<float>(random() % 3);
        old[160 + row] = destinations[random() % 8];
    }
    old[125] = static_cast<float>(random() % 7);
    old[126] = static_cast<float>(random() % 9);
    for (std::size_t i : {91u, 92u, 97u})
        old[i] = static_cast<float>(random() % 5) / 4.0f;
    return old;
}

TEST(LegacyChunk, everyValueArrivesWhereItsDescriptionPutsIt)
{
    std::minstd_rand random(11);
    for (int round = 0; round < 40; ++round) {
        const int version = 2 + round % 4; // from 4 on without the rescaling
        ChunkBytes chunk(40, version, 1104);
        chunk.field(8, 399 - 384 + round % 8);
        const int current = 15 + round % 8;
        std::vector<Values> expected;
        for (int p = 0; p < 40; ++p) {
            std::vector<float> old = oldProgram(random);
            for (int id = 0; id < 258; ++id)
                chunk.value(p, id, old[static_cast<std::size_t>(id)]);
            chunk.name(p, "old " + std::to_string(p));
            adjust(old);
            expected.push_back(repaired(old));
        }
        if (version < 4) {
            Values& v = expected[static_cast<std::size_t>(current)];
            const double k = 1 / (v[15] * 3.0 + 1);
            v[15] = static_cast<float>(1 - k);
            v[11] = static_cast<float>(v[11] * k);
            v[14] = static_cast<float>(v[14] * k);
            v[74] = static_cast<float>(v[74] / std::sqrt(k));
        }
        Rig rig;
        ASSERT_TRUE(rig.read(chunk, true).loaded);
        for (int p = 0; p < 40; ++p)
            for (int id = 0; id < 329; ++id)
                ASSERT_NEAR(rig.store->value(p, id),
                            expected[static_cast<std::size_t>(p)][static_cast<std::size_t>(id)],
                            1e-6)
                    << "program " << p << " id " << id << " version " << version;
        EXPECT_EQ(rig.store->name(39), "old 39");
    }
}

TEST(LegacyChunk, replacesTheWholeStoreAndLoadsTheChosenProgramTwice)
{
    Rig rig;
    ChunkBytes chunk(2, 5, 1104);
    chunk.field(8, 200).name(0, "PAD Old").name(1, "an unterminated name of many letters");
    ASSERT_TRUE(rig.read(chunk, true).loaded);
    EXPECT_THAT(rig.log, ElementsAre("bend", "pause", "set 200", "load 200", "set 200", "load 200",
                                     "resume"));
    EXPECT_EQ(rig.store->name(0), "Old");
    EXPECT_EQ(rig.store->value(0, 322), 8.0f);
    EXPECT_EQ(rig.store->name(1), "an unterminated name of many le");
    const ProgramRecord empty{};
    for (int p = 2; p < kProgramCount; ++p)
        ASSERT_EQ(std::memcmp(&rig.store->record(p), &empty, sizeof empty), 0) << p;
}

} // namespace
} // namespace tolm
