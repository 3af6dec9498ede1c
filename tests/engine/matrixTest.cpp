// Every source's value, every destination's effect, and how rows work upon each other.

#include "tests/engine/rig.h"

#include "engine/matrix.h"
#include "plugin/menus.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace tolm {
namespace {

constexpr int kTouch = 5;
constexpr int kVolumeSum = 3;

class Matrix : public ::testing::Test {
protected:
    Matrix() : r(rig.engine.record())
    {
        for (int row = 1; row <= kMatrixRows; ++row)
            rig.setRow(row, 0, 0, 0.0);
        rig.on(60, 96);
    }
    VoiceModulation sums(std::size_t voice = 0)
    {
        refreshMatrix(r);
        CallContext call = beginCall(r, rig.engine, 120.0, 64);
        VoiceModulation m = start;
        evaluateMatrix(call, voice, m);
        return m;
    }
    // What a source is worth.
    double valueOf(int source)
    {
        rig.setRow(1, source, kVolumeSum, 1.0);
        return sums().volume;
    }
    void global()
    {
        refreshMatrix(r);
        rig.engine.updateGlobalModulation();
    }

    EngineRig rig;
    EngineRecord& r;
    VoiceModulation start;
};

TEST_F(Matrix, everySourceHasItsValue)
{
    start.lfo = {0.5, -0.25, 0.75};
    r.modWheelSmoothed = 0.8;
    r.bendValue = -0.3;
    r.aftertouch = 0.4;
    r.breath = 0.15;
    r.foot = 0.35;
    r.expression = 0.45;
    r.voiceRandom[0] = -0.625f;
    r.arp.on = true;
    r.sampleClock = 77;
    r.arpNoteBuffer[77] = 0.25f;
    r.arpVelocityBuffer[77] = 0.375f;
    r.slot[0].amp.level = 0.5f;
    r.slot[0].filter.level = 0.25f;
    r.slot[0].mod.level = 0.125f;
    r.modEnvelope.attack = 0.5f;
    start.mod = r.modEnvelope;
    r.voiceUnisonIndex[0] = 5;
    r.voiceNote[0].pitch = 75.0f * 128.0f;
    const std::pair<int, double> expected[] = {
        {1, 0.5},   {2, 0.25},  {3, 0.8},   {4, -0.3},  {5, 0.4},   {6, -0.625}, {7, 1.0},
        {8, 0.25},  {9, 0.375}, {10, 0.15}, {11, 0.35}, {12, 0.45}, {13, 0.5},   {14, -0.25},
        {15, 0.75}, {16, 0.4},  {17, -0.2}, {18, 0.6},  {19, 0.2},  {20, -0.1},  {21, 0.3},
        {22, 0.5},  {23, 0.25}, {24, 5.0},  {25, 0.125}};
    ASSERT_EQ(std::size(expected) + 1, std::size(kSourceMenu));
    for (const auto& [source, value] : expected)
        EXPECT_NEAR(valueOf(source), value, 1e-12) << menuName(kSourceMenu, source);
    r.arp.on = false;
    EXPECT_EQ(valueOf(8), 0.5);
    EXPECT_EQ(valueOf(9), 0.5);
    for (const int unknown : {0, 26, 200})
        EXPECT_EQ(valueOf(unknown), 0.0);
}

TEST_F(Matrix, modEnvelopeOfNoAttackReadsOneFromTheFirstBlock)
{
    EXPECT_EQ(valueOf(25), 1.0);
    EXPECT_EQ(r.slot[0].mod.stage, EnvelopeStage::decay);
    EXPECT_TRUE(sums().usesModEnvelope);
    rig.setRow(1, kConst, kVolumeSum, 1.0);
    EXPECT_FALSE(sums().usesModEnvelope);
}

using M = const VoiceModulation&;

struct Destination {
    int id;
    double expected;
    std::function<double(M)> read;
};

TEST_F(Matrix, everyDestinationHasItsEffect)
{
    start.lfo = {0.5, -0.5, 0.8};
    start.noiseLevel = start.osc3Level = start.filterOffset = start.panSpread = 0.25;
    start.wavePosition = {2048, 4096};
    start.fatAmount = {64, 128};
    start.lfoRate = {0.5, 0.6, 0.7};
    start.amp = start.filter = start.mod = {0.1f, 0.2f, 0.3f, 0.4f};
    r.aftertouch = 0.5;
    const double a = 0.375, s = 0.5, square = a * a;
    const double t = a * s * 0.8;
    std::vector<Destination> table = {
        {1, 37 * 64, [](M m) { return m.pitch; }},
        {2, 24, [](M m) { return m.pitch; }},
        {5, square * s, [](M m) { return m.cutoff; }},
        {6, square * s, [](M m) { return m.filterEnv; }},
        {7, 12, [](M m) { return m.detune; }},
        {9, 12, [](M m) { return m.pitch; }},
        {10, square * -0.5 * s, [](M m) { return m.cutoff; }},
        {11, 37 * 64, [](M m) { return m.oscPitch[0]; }},
        {12, 37 * 64, [](M m) { return m.oscPitch[1]; }},
        {15, 2048 + 512 * 37, [](M m) { return m.wavePosition[0]; }},
        {16, 4096 + 512 * 37, [](M m) { return m.wavePosition[1]; }},
        {28, 1.0 + t * t, [](M m) { return m.lfo3Amp; }},
        {29, a * 0.8 * s, [](M m) { return m.pan; }},
        {30, 4.0 * a * s, [](M m) { return m.fmOn ? m.fm1 : -1.0; }},
        {31, 826, [](M m) { return m.holdFrames; }},
        {34, 0.5 + a * s, [](M m) { return m.lfoRateModulated[0] ? m.lfoRate[0] : -1.0; }},
        {35, 0.6 + a * s, [](M m) { return m.lfoRateModulated[1] ? m.lfoRate[1] : -1.0; }},
        {36, 0.7 + a * s, [](M m) { return m.lfoRateModulated[2] ? m.lfoRate[2] : -1.0; }},
        {38, 0.5 * square * s, [](M m) { return m.pulseWidth; }},
        {39, 32 * 37, [](M m) { return m.pitch; }},
        {42, square * -0.5 * s, [](M m) { return m.filterEnv; }},
        {47, 24, [](M m) { return m.oscPitch[0]; }},
        {48, 24, [](M m) { return m.oscPitch[1]; }},
        {49, 64 + 1536, [](M m) { return m.fatAmount[0]; }},
        {49, 1.001875, [](M m) { return m.fatFactor[0]; }},
        {50, 128 + 1536, [](M m) { return m.fatAmount[1]; }},
        {52, a * s, [](M m) { return m.fmOn ? m.fm2 : -1.0; }},
        {53, 192, [](M m) { return m.keytrack[0]; }},
        {54, 192, [](M m) { return m.keytrack[1]; }},
        {55, square * s, [](M m) { return m.hardSpike ? -1.0 : m.spike; }},
        {85, square * s, [](M m) { return m.hardSpike ? m.spike : -1.0; }},
        {88, 0.9, [](M m) { return m.levelExponent; }}, // 0.9375 meets its cap
        {91, a * s, [](M m) { return m.fmDepth; }},     // replaces the setting
        {93, 1.0, [](M m) { return m.oneShot; }},
    };
    // What is simply added to.
    using VM = VoiceModulation;
    const std::pair<int, double VM::*> added[] = {
        {3, &VM::volume},       {4, &VM::pan},
        {8, &VM::oscMix},       {14, &VM::ringMod},
        {25, &VM::pulseWidth},  {26, &VM::resonance},
        {27, &VM::noiseLevel},  {37, &VM::osc3Level},
        {41, &VM::comb},        {51, &VM::filterOffset},
        {86, &VM::effectsSend}, {89, &VM::noiseColour},
        {90, &VM::panSpread},   {92, &VM::filterKeytrack}};
    for (const auto& [id, field] : added)
        table.push_back({id, start.*field + a * s, [f = field](M m) { return m.*f; }});
    using ES = EnvelopeSettings;
    const std::tuple<int, ES VM::*, float ES::*> addedToEnvelopes[] = {
        {17, &VM::amp, &ES::attack},     {18, &VM::amp, &ES::decay},
        {19, &VM::amp, &ES::sustain},    {20, &VM::amp, &ES::release},
        {21, &VM::filter, &ES::attack},  {22, &VM::filter, &ES::decay},
        {23, &VM::filter, &ES::sustain}, {24, &VM::filter, &ES::release},
        {57, &VM::mod, &ES::attack},     {58, &VM::mod, &ES::decay},
        {59, &VM::mod, &ES::sustain},    {60, &VM::mod, &ES::release}};
    for (const auto& [id, envelope, field] : addedToEnvelopes)
        table.push_back({id, start.*envelope.*field + a * s,
                         [e = envelope, f = field](M m) { return m.*e.*f; }});

    std::set<int> covered{0, 13, 32, 33, 43, 44, 45, 87, 46, 94, 95, 96}; // elsewhere in this file
    for (int id = kFirstAmountDestination; id < kFirstAmountDestination + kMatrixRows; ++id)
        covered.insert(id);
    for (const Destination& row : table) {
        rig.setRow(1, kTouch, row.id, a);
        EXPECT_NEAR(row.read(sums()), row.expected, 1e-7)
            << menuName(kDestinationMenu, row.id) << " " << row.id;
        covered.insert(row.id);
    }
    for (const MenuEntry& entry : kDestinationMenu)
        EXPECT_TRUE(covered.count(entry.id)) << entry.name;
}

TEST_F(Matrix, negativeAmountsKeepOrDropTheirSign)
{
    start.lfo = {1.0, 1.0, 1.0};
    const Destination table[] = {
        {5, -0.25, [](M m) { return m.cutoff; }},
        {27, 0.0, [](M m) { return m.noiseLevel; }},
        {28, 0.75, [](M m) { return m.lfo3Amp; }},
        {30, -2.0, [](M m) { return m.fm1; }},
        {31, 0, [](M m) { return m.holdFrames; }},
        {38, 0.25, [](M m) { return m.pulseWidth; }},
        {50, 0, [](M m) { return m.fatAmount[1]; }},
        {55, 0.25, [](M m) { return m.spike; }},
        {88, -2.5, [](M m) { return m.levelExponent; }}, // no lower bound
        {93, 0, [](M m) { return m.oneShot; }},
    };
    for (const Destination& row : table) {
        rig.setRow(1, kConst, row.id, -0.5);
        EXPECT_DOUBLE_EQ(row.read(sums()), row.expected) << row.id;
    }
}

TEST_F(Matrix, pitchAmountsTruncateToWholeSemitonesAndPanCentresUnipolarSources)
{
    for (const auto& [amount, semis] :
         {std::pair{0.12, 12}, {0.125, 12}, {-0.125, -12}, {0.1, 10}}) {
        rig.setRow(1, kConst, 1, amount);
        EXPECT_EQ(sums().pitch, 128 * semis) << amount;
    }
    // The arpeggiator's note is a distance of keys, whatever the amount.
    r.arp.on = true;
    r.arpNoteBuffer[0] = 13.0f / 128.0f;
    for (const int destination : {1, 11, 12}) {
        rig.setRow(1, 8, destination, -0.7);
        const VoiceModulation m = sums();
        EXPECT_EQ(m.pitch + m.oscPitch[0] + m.oscPitch[1], 12 * 128);
    }
    r.foot = r.aftertouch = 0.25;
    rig.setRow(1, 11, 4, 1.0);
    EXPECT_DOUBLE_EQ(sums().pan, -0.5);
    rig.setRow(1, kTouch, 4, 1.0);
    EXPECT_DOUBLE_EQ(sums().pan, 0.25);
}

TEST_F(Matrix, rowsActFromTheLastToTheFirst)
{
    rig.setRow(2, kConst, 53, 0.25);
    rig.setRow(9, kConst, 53, 0.5);
    EXPECT_EQ(sums().keytrack[0], 256); // the lower-numbered row is the last

    rig.setRow(3, kConst, kVolumeSum, 0.5);
    rig.setRow(7, kTouch, 60 + 3, 1.0); // scales row 3
    r.aftertouch = 0.0;
    EXPECT_EQ(sums().volume, 0.0);
    r.aftertouch = 0.5;
    EXPECT_DOUBLE_EQ(sums().volume, 0.25);
    EXPECT_DOUBLE_EQ(sums().volume, 0.25); // nothing accumulates
    rig.setRow(12, kConst, 60 + 7, 0.5);   // scales the scaler first
    EXPECT_DOUBLE_EQ(sums().volume, 0.125);
    // From below it comes too late: row 7 has scaled row 3 already.
    rig.setRow(12, 0, 0, 0.0);
    rig.setRow(2, kConst, 60 + 7, 0.5);
    EXPECT_DOUBLE_EQ(sums().volume, 0.25);
}

TEST_F(Matrix, masksChooseStackedVoices)
{
    const char* const members[] = {"12345678", "1",   "2",   "3",   "4",    "5",   "6",
                                   "7",        "8",   "12",  "13",  "14",   "15",  "23",
                                   "24",       "135", "234", "246", "34",   "56",  "78",
                                   "123",      "456", "345", "468", "1357", "2468"};
    for (int index = 0; index < 27; ++index) {
        rig.setRow(1, kConst, kVolumeSum, 1.0, index);
        for (std::uint32_t k = 0; k < 8; ++k) {
            r.voiceUnisonIndex[0] = k;
            const bool member =
                std::string(members[index]).find(static_cast<char>('1' + k)) != std::string::npos;
            EXPECT_EQ(sums().volume, member ? 1.0 : 0.0) << index << " voice " << k + 1;
        }
    }
}

TEST_F(Matrix, firstBlockDestinationsActOnce)
{
    VoiceSlot& slot = r.slot[0];
    rig.setRow(1, kConst, 32, 0.25);
    rig.setRow(2, kConst, 33, -0.25);
    rig.setRow(3, kConst, 87, 1.0);
    rig.setRow(4, kConst, 43, 0.5);
    rig.setRow(5, kConst, 44, 0.125);
    rig.setRow(6, kConst, 45, 0.75);
    sums();
    EXPECT_EQ(slot.osc1Phase, 0x40000000u);
    EXPECT_EQ(slot.osc2Phase, 0xC0000000u);
    EXPECT_EQ(slot.osc3Phase, 0u); // a whole turn
    EXPECT_EQ(slot.lfoPhase, (std::array<std::uint32_t, 3>{0x80000000u, 0x20000000u, 0xC0000000u}));
    r.voiceNote[0].age = 1;
    slot.osc1Phase = slot.lfoPhase[0] = 5;
    sums();
    EXPECT_EQ(slot.osc1Phase, 5u);
    EXPECT_EQ(slot.lfoPhase[0], 5u);
}

TEST_F(Matrix, filterTypeRowsStepThroughTheMenuInTheFirstBlock)
{
    // Amount to stored type id: 4 % an entry, in menu order.
    const std::pair<double, unsigned> table[] = {{0.02, 0},  {0.08, 1}, {0.12, 17},
                                                 {0.17, 7},  {0.2, 8},  {0.36, 3},
                                                 {0.72, 15}, {1.0, 15}, {-1.0, 0}};
    for (const auto& [amount, type] : table) {
        rig.setRow(1, kConst, 13, amount);
        r.voiceFilterType[0] = 99;
        sums();
        EXPECT_EQ(r.voiceFilterType[0], type) << amount;
    }
    r.voiceNote[0].age = 64;
    r.voiceFilterType[0] = 2;
    sums();
    EXPECT_EQ(r.voiceFilterType[0], 2u);
}

TEST_F(Matrix, noiseColourStaysForLaterVoices)
{
    rig.set(kNoiseColour, 0.5f);
    const OnePole plain = r.noiseFilter;
    rig.setRow(1, kConst, 89, 0.75, 1); // the first stacked voice only
    sums();
    EXPECT_NE(r.noiseFilter.a1, plain.a1);
    const OnePole moved = r.noiseFilter;
    rig.on(64);
    r.voiceUnisonIndex[1] = 1;
    sums(1);
    EXPECT_EQ(r.noiseFilter.a1, moved.a1);
}

TEST_F(Matrix, curvesBendFromTheNextBlockOnAndEndWithTheProgram)
{
    rig.setRow(1, kConst, 95, -0.5); // knee 0.25
    rig.setRow(2, 1, kVolumeSum, 1.0);
    r.voiceNote[0].velocity = 16; // 0.125 below the knee: slope 3
    EXPECT_DOUBLE_EQ(sums().volume, 2.0 * 0.125 - 1.0);
    global();
    EXPECT_DOUBLE_EQ(sums().volume, 2.0 * 0.375 - 1.0);
    r.voiceNote[0].velocity = 64; // above: 0.5 / 3 + 1 - 1 / 3
    EXPECT_NEAR(sums().volume, 2.0 * (5.0 / 6.0) - 1.0, 1e-12);
    rig.setRow(1, 0, 0, 0.0);
    global();
    EXPECT_TRUE(r.velocityCurve.inForce); // rows gone, the curve stays
    rig.engine.loadProgram(kProgramCount - 1);
    EXPECT_FALSE(r.velocityCurve.inForce);
    for (const auto& [amount, knee] : {std::pair{1.0, 0.99}, {-1.0, 0.01}}) {
        rig.setRow(1, kConst, 94, amount);
        rig.setRow(2, kConst, 96, amount);
        global();
        EXPECT_DOUBLE_EQ(r.wheelCurve.knee, knee);
        EXPECT_DOUBLE_EQ(r.breathCurve.knee, knee);
    }
}

TEST_F(Matrix, globalRowsDriveTheDelaysLfoAndCarryValuesOver)
{
    const auto depth = [this] {
        global();
        return r.delayModulation.depth;
    };
    rig.setRow(5, 1, 46, 1.0); // velocity has no value outside a voice
    EXPECT_EQ(depth(), 0.0f);
    r.foot = 0.5;
    rig.setRow(8, 11, 3, 1.0); // a row before it leaves one, whatever its destination
    EXPECT_EQ(depth(), 0.5f);
    rig.setRow(5, 1, 46, -0.5);
    EXPECT_EQ(depth(), 0.03125f); // fourth power, sign dropped
    rig.setRow(5, kConst, 44, 0.25);
    r.noteOnSinceBlock = true;
    global();
    EXPECT_EQ(r.delayModulation.phase, 0x40000000u);
    r.delayModulation.phase = 7;
    global(); // no note since
    EXPECT_EQ(r.delayModulation.phase, 7u);
    rig.set(kLfo1Rate + kLfoIdStride, 0.5f);
    rig.setRow(5, kConst, 35, 0.25);
    global();
    const double hz = 0.1 * std::pow(1000.0, 0.75);
    EXPECT_NEAR(r.delayModulation.increment / (hz * kPhaseTurn / 44100.0), 1.0, 1e-5);
}

} // namespace
} // namespace tolm
