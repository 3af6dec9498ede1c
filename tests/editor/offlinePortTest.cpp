// The offline plug-in, on which pictures and the other tests of the editor stand.

#include "FakeEditorPort.h"
#include "patch/soundText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;

TEST(OfflinePort, keepsValuesProgramsAndBrowserLikeThePlugin)
{
    FakeEditorPort port;
    EXPECT_TRUE(port.takeNews().parameters.none());
    port.setParameter(kFilterCutoff, 0.25f);
    port.setParameterQuiet(kFilterType, 7.0f);
    const EditorNews news = port.takeNews();
    EXPECT_TRUE(news.parameters.test(kFilterCutoff));
    EXPECT_FALSE(news.parameters.test(kFilterType)) << "a quiet change was echoed";
    EXPECT_EQ(port.value(kFilterType), 7.0f);

    port.setProgram(200);
    EXPECT_EQ(port.currentBank(), 1);
    EXPECT_NE(port.value(kFilterType), 7.0f);
    port.setProgramName("Mine");
    EXPECT_EQ(port.presetLabel(port.browser().selected), "073: Mine");
    EXPECT_STRNE(port.factoryRecord(200).name.data(), "Mine");
    EXPECT_THAT(port.takeCalls(), ElementsAre("setParameter 28 0.25", "setParameterQuiet 126 7",
                                              "setProgram 200", "setProgramName Mine"));

    port.setParameter(-1, 1.0f);
    port.setParameter(kParameterCount, 1.0f);
    port.setProgram(kProgramCount);
    EXPECT_EQ(port.currentProgram(), 200);
}

TEST(OfflinePort, loadsASoundTextIntoTheCurrentProgram)
{
    FakeEditorPort port;
    std::string text;
    ASSERT_FALSE(writeSounds(std::array{port.factoryRecord(5)}, blankRecord(), 0, text));
    port.setProgram(90);
    ASSERT_TRUE(port.loadSound(text));
    EXPECT_EQ(port.record(90).values, port.factoryRecord(5).values);
    EXPECT_FALSE(port.loadSound("[[program]\n"));
}

TEST(OfflinePort, wavesAreCountedAsTheEngineDoes)
{
    EXPECT_EQ(waveIndex(0.0f), 0);
    EXPECT_EQ(waveIndex(69.0f / 128.0f), 69);
    EXPECT_EQ(waveIndex(1.0f), 69);
    EXPECT_EQ(waveIndex(-3.0f), 0);
    for (int wave = 0; wave < kWaveCount; ++wave)
        EXPECT_EQ(waveIndex(static_cast<float>(wave) / 128.0f), wave);
}

} // namespace
} // namespace tolm::test
