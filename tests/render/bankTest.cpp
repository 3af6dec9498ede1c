// Every program of the factory bank, played shortly: it sounds, stays in bounds and ends.

#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

#include <set>

namespace tolm::test {

TEST(Bank, everyProgramSoundsAndStaysInBounds)
{
    PluginRig rig;
    rig.tempo = 120.0;
    int played = 0;
    for (int program = 0; program < 384; ++program) {
        const std::string name = rig.programName(program);
        ASSERT_FALSE(name.empty()) << program;
        if (name.starts_with("- Init"))
            continue; // all alike
        SCOPED_TRACE(name);
        rig.selectProgram(program);
        const Stereo sound = rig.render(24000, {noteOn(0, 48),
                                                noteOn(0, 55, 127),
                                                noteOn(2000, 60),
                                                {3000, {0xB0, 1, 127}},
                                                noteOff(20000, 48),
                                                noteOff(20000, 55),
                                                noteOff(20000, 60)});
        EXPECT_TRUE(isFinite(sound));
        EXPECT_GT(rmsOf(sound), 1e-4);
        EXPECT_LT(peakOf(sound), 4.0); // 12 dB over full scale: loud, but no runaway
        ++played;
    }
    EXPECT_GT(played, 24);
}

// Delays and reverbs with tails of seconds. (A chorus keeps its few milliseconds.)
TEST(Bank, aProgramLoadCutsEveryTail)
{
    for (const char* name : {"Dub Suspension", "Temple Bronze", "Rain On Foil", "Night Siren"}) {
        PluginRig rig;
        rig.selectProgram(name);
        EXPECT_GT(peakOf(rig.render(20000, {noteOn(0, 48), noteOn(0, 60)})), 0.01) << name;
        rig.selectProgram(name);
        EXPECT_LT(peakOf(rig.render(20000)), 1e-9) << name; // nothing that a file of 24 bits holds
    }
}

} // namespace tolm::test
