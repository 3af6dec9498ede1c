// Which controller moves what, learnt and forgotten, and how it survives on disk.

#include "SynthRig.h"

#include <gtest/gtest.h>

#include <utility>

namespace tolm {
namespace {

using test::FakeSettings;
using test::SettingsFiles;
using Scope = SettingsStore::Scope;

struct MapRig {
    explicit MapRig(const SettingsFiles& stored = {})
        : files(stored), settings(files), map(settings)
    {
    }
    SettingsFiles files;
    FakeSettings settings;
    MidiMap map;
};

std::vector<std::uint8_t> mapBytes(std::size_t size, std::uint8_t fill)
{
    return std::vector<std::uint8_t>(size, fill);
}

TEST(MidiMap, startsWithItsDefaults)
{
    MapRig rig;
    int assigned = 0;
    for (int c = 0; c < 128; ++c)
        assigned += rig.map.parameterOf(c) >= 0;
    EXPECT_EQ(assigned, 72);
    constexpr int kSome[][2] = {{1, 113}, {5, 78},    {30, 0},   {47, 115},
                                {74, 28}, {112, 160}, {119, 167}};
    for (const auto& [controller, parameter] : kSome) {
        EXPECT_EQ(rig.map.parameterOf(controller), parameter);
        EXPECT_EQ(rig.map.controllerOf(parameter), controller);
    }
    for (const int none : {0, 2, 7, 64, 127, 128, -1})
        EXPECT_EQ(rig.map.parameterOf(none), -1) << none;
    EXPECT_EQ(rig.map.controllerOf(4), -1);
    // The last parameter that a byte can name carries the highest unassigned controller.
    EXPECT_EQ(rig.map.controllerOf(255), 126);
    EXPECT_EQ(rig.map.controllerOf(328), -1);
    EXPECT_EQ(rig.map.controllerOf(329), -1);
}

TEST(MidiMap, learnsTheNextControllerAboveOne)
{
    MapRig rig;
    rig.map.armLearn(28);
    for (const int never : {0, 1, 128, -1})
        rig.map.learn(never);
    EXPECT_TRUE(rig.map.isLearning());
    rig.map.learn(20);
    EXPECT_FALSE(rig.map.isLearning());
    EXPECT_EQ(rig.map.parameterOf(20), 28);
    EXPECT_EQ(rig.map.parameterOf(74), 28);  // stays
    EXPECT_EQ(rig.map.controllerOf(28), 74); // the higher is sent
    EXPECT_EQ(rig.map.controllerOf(42), -1); // lost its only controller
    rig.map.learn(21);
    EXPECT_EQ(rig.map.parameterOf(21), 46); // nothing was armed
}

TEST(MidiMap, cannotLearnWhatAByteCannotName)
{
    MapRig rig;
    for (const int parameter : {255, 256, 300, 346, -1}) {
        rig.map.armLearn(parameter);
        EXPECT_FALSE(rig.map.isLearning()) << parameter;
    }
}

TEST(MidiMap, forgetsAllControllersOfAParameterButTheLast)
{
    auto bytes = mapBytes(128, 255);
    bytes[9] = bytes[50] = bytes[126] = bytes[127] = 28;
    MapRig rig({{Scope::user, bytes}});
    EXPECT_EQ(rig.map.controllerOf(28), 126);
    rig.map.forget(28);
    for (const int c : {9, 50, 126})
        EXPECT_EQ(rig.map.parameterOf(c), -1);
    EXPECT_EQ(rig.map.parameterOf(127), 28);
    EXPECT_EQ(rig.map.controllerOf(28), -1);
    EXPECT_EQ(rig.map.controllerOf(255), 126);
}

// What `controller` moves when a map is built from these stored bytes.
int parameterFrom(const SettingsFiles& stored, int controller)
{
    return MapRig(stored).map.parameterOf(controller);
}

TEST(MidiMap, readsMachineWideFirstThenTheUsers)
{
    const auto machine = [](std::size_t size) {
        return std::pair(Scope::machine, mapBytes(size, 2));
    };
    const auto user = [](std::size_t size) { return std::pair(Scope::user, mapBytes(size, 3)); };
    constexpr int kDefaultOf74 = 28;
    EXPECT_EQ(parameterFrom({machine(128), user(128)}, 0), 2);
    EXPECT_EQ(parameterFrom({user(128)}, 0), 3);
    EXPECT_EQ(parameterFrom({user(129)}, 127), 3);
    EXPECT_EQ(parameterFrom({machine(127), user(128)}, 0), 3);
    EXPECT_EQ(parameterFrom({user(127)}, 74), kDefaultOf74);
    EXPECT_EQ(parameterFrom({machine(0)}, 74), kDefaultOf74);
}

TEST(MidiMap, storesOnlyWhatWasChanged)
{
    MapRig rig;
    rig.map.storeIfChanged();
    EXPECT_TRUE(rig.files.empty());
    rig.map.armLearn(4);
    rig.map.learn(7);
    rig.map.storeIfChanged();
    ASSERT_EQ(rig.files.size(), 2u);
    EXPECT_EQ(rig.files[Scope::machine], rig.files[Scope::user]);
    ASSERT_EQ(rig.files[Scope::user].size(), 128u);
    EXPECT_EQ(rig.files[Scope::user][7], 4);
    EXPECT_EQ(MapRig(rig.files).map.controllerOf(4), 7);
}

} // namespace
} // namespace tolm
