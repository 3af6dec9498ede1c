// One thread plays while others do everything else that hosts and editors do. Sanitizers watch.

#include "SynthRig.h"
#include "plugin/EditorPort.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace tolm::test {
namespace {

using std::chrono::microseconds;

TEST(Threads, everythingMayHappenWhileBlocksArePlayed)
{
    constexpr int kBlocks = 600;
    SynthRig rig;
    const std::vector<std::uint8_t> chunk = rig.savedChunk();
    VstSynth& synth = *rig.synth;
    EditorPort& port = synth.editorPort();
    synth.setSampleRate(48000.0f);
    synth.resume();
    const std::function<void(int)> work[] = {
        [&](int i) { // chunks, programs, and a host that switches
            rig.load(chunk, i % 2 != 0);
            synth.setProgram(i * 37 % kProgramCount);
            (void)synth.copyProgram(i * 11 % kProgramCount);
            if (i % 4 == 0)
                synth.setBlockSize(32 + i % 128);
            if (i % 8 == 0)
                i % 16 == 0 ? synth.suspend() : synth.resume();
        },
        [&](int i) { // changes, texts and names
            const int id = i % kParameterCount;
            char text[64];
            synth.setParameter(id, static_cast<float>(i % 100) / 99.0f);
            synth.getParameterDisplay(id, text);
            synth.getParameterName(id, text);
            (void)synth.getParameter(id);
            synth.getProgramName(text);
            (void)synth.getProgramNameIndexed(0, i % kProgramCount, text);
            if (i % 16 == 0)
                synth.setProgramName(i % 32 == 0 ? "One" : "The other");
        },
        [&](int i) { // the editor's menus, and a host that saves in the background
            rig.core().midiMap().armLearn(i % 255);
            rig.core().midiMap().forget((i + 7) % 255);
            synth.presets().chooseCategory(i % kCategoryCount);
            synth.presets().next();
            (void)synth.presets().saveChunk();
        },
        [&](int i) { // the editor's window
            port.playKey(40 + i % 40, 100);
            port.setParameterQuiet(kEffectOrder1 + i % 6, static_cast<float>(i % 6));
            port.setParameterQuiet(kModSource1 + i % 24, static_cast<float>(i % 26));
            port.setParameterQuiet(kArpOn, static_cast<float>(i % 2));
            port.moveModWheel(i % 128);
            port.softAllNotesOff();
            port.resetArpStep();
            port.reapplyProgram();
            if (i % 32 == 0)
                port.panic();
            if (i % 64 == 0)
                port.replaceCurrent(port.factoryRecord(i % kProgramCount));
            port.setBendUpRange(i % 65);
            (void)port.takeNews();
            const EditorMeters meters = port.meters();
            ASSERT_TRUE(meters.voices >= 0 && meters.voices <= kVoiceCount);
            port.releaseKey(40 + i % 40);
        },
    };
    std::atomic<bool> playing{true};
    std::vector<std::thread> others;
    for (const auto& step : work)
        others.emplace_back([&playing, &step] {
            for (int i = 0; playing; ++i) {
                step(i);
                std::this_thread::sleep_for(microseconds(200));
            }
        });
    bool finite = true;
    for (int block = 0; block < kBlocks; ++block) {
        const int key = 36 + block % 48;
        rig.send({{0, 0x90, key, 100},
                  {5, 0xB0, block % 120, 64},
                  {9, 0xE0, 0, block % 128},
                  {30, 0x80, key, 0}});
        if (block % 50 == 49)
            rig.send({{0, 0xC0, block % 128, 0}});
        rig.process(1 + block % 200);
        finite = finite && std::all_of(rig.left.begin(), rig.left.end(),
                                       [](float sample) { return std::isfinite(sample); });
    }
    playing = false;
    for (std::thread& other : others)
        other.join();
    EXPECT_TRUE(finite);
}

TEST(Threads, aLoadWaitsForItsBlockAndFollowingBlocksAreSilent)
{
    SynthRig rig;
    const std::vector<std::uint8_t> chunk = rig.savedChunk();
    rig.synth->resume();
    rig.synth->setProgram(0);
    rig.send({{0, 0x90, 60, 127}});
    rig.process(512);
    ASSERT_GT(rig.peak(), 0.0f);

    std::atomic<bool> loaded{false};
    std::thread loader;
    {
        const GuardHold block = GuardHold::attempt(rig.core().guard()); // a block is under way
        ASSERT_TRUE(block);
        loader = std::thread([&] {
            rig.load(chunk);
            loaded = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_FALSE(loaded) << "a load tore into a block";
        rig.process(512); // neither waits nor plays
        EXPECT_EQ(rig.peak(), 0.0f);
    }
    loader.join();
    rig.send({{0, 0x90, 60, 127}});
    rig.process(512);
    EXPECT_GT(rig.peak(), 0.0f) << "the guard was left taken";
}

} // namespace
} // namespace tolm::test
