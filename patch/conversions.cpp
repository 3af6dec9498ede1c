// The steps from old to current programs, and which of them runs when.

#include "patch/conversions.h"

#include "patch/chunkRecord.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace tolm {

namespace {

// Menu ids of the matrix that the steps name.
constexpr int kDestinationFilterType = 13;
constexpr int kDestinationPulseWidth = 25;
constexpr int kDestinationFm1 = 30;
constexpr int kDestinationOsc1Fat = 49;
constexpr int kDestinationOsc2Fat = 50;
constexpr int kDestinationFmDepth = 91;
constexpr int kSourceConst = 7;

int destinationOf(ProgramRecord& record, int row)
{
    return truncated(valueOf(record, kModDestination1 + row));
}

// The first of the rows that the engine reads with this destination, or -1.
int findDestination(ProgramRecord& record, int destination)
{
    for (int row = 0; row < kMatrixRows; ++row)
        if (destinationOf(record, row) == destination)
            return row;
    return -1;
}

// A chunk's stacked-voice switches belong to the session that saved them.
void clearVoiceSwitches(ProgramRecord& record)
{
    for (int voice = 0; voice < kMaxStack; ++voice)
        valueOf(record, kVoice1 + voice) = 0.0f;
}

// Oscillator sync and the modulation envelope came with version 5; older bytes there mean nothing.
void resetSyncAndModEnvelope(ProgramRecord& record)
{
    valueOf(record, kOscSync) = 0.0f;
    valueOf(record, kModAttack) = 0.0f;
    valueOf(record, kModDecay) = 0.5f;
    valueOf(record, kModSustain) = 0.0f;
    valueOf(record, kModRelease) = 0.5f;
}

void straightenSineLfos(ProgramRecord& record)
{
    constexpr int kSine = 2;
    for (int lfo = 0; lfo < 3; ++lfo) {
        const int stride = lfo * kLfoIdStride;
        if (truncated(valueOf(record, kLfo1Shape + stride) * 3.0f) == kSine)
            valueOf(record, kLfo1Skew + stride) = 0.5f;
    }
}

// An arpeggiator that is off shall be in time when it is switched on.
void syncIdleArpeggiator(ProgramRecord& record)
{
    if (truncated(valueOf(record, kArpOn)) == 0)
        valueOf(record, kArpSync) = 1.0f;
}

void copyLeftDelayRateToRight(ProgramRecord& record)
{
    valueOf(record, kDelayRateRight) = valueOf(record, kDelayRateLeft);
}

void halvePolyphony(ProgramRecord& record)
{
    valueOf(record, kPolyphony) *= 0.5f;
}

// The offset keeps an amount of exactly a half above the centre after rounding.
void widenFilterTypeAmounts(ProgramRecord& record)
{
    for (int row = 0; row < kMatrixRows; ++row)
        if (destinationOf(record, row) == kDestinationFilterType) {
            float& amount = valueOf(record, kModAmount1 + row);
            amount = (amount - 0.5f) * 8.0f + 0.500001f;
        }
}

// FM once had its own scale when a row modulated it: the knob becomes a constant row. Without a
// free row the sound stays as it is.
void moveModulatedFmIntoMatrix(ProgramRecord& record)
{
    if (findDestination(record, kDestinationFm1) < 0)
        return;
    const int row = findDestination(record, 0);
    if (row < 0)
        return;
    valueOf(record, kModDestination1 + row) = static_cast<float>(kDestinationFmDepth);
    valueOf(record, kModSource1 + row) = static_cast<float>(kSourceConst);
    valueOf(record, kModAmount1 + row) = valueOf(record, kOscFm) * 0.5f + 0.5f;
    valueOf(record, kOscFm) = 1.0f;
}

void quarterFm(ProgramRecord& record)
{
    valueOf(record, kOscFm) *= 0.25f;
}

struct WaveMove {
    int from, to;
};
constexpr WaveMove kWaveMoves[] = {
    {62, 67}, {43, 60}, {44, 61}, {45, 62}, {46, 63}, {48, 64}, {24, 45}, {2, 44}, {25, 43},
};

int currentWave(int oldWave)
{
    for (const WaveMove& move : kWaveMoves)
        if (move.from == oldWave)
            return move.to;
    return oldWave;
}

// Every wave ends on a whole 1/128, the moved ones and the others.
void renumberWaves(ProgramRecord& record)
{
    for (int id : {kOsc1Wave, kOsc2Wave}) {
        float& wave = valueOf(record, id);
        wave = static_cast<float>(currentWave(truncated(wave * 128.0f))) * 0.0078125f;
    }
}

// Amounts of these destinations act squared since version 14, symmetrically around the centre.
void squareFineAmounts(ProgramRecord& record)
{
    for (int row = 0; row < kMatrixRows; ++row) {
        const int destination = destinationOf(record, row);
        if (destination != kDestinationOsc1Fat && destination != kDestinationOsc2Fat &&
            destination != kDestinationPulseWidth)
            continue;
        float& amount = valueOf(record, kModAmount1 + row);
        const float d = (amount - 0.5f) * 2.0f;
        const float half = d * d * 0.5f;
        amount = d < 0.0f ? 0.5f - half : half + 0.5f;
    }
}

struct Conversion {
    std::int64_t below; // runs for chunks older than this version
    bool onBanks;
    bool onSinglePrograms;
    void (*apply)(ProgramRecord&);
};

constexpr std::int64_t kEveryVersion = std::numeric_limits<std::int64_t>::max();

// The paths differ so that old projects and old single programs both keep sounding as they did.
// Steps that share values stand in the order of their versions; the others do not touch each other.
constexpr Conversion kConversions[] = {
    {kEveryVersion, true, false, clearVoiceSwitches},
    {kFirstBalancedVersion, false, true, rebalanceRingModulation},
    {5, false, true, resetSyncAndModEnvelope},
    {5, false, true, straightenSineLfos},
    {5, false, true, syncIdleArpeggiator},
    {kEveryVersion, true, false, syncIdleArpeggiator},
    {8, true, true, copyLeftDelayRateToRight},
    {9, true, true, halvePolyphony},
    {11, false, true, widenFilterTypeAmounts},
    {12, true, true, moveModulatedFmIntoMatrix},
    {12, true, true, quarterFm},
    {13, true, true, renumberWaves},
    {14, true, true, squareFineAmounts},
    {16, true, true, resetEffectOrder},
};

// Three letters as one number, because every load compares 384 names with all prefixes.
constexpr std::uint32_t prefixCode(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    return static_cast<std::uint32_t>(byte(0) << 16 | byte(1) << 8 | byte(2));
}

struct CategoryPrefix {
    std::uint32_t code;
    int category;
};
constexpr CategoryPrefix kCategoryPrefixes[] = {
    {prefixCode("ARP"), 1},  {prefixCode("SEQ"), 1},  {prefixCode("BAS"), 2},
    {prefixCode("CHD"), 3},  {prefixCode("DRM"), 4},  {prefixCode("KEY"), 5},
    {prefixCode("LED"), 6},  {prefixCode("MAL"), 7},  {prefixCode("PAD"), 8},
    {prefixCode("PLK"), 9},  {prefixCode("SFX"), 10}, {prefixCode("EFX"), 10},
    {prefixCode("SYN"), 11}, {prefixCode("TEX"), 12}, {prefixCode("ATM"), 12},
    {prefixCode("WND"), 13},
};
constexpr std::size_t kPrefixLetters = 3;
constexpr std::size_t kPrefixLength = 4; // with the separator behind it

void takeCategoryFromName(ProgramStore& store, int program)
{
    const std::string_view name = store.name(program);
    if (name.size() < kPrefixLetters)
        return;
    const std::uint32_t code = prefixCode(name);
    for (const CategoryPrefix& row : kCategoryPrefixes) {
        if (row.code != code)
            continue;
        store.setValue(program, kPatchCategory, static_cast<float>(row.category));
        std::array<char, sizeof(ProgramRecord::name)> rest{}; // the name's own bytes get replaced
        name.substr(std::min(kPrefixLength, name.size())).copy(rest.data(), rest.size() - 1);
        store.setName(program, rest.data());
        return;
    }
}

} // namespace

void rebalanceRingModulation(ProgramRecord& record)
{
    const float x = valueOf(record, kRingMod) * 3.0f;
    const float k = 1.0f / (x + 1.0f);
    valueOf(record, kRingMod) = 1.0f - k;
    valueOf(record, kOsc3Level) *= k;
    valueOf(record, kNoiseLevel) *= k;
    valueOf(record, kVolume) /= std::sqrt(k);
}

void resetEffectOrder(ProgramRecord& record)
{
    for (int slot = 0; slot < kEffectSlots; ++slot)
        valueOf(record, kEffectOrder1 + slot) = static_cast<float>(slot);
}

void convertProgram(ProgramRecord& record, int version, LoadPath path)
{
    for (const Conversion& row : kConversions)
        if (version < row.below && (path == LoadPath::bank ? row.onBanks : row.onSinglePrograms))
            row.apply(record);
    dropNonFinite(record);
}

void takeCategoriesFromNames(ProgramStore& store, bool reset)
{
    for (int program = 0; program < kProgramCount; ++program) {
        if (reset)
            store.setValue(program, kPatchCategory, 0.0f);
        takeCategoryFromName(store, program);
    }
}

} // namespace tolm
