// Which controller moves what, learnt and forgotten, and how it survives the plug-in's end.

#include "SynthRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

using test::FakeSettings;
using test::SettingsFiles;
using test::SynthRig;
using Bytes = std::vector<std::uint8_t>;
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

TEST(MidiMap, startsWithItsDefaults)
{
    MapRig rig;
    int assigned = 0;
    for (int c = 0; c < 128; ++c)
        assigned += rig.map.parameterOf(c) >= 0;
    EXPECT_EQ(assigned, 72);
    constexpr int kSome[][2] = {{1, 113}, {5, 78}, {30, 0}, {47, 115}, {74, 28}, {119, 167}};
    for (const auto& [controller, parameter] : kSome) {
        EXPECT_EQ(rig.map.parameterOf(controller), parameter);
        EXPECT_EQ(rig.map.controllerOf(parameter), controller);
    }
    for (const int none : {0, 2, 7, 64, 127, 128, -1})
        EXPECT_EQ(rig.map.parameterOf(none), -1) << none;
    for (const int none : {4, 328, 329, -1})
        EXPECT_EQ(rig.map.controllerOf(none), -1) << none;
    // The last parameter that a byte can name carries the highest unassigned controller.
    EXPECT_EQ(rig.map.controllerOf(255), 126);
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
    for (const int parameter : {255, 256, 300, 346, -1}) {
        rig.map.armLearn(parameter);
        EXPECT_FALSE(rig.map.isLearning()) << "a byte cannot name " << parameter;
    }
}

TEST(MidiMap, forgetsAllControllersOfAParameterButTheLast)
{
    Bytes bytes(128, 255);
    bytes[9] = bytes[50] = bytes[126] = bytes[127] = 28;
    MapRig rig({{Scope::user, bytes}});
    EXPECT_EQ(rig.map.controllerOf(28), 126);
    rig.map.forget(28);
    for (const int c : {9, 50, 126})
        EXPECT_EQ(rig.map.parameterOf(c), -1);
    EXPECT_EQ(rig.map.parameterOf(127), 28);
    EXPECT_EQ(rig.map.controllerOf(28), -1);
}

TEST(MidiMap, readsMachineWideFirstThenTheUsersWhereTheyAreWhole)
{
    struct Row {
        std::size_t machineBytes, userBytes;
        int parameter; // of controller 74; 28 by default
    };
    for (const Row& row : {Row{128, 128, 2}, {129, 0, 2}, {127, 129, 3}, {127, 127, 28}}) {
        const SettingsFiles stored = {{Scope::machine, Bytes(row.machineBytes, 2)},
                                      {Scope::user, Bytes(row.userBytes, 3)}};
        EXPECT_EQ(MapRig(stored).map.parameterOf(74), row.parameter) << row.machineBytes;
    }
    EXPECT_EQ(MapRig({{Scope::user, Bytes(128, 3)}}).map.parameterOf(127), 3);
}

TEST(MidiMap, isKeptWhenThePlugInEndsAndOnlyIfItWasChanged)
{
    SynthRig rig;
    rig.synth.reset();
    EXPECT_TRUE(rig.files.empty());
    SynthRig other;
    other.core().midiMap().armLearn(4);
    other.send({{0, 0xB0, 7, 64}});
    other.synth.reset();
    ASSERT_EQ(other.files.size(), 2u);
    EXPECT_EQ(other.files[Scope::machine], other.files[Scope::user]);
    ASSERT_EQ(other.files[Scope::user].size(), 128u);
    EXPECT_EQ(other.files[Scope::user][7], 4);
    EXPECT_EQ(SynthRig("Some Host", other.files).core().midiMap().controllerOf(4), 7);
}

} // namespace
} // namespace tolm
