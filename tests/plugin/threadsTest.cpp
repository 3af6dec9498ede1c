// One thread plays while others do everything else that hosts and editors do. Sanitizers watch.

#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace tolm::test {
namespace {

std::vector<std::uint8_t> savedChunk(SynthRig& rig)
{
    void* data = nullptr;
    const std::int32_t size = rig.synth->getChunk(&data, false);
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

TEST(Threads, everythingMayHappenWhileBlocksArePlayed)
{
    constexpr int kBlocks = 300;
    SynthRig rig;
    const std::vector<std::uint8_t> chunk = savedChunk(rig);
    rig.synth->setSampleRate(48000.0f);
    rig.synth->resume();
    std::atomic<bool> playing{true};
    const std::function<void(int)> work[] = {
        [&](int i) { // chunks and programs
            const bool single = i % 2 != 0;
            rig.synth->setChunk(chunk.data(), static_cast<std::int32_t>(chunk.size()), single);
            rig.synth->setProgram(i * 37 % kProgramCount);
            (void)rig.synth->copyProgram(i * 11 % kProgramCount);
        },
        [&](int i) { // changes, texts and names
            const int id = i % kParameterCount;
            char text[64];
            rig.synth->setParameter(id, static_cast<float>(i % 100) / 99.0f);
            rig.synth->getParameterDisplay(id, text);
            rig.synth->getParameterName(id, text);
            (void)rig.synth->getParameter(id);
            rig.synth->getProgramName(text);
            (void)rig.synth->getProgramNameIndexed(0, i % kProgramCount, text);
            if (i % 16 == 0)
                rig.synth->setProgramName(i % 32 == 0 ? "One" : "The other");
        },
        [&](int i) { // the editor's menus, and a host that saves in the background
            rig.core().midiMap().armLearn(i % 255);
            rig.core().midiMap().forget((i + 7) % 255);
            rig.synth->presets().chooseCategory(i % kCategoryCount);
            rig.synth->presets().next();
            (void)rig.synth->presets().saveChunk();
        },
    };
    std::vector<std::thread> others;
    for (const auto& step : work)
        others.emplace_back([&playing, &step] {
            for (int i = 0; playing; ++i) {
                step(i);
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            }
        });
    for (int block = 0; block < kBlocks; ++block) {
        const int key = 36 + block % 48;
        rig.send({
            {0, 0x90, key, 100},
            {5, 0xB0, block % 120, 64},
            {9, 0xE0, 0, 80},
            {30, 0x80, key, 0},
        });
        if (block % 50 == 49)
            rig.send({{0, 0xC0, block % 128, 0}});
        rig.process(64);
    }
    playing = false;
    for (std::thread& other : others)
        other.join();
    rig.process(64);
    for (const float sample : rig.left)
        ASSERT_TRUE(std::abs(sample) < 100.0f);
}

TEST(Threads, aLoadWaitsForItsBlockAndFollowingBlocksAreSilent)
{
    SynthRig rig;
    const std::vector<std::uint8_t> chunk = savedChunk(rig);
    rig.synth->resume();
    rig.synth->setProgram(0);
    rig.send({{0, 0x90, 60, 127}});
    rig.process(512);
    const auto peak = [&] { return *std::max_element(rig.left.begin(), rig.left.end()); };
    ASSERT_GT(peak(), 0.0f);

    std::atomic<bool> loaded{false};
    std::thread loader;
    {
        const GuardHold block = GuardHold::attempt(rig.core().guard()); // a block is under way
        ASSERT_TRUE(block);
        loader = std::thread([&] {
            rig.synth->setChunk(chunk.data(), static_cast<std::int32_t>(chunk.size()), false);
            loaded = true;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_FALSE(loaded) << "a load tore into a block";
        rig.process(512); // neither waits nor plays
        EXPECT_EQ(peak(), 0.0f);
    }
    loader.join();
    EXPECT_TRUE(loaded);
    rig.send({{0, 0x90, 60, 127}});
    rig.process(512);
    EXPECT_GT(peak(), 0.0f) << "the guard was left taken";
}

} // namespace
} // namespace tolm::test
