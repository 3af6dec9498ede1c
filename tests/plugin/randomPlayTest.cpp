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
        const int kind = below(100);
        if (kind < 30)
            press(kLowestKey + below(kKeys));
        else if (kind < 55)
            release(kLowestKey + below(kKeys));
        else if (kind < 70)
            process(1 + below(64));
        else if (kind < 74)
            set(kArpOn, static_cast<float>(below(2)));
        else if (kind < 80)
            set(kArpMode, static_cast<float>(below(7)));
        else if (kind < 84)
            set(kMonoMode, static_cast<float>(below(2)));
        else if (kind < 88)
            set(kVoices, static_cast<float>(below(3)) / 5.0f);
        else if (kind < 92)
            set(kPolyphony, static_cast<float>(below(3)) / 4.0f);
        else if (kind < 96)
            send(0xB0, 64, below(2) * 127);
        else
            rare();
    }

    // Everything up and off, and time to fade.
    void letGo()
    {
        while (!held_.empty())
            release(*held_.begin());
        send(0xB0, 64, 0);
        if (below(2) != 0)
            process(32);
        set(kArpOn, 0.0f);
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

    void rare()
    {
        const int kind = below(8);
        if (kind == 0)
            send(0xB0, 123, 0);
        else if (kind == 1)
            send(0xC0, kBankSize - 1 - below(kPrograms), 0);
        else if (kind == 2)
            rig_.core().engine().allNotesOff(false);
        else if (kind < 5)
            set(kGlide, static_cast<float>(below(2)) * 0.5f);
        else
            set(kArpStepCount, static_cast<float>(below(4)) / 31.0f);
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
    void set(int id, float value)
    {
        log_ << "set " << id << ' ' << value << '\n';
        rig_.synth->setParameter(id, value);
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
    RandomPlayer player(4711);
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
