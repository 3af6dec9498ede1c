// The plug-in object: hosts' makers, parameters on their three ways, programs, tuning, threads.

#include "SynthRig.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <string>
#include <thread>
#include <utility>

namespace tolm {
namespace {

using test::SynthRig;

// Writes down what it is told.
class FakeEditorHooks final : public EditorHooks {
public:
    void parameterChanged(int id, float) override { add("p", id); }
    void keyShown(int key, bool down) override { add(down ? "k" : "u", key); }
    void keysChanged() override { log += "keys "; }
    void noteActivity() override { log += "note "; }
    void programChanged(int program) override { add("program", program); }
    void programNamesChanged() override { log += "names "; }
    void everythingChanged() override { log += "everything "; }
    void mouseWheelMoved(std::intptr_t value, float distance) override
    {
        add(distance > 0.0f ? "wheel+" : "wheel-", static_cast<int>(value));
    }

    std::string take() { return std::exchange(log, {}); }
    std::string log;

private:
    void add(const char* what, int number)
    {
        log += what;
        log += std::to_string(number);
        log += ' ';
    }
};

TEST(VstSynth, recognisesMakersOfHosts)
{
    struct Row {
        const char* vendor;
        bool own, cockosOrZynewave, imageLineOrCakewalk, steinberg;
    };
    constexpr Row kRows[] = {
        {"Corvane Audio", true, false, false, false},
        {"Steinberg", false, false, false, true},
        {"steinberg", false, false, false, false},
        {"Cockos", false, true, false, false},
        {"Zynewave", false, true, false, false},
        {"Image-Line", false, false, true, false},
        {"The Cakewalk Inc", false, false, true, false},
        {"Twelve Tone Systems", false, false, true, false},
        {"Twelve Tone Systems Inc", false, false, false, false},
        {"Corvane Audio ", false, false, false, false},
    };
    for (const Row& row : kRows) {
        SynthRig rig(row.vendor);
        const VstSynth::HostKind& kind = rig.synth->hostKind();
        EXPECT_EQ(kind.own, row.own) << row.vendor;
        EXPECT_EQ(rig.core().hostIsOwnHost(), row.own) << row.vendor;
        EXPECT_EQ(kind.cockosOrZynewave, row.cockosOrZynewave) << row.vendor;
        EXPECT_EQ(kind.imageLineOrCakewalk, row.imageLineOrCakewalk) << row.vendor;
        EXPECT_EQ(kind.steinberg, row.steinberg) << row.vendor;
    }
}

TEST(VstSynth, letsOnlyTheOwnHostRetune)
{
    constexpr std::int32_t kTuni = 0x54756E69;
    std::vector<float> tuning(15360);
    for (std::size_t i = 0; i < tuning.size(); ++i)
        tuning[i] = 1.0f + static_cast<float>(i);
    SynthRig stranger;
    const PitchTable before = stranger.record().pitch;
    EXPECT_EQ(stranger.synth->vendorSpecific(kTuni, 0, tuning.data(), 0.0f), 0);
    EXPECT_EQ(stranger.record().pitch, before);

    SynthRig rig("Corvane Audio");
    EXPECT_EQ(rig.synth->vendorSpecific(kTuni, 0, nullptr, 0.0f), 0);
    EXPECT_EQ(rig.synth->vendorSpecific(kTuni, 0, tuning.data(), 0.0f), 0);
    EXPECT_EQ(rig.record().pitch[4607], before[4607]);
    EXPECT_EQ(rig.record().pitch[4608], 1.0f);
    EXPECT_EQ(rig.record().pitch[19967], 15360.0f);
    const PitchTable retuned = rig.record().pitch;
    for (const float bad : {0.0f, -1.0f, NAN, INFINITY}) {
        tuning[0] = 5.0f;
        tuning[15359] = bad;
        rig.synth->vendorSpecific(kTuni, 0, tuning.data(), 0.0f);
        EXPECT_EQ(rig.record().pitch, retuned) << bad;
    }
}

TEST(VstSynth, tellsTheEditorWhatOthersDo)
{
    SynthRig rig("Corvane Audio");
    FakeEditorHooks editor;
    rig.core().setEditor(&editor);
    rig.synth->setParameter(28, 0.5f);
    rig.synth->setParameter(346, 0.5f);
    rig.synth->setParameter(349, 0.5f);
    EXPECT_EQ(editor.take(), "p28 p346 ");
    rig.synth->setParameterQuiet(28, 0.6f);
    EXPECT_EQ(editor.take(), "");
    EXPECT_EQ(rig.synth->getParameter(28), 0.6f);
    rig.send({{0, 0x90, 60, 1}, {0, 0x80, 60, 0}, {0, 0xB0, 74, 1}});
    EXPECT_EQ(editor.take(), "k60 u60 p28 keys ");
    rig.process(64);
    EXPECT_EQ(editor.take(), "note ");
    rig.core().keyboard().push(kNoteOn, 60, 100);
    rig.process(64);
    EXPECT_EQ(editor.take(), "note "); // it showed that key itself
    rig.synth->setProgramName("Fresh");
    EXPECT_EQ(editor.take(), "names ");
    rig.synth->vendorSpecific(0x57686565, 3, nullptr, 1.0f);
    EXPECT_EQ(editor.take(), "wheel+3 ");
    rig.synth->setProgram(200);
    EXPECT_TRUE(editor.log.ends_with("program200 ")) << editor.log;
    rig.core().setEditor(nullptr);
    rig.synth->setParameter(28, 0.5f);
}

TEST(VstSynth, reportsAutomationAndSendsTheMappedController)
{
    SynthRig rig;
    rig.synth->setParameterAutomated(28, 0.5f);
    rig.synth->setParameterAutomated(113, 1.0f);
    rig.synth->setParameterAutomated(4, 0.5f);   // no controller
    rig.synth->setParameterAutomated(346, 0.5f); // neither
    rig.synth->setParameterAutomated(30, 7.0f);  // stored as it is, sent as what MIDI can say
    rig.synth->setParameterAutomated(30, NAN);
    EXPECT_EQ(rig.automated, (std::vector<int>{28, 4, 30, 30}));
    const std::vector<std::array<int, 3>> sent = {
        {0xB0, 74, 63}, {0xB0, 1, 127}, {0xB0, 43, 127}, {0xB0, 43, 0}};
    EXPECT_EQ(rig.sentMidi, sent);
    EXPECT_EQ(rig.synth->getParameter(113), 1.0f);
    EXPECT_EQ(rig.synth->getParameter(30), 0.0f);
}

TEST(VstSynth, showsTheStoredValueInTheLightOfTheOthers)
{
    SynthRig rig;
    EXPECT_EQ(rig.display(43, 0.0f), "0.1 Hz");
    rig.synth->setParameter(46, 1.0f);
    EXPECT_EQ(rig.display(43, 0.0f), "8/1*");
    rig.synth->setParameter(97, 0.125f);
    EXPECT_EQ(rig.display(98, 0.0f), "1 Hz");
    EXPECT_EQ(rig.display(77, 1.0f), "8 voices");
    EXPECT_EQ(rig.display(71, 0.5f), "untouched");
}

TEST(VstSynth, copiesAndNamesPrograms)
{
    SynthRig rig;
    rig.synth->setProgram(10);
    rig.synth->setProgramName("Source");
    rig.synth->setParameter(328, 0.625f);
    rig.core().engine().programBank().record(10).reserved[11] = 3;
    EXPECT_TRUE(rig.synth->copyProgram(300));
    EXPECT_TRUE(rig.synth->copyProgram(10)); // onto itself
    for (const int none : {384, -1})
        EXPECT_FALSE(rig.synth->copyProgram(none));
    const auto& programs = rig.core().engine().programBank();
    EXPECT_EQ(programs.name(300), "Source");
    EXPECT_EQ(programs.value(300, 328), 0.625f);
    EXPECT_EQ(programs.record(300).reserved[11], 3);
    EXPECT_EQ(rig.synth->getProgram(), 10);
}

TEST(VstSynth, keepsItsMapOnlyWhenItWasChanged)
{
    SynthRig rig;
    rig.synth.reset();
    EXPECT_TRUE(rig.files.empty());
    SynthRig other;
    other.core().midiMap().forget(28);
    other.synth.reset();
    EXPECT_EQ(other.files.size(), 2u);
}

TEST(VstSynth, livesWithoutAHost)
{
    test::SettingsFiles files;
    std::vector<std::string> messages;
    VstSynth synth(nullptr, std::make_unique<test::FakeSettings>(files),
                   std::make_unique<test::FakeMessages>(messages));
    EXPECT_EQ(synth.effect()->numOutputs, 0);
    synth.open();
    synth.resume();
    synth.setParameterAutomated(28, 0.5f);
    float frames[64];
    float* outputs[] = {frames, frames};
    synth.processReplacing(nullptr, outputs, 64);
    EXPECT_EQ(frames[63], 0.0f);
}

TEST(PendingParameters, comeInIdOrderAndOnce)
{
    PendingParameters pending;
    for (const int id : {346, 5, 64, 63, 348, 5, 0})
        pending.mark(id);
    std::vector<int> drained;
    const auto note = [&drained](int id) { drained.push_back(id); };
    pending.drain(note);
    EXPECT_EQ(drained, (std::vector<int>{0, 5, 63, 64, 346, 348}));
    pending.drain(note);
    EXPECT_EQ(drained.size(), 6u);
    pending.mark(7);
    pending.clear();
    pending.drain(note);
    EXPECT_EQ(drained.size(), 6u);
}

TEST(ProcessingGuard, givesUpOnAHostThatStoppedInsideABlock)
{
    SynthRig rig;
    const GuardHold stuck = GuardHold::attempt(rig.core().guard());
    const auto start = std::chrono::steady_clock::now();
    rig.synth->setProgram(5);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
    EXPECT_EQ(rig.synth->getProgram(), 0);
}

// For ThreadSanitizer, and for finite sound in every block.
TEST(Threads, oneRendersWhileAnotherChangesEverything)
{
    SynthRig rig;
    rig.synth->setBlockSize(128);
    rig.synth->resume();
    std::atomic<bool> done{false};
    std::thread user([&rig, &done] {
        char text[64] = "";
        for (int i = 0; i < 3000; ++i) {
            rig.synth->setParameter(i * 7 % 349, static_cast<float>(i % 100) / 100.0f);
            rig.synth->setParameterQuiet(71, 0.5f);
            rig.synth->getParameterDisplay(i % 111, text);
            rig.synth->getProgramNameIndexed(0, i % 384, text);
            if (i % 10 == 0)
                rig.synth->setProgramName("Renamed");
            if (i % 50 == 0)
                rig.synth->setProgram(i % 384);
            if (i % 300 == 0)
                rig.synth->setBlockSize(64 + i % 128);
            if (i % 500 == 0)
                rig.synth->copyProgram(i % 384);
            if (i % 100 == 0)
                i % 200 == 0 ? rig.synth->suspend() : rig.synth->resume();
            rig.core().keyboard().push(i % 2 == 0 ? kNoteOn : kNoteOff, 60, 100);
            if (i % 20 == 0)
                rig.core().midiMap().armLearn(i % 255);
            if (i % 30 == 0)
                rig.core().midiMap().forget(i % 255);
        }
        done = true;
    });
    bool finite = true;
    for (int block = 0; !done; ++block) {
        rig.send({{0, 0x90, 40 + block % 40, 100},
                  {60, 0x80, 40 + block % 40, 0},
                  {0, 0xB0, block % 120, block % 128},
                  {9, 0xE0, block % 128, block % 128}});
        rig.process(1 + block % 200);
        for (const float sample : rig.left)
            finite = finite && std::isfinite(sample);
    }
    user.join();
    EXPECT_TRUE(finite);
}

} // namespace
} // namespace tolm
