// The bank shows what the instrument can do, and its programs answer to the player's hands.

#include "factoryBank.h"
#include "patch/factoryPatterns.h"
#include "plugin/catalogue.h"
#include "plugin/menus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>

namespace tolm {
namespace {

constexpr std::size_t kLeastDestinations = 80;
constexpr std::size_t kLeastPatterns = 28;
constexpr float kSwitchedOn = 0.5f;
constexpr int kNone = 0; // the menus' "---"

float valueOf(const ProgramRecord& record, int id)
{
    return record.values[static_cast<std::size_t>(id)];
}
bool isOn(const ProgramRecord& record, int id)
{
    return valueOf(record, id) > kSwitchedOn;
}
int menuId(const ProgramRecord& record, int id)
{
    return static_cast<int>(valueOf(record, id));
}

// A row that does something.
template <class Visit>
void forRows(const ProgramRecord& record, Visit&& visit)
{
    for (int row = 0; row < kMatrixRows; ++row) {
        const int source = menuId(record, kModSource1 + row);
        const int destination = menuId(record, kModDestination1 + row);
        if (source != kNone && destination != kNone)
            visit(source, destination);
    }
}

// How many programs use each choice; `used` names the choices of one program.
template <class Used>
std::map<std::string, int> usersOf(Used&& used)
{
    std::map<std::string, int> users;
    for (const Sound& sound : factorySounds()) {
        std::set<std::string> choices;
        used(sound.record, choices);
        for (const std::string& choice : choices)
            ++users[choice];
    }
    return users;
}

void expectUsers(const std::map<std::string, int>& users, const std::string& choice, int least)
{
    const auto found = users.find(choice);
    EXPECT_GE(found == users.end() ? 0 : found->second, least) << choice;
}

struct Choice {
    int id;
    int switchedBy; // what must be on for it to be heard, -1 for nothing
    double scale;   // the engine takes choice trunc(value * scale)
    int count;
};

TEST(FactoryCoverage, everyTypeOfEveryModuleIsHeard)
{
    constexpr Choice kChoices[] = {
        {kPhaserType, kPhaserOn, 6.1, 7}, {kDelayType, kDelayOn, 8.0, 8},
        {kReverbType, kReverbOn, 4.0, 5}, {kDistType, kDistOn, 8.0, 9},
        {kOsc1Shape, -1, 3.0, 4},         {kOsc2Shape, -1, 3.0, 4},
        {kOsc3Shape, -1, 2.0, 3},
    };
    for (const Choice& choice : kChoices) {
        SCOPED_TRACE(kCatalogue[choice.id].name);
        std::map<int, int> users;
        for (const Sound& sound : factorySounds())
            if (choice.switchedBy < 0 || isOn(sound.record, choice.switchedBy)) {
                const auto value = static_cast<double>(valueOf(sound.record, choice.id));
                ++users[std::min(static_cast<int>(value * choice.scale), choice.count - 1)];
            }
        for (int index = 0; index < choice.count; ++index)
            EXPECT_GE(users[index], 2) << index;
    }
}

TEST(FactoryCoverage, everyFilterAndModeIsHeard)
{
    const auto users = usersOf([](const ProgramRecord& record, std::set<std::string>& used) {
        for (const MenuEntry& entry : kFilterMenu)
            if (entry.id == menuId(record, kFilterType))
                used.insert(entry.name);
        for (const MenuEntry& entry : kArpModeMenu)
            if (entry.id == menuId(record, kArpMode) && isOn(record, kArpOn))
                used.insert(entry.name);
        for (const MenuEntry& entry : kFmModeMenu)
            if (entry.id == menuId(record, kFmMode) && valueOf(record, kOscFm) > 0.0f)
                used.insert(entry.name);
        if (isOn(record, kOscSync))
            used.insert("sync");
    });
    for (const MenuEntry& entry : kFilterMenu)
        if (entry.id != kSeparatorId)
            expectUsers(users, entry.name, 2);
    for (const MenuEntry& entry : kArpModeMenu)
        expectUsers(users, entry.name, 2);
    for (const MenuEntry& entry : kFmModeMenu)
        expectUsers(users, entry.name, 2);
    expectUsers(users, "sync", 2);
}

TEST(FactoryCoverage, everyWaveIsHeard)
{
    struct Oscillator {
        int shape, wave;
    };
    std::set<int> heard;
    for (const Sound& sound : factorySounds())
        for (const Oscillator& osc : {Oscillator{kOsc1Shape, kOsc1Wave}, {kOsc2Shape, kOsc2Wave}})
            if (valueOf(sound.record, osc.shape) == 1.0f) // the last shape, wavetables
                heard.insert(static_cast<int>(valueOf(sound.record, osc.wave) * 128.0f));
    for (int wave = 0; wave < kWaveCount; ++wave)
        EXPECT_TRUE(heard.contains(wave)) << wave;
}

TEST(FactoryCoverage, theWholeMatrixIsInUse)
{
    std::map<int, int> sources;
    std::map<int, int> destinations;
    for (const Sound& sound : factorySounds())
        forRows(sound.record, [&](int source, int destination) {
            ++sources[source];
            ++destinations[destination];
        });
    for (const MenuEntry& entry : kSourceMenu)
        if (entry.id != kNone) {
            EXPECT_GE(sources[entry.id], 2) << entry.name;
        }
    std::size_t used = 0;
    for (const MenuEntry& entry : kDestinationMenu)
        used += entry.id != kNone && destinations[entry.id] >= 2 ? 1 : 0;
    EXPECT_GE(used, kLeastDestinations);
}

double shareWithSource(std::initializer_list<int> wanted)
{
    std::size_t count = 0;
    for (const Sound& sound : factorySounds()) {
        bool has = false;
        forRows(sound.record, [&](int source, int) {
            has = has || std::find(wanted.begin(), wanted.end(), source) != wanted.end();
        });
        count += has ? 1 : 0;
    }
    return static_cast<double>(count) / static_cast<double>(factorySounds().size());
}

TEST(FactoryCoverage, programsAnswerToWheelAndPressure)
{
    EXPECT_GE(shareWithSource({3, 16, 17, 18}), 0.98); // the wheel, alone and times an LFO
    EXPECT_GE(shareWithSource({5, 19, 20, 21}), 0.70); // pressure likewise
    EXPECT_GE(shareWithSource({1}), 0.98);             // the stroke
}

TEST(FactoryCoverage, nothingRestsHalfwayOrRunsForNothing)
{
    struct Effect {
        int on, amount;
    };
    for (const Sound& sound : factorySounds()) {
        SCOPED_TRACE(sound.record.name.data());
        EXPECT_EQ(valueOf(sound.record, kModWheel), 0.0f);
        for (const int id : {kPhaserOn, kDelayOn, kReverbOn, kDistOn, kEq1On, kEq2On})
            EXPECT_TRUE(valueOf(sound.record, id) == 0.0f || valueOf(sound.record, id) == 1.0f);
        const Effect distortion{kDistOn, kDistAmount};
        EXPECT_FALSE(isOn(sound.record, distortion.on) &&
                     valueOf(sound.record, distortion.amount) == 0.0f);
    }
}

// Waves move by whole numbers, hundredths of the amount cut towards zero: -0.01 moves nothing.
TEST(FactoryCoverage, everyRowThatMovesAWaveMovesIt)
{
    constexpr int kOsc1WaveRow = 15; // destinations
    constexpr int kOsc2WaveRow = 16;
    int rows = 0;
    for (const Sound& sound : factorySounds())
        for (int row = 0; row < kMatrixRows; ++row) {
            const int destination = menuId(sound.record, kModDestination1 + row);
            if (menuId(sound.record, kModSource1 + row) == kNone ||
                (destination != kOsc1WaveRow && destination != kOsc2WaveRow))
                continue;
            ++rows;
            const double amount =
                2.0 * static_cast<double>(valueOf(sound.record, kModAmount1 + row)) - 1.0;
            EXPECT_NE(std::trunc(amount * 100.0 + 0.001), 0.0)
                << sound.record.name.data() << ", row " << row + 1;
        }
    EXPECT_GT(rows, 0);
}

// The steps and their grid; how loud they are is a program's own affair.
bool plays(const ProgramRecord& program, const ProgramRecord& pattern)
{
    const auto same = [&](int id) { return valueOf(program, id) == valueOf(pattern, id); };
    const auto steps = static_cast<int>(valueOf(pattern, kArpStepCount) * 31.0f) + 1;
    for (int step = 0; step < steps; ++step)
        if (!same(kArpNote1 + step))
            return false;
    return isOn(program, kArpOn) && same(kArpMode) && same(kArpStepCount);
}

TEST(FactoryCoverage, mostPatternsAreHeard)
{
    std::size_t heard = 0;
    for (const ProgramRecord& pattern : factoryPatterns().subspan(1))
        heard += std::any_of(factorySounds().begin(), factorySounds().end(),
                             [&](const Sound& sound) { return plays(sound.record, pattern); })
                     ? 1
                     : 0;
    EXPECT_GE(heard, kLeastPatterns);
}

} // namespace
} // namespace tolm
