// From voices to buses and output: gains, stereo field, stacks, effects send, master gain.

#include "tests/engine/spectrum.h"
#include "tests/engine/toneRig.h"

#include <gtest/gtest.h>

namespace tolm {
namespace {

void setStack(ToneRig& rig, int voices)
{
    rig.set(kVoices, static_cast<float>(18 * (voices - 1) + 1) / 128.0f);
}
void holdStack(ToneRig& rig, int voices, int key)
{
    rig.on(key);
    for (int v = 0; v < voices; ++v)
        rig.slot(static_cast<std::size_t>(v)).amp = {1.0f, EnvelopeStage::sustain};
}

// The louder side of a balance is whole.
void expectPan(const Stereo& sound, double pan, const std::string& what)
{
    const double louder = std::max(peak(sound.left), peak(sound.right));
    EXPECT_NEAR(peak(sound.left) / louder, std::min(1.0, 1.0 - pan), 1e-3) << what;
    EXPECT_NEAR(peak(sound.right) / louder, std::min(1.0, 1.0 + pan), 1e-3) << what;
    EXPECT_NEAR(louder, 0.225, 0.125) << what; // one voice, not several
}

TEST(VoiceMix, volumeAndLevelRowsFollowTheirFormulas)
{
    const auto rows = [](std::initializer_list<std::pair<int, double>> list) {
        ToneRig plain;
        ToneRig changed;
        int row = 1;
        for (const auto& [destination, amount] : list)
            changed.setRow(row++, kConst, destination, amount);
        for (ToneRig* rig : {&plain, &changed})
            rig->hold(60).osc1Phase = 0;
        return rms(changed.render(2048).left) / rms(plain.render(2048).left);
    };
    const int volume = 3;
    const int level = 88;
    EXPECT_NEAR(rows({{volume, 0.5}}), 2.25, 1e-3);
    EXPECT_NEAR(rows({{volume, -0.5}}), 0.25, 1e-3);
    EXPECT_NEAR(rows({{volume, -1.0}, {volume, -1.0}}), 0.0, 1e-9);
    EXPECT_NEAR(db(rows({{level, 0.2}})), 18.0, 0.01); // held at 10^0.9
    EXPECT_NEAR(db(rows({{level, 0.2}, {level, 0.9}})), 36.0, 0.01);
    EXPECT_NEAR(db(rows({{level, -0.4}})), -40.0, 0.01);
}

TEST(VoiceMix, panIsALinearBalance)
{
    for (const double pan : {-1.0, -0.4, 0.0, 0.25, 1.0}) {
        ToneRig rig;
        rig.setRow(1, kConst, 4, pan);
        rig.hold(60);
        expectPan(rig.render(1024), pan, std::to_string(pan));
    }
}

TEST(VoiceMix, stacksSpreadByTheirSizeAndSwitchesPickTheirVoices)
{
    struct Field {
        int voices;
        float spread;
        std::vector<double> pan;
    };
    for (const Field& f :
         {Field{1, 1.0f, {0.0}}, Field{2, 1.0f, {1.0, -1.0}}, Field{3, 1.0f, {-1.0, 0.0, 1.0}},
          Field{4, 1.0f, {0.5, 1.0, -0.5, -1.0}}, Field{5, 1.0f, {-1.0, -1.0, 0.0, 1.0, 1.0}},
          Field{5, 0.25f, {-0.5, -0.25, 0.0, 0.25, 0.5}}})
        for (int k = 0; k < f.voices; ++k) {
            ToneRig rig;
            setStack(rig, f.voices);
            rig.set(kVoiceSpread, f.spread);
            rig.set(kVoice1 + k, 1.0f); // the others fall silent
            holdStack(rig, f.voices, 60);
            expectPan(rig.render(1024), f.pan[static_cast<std::size_t>(k)],
                      std::to_string(k) + " of " + std::to_string(f.voices));
        }
}

TEST(VoiceMix, stacksDetuneInStepsAroundTheirMiddle)
{
    for (const int voices : {2, 3, 8}) {
        ToneRig rig;
        setStack(rig, voices);
        rig.set(kVoiceDetune, 20.5f / 128.0f); // 10 units
        rig.setRow(1, kConst, 7, 0.1);         // and 6 more
        holdStack(rig, voices, 60);
        for (int k = 0; k < voices; ++k)
            rig.slot(static_cast<std::size_t>(k)).osc1Phase = 0;
        rig.render(1, 1);
        for (int k = 0; k < voices; ++k)
            EXPECT_EQ(rig.slot(static_cast<std::size_t>(k)).osc1Phase,
                      stepOfPitch(pitchOfKey(60) + (k - voices / 2) * 16, kRate))
                << voices << ' ' << k;
    }
}

TEST(VoiceMix, gainsRampOverOneCallButNotFromANotesStart)
{
    ToneRig still;
    ToneRig moving;
    for (ToneRig* rig : {&still, &moving})
        rig->hold(60).osc1Phase = 0;
    // The first call has its gain from the first frame.
    const std::vector<double> start = moving.mix(64);
    EXPECT_NEAR(start[1], still.mix(64)[1], 1e-6);
    EXPECT_GT(std::abs(start[1]), 1e-3);
    moving.setRow(1, kConst, 4, 1.0); // hard right
    const Stereo reference = still.render(192, 192);
    const Stereo out = moving.render(192, 192);
    for (std::size_t i = 0; i < out.left.size(); ++i) {
        const float gain = std::max(0.0f, 1.0f - static_cast<float>(i) / 64.0f);
        ASSERT_NEAR(out.left[i], gain * reference.left[i], 1e-6f) << i;
        ASSERT_EQ(out.right[i], reference.right[i]) << i;
    }
}

TEST(VoiceMix, effectsSendSharesTheSoundBetweenTheBuses)
{
    for (const double amount : {0.0, -0.25, -1.0, 1.0}) {
        ToneRig rig;
        ToneRig whole;
        rig.setRow(1, kConst, 86, amount);
        std::vector<float> bus[4];
        for (auto& b : bus)
            b.assign(64, 9.0f); // must be replaced
        float* effects[] = {bus[0].data(), bus[1].data()};
        float* bypass[] = {bus[2].data(), bus[3].data()};
        rig.engine.startBlock(64);
        EXPECT_FALSE(rig.engine.renderVoices(64, effects, bypass, true));
        for (const auto& b : bus)
            EXPECT_EQ(peak(b), 0.0); // no voice
        EXPECT_EQ(rig.record().sampleClock, 64);
        for (ToneRig* r : {&rig, &whole})
            r->hold(60).osc1Phase = 0;
        EXPECT_TRUE(rig.engine.renderVoices(64, effects, bypass, true));
        const Stereo reference = whole.render(64, 64);
        const float share = static_cast<float>(std::clamp(1.0 + amount, 0.0, 1.0));
        for (std::size_t i = 0; i < 64; ++i) {
            ASSERT_NEAR(bus[0][i], share * reference.left[i], 1e-6f) << amount;
            ASSERT_NEAR(bus[3][i], (1.0f - share) * reference.right[i], 1e-6f) << amount;
        }
    }
}

// The spike does not pass through the amplitude envelope: it is there before the attack has begun.
// Its table is a triangle pulse through a one-pole low-pass, scaled to a peak.
TEST(VoiceMix, spikeAddsItsTableTimesTheSoundBesideTheEnvelope)
{
    struct Spike {
        int destination;
        double riseSeconds, lowpassHz, peak;
    };
    for (const double rate : {44100.0, 96000.0})
        for (const Spike& spike : {Spike{55, 0.00025, 60.0, 1.0}, Spike{85, 0.00005, 300.0, 1.6}}) {
            const int rise = static_cast<int>(spike.riseSeconds * rate);
            const double w = std::tan(kPi * spike.lowpassHz / rate);
            std::vector<double> table(static_cast<std::size_t>(rate * 1024.0 / 44100.0));
            double input = 0.0;
            double output = 0.0;
            for (std::size_t i = 0; i < table.size(); ++i) {
                const double last = input;
                input = std::max(0.0, 1.0 - std::abs(static_cast<double>(i) - rise) / rise);
                output = (w * (input + last) - (w - 1.0) * output) / (w + 1.0);
                table[i] = output;
            }
            const double scale = spike.peak / *std::max_element(table.begin(), table.end());

            ToneRig plain(rate);
            ToneRig spiked(rate);
            spiked.setRow(1, kConst, spike.destination, 0.5); // a quarter
            for (ToneRig* rig : {&plain, &spiked}) {
                rig->set(kAmpAttack, 0.3f);
                // The hard one would start the filter envelope at its top; it moves nothing here.
                rig->set(kFilterEnvAmount, 0.0f);
            }
            plain.hold(60).osc1Phase = 0;
            spiked.on(60);
            spiked.slot().osc1Phase = 0;
            const int frames = static_cast<int>(table.size()) + 64;
            const Stereo full = plain.render(frames);
            const Stereo out = spiked.render(frames);
            const double ms = 2.0 * std::pow(10000.0, std::trunc(0.3 * 1024.0) / 1024.0);
            double envelope = 0.0;
            for (std::size_t i = 0; i < out.left.size(); ++i) {
                envelope = 1.0 - (1.0 - envelope) * std::pow(0.1, 1000.0 / (ms * rate));
                const double added = i < table.size() ? 0.25 * scale * table[i] : 0.0;
                ASSERT_NEAR(out.left[i], full.left[i] * (envelope + added), 2e-5)
                    << spike.destination << " at " << rate << ", frame " << i;
            }
        }
}

// ---- Output stage ---------------------------------------------------------------------------

// Runs ones through the output stage.
Stereo throughOutput(ToneRig& rig, int frames)
{
    const auto n = static_cast<std::size_t>(frames);
    Stereo out{std::vector<float>(n, 1.0f), std::vector<float>(n, -1.0f)};
    float* channels[] = {out.left.data(), out.right.data()};
    rig.engine.applyOutputStage(frames, channels);
    return out;
}

TEST(OutputStage, gainRampsOverOneBlock)
{
    ToneRig rig;
    EXPECT_EQ(throughOutput(rig, 100).left, std::vector<float>(100, 1.0f));
    rig.set(kVolume, 1.0f); // 4
    const Stereo ramp = throughOutput(rig, 300);
    for (std::size_t i = 0; i < 300; ++i) {
        ASSERT_NEAR(ramp.left[i], 1.0f + 3.0f * static_cast<float>(i) / 300.0f, 1e-5f);
        ASSERT_EQ(ramp.right[i], -ramp.left[i]);
    }
    EXPECT_EQ(throughOutput(rig, 64).left, std::vector<float>(64, 4.0f));
    // Less than 1e-9 per frame is a step at the next block.
    rig.record().outputGainTarget = std::nextafter(4.0f, 5.0f);
    EXPECT_EQ(throughOutput(rig, 4096).left, std::vector<float>(4096, 4.0f));
    EXPECT_EQ(throughOutput(rig, 1).left[0], std::nextafter(4.0f, 5.0f));
    // Without a previous gain it starts at the target.
    rig.record().outputGain = -1.0f;
    rig.set(kVolume, 0.25f);
    EXPECT_EQ(throughOutput(rig, 64).left, std::vector<float>(64, 0.25f));
}

TEST(OutputStage, dcBlockerRunsWithSyncOnlyAtEightHertz)
{
    for (const double rate : {44100.0, 96000.0}) {
        ToneRig rig(rate);
        rig.set(kOscSync, 1.0f);
        const double w = std::tan(kPi * 8.0 / rate);
        double y = 0.0;
        double x = 0.0;
        for (int block = 0; block < 4; ++block) {
            const Stereo out = throughOutput(rig, 500);
            for (const float sample : out.left) {
                y = (1.0 - x - (w - 1.0) * y) / (w + 1.0);
                x = 1.0;
                ASSERT_NEAR(sample, y, 1e-4);
            }
        }
        rig.set(kOscSync, 0.0f);
        EXPECT_EQ(throughOutput(rig, 8).left, std::vector<float>(8, 1.0f));
    }
}

} // namespace
} // namespace tolm
