// What an instance may cost a host: no memory while it plays, little when it is made, and no wait
// when it is loaded.

#include "plugin/catalogue.h"
#include "tests/render/PluginRig.h"
#include "tests/render/allocations.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <malloc.h>

namespace tolm::test {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

constexpr double kMiB = 1024.0 * 1024.0;

double bytesInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

} // namespace

TEST(Cost, nothingIsTakenWhilePlaying)
{
    const long start = allocationCount();
    PluginRig rig;
    EXPECT_GT(allocationCount() - start, 5); // the counter sees what the plug-in takes
    rig.tempo = 130.0;
    Stereo sound;
    sound.left.reserve(4096);
    sound.right.reserve(4096);
    for (int program = 0; program < 384; ++program) {
        const std::string name = rig.programName(program);
        if (name.starts_with("- Init"))
            continue;
        rig.selectProgram(program);
        // The host's own event list is built before the count begins.
        rig.send({noteOn(0, 40),
                  noteOn(10, 52),
                  noteOn(20, 64),
                  {30, {0xB0, 1, 90}},
                  {40, {0xE0, 0, 80}},
                  {50, {0xD0, 60, 0}},
                  {60, {0xB0, 64, 127}},
                  noteOff(300, 52)});
        const long before = allocationCount();
        float value = 1.0f;
        for (const int block : {512, 64, 1, 700}) {
            sound.left.clear();
            sound.right.clear();
            rig.process(block, sound);
            rig.set(kFilterCutoff, 0.4f);
            rig.set(kArpMode, 3.0f);
            for (int id = kPhaserType; id <= kEq2Gain; ++id)
                rig.set(id, value);
            for (int id = kPhaserOn; id <= kEq2On; ++id)
                rig.set(id, 1.0f);
            value -= 0.31f;
        }
        EXPECT_EQ(allocationCount(), before) << name;
    }
}

TEST(Cost, programChangesAndEventsInTheAudioThreadTakeNothing)
{
    PluginRig rig;
    std::vector<Message> messages;
    for (int i = 0; i < 100; ++i)
        messages.push_back({i, {0xC0, static_cast<std::uint8_t>(i % 50), 0}});
    rig.send(messages);
    const long before = allocationCount();
    rig.send(messages);
    EXPECT_EQ(allocationCount() - before, 2); // the host's list: two vectors
}

TEST(Cost, anInstanceStaysSmall)
{
    if (kSanitized)
        GTEST_SKIP() << "a sanitizer's heap is not measured";
    const PluginRig shared; // loads what all instances share
    for (const float rate : {44100.0f, 192000.0f}) {
        const double before = bytesInUse();
        PluginRig rig(rate, 1024);
        rig.render(4096, {noteOn(0, 60)});
        const double taken = (bytesInUse() - before) / kMiB;
        std::printf("one instance at %g Hz: %.2f MiB\n", static_cast<double>(rate), taken);
        EXPECT_GT(taken, 0.5); // its programs alone have as much
        EXPECT_LT(taken, 12.0) << rate;
    }
}

TEST(Cost, loadingIsQuick)
{
    // A copy is a library of its own for the loader, whatever is loaded already.
    const std::filesystem::path copy = TOLM_BUILD_DIR "/loadedOnce.so";
    std::filesystem::copy_file(TOLM_PLUGIN, copy,
                               std::filesystem::copy_options::overwrite_existing);
    using Clock = std::chrono::steady_clock;
    double best = 1e9;
    for (int run = 0; run < 5; ++run) {
        const Clock::time_point start = Clock::now();
        PluginRig rig(44100.0f, 512, copy.c_str());
        EXPECT_FALSE(rig.programName(0).empty());
        const double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        best = std::min(best, ms);
        if (run == 0)
            std::printf("first load to first program name: %.1f ms\n", ms);
    }
    std::printf("best of five: %.1f ms\n", best);
    std::filesystem::remove(copy);
    EXPECT_LT(best, kSanitized ? 2000.0 : 100.0);
}

} // namespace tolm::test
