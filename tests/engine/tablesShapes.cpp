// The embedded block, and its plain shapes and curves against their formulas.

#include "engine/tables.h"
#include "tests/engine/tableSpectrum.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

extern "C" const char tolmConstantTablesEnd[];

namespace tolm {

namespace {

const ConstantTables& kTables = constantTables();
constexpr int kSubHarmonics = 153;

} // namespace

TEST(ConstantTables, embeddedBlockHasTheSizeOfTheStruct)
{
    const char* begin = reinterpret_cast<const char*>(&tolmConstantTables);
    EXPECT_EQ(tolmConstantTablesEnd - begin, static_cast<std::ptrdiff_t>(sizeof(ConstantTables)));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(begin) % alignof(ConstantTables), 0u);
}

TEST(ConstantTables, sinesFollowTheirFormulaInEveryEntry)
{
    for (std::size_t i = 0; i <= kTableSize; ++i) {
        const long double turn = static_cast<long double>(i % kTableSize) / kTableSize;
        const long double sine = std::sin(2.0L * 3.14159265358979323846264338L * turn);
        ASSERT_EQ(kTables.sine[i], static_cast<int>(32767.0L * 0.999L * sine)) << i;
        ASSERT_NEAR(kTables.floatSine[i], static_cast<double>(0.999L * sine), 1e-7) << i;
    }
}

TEST(ConstantTables, sawsHaveTheHarmonicsOfTheirSemitoneAndNoMore)
{
    // Semitone and highest harmonic: 20050 Hz / (1.0219746 Hz * 2^(semitone / 12)), rounded down.
    for (const auto& [semitone, highest] :
         {std::pair{0, 19618}, {52, 973}, {96, 76}, {105, 45}, {144, 4}, {155, 2}}) {
        SCOPED_TRACE(semitone);
        const Wave& saw = kTables.saw[static_cast<std::size_t>(semitone)];
        const int limit = std::min(highest, 1023);
        const auto spectrum = harmonics(saw, limit);
        for (int k = 1; k <= limit; ++k) {
            const auto level = spectrum[static_cast<std::size_t>(k)];
            const double expected = -17707.95 / k * (k == highest ? 0.5 : 1.0);
            ASSERT_NEAR(std::abs(level - expected), 0.0, 0.2) << k;
        }
        EXPECT_LT(remainder(saw, spectrum), kRoundingPower);
    }
}

TEST(ConstantTables, subShapesAreBandLimitedAndFillTheScale)
{
    for (const Wave* wave : {&kTables.square, &kTables.triangle}) {
        const bool isSquare = wave == &kTables.square;
        SCOPED_TRACE(isSquare ? "square" : "triangle");
        const auto spectrum = harmonics(*wave, kSubHarmonics);
        EXPECT_LT(remainder(*wave, spectrum), kRoundingPower);
        EXPECT_EQ(*std::max_element(wave->begin(), wave->end()), 32767);
        const double first = spectrum[1].real();
        for (int k = 1; k <= 21; ++k) {
            const auto level = spectrum[static_cast<std::size_t>(k)];
            const double triangle = (k % 4 == 1 ? 1.0 : -1.0) / (k * k);
            const double ideal = k % 2 == 0 ? 0.0 : isSquare ? 1.0 / k : triangle;
            // The taper has taken 3 % of harmonic 21.
            EXPECT_NEAR(level.real() / first, ideal, std::fabs(ideal) * 0.035 + 1e-5) << k;
            EXPECT_NEAR(level.imag() / first, 0.0, 1e-5) << k;
        }
    }
    for (std::size_t i = 1; i < kTableSize / 2; ++i) {
        ASSERT_LT(kTables.square[i], 0) << i;
        ASSERT_GT(kTables.triangle[i], 0) << i;
    }
    EXPECT_EQ(kTables.triangle[0], 0);
    EXPECT_EQ(kTables.triangle[kTableSize / 4], 32767);
}

TEST(ConstantTables, saturationIsTanhWithGuardEntries)
{
    const auto& curve = kTables.saturation;
    EXPECT_EQ(curve[0], 0.0f);
    // A drive of 80 means that 1/80 of full scale reaches tanh(1).
    EXPECT_NEAR(curve[64], 0.84828363995751, 1e-6); // tanh(1.25)
    EXPECT_NEAR(curve[16], 0.30270972933211, 1e-6); // tanh(0.3125)
    EXPECT_TRUE(std::is_sorted(curve.begin(), curve.end()));
    EXPECT_EQ(curve[kSaturationSteps + 1], 1.0f);
}

// The step that the rows sample has a derivative whose spectrum must be flat where sounds are and
// gone where it would fold back onto them.
TEST(StepResidual, stepHoldsNothingThatFoldsIntoTheAudibleRange)
{
    const auto magnitude = [](double cyclesPerFrame) {
        std::complex<double> sum = 0.0;
        double before = 1.0;
        for (std::size_t i = 0; i < kResidualOffsets * kResidualFrames; ++i) {
            const double value = kTables.stepResidual[i % kResidualOffsets][i / kResidualOffsets];
            const double turns = cyclesPerFrame * static_cast<double>(i) / kResidualOffsets;
            sum += (before - value) * std::polar(1.0, -2.0 * kPi * turns);
            before = value;
        }
        return std::abs(sum);
    };
    for (const auto& row : kTables.stepResidual)
        EXPECT_LT(std::fabs(row[kResidualFrames - 1]), 1e-5f); // decayed
    for (double audible : {0.0, 0.1, 0.2, 0.3, 0.4})
        EXPECT_NEAR(magnitude(audible), 1.0, 0.012) << audible;
    for (double folding : {0.62, 0.7, 0.83, 0.97, 1.2, 2.1, 5.3})
        EXPECT_LT(magnitude(folding), 3e-4) << folding; // -70 dB
}

TEST(PitchTable, keysAreInTuneOverTheWholeTable)
{
    const auto table = std::make_unique<PitchTable>();
    buildPitchTable(*table);
    for (int pitch = 0; pitch < kPitchCount; ++pitch) {
        const double key = static_cast<double>(pitch - kFirstKeyPitch) / kPitchUnitsPerSemitone;
        const double cents =
            1200.0 * std::log2((*table)[static_cast<std::size_t>(pitch)] / keyHz(key));
        ASSERT_NEAR(cents, 0.0, 0.001) << pitch;
    }
}

} // namespace tolm
