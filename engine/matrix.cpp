#include "engine/matrix.h"

#include "engine/apply.h"
#include "engine/lfo.h"
#include "plugin/menus.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>

namespace tolm {

namespace {

constexpr double kModAttackInstant = 0.00001;
constexpr int kFilterTypeCount = 18;
constexpr double kLargestAmount = 1e4; // rows that scale rows could otherwise grow without end

// Toward zero. Far beyond what any setting can use, so that sums and products stay inside 64 bits
// even when rows have scaled each other's amounts.
std::int64_t truncate(double x)
{
    return static_cast<std::int64_t>(std::clamp(x, -1e6, 1e6));
}

// A turn is 1; whole turns and negative values wrap.
std::uint32_t phaseFrom(double turns)
{
    const double scaled = std::clamp(turns, -1e6, 1e6) * kPhaseTurn;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(scaled));
}

double signedSquare(double x)
{
    return x * std::abs(x);
}
double clamp01(double x)
{
    return std::clamp(x, 0.0, 1.0);
}

struct Context {
    EngineRecord& r;
    const CallContext& call;
    std::size_t voice;
    VoiceModulation& m;
    bool firstBlock;
    std::uint8_t source; // of the row being applied

    VoiceSlot& slot() const { return r.slot[voice]; }
    const VoiceNote& note() const { return r.voiceNote[voice]; }
};

// ---- Sources: a value per voice -------------------------------------------------------------

std::size_t arpFrame(const EngineRecord& r)
{
    return static_cast<std::size_t>(std::clamp(r.sampleClock, 0, kArpBufferFrames - 1));
}

// An attack of 0 is over before the first frame.
double modEnvelope(const Context& c)
{
    EnvelopeState& mod = c.slot().mod;
    if (c.firstBlock && c.m.mod.attack < static_cast<float>(kModAttackInstant)) {
        mod.level = 1.0f;
        mod.stage = EnvelopeStage::decay;
    }
    return static_cast<double>(mod.level);
}

template <int n>
double lfoValue(const Context& c)
{
    return c.m.lfo[n];
}
template <int n>
double lfoByWheel(const Context& c)
{
    return c.r.modWheelSmoothed * c.m.lfo[n];
}
template <int n>
double lfoByTouch(const Context& c)
{
    return c.r.aftertouch * c.m.lfo[n];
}

double velocity(const Context& c)
{
    return 2.0 * applyCurve(c.r.velocityCurve, c.note().velocity / 128.0) - 1.0;
}
double keyNumber(const Context& c)
{
    return (static_cast<double>(c.note().pitch) - 7680.0) / 7680.0;
}
double wheel(const Context& c)
{
    return clamp01(applyCurve(c.r.wheelCurve, c.r.modWheelSmoothed));
}
double arpNote(const Context& c)
{
    return c.r.arp.on ? static_cast<double>(c.r.arpNoteBuffer[arpFrame(c.r)]) : 0.5;
}
double arpVelocity(const Context& c)
{
    return c.r.arp.on ? static_cast<double>(c.r.arpVelocityBuffer[arpFrame(c.r)]) : 0.5;
}

using Source = double (*)(const Context&);

struct SourceRow {
    int id;
    bool unipolar; // for "Pan" only
    Source value;
};

constexpr SourceRow kSources[] = {
    {1, false, velocity},
    {2, false, keyNumber},
    {3, true, wheel},
    {4, false, [](const Context& c) { return c.r.bendValue; }},
    {5, false, [](const Context& c) { return c.r.aftertouch; }},
    {6, false, [](const Context& c) { return static_cast<double>(c.r.voiceRandom[c.voice]); }},
    {7, false, [](const Context&) { return 1.0; }},
    {8, false, arpNote},
    {9, true, arpVelocity},
    {10, true, [](const Context& c) { return clamp01(applyCurve(c.r.breathCurve, c.r.breath)); }},
    {11, true, [](const Context& c) { return c.r.foot; }},
    {12, true, [](const Context& c) { return c.r.expression; }},
    {13, false, lfoValue<0>},
    {14, false, lfoValue<1>},
    {15, false, lfoValue<2>},
    {16, false, lfoByWheel<0>},
    {17, false, lfoByWheel<1>},
    {18, false, lfoByWheel<2>},
    {19, false, lfoByTouch<0>},
    {20, false, lfoByTouch<1>},
    {21, false, lfoByTouch<2>},
    {22, true, [](const Context& c) { return static_cast<double>(c.slot().amp.level); }},
    {23, true, [](const Context& c) { return static_cast<double>(c.slot().filter.level); }},
    {24, false,
     [](const Context& c) { return static_cast<double>(c.r.voiceUnisonIndex[c.voice]); }},
    {kModEnvelopeSource, true, modEnvelope},
};

constexpr int kArpNoteSource = 8;

// Rows of the tables above and below by id; unknown ids have none.
constexpr auto kSourceOfId = [] {
    std::array<const SourceRow*, kSourceCount> table{};
    for (const SourceRow& row : kSources)
        table[static_cast<std::size_t>(row.id)] = &row;
    return table;
}();

// ---- Destinations: what amount a and source s do to a voice ---------------------------------

// Whole semitones per percent of amount at full source. The arpeggiator's note is a key distance
// and ignores the amount.
std::int64_t semitones(const Context& c, double a, double s)
{
    if (c.source == kArpNoteSource)
        return 128 * truncate(s * 128.0) - 128;
    return truncate(s * 128.0 * static_cast<double>(truncate(a * 100.0)));
}
std::int64_t cents(double a, double s)
{
    return truncate(a * 128.0 * s);
}

template <int osc>
void oscSemi(Context& c, double a, double s)
{
    c.m.oscPitch[osc] += semitones(c, a, s);
}
template <int osc>
void oscFine(Context& c, double a, double s)
{
    c.m.oscPitch[osc] += cents(a, s);
}
template <int osc>
void oscWave(Context& c, double a, double s)
{
    c.m.wavePosition[osc] += truncate(s * 1024.0) * truncate(a * 100.0 + 0.001);
}
template <int osc>
void oscFat(Context& c, double a, double s)
{
    c.m.fatFactor[osc] = std::max(0.0, c.m.fatFactor[osc] + a * 0.01 * s);
    c.m.fatAmount[osc] = std::max<std::int64_t>(0, c.m.fatAmount[osc] + truncate(a * 8192.0 * s));
}
template <int osc>
void oscKeytrack(Context& c, double a, double s)
{
    c.m.keytrack[osc] = truncate(a * 1024.0 * s);
}
template <std::uint32_t VoiceSlot::*phase>
void oscPhase(Context& c, double a, double s)
{
    if (c.firstBlock)
        c.slot().*phase = phaseFrom(a * s);
}
template <int n>
void lfoPhase(Context& c, double a, double s)
{
    if (c.firstBlock)
        c.slot().lfoPhase[n] = phaseFrom(a * s);
}
template <int n>
void lfoRate(Context& c, double a, double s)
{
    c.m.lfoRate[n] = clamp01(c.m.lfoRate[n] + s * a);
    c.m.lfoRateModulated[n] = true;
}
template <float EnvelopeSettings::*field, EnvelopeSettings VoiceModulation::*envelope>
void envelopeTime(Context& c, double a, double s)
{
    c.m.*envelope.*field += static_cast<float>(s * a);
}

void filterType(Context& c, double a, double s)
{
    if (!c.firstBlock)
        return;
    // Each 4 % of amount is one entry of the filter menu, separators not counted.
    std::int64_t position =
        std::clamp<std::int64_t>(truncate(a * 100.0 * s + 1e-7) / 4, 1, kFilterTypeCount);
    for (const MenuEntry& entry : kFilterMenu) {
        if (entry.id == kSeparatorId || --position > 0)
            continue;
        c.r.voiceFilterType[c.voice] = static_cast<std::uint32_t>(entry.id);
        return;
    }
}

void pan(Context& c, double a, double s)
{
    const bool unipolar = kSourceOfId[c.source]->unipolar;
    c.m.pan += (unipolar ? 2.0 * s - 1.0 : s) * a;
}

void oneShot(Context& c, double a, double s)
{
    if (c.r.oscSync || a * s <= 0.0)
        return;
    c.m.oneShot = true;
    if (c.firstBlock)
        c.slot().osc2Phase = 0;
}

// The coefficients are the engine's: they stay for the voices after this one until recomputed.
void noiseColour(Context& c, double a, double s)
{
    c.m.noiseColour += s * a;
    setNoiseFilter(c.r, c.call.module, static_cast<float>(clamp01(c.m.noiseColour)));
}

void osc3Phase(Context& c, double a, double s)
{
    if (c.firstBlock)
        c.slot().osc3Phase = phaseFrom(a * s);
}

using Effect = void (*)(Context& c, double a, double s);

struct DestinationRow {
    int id;
    Effect apply;
};

using VM = VoiceModulation;
using ES = EnvelopeSettings;

constexpr DestinationRow kDestinations[] = {
    {1, [](Context& c, double a, double s) { c.m.pitch += semitones(c, a, s); }},
    {2, [](Context& c, double a, double s) { c.m.pitch += cents(a, s); }},
    {3, [](Context& c, double a, double s) { c.m.volume += s * a; }},
    {4, pan},
    {5, [](Context& c, double a, double s) { c.m.cutoff += signedSquare(a) * s; }},
    {6, [](Context& c, double a, double s) { c.m.filterEnv += signedSquare(a) * s; }},
    {7, [](Context& c, double a, double s) { c.m.detune += truncate(a * 64.0 * s); }},
    {8, [](Context& c, double a, double s) { c.m.oscMix += s * a; }},
    {9, [](Context& c, double a, double s) { c.m.pitch += truncate(a * c.m.lfo[0] * 128.0 * s); }},
    {10, [](Context& c, double a, double s) { c.m.cutoff += signedSquare(a) * c.m.lfo[1] * s; }},
    {11, oscSemi<0>},
    {12, oscSemi<1>},
    {13, filterType},
    {14, [](Context& c, double a, double s) { c.m.ringMod += s * a; }},
    {15, oscWave<0>},
    {16, oscWave<1>},
    {17, envelopeTime<&ES::attack, &VM::amp>},
    {18, envelopeTime<&ES::decay, &VM::amp>},
    {19, envelopeTime<&ES::sustain, &VM::amp>},
    {20, envelopeTime<&ES::release, &VM::amp>},
    {21, envelopeTime<&ES::attack, &VM::filter>},
    {22, envelopeTime<&ES::decay, &VM::filter>},
    {23, envelopeTime<&ES::sustain, &VM::filter>},
    {24, envelopeTime<&ES::release, &VM::filter>},
    {25, [](Context& c, double a, double s) { c.m.pulseWidth += s * a; }},
    {26, [](Context& c, double a, double s) { c.m.resonance += s * a; }},
    {27, [](Context& c, double a,
            double s) { c.m.noiseLevel = std::max(0.0, c.m.noiseLevel + s * a); }},
    {28, [](Context& c, double a, double s) { c.m.lfo3Amp += signedSquare(a * s * c.m.lfo[2]); }},
    {29, [](Context& c, double a, double s) { c.m.pan += a * c.m.lfo[2] * s; }},
    {30,
     [](Context& c, double a, double s) {
         c.m.fm1 += 4.0 * a * s;
         c.m.fmOn = true;
     }},
    {31,
     [](Context& c, double a, double s) {
         const std::int64_t frames = truncate(a * 0.1 * s * c.call.module.sampleRateHz());
         c.m.holdFrames = std::max<std::int64_t>(0, c.m.holdFrames + frames);
     }},
    {32, oscPhase<&VoiceSlot::osc1Phase>},
    {33, oscPhase<&VoiceSlot::osc2Phase>},
    {34, lfoRate<0>},
    {35, lfoRate<1>},
    {36, lfoRate<2>},
    {37,
     [](Context& c, double a, double s) { c.m.osc3Level = std::max(0.0, c.m.osc3Level + s * a); }},
    {38, [](Context& c, double a, double s) { c.m.pulseWidth += c.m.lfo[0] * a * a * s; }},
    {39, [](Context& c, double a,
            double s) { c.m.pitch += truncate(s * c.m.lfo[0] * 128.0) * truncate(a * 100.0); }},
    {41, [](Context& c, double a, double s) { c.m.comb += s * a; }},
    {42, [](Context& c, double a, double s) { c.m.filterEnv += signedSquare(a) * c.m.lfo[1] * s; }},
    {43, lfoPhase<0>},
    {44, lfoPhase<1>},
    {45, lfoPhase<2>},
    {47, oscFine<0>},
    {48, oscFine<1>},
    {49, oscFat<0>},
    {50, oscFat<1>},
    {51,
     [](Context& c, double a, double s) { c.m.filterOffset = clamp01(c.m.filterOffset + s * a); }},
    {52,
     [](Context& c, double a, double s) {
         c.m.fm2 += s * a;
         c.m.fmOn = true;
     }},
    {53, oscKeytrack<0>},
    {54, oscKeytrack<1>},
    {55, [](Context& c, double a, double s) { c.m.spike += a * a * s; }},
    {57, envelopeTime<&ES::attack, &VM::mod>},
    {58, envelopeTime<&ES::decay, &VM::mod>},
    {59, envelopeTime<&ES::sustain, &VM::mod>},
    {60, envelopeTime<&ES::release, &VM::mod>},
    {85,
     [](Context& c, double a, double s) {
         c.m.spike += a * a * s;
         c.m.hardSpike = true;
     }},
    {86, [](Context& c, double a, double s) { c.m.effectsSend += s * a; }},
    {87, osc3Phase},
    {88, [](Context& c, double a, double s) { c.m.levelExponent += std::min(5.0 * a * s, 0.9); }},
    {89, noiseColour},
    {90, [](Context& c, double a, double s) { c.m.panSpread = clamp01(c.m.panSpread + s * a); }},
    {91, [](Context& c, double a, double s) { c.m.fmDepth = s * a; }},
    {92, [](Context& c, double a, double s) { c.m.filterKeytrack += s * a; }},
    {93, oneShot},
};

constexpr auto kEffectOfId = [] {
    std::array<Effect, kDestinationCount> table{};
    for (const DestinationRow& row : kDestinations)
        table[static_cast<std::size_t>(row.id)] = row.apply;
    return table;
}();

bool admits(const ActiveRow& row, std::uint32_t stackNumber)
{
    return ((row.voices >> stackNumber) & 1u) != 0;
}

std::uint32_t voiceMask(int id)
{
    for (const VoiceMask& mask : kVoiceMaskMenu)
        if (mask.id == id)
            return mask.bits;
    return kVoiceMaskMenu[0].bits;
}

// ---- Global evaluation ----------------------------------------------------------------------

// A source that has no value outside a voice leaves what the row before it left.
double globalSource(const EngineRecord& r, int source, double previous)
{
    constexpr int kFirstLfo = 13;
    const VoiceSlot& slot = r.slot[0];
    switch (source) {
    case 3:
        return applyCurve(r.wheelCurve, r.modWheelSmoothed);
    case 4:
        return r.bendValue;
    case 5:
        return r.aftertouch;
    case 6:
        return static_cast<double>(r.voiceRandom[0]);
    case 7:
        return 1.0;
    case 9:
        return static_cast<double>(r.arp.velocityOut);
    case 10:
        return applyCurve(r.breathCurve, r.breath);
    case 11:
        return r.foot;
    case 12:
        return r.expression;
    case kFirstLfo:
    case kFirstLfo + 1:
    case kFirstLfo + 2: {
        const auto n = static_cast<std::size_t>(source - kFirstLfo);
        return static_cast<double>(r.lfo[n].table[slot.lfoPhase[n] >> kTableShift]);
    }
    case 22:
        return static_cast<double>(slot.amp.level);
    case 23:
        return static_cast<double>(slot.filter.level);
    case kModEnvelopeSource:
        return static_cast<double>(slot.mod.level);
    default:
        return previous;
    }
}

void bendCurve(ControllerCurve& curve, double s, double a)
{
    curve.knee = std::clamp(0.5 + 0.5 * s * a, 0.01, 0.99);
    curve.lowerSlope = (1.0 - curve.knee) / curve.knee;
    curve.upperSlope = 1.0 / curve.lowerSlope;
    curve.inForce = true;
}

} // namespace

double applyCurve(const ControllerCurve& curve, double x)
{
    if (!curve.inForce)
        return x;
    return x <= curve.knee ? curve.lowerSlope * x : curve.upperSlope * x + 1.0 - curve.upperSlope;
}

void refreshMatrix(EngineRecord& r)
{
    if (!r.matrixStale)
        return;
    ActiveRows active;
    for (std::size_t i = kMatrixRows; i-- > 0;) {
        const MatrixRow& row = r.matrix[i];
        active.amounts[i] = row.amount;
        if (row.source == 0)
            continue;
        const bool knownSource = row.source < kSourceCount;
        const auto destination = row.destination < kDestinationCount ? row.destination : 0;
        const bool scales = destination >= kFirstAmountDestination &&
                            destination < kFirstAmountDestination + kMatrixRows;
        active.rows[static_cast<std::size_t>(active.count++)] = {
            static_cast<std::uint8_t>(i), knownSource ? row.source : std::uint8_t{0},
            static_cast<std::uint8_t>(destination), voiceMask(row.voices)};
        active.scalesAmounts = active.scalesAmounts || scales;
        active.usesModEnvelope = active.usesModEnvelope || row.source == kModEnvelopeSource;
        active.sources |= knownSource ? 1u << row.source : 0u;
    }
    r.activeRows = active;
    r.matrixStale = false;
}

// Values of the sources in use, each read once. All but the mod envelope stay what they are while
// rows are applied; that one depends on rows that move its attack.
class SourceValues {
public:
    SourceValues(const Context& c, std::uint32_t used) : context_(c)
    {
        for (std::uint32_t rest = used & ~(1u << kModEnvelopeSource); rest != 0; rest &= rest - 1) {
            const auto id = static_cast<std::size_t>(std::countr_zero(rest));
            value_[id] = kSourceOfId[id]->value(c);
        }
    }
    double operator[](std::uint8_t id) const
    {
        return id == kModEnvelopeSource ? modEnvelope(context_) : value_[id];
    }

private:
    const Context& context_;
    std::array<double, kSourceCount> value_; // only those in use are set
};

void evaluateMatrix(CallContext& call, std::size_t voice, VoiceModulation& modulation)
{
    EngineRecord& r = call.r;
    const ActiveRows& active = r.activeRows;
    if (active.count == 0)
        return;
    const std::uint32_t stackNumber = r.voiceUnisonIndex[voice];
    Context c{r, call, voice, modulation, r.voiceNote[voice].age == 0, 0};
    modulation.usesModEnvelope = active.usesModEnvelope;
    const std::span rows(active.rows.data(), static_cast<std::size_t>(active.count));
    const SourceValues source(c, active.sources);

    std::array<double, kMatrixRows> scaledAmounts;
    const double* amount = active.amounts.data();
    if (active.scalesAmounts) {
        scaledAmounts = active.amounts;
        amount = scaledAmounts.data();
        for (const ActiveRow& row : rows) {
            const int target = row.destination - kFirstAmountDestination;
            if (target < 0 || target >= kMatrixRows || !admits(row, stackNumber) || row.source == 0)
                continue;
            double& scaled = scaledAmounts[static_cast<std::size_t>(target)];
            scaled = std::clamp(scaled * amount[row.row] * source[row.source], -kLargestAmount,
                                kLargestAmount);
        }
    }
    for (const ActiveRow& row : rows) {
        if (row.source == 0)
            continue;
        const double s = source[row.source];
        const Effect effect = kEffectOfId[row.destination];
        if (effect == nullptr || !admits(row, stackNumber))
            continue;
        c.source = row.source;
        effect(c, amount[row.row], s);
    }
    if (voice == r.watched.voice)
        for (const ActiveRow& row : rows)
            r.watched.rowSource[row.row] = static_cast<float>(source[row.source]);
}

void evaluateGlobalMatrix(EngineRecord& r, double sampleRateHz, double tempo)
{
    constexpr int kLfo2Rate = 35;
    constexpr int kLfo2Phase = 44;
    constexpr int kLfo2Delay = 46;
    constexpr int kWheelCurve = 94;
    constexpr int kVelocityCurve = 95;
    constexpr int kBreathCurve = 96;

    const LfoSettings& lfo = r.lfo[1];
    double rate = static_cast<double>(lfo.rate);
    double depth = 0.0;
    double s = 0.0;
    for (int i = 0; i < r.activeRows.count; ++i) {
        const ActiveRow& row = r.activeRows.rows[static_cast<std::size_t>(i)];
        const double a = r.matrix[row.row].amount;
        s = globalSource(r, row.source, s);
        if (row.destination == kLfo2Rate)
            rate += s * a;
        else if (row.destination == kLfo2Phase && r.noteOnSinceBlock)
            r.delayModulation.phase = phaseFrom(s * a);
        else if (row.destination == kLfo2Delay)
            depth += s * a * a * a * a;
        else if (row.destination == kWheelCurve)
            bendCurve(r.wheelCurve, s, a);
        else if (row.destination == kVelocityCurve)
            bendCurve(r.velocityCurve, s, a);
        else if (row.destination == kBreathCurve)
            bendCurve(r.breathCurve, s, a);
    }
    const float hz = lfoRateHz(lfo, static_cast<float>(clamp01(rate)), tempo);
    r.delayModulation.increment = static_cast<std::int32_t>(lfoIncrement(hz, sampleRateHz));
    r.delayModulation.depth = static_cast<float>(depth);
    r.delayModulation.table = lfo.table.data();
    r.noteOnSinceBlock = false;
}

} // namespace tolm
