// The editor's port into a real synth: what it hears, what it makes happen, what the host is told.

#include "plugin/EditorPort.h"
#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tolm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NoSelector final : public FileSelector {
public:
    void choose(const FileRequest&, std::function<void(const std::string&)>) override {}
};

struct PortRig : SynthRig {
    explicit PortRig(const char* hostVendor = "Some Host") : SynthRig(hostVendor)
    {
        synth->setSampleRate(48000.0f);
        synth->setProgram(kProgramCount - 1); // "Init Patch"
        port.takeNews();
    }
    void openWindow() { port.useFileSelector(&selector); }
    void playTwoBlocks()
    {
        process(256);
        process(256);
    }

    EditorPort& port = synth->editorPort();
    NoSelector selector;
};

TEST(EditorPort, hearsOfChangesHoweverTheyCameAbout)
{
    PortRig rig("Corvane Audio");
    rig.synth->resume();
    rig.synth->setParameter(kFilterCutoff, 0.3f);    // the host
    rig.synth->setParameter(kParameterCount, 0.3f);  // which may be wrong
    rig.send({{0, 0xB0, 71, 64}, {0, 0xE0, 0, 96}}); // a controller and a bend
    rig.port.setParameterQuiet(kFilterType, 7.0f);   // the window itself
    EditorNews news = rig.port.takeNews();
    EXPECT_TRUE(news.parameters.test(kFilterCutoff));
    EXPECT_TRUE(news.parameters.test(kRingMod)); // controller 71
    EXPECT_TRUE(news.parameters.test(kPitchWheel));
    EXPECT_EQ(news.parameters.count(), 3u);
    EXPECT_NEAR(rig.port.value(kPitchWheel), 0.75f, 1e-6f);
    EXPECT_EQ(rig.port.value(kFilterType), 7.0f);
    EXPECT_FALSE(news.program || news.presetList || news.everything);
    EXPECT_TRUE(rig.port.takeNews().parameters.none()) << "news were told twice";

    rig.synth->setProgramName("Fresh");
    EXPECT_TRUE(rig.port.takeNews().presetList);
    for (const float distance : {1.0f, 0.5f, NAN}) // the own host's mouse wheel
        rig.synth->vendorSpecific(0x57686565, 3, nullptr, distance);
    EXPECT_EQ(rig.port.takeNews().wheelDistance, 1.5f);
    rig.send({{0, 0xC0, 4, 0}});
    news = rig.port.takeNews();
    EXPECT_TRUE(news.program);
    EXPECT_EQ(news.parameters.count(), static_cast<std::size_t>(kStoredParameterCount));
    rig.load(rig.savedChunk());
    EXPECT_TRUE(rig.port.takeNews().everything);
}

TEST(EditorPort, tellsTheHostOfEditsInOrderAndOnlyOfItsOwn)
{
    PortRig rig;
    const std::pair<int, float> edits[] = {
        {kFilterCutoff, 0.5f},
        {kModWheel, 1.0f},   // a controller, but no parameter of the host's
        {4, 0.5f},           // the other way round
        {kPitchWheel, 0.5f}, // neither
        {30, 7.0f},          // stored as it is, sent as what MIDI can say
        {30, NAN},
    };
    for (const auto& [id, value] : edits) {
        rig.port.beginEdit(id);
        rig.port.setParameterAutomated(id, value);
        rig.port.endEdit(id);
    }
    rig.port.setParameter(kVolume, 0.5f);
    rig.port.updateHostDisplay();
    EXPECT_TRUE(rig.port.resizeHostWindow(1120, 720));
    rig.resizes = false;
    EXPECT_FALSE(rig.port.resizeHostWindow(2240, 1440));
    EXPECT_THAT(rig.told,
                ElementsAre("begin 28", "automate 28", "end 28", "begin 4", "automate 4", "end 4",
                            "begin 30", "automate 30", "end 30", "begin 30", "automate 30",
                            "end 30", "display", "size 1120 720", "size 2240 1440"));
    const std::vector<std::array<int, 3>> sent = {
        {0xB0, 74, 63}, {0xB0, 1, 127}, {0xB0, 43, 127}, {0xB0, 43, 0}};
    EXPECT_EQ(rig.sentMidi, sent);
    EXPECT_EQ(rig.port.value(kModWheel), 1.0f);
    EXPECT_EQ(rig.port.value(30), 0.0f);
}

TEST(EditorPort, notesEndWhileBlocksRunAndWhileNoneDo)
{
    PortRig rig;
    rig.openWindow();
    rig.synth->resume();
    rig.port.playKey(60, 100);
    rig.port.playKey(64, 100);
    rig.playTwoBlocks();
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
    rig.playTwoBlocks();
    EXPECT_NEAR(rig.port.meters().rowSource[3], 0.0f, 1e-6f); // 2 * 64 / 128 - 1
    rig.port.playKey(70, 96);
    rig.playTwoBlocks();
    EXPECT_NEAR(rig.port.meters().rowSource[3], 0.5f, 1e-6f);
    rig.port.setParameter(kModSource1 + 3, 0.0f);
    rig.playTwoBlocks();
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

TEST(EditorPort, notesToTheUserWaitForAWindowAndAreWrittenOnce)
{
    PortRig rig;
    Notices& notices = rig.synth->notices();
    notices.post("Info", "first");
    notices.post("Info", "first");
    rig.openWindow();
    notices.post("Info", "second");
    notices.post("Info", "second");
    for (const char* text : {"second", "second", "first"}) {
        const auto notice = rig.port.takeNotice();
        ASSERT_TRUE(notice);
        EXPECT_EQ(notice->title + ": " + notice->text, std::string("Info: ") + text);
    }
    EXPECT_FALSE(rig.port.takeNotice());
    rig.port.useFileSelector(nullptr);
    notices.post("Info", "first");
    EXPECT_TRUE(rig.port.takeNotice());
    EXPECT_THAT(rig.shownMessages, ElementsAre("Info: first"));
}

} // namespace
} // namespace tolm::test
