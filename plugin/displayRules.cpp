#include "plugin/displayRules.h"

#include "plugin/menus.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

template <std::size_t count>
constexpr std::array<const char*, count> namesOf(const NoteLength (&lengths)[count])
{
    std::array<const char*, count> names{};
    for (std::size_t i = 0; i < count; ++i)
        names[i] = lengths[i].name;
    return names;
}

constexpr auto kLfoLengthNames = namesOf(kLfoLengths);
constexpr auto kDelayLengthNames = namesOf(kDelayLengths);
constexpr auto kArpLengthNames = namesOf(kArpLengths);

// clang-format off
constexpr const char* kOscShapes[] = {"Saw", "Pulse", "Sine", "Wavetbl"};
constexpr const char* kSubShapes[] = {"Saw", "Pulse", "Triangle"};
constexpr const char* kLfoShapes[] = {"Saw", "Pulse", "Sine", "S+H"};
constexpr const char* kPhaserTypes[] = {"4-Stage-Ph", "6-Stage-Ph", "8-Stage-Ph", "Flanger+", "Flanger-", "Chorus I", "Chorus II"};
constexpr const char* kDelayTypes[] = {"Simple", "Ping-Pong", "PP 75%", "PP 50%", "PP 25%", "PP 10%", "Multi-Tap", "Diffuse", "Diffuse"};
constexpr const char* kReverbTypes[] = {"Diffuse-1", "Diffuse-2", "Room", "Hall", "Cathedral"};
constexpr const char* kDistTypes[] = {"LP+Crunch", "HP+Crunch", "LP+Toxic", "HP+Toxic", "LP+Valve", "HP+Valve", "LP Only", "HP Only", "LP+Clip"};
constexpr const char* kEqTypes[] = {"Peaking", "Lo Shelf", "Hi Shelf"};

// One row per rule, in the order of Display.
constexpr DisplayRule kRules[] = {
    {.display = Display::percent, .law = Law::linear, .scale = 100.0, .unit = " %"},
    {.display = Display::none, .law = Law::linear, .scale = 100.0, .unit = " %"},
    {.display = Display::oscShape, .law = Law::names, .scale = 3.0, .names = kOscShapes},
    {.display = Display::coarse, .law = Law::coarse, .scale = 72.0, .offset = -36.0, .nudge = 0.0001, .sign = Sign::plusAboveZero},
    {.display = Display::fine, .law = Law::linear, .scale = 200.0, .offset = -100.0, .decimals = 1, .unit = " ct"},
    {.display = Display::subShape, .law = Law::names, .scale = 2.0, .names = kSubShapes},
    {.display = Display::offset, .law = Law::whole, .scale = 200.0, .offset = -100.0, .sign = Sign::plusAboveZero, .unit = " %"},
    {.display = Display::lfoShape, .law = Law::names, .scale = 3.0, .names = kLfoShapes},
    {.display = Display::lfoRate, .law = Law::exponential, .scale = 0.1, .top = 100.0, .decimals = 1, .unit = " Hz"},
    {.display = Display::fadeIn, .law = Law::exponential, .scale = 0.01, .offset = -0.01, .top = 10.01, .decimals = 2, .unit = " s", .smallest = 0.00001, .zeroName = "Off"},
    {.display = Display::swing, .law = Law::whole, .scale = 150.0, .offset = -75.0, .sign = Sign::plusAboveZero, .unit = " %"},
    {.display = Display::voices, .law = Law::stack, .unit = " voices"},
    {.display = Display::phaserType, .law = Law::names, .scale = 6.1, .names = kPhaserTypes},
    {.display = Display::phaserRate, .law = Law::exponential, .scale = 0.05, .top = 20.0, .decimals = 2, .unit = " Hz"},
    {.display = Display::delayType, .law = Law::names, .scale = 8.0, .names = kDelayTypes},
    {.display = Display::delayColour, .law = Law::whole, .scale = 128.0, .offset = -64.0, .sign = Sign::plusAboveZero},
    {.display = Display::delayRate, .law = Law::names, .scale = 20.001, .names = kDelayLengthNames},
    {.display = Display::reverbType, .law = Law::names, .scale = 4.0, .names = kReverbTypes},
    {.display = Display::reverbDecay, .law = Law::exponential, .scale = 0.5, .top = 10.0, .decimals = 1, .unit = " s"},
    {.display = Display::predelay, .law = Law::whole, .scale = 100.0, .nudge = 0.001, .unit = " ms", .smallest = 0.000001},
    {.display = Display::lowCut, .law = Law::exponential, .scale = 10.0, .top = 1000.0, .unit = " Hz"},
    {.display = Display::distType, .law = Law::names, .scale = 8.0, .names = kDistTypes},
    {.display = Display::distColour, .law = Law::wholeExponential, .scale = 100.0, .top = 20000.0, .nudge = 0.001, .unit = " Hz"},
    {.display = Display::eqType, .law = Law::names, .scale = 2.01, .names = kEqTypes},
    {.display = Display::eqFrequency, .law = Law::wholeExponential, .scale = 10.0, .top = 10000.0, .unit = " Hz"},
    {.display = Display::eqQ, .law = Law::exponential, .scale = 0.1, .top = 10.0, .decimals = 1},
    {.display = Display::eqGain, .law = Law::linear, .scale = 20.0, .offset = -10.0, .decimals = 1, .sign = Sign::plusFromMiddle, .unit = " dB"},
};

// Rules that the value of another parameter chooses.
constexpr DisplayRule kSyncedLfoRate = {.display = Display::lfoRate, .law = Law::names, .scale = 26.001, .names = kLfoLengthNames};
constexpr DisplayRule kHighpassColour = {.display = Display::distColour, .law = Law::wholeExponential, .scale = 1.0, .top = 2000.0, .nudge = 0.001, .unit = " Hz"};
constexpr DisplayRule kFreeArpRate = {.display = Display::none, .law = Law::exponential, .scale = 0.1, .top = 100.0, .decimals = 1, .unit = " Hz"};
constexpr DisplayRule kSyncedArpRate = {.display = Display::none, .law = Law::names, .scale = 20.001, .names = kArpLengthNames};
constexpr DisplayRule kArpLengthPercent = {.display = Display::none, .law = Law::whole, .scale = 62.0, .offset = -31.0, .unitStep = 100.0 / 31.0, .sign = Sign::plusAboveZero, .unit = " %"};

// Of the program alone, which no host shows.
constexpr DisplayRule kMatrixAmount = {.law = Law::whole, .scale = 200.0, .offset = -100.0, .nudge = 0.5, .sign = Sign::plusAboveZero, .unit = " %"};
constexpr DisplayRule kArpStepNumber = {.law = Law::whole, .scale = 31.0, .offset = 1.0, .unit = " steps"};

constexpr StoredMenu kStoredMenus[] = {
    {kFmMode, kFmMode, [](int entry) { return menuName(kFmModeMenu, entry); }},
    {kArpMode, kArpMode, [](int entry) { return menuName(kArpModeMenu, entry); }},
    {kFilterType, kFilterType, [](int entry) { return menuName(kFilterMenu, entry); }},
    {kModSource1, kModSource1 + kStoredMatrixRows - 1, [](int entry) { return menuName(kSourceMenu, entry); }},
    {kModDestination1, kModDestination1 + kStoredMatrixRows - 1, [](int entry) { return menuName(kDestinationMenu, entry); }},
    {kModVoices1, kModVoices1 + kStoredMatrixRows - 1, [](int entry) -> const char* {
        for (const VoiceMask& mask : kVoiceMaskMenu)
            if (mask.id == entry)
                return mask.name;
        return nullptr;
    }},
    {kPatchCategory, kPatchCategory, [](int entry) -> const char* {
        const bool known = entry >= 0 && entry < static_cast<int>(std::size(kCategoryNames));
        return known ? kCategoryNames[entry] : nullptr;
    }},
};
// clang-format on

constexpr bool rulesFollowDisplay()
{
    for (std::size_t i = 0; i < std::size(kRules); ++i)
        if (kRules[i].display != static_cast<Display>(i))
            return false;
    return std::size(kRules) == static_cast<std::size_t>(Display::eqGain) + 1;
}
static_assert(rulesFollowDisplay());

// Odd types start with a high-pass.
bool isHighpassType(float distType)
{
    return (truncated(static_cast<double>(distType) * 8.0) & 1) != 0;
}

double exponential(const DisplayRule& rule, double value)
{
    return rule.scale * std::pow(rule.top / rule.scale, std::clamp(value, -4.0, 4.0));
}

// Whole semitones are found in double precision and, when that gives none above zero, once more in
// single precision with a small lift: a value just below a step reads as the step, without a plus.
double coarseSemitones(const DisplayRule& rule, double value)
{
    const double semitones = truncated(value * rule.scale) + rule.offset;
    if (semitones > 0.0)
        return semitones;
    const float lifted =
        static_cast<float>(value) * static_cast<float>(rule.scale) + static_cast<float>(rule.nudge);
    return truncated(static_cast<double>(lifted)) + rule.offset;
}

bool showsPlus(const DisplayRule& rule, double value, double shown)
{
    switch (rule.sign) {
    case Sign::plusAboveZero:
        return rule.law == Law::coarse ? truncated(value * rule.scale) + rule.offset > 0.0
                                       : shown > 0.0;
    case Sign::plusFromMiddle:
        return value >= 0.5;
    default:
        return false;
    }
}

} // namespace

int truncated(double value)
{
    constexpr double kFar = 1e9;
    return std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, -kFar, kFar));
}

const DisplayRule& displayRule(int id, const TextContext& context)
{
    const Display display = kCatalogue[static_cast<std::size_t>(id)].display;
    if (id == kArpRate)
        return context.arpSync ? kSyncedArpRate : kFreeArpRate;
    if (id == kArpLength)
        return kArpLengthPercent;
    if (id >= kModAmount1 && id < kModAmount1 + kStoredMatrixRows)
        return kMatrixAmount;
    if (id == kArpStepCount)
        return kArpStepNumber;
    if (display == Display::lfoRate &&
        context.lfoSync[static_cast<std::size_t>((id - kLfo1Rate) / kLfoIdStride)])
        return kSyncedLfoRate;
    if (display == Display::distColour && isHighpassType(context.distType))
        return kHighpassColour;
    return kRules[static_cast<std::size_t>(display)];
}

double shownNumber(const DisplayRule& rule, double value)
{
    switch (rule.law) {
    case Law::exponential:
        return exponential(rule, value) + rule.offset;
    case Law::whole:
        return (truncated(value * rule.scale + rule.nudge) + rule.offset) * rule.unitStep;
    case Law::wholeExponential:
        return truncated(exponential(rule, value) + rule.nudge);
    case Law::coarse:
        return coarseSemitones(rule, value);
    case Law::stack:
        return std::clamp(truncated(128.0 * value) / 18 + 1, 1, kMaxStack);
    default:
        return value * rule.scale + rule.offset;
    }
}

std::size_t shownName(const DisplayRule& rule, double value)
{
    const int last = static_cast<int>(rule.names.size()) - 1;
    return static_cast<std::size_t>(std::clamp(truncated(value * rule.scale), 0, last));
}

ParamText ruleText(const DisplayRule& rule, double value)
{
    ParamText text;
    if (!std::isfinite(value) || value < rule.smallest) {
        if (rule.zeroName != nullptr)
            return text.add(rule.zeroName);
        value = 0.0;
    }
    if (rule.law == Law::names)
        return text.add(rule.names[shownName(rule, value)]);
    const double shown = shownNumber(rule, value);
    if (showsPlus(rule, value, shown))
        text.add("+");
    text.add(shown, rule.decimals);
    const bool single = rule.law == Law::stack && shown == 1.0;
    return text.add(single ? " voice" : rule.unit);
}

const StoredMenu* storedMenu(int id)
{
    for (const StoredMenu& menu : kStoredMenus)
        if (id >= menu.first && id <= menu.last)
            return &menu;
    return nullptr;
}

} // namespace tolm
