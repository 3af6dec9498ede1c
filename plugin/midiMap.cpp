#include "plugin/midiMap.h"

namespace tolm {

namespace {

constexpr std::string_view kSettingsKey = "Software/Corvane Audio/TOLM";
constexpr std::string_view kSettingsName = "1";
constexpr std::size_t kLargestRead = 260;

struct Assignment {
    std::uint8_t controller;
    std::uint8_t parameter;
};

// clang-format off
constexpr Assignment kDefaults[] = {
    {1, 113},  {5, 78},   {8, 12},   {14, 34},  {15, 33},  {16, 37},  {17, 35},  {18, 36},
    {19, 43},  {20, 42},  {21, 46},  {22, 44},  {23, 45},  {26, 57},  {27, 58},  {28, 59},
    {29, 60},  {30, 0},   {31, 5},   {33, 2},   {34, 7},   {35, 32},  {36, 19},  {37, 20},
    {38, 22},  {39, 23},  {40, 24},  {41, 25},  {42, 29},  {43, 30},  {46, 26},  {47, 115},
    {50, 71},  {51, 77},  {52, 72},  {53, 76},  {54, 75},  {70, 17},  {71, 15},  {72, 21},
    {73, 18},  {74, 28},  {77, 1},   {78, 6},   {79, 16},  {80, 52},  {81, 51},  {82, 55},
    {83, 53},  {84, 54},  {89, 104}, {90, 109}, {91, 94},  {92, 88},  {93, 83},  {94, 100},
    {102, 3},  {103, 8},  {106, 61}, {107, 11}, {108, 10}, {109, 14}, {110, 13}, {111, 74},
    {112, 160}, {113, 161}, {114, 162}, {115, 163}, {116, 164}, {117, 165}, {118, 166}, {119, 167},
};
// clang-format on

// Derivations leave the last controller out; saved setups depend on it.
constexpr int kDerivedControllers = kControllerCount - 1;

void put(std::atomic<std::uint8_t>& byte, int value)
{
    byte.store(static_cast<std::uint8_t>(value), std::memory_order_relaxed);
}

int get(const std::atomic<std::uint8_t>& byte)
{
    return byte.load(std::memory_order_relaxed);
}

} // namespace

MidiMap::MidiMap(SettingsStore& store) : store_(store)
{
    setDefaults();
    load();
    rebuildControllers();
}

void MidiMap::setDefaults()
{
    for (Byte& parameter : parameterByController_)
        put(parameter, kUnassigned);
    for (const Assignment& row : kDefaults)
        put(parameterByController_[row.controller], row.parameter);
}

void MidiMap::load()
{
    std::array<std::uint8_t, kLargestRead> bytes{};
    for (const auto scope : {SettingsStore::Scope::machine, SettingsStore::Scope::user}) {
        const std::optional<std::size_t> size =
            store_.read(scope, kSettingsKey, kSettingsName, bytes);
        if (!size || *size < kControllerCount)
            continue;
        for (std::size_t c = 0; c < kControllerCount; ++c)
            put(parameterByController_[c], bytes[c]);
        return;
    }
}

// Controllers in rising order, so the highest of several for one parameter is the one sent.
// Unassigned controllers write too, into entry 255 ("ModVoc16"): existing setups rely on what that
// parameter then sends. The result is copied at the end, so a reader never sees it half empty.
void MidiMap::rebuildControllers()
{
    std::array<int, kStoredParameterCount> derived;
    derived.fill(kUnassigned);
    for (std::size_t c = 0; c < kDerivedControllers; ++c)
        derived[static_cast<std::size_t>(get(parameterByController_[c]))] = static_cast<int>(c);
    for (std::size_t p = 0; p < derived.size(); ++p)
        put(controllerByParameter_[p], derived[p]);
}

int MidiMap::parameterOf(int controller) const
{
    if (controller < 0 || controller >= kControllerCount)
        return -1;
    const int parameter = get(parameterByController_[static_cast<std::size_t>(controller)]);
    return parameter != kUnassigned ? parameter : -1;
}

int MidiMap::controllerOf(int parameter) const
{
    if (parameter < 0 || parameter >= kStoredParameterCount)
        return -1;
    const int controller = get(controllerByParameter_[static_cast<std::size_t>(parameter)]);
    return controller != kUnassigned ? controller : -1;
}

void MidiMap::armLearn(int parameter)
{
    changed_.store(true, std::memory_order_relaxed);
    const bool fits = parameter >= 0 && parameter < kUnassigned;
    learning_.store(fits ? parameter : -1, std::memory_order_relaxed);
}

void MidiMap::learn(int controller)
{
    // Bank select and the modulation wheel keep their meaning.
    if (controller <= 1 || controller >= kControllerCount || !isLearning())
        return;
    const int parameter = learning_.exchange(-1, std::memory_order_relaxed);
    if (parameter < 0)
        return;
    put(parameterByController_[static_cast<std::size_t>(controller)], parameter);
    rebuildControllers();
}

void MidiMap::forget(int parameter)
{
    changed_.store(true, std::memory_order_relaxed);
    for (std::size_t c = 0; c < kDerivedControllers; ++c)
        if (get(parameterByController_[c]) == parameter)
            put(parameterByController_[c], kUnassigned);
    rebuildControllers();
}

void MidiMap::storeIfChanged()
{
    if (!changed_.load(std::memory_order_relaxed))
        return;
    std::array<std::uint8_t, kControllerCount> bytes{};
    for (std::size_t c = 0; c < bytes.size(); ++c)
        bytes[c] = static_cast<std::uint8_t>(get(parameterByController_[c]));
    store_.write(SettingsStore::Scope::machine, kSettingsKey, kSettingsName, bytes);
    store_.write(SettingsStore::Scope::user, kSettingsKey, kSettingsName, bytes);
}

} // namespace tolm
