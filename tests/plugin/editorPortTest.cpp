// The editor's port into a real synth: what it hears, what it makes happen, what the host is told.

#include "plugin/EditorPort.h"
#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class NoSelector final : public FileSelector {
public:
    void choose(const FileRequest&, std::function<void(const std::string&)>) override {}
};

struct PortRig : SynthRig {
    PortRig()
    {
        synth->setSampleRate(48000.0f);
        synth->setProgram(kProgramCount - 1); // "Init Patch"
        port.takeNews();
    }
    void openWindow() { port.useFileSelector(&selector); }
    float peak() const
    {
        float highest = 0.0f;
        for (const float sample : left)
            highest = std::max(highest, std::abs(sample));
        return highest;
    }

    EditorPort& port = synth->editorPort();
    NoSelector selector;
};

TEST(EditorPort, hearsOfChangesHoweverTheyCameAbout)
{
    PortRig rig;
    rig.synth->resume();
    rig.synth->setParameter(kFilterCutoff, 0.3f);    // the host
    rig.send({{0, 0xB0, 71, 64}, {0, 0xE0, 0, 96}}); // a controller and a bend
    rig.port.setParameterQuiet(kFilterType, 7.0f);   // the window itself
    EditorNews news = rig.port.takeNews();
    EXPECT_TRUE(news.parameters.test(kFilterCutoff));
    EXPECT_TRUE(news.parameters.test(kRingMod)); // controller 71
    EXPECT_TRUE(news.parameters.test(kPitchWheel));
    EXPECT_EQ(news.parameters.count(), 3u);
    EXPECT_NEAR(rig.port.value(kPitchWheel), 0.75f, 1e-6f);
    EXPECT_FALSE(news.program || news.presetList || news.everything);
    EXPECT_TRUE(rig.port.takeNews().parameters.none()) << "news were told twice";

    rig.send({{0, 0xC0, 4, 0}});
    news = rig.port.takeNews();
    EXPECT_TRUE(news.program);
    EXPECT_EQ(news.parameters.count(), static_cast<std::size_t>(kStoredParameterCount));
    const auto chunk = rig.synth->presets().saveChunk();
    rig.synth->presets().loadChunk(chunk, false);
    EXPECT_TRUE(rig.port.takeNews().everything);
}

TEST(EditorPort, tellsTheHostOfEditsInOrderAndOnlyOfItsOwn)
{
    PortRig rig;
    rig.port.beginEdit(kFilterCutoff);
    rig.port.setParameterAutomated(kFilterCutoff, 0.5f);
    rig.port.endEdit(kFilterCutoff);
    rig.port.beginEdit(kModWheel);
    rig.port.setParameterAutomated(kModWheel, 1.0f);
    rig.port.endEdit(kModWheel);
    rig.port.setParameter(kVolume, 0.5f);
    rig.port.updateHostDisplay();
    EXPECT_TRUE(rig.port.resizeHostWindow(1120, 720));
    rig.resizes = false;
    EXPECT_FALSE(rig.port.resizeHostWindow(2240, 1440));
    EXPECT_THAT(rig.told, ElementsAre("begin 28", "automate 28", "end 28", "display",
                                      "size 1120 720", "size 2240 1440"));
    ASSERT_EQ(rig.sentMidi.size(), 2u); // both are mapped to controllers
    EXPECT_EQ(rig.sentMidi[1], (std::array{0xB0, 1, 127}));
}

TEST(EditorPort, notesEndWhileBlocksRunAndWhileNoneDo)
{
    PortRig rig;
    rig.openWindow();
    rig.synth->resume();
    rig.port.playKey(60, 100);
    rig.port.playKey(64, 100);
    rig.process(256);
    rig.process(256);
    EditorMeters meters = rig.port.meters();
    EXPECT_EQ(meters.voices, 2);
    EXPECT_TRUE(meters.keys.test(60));
    EXPECT_GT(meters.peakLeft, 0.0f);
    rig.process(512);
    EXPECT_FLOAT_EQ(rig.port.meters().peakLeft, rig.peak());

    rig.port.softAllNotesOff();
    rig.process(64);
    EXPECT_GT(rig.port.meters().voices, 0) << "a soft end is a release";
    rig.port.panic();
    EXPECT_GT(rig.port.meters().voices, 0) << "the engine was touched outside of the audio thread";
    rig.process(64);
    meters = rig.port.meters();
    EXPECT_EQ(meters.voices, 0);
    EXPECT_TRUE(meters.keys.none());
    EXPECT_EQ(rig.peak(), 0.0f);

    rig.port.playKey(60, 100);
    rig.process(64);
    rig.synth->suspend();
    rig.port.panic();
    EXPECT_EQ(std::count(rig.record().voiceActive.begin(), rig.record().voiceActive.end(), 0u),
              kVoiceCount);
}

TEST(EditorPort, metersShowTheNewestVoiceAndRestWithoutAWindow)
{
    PortRig rig;
    rig.synth->resume();
    rig.port.setParameter(kModSource1 + 3, 1.0f); // row 4: velocity
    rig.port.setParameter(kModDestination1 + 3, 4.0f);
    rig.port.playKey(60, 64);
    rig.process(256);
    EXPECT_EQ(rig.port.meters().voices, 0) << "no window, no meters";
    rig.openWindow();
    rig.process(256);
    rig.process(256);
    EXPECT_NEAR(rig.port.meters().rowSource[3], 0.0f, 1e-6f); // 2 * 64 / 128 - 1
    rig.port.playKey(70, 96);
    rig.process(256);
    rig.process(256);
    EXPECT_NEAR(rig.port.meters().rowSource[3], 0.5f, 1e-6f);
    rig.port.setParameter(kModSource1 + 3, 0.0f);
    rig.process(256);
    rig.process(256);
    EXPECT_EQ(rig.port.meters().rowSource[3], 0.0f);
    EXPECT_EQ(rig.port.meters().arpStep, -1);
    rig.port.setParameterQuiet(kArpOn, 1.0f);
    rig.process(64);
    rig.send({{0, 0x90, 50, 90}});
    rig.process(64);
    EXPECT_GE(rig.port.meters().arpStep, 0);
    rig.port.useFileSelector(nullptr);
    EXPECT_EQ(rig.port.meters().arpStep, -1);
}

TEST(EditorPort, theModWheelOfTheWindowIsControllerOne)
{
    PortRig rig;
    rig.synth->resume();
    rig.port.armLearn(kFilterCutoff);
    rig.port.moveModWheel(127);
    rig.process(64);
    EXPECT_EQ(rig.record().modWheel, 1.0);
    EXPECT_EQ(rig.port.value(kModWheel), 1.0f);
    EXPECT_EQ(rig.port.learningId(), kFilterCutoff) << "the wheel was learnt";
    EXPECT_FALSE(rig.port.takeNews().learnedController);
    rig.send({{0, 0xB0, 20, 64}});
    EXPECT_TRUE(rig.port.takeNews().learnedController);
    EXPECT_FALSE(rig.port.takeNews().learnedController);
    EXPECT_THAT(rig.port.controllersOf(kFilterCutoff), ElementsAre(20, 74));
    rig.port.forgetAll();
    EXPECT_THAT(rig.port.controllersOf(kFilterCutoff), IsEmpty());
    EXPECT_THAT(rig.port.controllersOf(kModWheel), IsEmpty());
}

TEST(EditorPort, replacesProgramsAndKnowsTheFactoryOnes)
{
    PortRig rig;
    ProgramRecord mine = rig.port.factoryRecord(7);
    mine.name.fill('x'); // no end inside the field
    mine.values[kFilterCutoff] = std::nanf("");
    rig.port.replaceCurrent(mine);
    EXPECT_EQ(rig.port.value(kFilterCutoff), 0.0f);
    EXPECT_EQ(rig.port.record(kProgramCount - 1).name.back(), '\0');
    EXPECT_EQ(rig.port.value(kVolume), mine.values[kVolume]);
    EXPECT_TRUE(rig.port.takeNews().program);
    rig.port.replaceCurrent(rig.port.initialRecord());
    EXPECT_STREQ(rig.port.record(kProgramCount - 1).name.data(), "Init Patch");
    rig.port.replaceProgram(3, rig.port.initialRecord());
    EXPECT_EQ(rig.port.currentProgram(), kProgramCount - 1);
    EXPECT_STREQ(rig.port.record(3).name.data(), "Init Patch");
    EXPECT_STRNE(rig.port.factoryRecord(3).name.data(), "Init Patch");
    rig.port.setDescription("Warm");
    EXPECT_STREQ(rig.port.record(kProgramCount - 1).description.data(), "Warm");
}

TEST(EditorPort, aNewEffectOrderIsHeardBeforeTheProgramIsLoadedAgain)
{
    PortRig rig;
    EXPECT_EQ(rig.core().effectOrder(0), 0);
    rig.port.setParameterQuiet(kEffectOrder1, 5.0f);
    rig.port.setParameterQuiet(kEffectOrder1 + 5, 0.0f);
    EXPECT_EQ(rig.core().effectOrder(0), 5);
    EXPECT_EQ(rig.core().effectOrder(5), 0);
    rig.port.setParameterQuiet(kEffectOrder1, 7.0f);
    EXPECT_EQ(rig.core().effectOrder(0), 5);
}

TEST(EditorPort, notesToTheUserWaitForAWindow)
{
    PortRig rig;
    rig.synth->notices().post("Info", "first");
    rig.openWindow();
    rig.synth->notices().post("Info", "second");
    EXPECT_EQ(rig.port.takeNotice()->text, "second");
    EXPECT_EQ(rig.port.takeNotice()->text, "first");
    EXPECT_FALSE(rig.port.takeNotice());
    EXPECT_THAT(rig.shownMessages, ElementsAre("Info: first"));
}

TEST(EditorPort, userFilesStayInTheirFolder)
{
    const fs::path folder = fs::path(TOLM_BUILD_DIR) / "user-files-test";
    fs::remove_all(folder);
    const auto files = folderUserFiles((folder / "Tolm").string());
    EXPECT_FALSE(files->read("favourites.txt"));
    files->write("favourites.txt", "one\n");
    files->write("favourites.txt", "two\n");
    EXPECT_EQ(files->read("favourites.txt"), "two\n");
    for (const char* name : {"", "../escaped", ".hidden", "a/b"}) {
        files->write(name, "x");
        EXPECT_FALSE(files->read(name)) << name;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "Tolm"), {}), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
    std::ofstream(folder / "Tolm" / "huge.txt") << std::string((1 << 20) + 1, 'x');
    EXPECT_FALSE(files->read("huge.txt"));
    EXPECT_FALSE(folderUserFiles("")->read("favourites.txt"));
    fs::remove_all(folder);
}

TEST(EditorPort, aWindowMayDoAllOfItWhileBlocksAndHostChangesRun)
{
    PortRig rig;
    rig.openWindow();
    rig.synth->resume();
    std::atomic<bool> playing{true};
    std::bitset<kTagCount> heard;
    std::thread window([&] {
        for (int i = 0; playing; ++i) {
            rig.port.playKey(40 + i % 40, 100);
            rig.port.setParameterQuiet(kEffectOrder1 + i % 6, static_cast<float>(i % 6));
            rig.port.setParameterQuiet(kModSource1 + i % 24, static_cast<float>(i % 26));
            rig.port.setParameterQuiet(kArpOn, static_cast<float>(i % 2));
            rig.port.moveModWheel(i % 128);
            rig.port.softAllNotesOff();
            rig.port.resetArpStep();
            rig.port.reapplyProgram();
            if (i % 32 == 0)
                rig.port.panic();
            if (i % 64 == 0)
                rig.port.replaceCurrent(rig.port.factoryRecord(i % kProgramCount));
            rig.port.setBendUpRange(i % 65);
            heard |= rig.port.takeNews().parameters;
            const EditorMeters meters = rig.port.meters();
            ASSERT_TRUE(meters.voices >= 0 && meters.voices <= kVoiceCount);
            rig.port.releaseKey(40 + i % 40);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    });
    for (int block = 0; block < 300; ++block) {
        rig.send({{0, 0x90, 36 + block % 48, 100}, {5, 0xB0, 74, block % 128}});
        rig.process(64);
    }
    playing = false;
    window.join();
    heard |= rig.port.takeNews().parameters;
    EXPECT_TRUE(heard.test(kFilterCutoff)); // moved by controller 74 on the audio thread
}

} // namespace
} // namespace tolm::test
