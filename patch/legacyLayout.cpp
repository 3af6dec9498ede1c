// From the oldest layout to the current record.

#include "patch/legacyLayout.h"

#include "patch/chunkBytes.h"
#include "patch/chunkRecord.h"
#include "patch/conversions.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace tolm {

namespace {

using LegacyValues = std::array<float, kLegacyValueCount>;

constexpr std::size_t kLegacyAmount1 = 144;
constexpr std::size_t kLegacyDestination1 = 160;
constexpr std::size_t kLegacyRows = 16;

// Old ids are a row of blocks that moved apart when the matrix grew to 32 rows.
struct IdBlock {
    int first, count, currentFirst;
};
constexpr IdBlock kIdBlocks[] = {
    {0,   144, 0               },
    {144, 16,  kModAmount1     },
    {160, 16,  kModDestination1},
    {176, 16,  kModVoices1     },
    {192, 66,  kArpNote1       },
};

LegacyValues decodeValues(const std::uint8_t* from)
{
    LegacyValues values;
    for (float& value : values) {
        value = readLittleFloat(from);
        if (!std::isfinite(value))
            value = 0.0f;
        from += sizeof(float);
    }
    return values;
}

bool hadSquareRootAmount(int destination)
{
    constexpr int kDestinations[] = {25, 49, 50, 5, 6}; // PW, both fats, cutoff, filter envelope
    return std::find(std::begin(kDestinations), std::end(kDestinations), destination) !=
           std::end(kDestinations);
}

float squareRootAmount(float amount)
{
    const float d = std::clamp((amount - 0.5f) * 2.0f, -1.0f, 1.0f);
    const float shaped = d < 0.0f ? 0.5f - std::sqrt(-d) * 0.5f : std::sqrt(d) * 0.5f + 0.5f;
    return std::clamp(shaped, 0.0f, 1.0f);
}

// In ascending order of the ids concerned, because neighbours copy from each other.
void adjustOldValues(LegacyValues& old)
{
    std::swap(old[12], old[13]);
    old[61] = old[62];
    old[70] = old[69];
    for (std::size_t i = 81; i <= 95; ++i)
        old[i - 1] = old[i];
    for (std::size_t row = 0; row < kLegacyRows; ++row) {
        float& amount = old[kLegacyAmount1 + row];
        if (hadSquareRootAmount(truncated(old[kLegacyDestination1 + row] + 0.000001f)))
            amount = squareRootAmount(amount);
    }
}

void placeValues(const LegacyValues& old, ProgramRecord& record)
{
    for (const IdBlock& block : kIdBlocks)
        for (int i = 0; i < block.count; ++i)
            valueOf(record, block.currentFirst + i) =
                old[static_cast<std::size_t>(block.first + i)];
}

constexpr int kPhaserAmount = kPhaserType + 4;
constexpr int kDelayAmount = kDelayType + 3;
constexpr int kReverbAmount = kReverbType + 3;
constexpr int kReverbLowCut = kReverbType + 5;
constexpr int kEq1Gain = kEq1Type + 3;

struct SwitchRule {
    int id, level;
};

// An effect without level was off.
void deriveEffectSwitches(ProgramRecord& r)
{
    constexpr SwitchRule kEffects[] = {
        {kPhaserOn, kPhaserAmount},
        {kDelayOn,  kDelayAmount },
        {kReverbOn, kReverbAmount},
        {kDistOn,   kDistAmount  },
    };
    constexpr SwitchRule kBands[] = {
        {kEq1On, kEq1Gain},
        {kEq2On, kEq2Gain},
    };
    for (const SwitchRule& rule : kEffects)
        valueOf(r, rule.id) = valueOf(r, rule.level) > 0.0f ? 1.0f : 0.0f;
    for (const SwitchRule& rule : kBands)
        valueOf(r, rule.id) = std::abs(valueOf(r, rule.level) - 0.5f) > 0.001f ? 1.0f : 0.0f;
}

void clearReverbLowCut(ProgramRecord& r)
{
    valueOf(r, kReverbLowCut) = 0.0f;
}

// One row of bars held pitches and ties; only the dynamic mode used the second row already.
void splitArpeggiatorSteps(ProgramRecord& r)
{
    constexpr int kDynamicMode = 5;
    const bool dynamic = truncated(valueOf(r, kArpMode)) == kDynamicMode;
    for (int step = 0; step < kArpSteps; ++step) {
        float& note = valueOf(r, kArpNote1 + step);
        float& velocity = valueOf(r, kArpVelocity1 + step);
        if (dynamic) {
            velocity *= 0.5f;
            continue;
        }
        velocity = note;
        if (velocity > 0.9999f) {
            note = 1.0f;
            velocity = 0.0f;
        } else {
            note = velocity > 0.0f ? 0.0078125f : 0.0f;
        }
    }
}

// The comb used the resonance as its tuning, which the offset is now.
void retuneComb(ProgramRecord& r)
{
    constexpr int kOldComb = 7;
    constexpr float kComb = 3.0f;
    if (truncated(valueOf(r, kFilterType) + 0.001f) != kOldComb)
        return;
    valueOf(r, kFilterOffset) = valueOf(r, kFilterResonance);
    valueOf(r, kFilterType) = kComb;
    valueOf(r, kFilterResonance) = 0.0f;
}

void centreNewRows(ProgramRecord& r)
{
    for (int row = static_cast<int>(kLegacyRows); row < kStoredMatrixRows; ++row)
        valueOf(r, kModAmount1 + row) = 0.5f;
}

// The spike had a knob where the modulation envelope's release is now: it becomes a constant row.
void moveSpikeIntoMatrix(ProgramRecord& r)
{
    constexpr float kSourceConst = 7.0f;
    constexpr float kDestinationSpikeSoft = 55.0f;
    float& spike = valueOf(r, kModRelease);
    if (!(spike > 0.001f))
        return;
    for (int row = 0; row < kMatrixRows; ++row) {
        if (truncated(valueOf(r, kModSource1 + row)) != 0)
            continue;
        valueOf(r, kModSource1 + row) = kSourceConst;
        valueOf(r, kModAmount1 + row) = spike * 0.5f + 0.5f;
        valueOf(r, kModDestination1 + row) = kDestinationSpikeSoft;
        break;
    }
    spike = 0.0f;
}

// The third type was a thin room; the first with its lows cut replaces it. Like its neighbours this
// reads the values where they lie before the move up from id 90.
void replaceThinReverb(ProgramRecord& r)
{
    if (truncated(valueOf(r, kReverbType) * 4.0f + 0.001f) != 2)
        return;
    valueOf(r, kReverbType) = 0.0f;
    valueOf(r, kReverbLowCut) = 0.67f;
}

void switchArpeggiatorOn(ProgramRecord& r)
{
    if (valueOf(r, kArpMode) > 0.0f)
        valueOf(r, kArpOn) = 1.0f;
}

void repairDistortion(ProgramRecord& r)
{
    const int type = truncated(valueOf(r, kDistType) * 4.0f + 0.001f);
    if (type == 4)
        valueOf(r, kDistColour) = 1.0f;
    else if (type < 2)
        valueOf(r, kDistDrive) = 0.0f;
}

void clearVoiceSwitches(ProgramRecord& r)
{
    for (int voice = 0; voice < kMaxStack; ++voice)
        valueOf(r, kVoice1 + voice) = 0.0f;
}

// Makes room for the right delay rate.
void moveUpFromRightDelayRate(ProgramRecord& r)
{
    for (int id = 99; id >= kDelayRateRight; --id)
        valueOf(r, id + 1) = valueOf(r, id);
}

void setFixedValues(ProgramRecord& r)
{
    valueOf(r, kPhaserType) = 0.2f;
    valueOf(r, kArpSwing) = 0.5f;
    valueOf(r, kArpSync) = 1.0f;
}

// The order counts: several repairs read what the move up from id 90 displaces at the end.
constexpr void (*kRepairs[])(ProgramRecord&) = {
    deriveEffectSwitches, clearReverbLowCut,   splitArpeggiatorSteps,    retuneComb,
    centreNewRows,        moveSpikeIntoMatrix, replaceThinReverb,        switchArpeggiatorOn,
    repairDistortion,     clearVoiceSwitches,  moveUpFromRightDelayRate, setFixedValues,
    resetEffectOrder,
};

} // namespace

ProgramRecord convertLegacyProgram(std::span<const std::uint8_t, kLegacyRecordBytes> bytes)
{
    ProgramRecord record;
    std::memcpy(record.name.data(), bytes.data(), record.name.size() - 1);
    LegacyValues old = decodeValues(bytes.data() + record.name.size());
    adjustOldValues(old);
    placeValues(old, record);
    for (auto* repair : kRepairs)
        repair(record);
    dropNonFinite(record);
    return record;
}

} // namespace tolm
