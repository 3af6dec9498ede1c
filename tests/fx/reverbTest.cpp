#include "fx/FxReverb.h"
#include "fx/primes.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

#include <numeric>

namespace tolm {

namespace {

constexpr double kRate = 44100.0;

float typeValue(int type)
{
    return type == 4 ? 1.0f : (static_cast<float>(type) + 0.1f) / 4.0f;
}

struct Rig {
    Random random{3};
    FxReverb reverb{random};

    explicit Rig(int type, float decay = 0.3f, float damp = 1.0f, float amount = 1.0f)
    {
        reverb.setParameter(FxReverb::type, typeValue(type));
        reverb.setParameter(FxReverb::decay, decay);
        reverb.setParameter(FxReverb::damp, damp);
        reverb.setParameter(FxReverb::amount, amount);
    }
    Stereo run(Stereo s)
    {
        s.inBlocks([&](int n, float* const* ch) { reverb.process(n, ch); });
        return s;
    }
    Stereo runWhole(Stereo s)
    {
        s.inOneBlock([&](int n, float* const* ch) { reverb.process(n, ch); });
        return s;
    }
};

} // namespace

// A room of another size would sound at another rate.
TEST(Reverb, linesHaveTheirWeightsAndPrimeLengthsThatKeepTheirSecondsAtEveryRate)
{
    Random random;
    FxReverb reverb(random);
    const auto& longs = reverb.lines().longLengths();
    for (const auto& [line, length] : {std::pair{0u, 521}, {1u, 541}, {3u, 569}, {63u, 1607}})
        EXPECT_EQ(longs[line], length);
    EXPECT_EQ(std::accumulate(longs.begin(), longs.end(), 0), 68088);
    const std::array<int, 16> mixed = {761,  967,  1153, 1373, 1571, 1787, 2011, 2239,
                                       2441, 2687, 2897, 3163, 3371, 3607, 3833, 4073};
    EXPECT_EQ(reverb.lines().mixedLengths(), mixed);
    reverb.setSampleRate(8.0 * kRate);
    EXPECT_EQ(longs[0], 641); // the first prime from 500 + rate / 2560 on
    EXPECT_NEAR(longs[63] - 500, 8 * (1607 - 500), 200);
    for (std::size_t k = 0; k < 16; ++k) {
        const int length = reverb.lines().mixedLengths()[k];
        EXPECT_GE(length, 8 * mixed[k]);
        EXPECT_LT(length, 8 * mixed[k] + 100);
    }
    EXPECT_EQ(kParallelWeights[0].line, 63);
    EXPECT_EQ(kParallelWeights[32].line, 62);
    EXPECT_EQ(kParallelWeights[0].left, -3.4f);
    EXPECT_EQ(kParallelWeights[16].right, 2.0f); // line 31
    EXPECT_EQ(kHalfWeights[0].left, 5.0f);
    EXPECT_EQ(kHalfWeights[0].right, 8.0f);
    EXPECT_EQ(primeAtLeast(256), 257);
    EXPECT_EQ(kPrimes.back(), 27449);
    EXPECT_EQ(primeAtLeast(27450), 27457); // beyond the table
    EXPECT_EQ(primeAtLeast(167 * 167), 27893);
}

TEST(Reverb, earlyReflectionsStandWhereTheTablesPutThem)
{
    Random random(5), twin(5);
    ReverbLines lines;
    lines.resize(kRate);
    InputRing ring;
    std::array<float, 64> chunk{};
    constexpr int kPreDelay = 441;
    constexpr std::size_t kLength = 64 * 400;

    const auto response = [&](int type) {
        EarlyReflections early;
        early.build(kReverbTypes[static_cast<std::size_t>(type)], kRate, kPreDelay,
                    lines.longLengths(), random);
        ring.clear();
        Stereo s(kLength);
        for (std::size_t done = 0; done < kLength; done += 64) {
            chunk.fill(0.0f);
            chunk[0] = done == 0 ? 1.0f : 0.0f;
            ring.write(chunk.data(), 64);
            ReverbBuffer left, right;
            early.render(ring, 64, left, right);
            std::copy_n(left.begin(), 64, s.left.begin() + static_cast<long>(done));
            std::copy_n(right.begin(), 64, s.right.begin() + static_cast<long>(done));
        }
        return s;
    };
    const auto frames = [](double at48k, double scale) {
        return static_cast<std::size_t>(at48k * scale * kRate / 48000.0) + kPreDelay;
    };

    struct Tap {
        std::size_t at;
        float left, right; // 9: not looked at
    };
    const auto expectTaps = [](const Stereo& s, std::initializer_list<Tap> taps) {
        for (const auto& [at, left, right] : taps) {
            EXPECT_NEAR(s.left[at], left == 9.0f ? s.left[at] : left, 1e-6f) << at;
            EXPECT_NEAR(s.right[at], right == 9.0f ? s.right[at] : right, 1e-6f) << at;
        }
    };

    EXPECT_EQ(response(0).peak(), 0.0f);
    EXPECT_EQ(response(1).peak(), 0.0f);
    const std::size_t hallLines = 2646 + kPreDelay;
    expectTaps(response(3), {{frames(1394, 0.6), 0.5f * 0.790008f, 9.0f},
                             {frames(16213, 0.6), 0.5f * 0.141174f, 9.0f},
                             {frames(354, 0.6), 9.0f, 0.5f * 0.79916f},
                             {frames(17194, 0.6), 9.0f, 0.5f * 0.079204f},
                             {hallLines + 521, -0.5f * 0.95f / 64.0f, 9.0f},
                             {hallLines + 541, 0.5f * -0.985f / 64.0f, 9.0f},
                             {hallLines + 557, 9.0f, -0.5f * 0.977f / 64.0f}});
    expectTaps(response(4), {{frames(14139, 1.0), 0.162574f, 9.0f},
                             {frames(1545, 1.0), 9.0f, 0.894957f},
                             {3969 + kPreDelay + 569, 9.0f, -0.98f / 64.0f}});

    // The room's diffuse taps come on top, of opposite sign on both sides.
    Stereo room = response(2);
    std::vector<float> diffuse(kLength);
    for (int k = 1; k <= 128; ++k) {
        const auto at = static_cast<std::size_t>(std::pow(k / 128.0, 0.45) * kRate * 0.1);
        const double r = twin.next() / 32767.0 - 0.5;
        diffuse[at + kPreDelay] += static_cast<float>((k == 1 ? 1 : k - 1) / 128.0 * r * 0.0625);
    }
    for (std::size_t i = 0; i < kLength; ++i) {
        room.left[i] -= diffuse[i];
        room.right[i] += diffuse[i];
    }
    expectTaps(room, {{frames(1693 - 1599, 1.0), 0.5f * 0.328189f, 9.0f},
                      {frames(2353 - 1599, 1.0), 0.5f * 0.182983f, 0.5f * -0.061406f},
                      {frames(1609 - 1599, 1.0), 9.0f, 0.5f * 0.239487f}});
    for (const auto* side : {&room.left, &room.right})
        EXPECT_EQ(
            std::count_if(side->begin(), side->end(), [](float x) { return std::abs(x) > 1e-6f; }),
            47);
}

// A straight line of level on the way from the old pre-delay to the new one: the tail is that of
// both, weighted by where in the block their taps meet the impulse.
TEST(Reverb, newPreDelayFadesInOverOneBlock)
{
    constexpr int kBlock = 4000, kAt = 500;
    constexpr int kDelay = 882; // 20 ms
    const auto tail = [](float before, float after) {
        Rig rig(0);
        rig.reverb.setParameter(FxReverb::preDelay, before);
        rig.runWhole(Stereo(64)); // the pre-delay is now the remembered one
        rig.reverb.setParameter(FxReverb::preDelay, after);
        Stereo s(kBlock);
        s.left[kAt] = s.right[kAt] = 1.0f;
        return rig.runWhole(s).left;
    };
    const auto old = tail(0.0f, 0.0f);
    const auto late = tail(0.205f, 0.205f);
    const auto faded = tail(0.0f, 0.205f);
    const float oldShare = 1.0f - static_cast<float>(kAt) / kBlock;
    const float lateShare = static_cast<float>(kAt + kDelay) / kBlock;
    float peak = 0.0f, worst = 0.0f;
    for (std::size_t i = 0; i < kBlock; ++i) {
        peak = std::max(peak, std::abs(old[i]));
        worst = std::max(worst, std::abs(faded[i] - oldShare * old[i] - lateShare * late[i]));
    }
    EXPECT_GT(peak, 1e-3f);
    EXPECT_LT(worst, 0.03f * peak);
    // And the plain pre-delay only shifts the start of the tail.
    const auto start = [](const std::vector<float>& x) {
        return std::find_if(x.begin(), x.end(), [](float v) { return std::abs(v) > 1e-4f; }) -
               x.begin();
    };
    EXPECT_EQ(start(late) - start(old), kDelay);
}

TEST(Reverb, restsAfterADecayOfSilenceAndResumesAtOnce)
{
    for (int type = 0; type < kReverbTypeCount; ++type) {
        SCOPED_TRACE(type);
        Rig rig(type, 0.0f, 1.0f, 0.8f); // half a second
        const auto silent = [&](std::size_t frames) {
            Stereo quiet(frames);
            quiet.fill(5e-10f);
            return rig.runWhole(quiet).peak();
        };
        for (int time = 0; time < 2; ++time) { // sound starts the count again
            rig.run(Stereo::noise(2000, 0.5f));
            EXPECT_GT(silent(22000), 0.0f); // a decay is 22050 frames
        }
        EXPECT_GT(silent(100), 0.0f); // compares before it counts
        EXPECT_EQ(silent(100), 0.0f);
        EXPECT_TRUE(rig.reverb.isResting());
        // At the target, without a ramp.
        EXPECT_NEAR(rig.runWhole(Stereo::impulse(64, 1.0f, 1.0f)).left[0], 1.0f - 0.64f, 0.3f);
        EXPECT_FALSE(rig.reverb.isResting());
    }
}

TEST(Reverb, amountRampsOverTheBlock)
{
    Rig rig(1, 0.3f, 1.0f, 0.0f);
    Stereo ones(100);
    ones.fill(1.0f);
    EXPECT_EQ(rig.runWhole(ones).left[99], 1.0f);
    rig.reverb.setParameter(FxReverb::amount, 1.0f);
    const Stereo s = rig.runWhole(ones); // the tail has not arrived yet: the dry ramp is alone
    for (const std::size_t i : {0u, 1u, 50u, 99u})
        EXPECT_NEAR(s.left[i], 1.0f - static_cast<float>(i) / 100.0f, 1e-4f);
}

TEST(Reverb, onlyTheMixedTypeStartsEmptyAndResetLeavesNoTrace)
{
    for (int type = 0; type < kReverbTypeCount; ++type) {
        SCOPED_TRACE(type);
        Rig rig(type == 0 ? 3 : 0, 0.8f);
        rig.run(Stereo::noise(5000, 0.5f));
        rig.reverb.setParameter(FxReverb::type, typeValue(type));
        EXPECT_EQ(rig.run(Stereo(8000)).peak() == 0.0f, type == 1);
        rig.run(Stereo::noise(5000, 0.5f));
        rig.reverb.reset();
        EXPECT_LT(rig.run(Stereo(8000)).peak(), 1e-12f); // the rings' floor is 1e-15
    }
}

} // namespace tolm
