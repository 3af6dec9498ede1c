// Notes sound at their frame, however the host cuts its blocks.

#include "plugin/catalogue.h"
#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

namespace tolm::test {

namespace {

// A square has its full height from the first frame, and an attack of 0 is over almost at once.
void immediate(PluginRig& rig)
{
    rig.selectProgram("Init Patch");
    rig.set(kOsc1Shape, 0.34f);
    rig.set(kOscMix, 0.0f);
    rig.set(kAmpAttack, 0.0f);
    rig.set(kFilterCutoff, 1.0f);
}

} // namespace

TEST(Timing, soundStartsAtTheFrameOfTheNote)
{
    for (const int block : {1, 7, 64, 512, 1000, 1024})
        for (const int frame : {0, 1, 63, 64, 65, 511, 512, 1023, 1500}) {
            SCOPED_TRACE(testing::Message() << "frame " << frame << ", blocks of " << block);
            PluginRig rig(44100.0f, 1024);
            immediate(rig);
            const Stereo sound = rig.render(2000, {noteOn(frame, 60)}, block);
            EXPECT_EQ(firstSound(sound), static_cast<std::size_t>(frame));
            EXPECT_GT(peakOf(sound), 0.01);
        }
}

// Blocks of whole slices lead to the same engine calls, so to the same samples. Other cuts move the
// points at which gains and modulation are computed, never what is played.
TEST(Timing, everyCutOfTheBlocksGivesTheSameSound)
{
    const auto play = [](const std::vector<Message>& music, const std::vector<int>& blocks) {
        PluginRig rig(44100.0f, 1024);
        immediate(rig);
        return rig.render(6000, music, blocks);
    };
    const std::vector<Message> onSlices = {noteOn(0, 60), noteOn(640, 67), noteOff(2560, 60),
                                           noteOn(3200, 72), noteOff(5120, 67)};
    for (const std::vector<int>& blocks :
         std::vector<std::vector<int>>{{128}, {192}, {1024}, {64, 448, 128, 1024}})
        EXPECT_EQ(play(onSlices, blocks), play(onSlices, {64})) << "from " << blocks.front();

    const std::vector<Message> anywhere = {noteOn(100, 60), noteOn(777, 67), noteOff(2500, 60)};
    for (const std::vector<int>& blocks :
         std::vector<std::vector<int>>{{1}, {33}, {333, 1}, {1000}, {1024, 3, 50}})
        EXPECT_GT(snrDb(play(anywhere, {512}), play(anywhere, blocks)), 80.0)
            << "from " << blocks.front();
}

TEST(Timing, longerBlocksThanAnnouncedKeepTheirEvents)
{
    for (const int block : {2000, 9000}) {
        PluginRig rig(44100.0f, 256);
        immediate(rig);
        const Stereo sound = rig.render(block, {noteOn(1777, 60)}, block);
        EXPECT_EQ(firstSound(sound), 1777u) << block;
    }
}

} // namespace tolm::test
