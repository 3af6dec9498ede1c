// Whatever is played and switched, in whatever order: once every key and the pedal are up and the
// arpeggiator is off, nothing sounds on.

#include "SynthRig.h"
#include "plugin/catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <sstream>

namespace tolm {
namespace {

using test::SynthRig;

constexpr int kRounds = 1000;
constexpr int kActionsPerRound = 100;
constexpr int kPrograms = 3;
constexpr int kLowestKey = 50;
constexpr int kKeys = 14;

class RandomPlayer {
public:
    explicit RandomPlayer(unsigned seed) : random_(seed)
    {
        rig_.synth->setSampleRate(8000.0f);
        rig_.synth->setBlockSize(64);
        for (int program = 0; program < kPrograms; ++program) {
            rig_.synth->setProgram(kBankSize - 1 - program);
            shapeProgram();
        }
        rig_.synth->resume();
    }

    void act()
    {
        struct Action {
            int perMille;
            void (*act)(RandomPlayer&);
        };
        static constexpr Action kActions[] = {
            {300, [](RandomPlayer& p) { p.press(kLowestKey + p.below(kKeys)); }},
            {250, [](RandomPlayer& p) { p.release(kLowestKey + p.below(kKeys)); }},
            {150, [](RandomPlayer& p) { p.process(1 + p.below(64)); }},
            {40, [](RandomPlayer& p) { p.set(kArpOn, p.below(2)); }},
            {60, [](RandomPlayer& p) { p.set(kArpMode, p.below(7)); }},
            {40, [](RandomPlayer& p) { p.set(kMonoMode, p.below(2)); }},
            {40, [](RandomPlayer& p) { p.set(kVoices, p.below(3) / 5.0); }},
            {40, [](RandomPlayer& p) { p.set(kPolyphony, p.below(3) / 4.0); }},
            {40, [](RandomPlayer& p) { p.send(0xB0, 64, p.below(2) * 127); }},
            {5, [](RandomPlayer& p) { p.send(0xB0, 123, 0); }},
            {5, [](RandomPlayer& p) { p.send(0xC0, kBankSize - 1 - p.below(kPrograms), 0); }},
            {5, [](RandomPlayer& p) { p.rig_.core().engine().allNotesOff(false); }},
            {10, [](RandomPlayer& p) { p.set(kGlide, p.below(2) * 0.5); }},
            {15, [](RandomPlayer& p) { p.set(kArpStepCount, p.below(4) / 31.0); }},
        };
        int dice = below(1000);
        for (const Action& action : kActions) {
            dice -= action.perMille;
            if (dice < 0)
                return action.act(*this);
        }
    }

    // Everything up and off, and time to fade.
    void letGo()
    {
        while (!held_.empty())
            release(*held_.begin());
        send(0xB0, 64, 0);
        if (below(2) != 0)
            process(32);
        set(kArpOn, 0.0);
        process(32);
        process(512); // 20 dB in 2 ms: 180 dB take 144 frames
    }

    int sounding()
    {
        const auto& active = rig_.record().voiceActive;
        return static_cast<int>(std::count(active.begin(), active.end(), 1u));
    }
    std::string log() const { return log_.str(); }
    void forget() { log_.str(""); }

private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    void shapeProgram()
    {
        for (const int id : {kAmpAttack, kAmpRelease, kPhaserOn, kDelayOn, kReverbOn})
            rig_.synth->setParameter(id, 0.0f);
        rig_.synth->setParameter(kAmpSustain, 1.0f);
        rig_.synth->setParameter(kArpRate, 0.8f); // a tick every ten frames
        for (int step = 0; step < kArpSteps; ++step) {
            const int n = below(4) == 0 ? 128 : below(3) == 0 ? 0 : 1 + below(24);
            rig_.synth->setParameter(kArpNote1 + step, static_cast<float>(n) / 128.0f);
            rig_.synth->setParameter(kArpVelocity1 + step, static_cast<float>(below(129)) / 128.0f);
        }
    }

    void press(int key)
    {
        held_.insert(key);
        send(0x90, key, 1 + below(127));
    }
    void release(int key)
    {
        held_.erase(key);
        send(0x80, key, 0);
    }
    void send(int status, int data1, int data2)
    {
        log_ << std::hex << status << std::dec << ' ' << data1 << ' ' << data2 << '\n';
        rig_.send({{below(8), status, data1, data2}});
    }
    void set(int id, double value)
    {
        log_ << "set " << id << ' ' << value << '\n';
        rig_.synth->setParameter(id, static_cast<float>(value));
    }
    void process(int frames)
    {
        // Every event lies in the block.
        log_ << "process " << frames + 8 << '\n';
        rig_.process(frames + 8);
    }

    SynthRig rig_;
    std::mt19937 random_;
    std::set<int> held_;
    std::ostringstream log_;
};

TEST(RandomPlay, leavesNoVoiceBehind)
{
    RandomPlayer player(5);
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kActionsPerRound; ++i)
            player.act();
        player.letGo();
        ASSERT_EQ(player.sounding(), 0) << "round " << round << '\n' << player.log();
        player.forget();
    }
}

} // namespace
} // namespace tolm
