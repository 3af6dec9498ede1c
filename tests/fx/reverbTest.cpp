#include "fx/FxReverb.h"
#include "fx/primes.h"
#include "tests/fx/rig.h"

#include <gtest/gtest.h>

#include <bit>
#include <numeric>
#include <span>

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
    void run(Stereo& s)
    {
        s.inBlocks([&](int n, float* const* ch) { reverb.process(n, ch); });
    }
};

} // namespace

TEST(Reverb, lineLengthsArePrimesOfTheRate)
{
    Random random;
    FxReverb reverb(random);
    const auto& longs = reverb.lines().longLengths();
    EXPECT_EQ(longs[0], 521);
    EXPECT_EQ(longs[1], 541);
    EXPECT_EQ(longs[2], 557);
    EXPECT_EQ(longs[3], 569);
    EXPECT_EQ(longs[62], 1597);
    EXPECT_EQ(longs[63], 1607);
    EXPECT_EQ(std::accumulate(longs.begin(), longs.end(), 0), 68088);
    const std::array<int, 16> mixed = {761,  967,  1153, 1373, 1571, 1787, 2011, 2239,
                                       2441, 2687, 2897, 3163, 3371, 3607, 3833, 4073};
    EXPECT_EQ(reverb.lines().mixedLengths(), mixed);
    EXPECT_EQ(primeAtLeast(256), 257);
    EXPECT_EQ(primeAtLeast(27450), 27457); // beyond the table
    EXPECT_EQ(kPrimes.back(), 27449);
}

TEST(Reverb, everyTypeDecaysBySixtyDecibelsInItsTime)
{
    for (int type = 0; type < kReverbTypeCount; ++type) {
        for (const float decay : {0.2f, 0.6f}) {
            SCOPED_TRACE(testing::Message()
                         << kReverbTypes[static_cast<std::size_t>(type)].name << " " << decay);
            const double seconds = 0.5 * std::pow(20.0, static_cast<double>(decay));
            Rig rig(type, decay);
            const auto total = static_cast<std::size_t>((0.7 + seconds) * kRate);
            Stereo s = Stereo::impulse(total, 1.0f, 1.0f);
            std::fill(s.left.begin() + 1, s.left.end(), 1e-8f); // enough not to count as silence
            rig.run(s);
            // From 0.6 s on, past the early reflections, over most of a decay.
            const auto window = static_cast<std::size_t>(0.2 * kRate);
            const std::size_t last = total - window;
            const auto first = static_cast<std::size_t>(0.6 * kRate);
            const double fall = 10.0 * std::log10(energy(s.left, first, first + window) /
                                                  energy(s.left, last, total));
            const double expected = 60.0 * static_cast<double>(last - first) / kRate / seconds;
            EXPECT_NEAR(fall, expected, 0.12 * expected + 1.0);
        }
    }
}

TEST(Reverb, dampingShortensTheTreble)
{
    const auto trebleShare = [](int type, float damp) {
        Rig rig(type, 0.5f, damp);
        Stereo s = Stereo::impulse(44100, 1.0f, 1.0f);
        rig.run(s);
        const std::vector<float> late(s.left.begin() + 30000, s.left.end());
        std::vector<float> slope(late.size());
        for (std::size_t i = 1; i < late.size(); ++i)
            slope[i] = late[i] - late[i - 1];
        return energy(slope, 0, slope.size()) / energy(late, 0, late.size());
    };
    for (const int type : {0, 1, 2, 3, 4})
        EXPECT_LT(trebleShare(type, 0.0f), 0.25 * trebleShare(type, 1.0f)) << type;
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

    EXPECT_EQ(response(0).peak(), 0.0f);
    EXPECT_EQ(response(1).peak(), 0.0f);

    const Stereo hall = response(3);
    EXPECT_NEAR(hall.left[frames(1394, 0.6)], 0.5f * 0.790008f, 1e-6f);
    EXPECT_NEAR(hall.left[frames(16213, 0.6)], 0.5f * 0.141174f, 1e-6f);
    EXPECT_NEAR(hall.right[frames(354, 0.6)], 0.5f * 0.79916f, 1e-6f);
    EXPECT_NEAR(hall.right[frames(17194, 0.6)], 0.5f * 0.079204f, 1e-6f);
    const std::size_t hallLines = 2646 + kPreDelay;
    EXPECT_NEAR(hall.left[hallLines + 521], -0.5f * 0.95f / 64.0f, 1e-6f);
    EXPECT_NEAR(hall.left[hallLines + 541], 0.5f * -0.985f / 64.0f, 1e-6f);
    EXPECT_NEAR(hall.right[hallLines + 557], -0.5f * 0.977f / 64.0f, 1e-6f);

    const Stereo cathedral = response(4);
    EXPECT_NEAR(cathedral.left[frames(14139, 1.0)], 0.162574f, 1e-6f);
    EXPECT_NEAR(cathedral.right[frames(1545, 1.0)], 0.894957f, 1e-6f);
    EXPECT_NEAR(cathedral.right[3969 + kPreDelay + 569], -0.98f / 64.0f, 1e-6f);

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
    EXPECT_NEAR(room.left[frames(1693 - 1599, 1.0)], 0.5f * 0.328189f, 1e-6f);
    EXPECT_NEAR(room.left[frames(2353 - 1599, 1.0)], 0.5f * 0.182983f, 1e-6f);
    EXPECT_NEAR(room.right[frames(1609 - 1599, 1.0)], 0.5f * 0.239487f, 1e-6f);
    EXPECT_NEAR(room.right[frames(2353 - 1599, 1.0)], 0.5f * -0.061406f, 1e-6f);
    for (const auto* side : {&room.left, &room.right})
        EXPECT_EQ(
            std::count_if(side->begin(), side->end(), [](float x) { return std::abs(x) > 1e-6f; }),
            47);
}

// The networks as they are defined, frame by frame, against the chunked ones.
TEST(ReverbLines, longLinesFollowTheirDefinition)
{
    struct Line {
        std::vector<float> cells;
        std::size_t position = 0;
        float gain, state = 0.0f;
    };
    constexpr float kDecay = 1.5f, kDamping = 0.7f;
    for (const bool half : {false, true}) {
        ReverbLines lines;
        lines.resize(kRate);
        lines.setDecay(kRate, kDecay, kDamping, 1.0f);
        std::vector<Line> plain(64);
        for (std::size_t i = 0; i < 64; ++i) {
            const int length = lines.longLengths()[i];
            plain[i].cells.resize(static_cast<std::size_t>(length));
            plain[i].gain = static_cast<float>(0.7 * std::pow(0.001, length / (kRate * 1.5)) *
                                               (i % 32 == 31 ? 0.8 : 1.0));
        }
        Stereo noise = Stereo::noise(64 * 100, 0.3f);
        const std::span<const LineWeight> weights =
            half ? std::span<const LineWeight>(kHalfWeights) : kParallelWeights;
        std::array<float, 64> weightLeft{}, weightRight{};
        for (const LineWeight& w : weights) {
            weightLeft[static_cast<std::size_t>(w.line)] = w.left;
            weightRight[static_cast<std::size_t>(w.line)] = w.right;
        }
        float worst = 0.0f;
        for (std::size_t done = 0; done < noise.left.size(); done += 64) {
            ReverbBuffer input, left{}, right{};
            std::copy_n(noise.left.begin() + static_cast<long>(done), 64, input.begin());
            lines.runLong(weights, kDamping, 64, input, left, right);
            for (std::size_t n = 0; n < 64; ++n) {
                float sumLeft = 0.0f, sumRight = 0.0f;
                for (std::size_t i = 0; i < 64; ++i) {
                    if (half && i % 2 == 0)
                        continue;
                    Line& line = plain[i];
                    float& cell = line.cells[line.position];
                    line.state = line.state * 0.3f + cell * line.gain;
                    const bool positive = half ? (i >> 1) % 2 == 0 : i % 2 == 1;
                    cell = positive ? line.state - input[n] : input[n] - line.state;
                    line.position = (line.position + 1) % line.cells.size();
                    sumLeft += weightLeft[i] * line.state;
                    sumRight += weightRight[i] * line.state;
                }
                worst =
                    std::max({worst, std::abs(sumLeft - left[n]), std::abs(sumRight - right[n])});
            }
        }
        EXPECT_LT(worst, 2e-5f) << half;
    }
    EXPECT_EQ(kParallelWeights[0].line, 63);
    EXPECT_EQ(kParallelWeights[32].line, 62);
    EXPECT_EQ(kParallelWeights[0].left, -3.4f);
    EXPECT_EQ(kParallelWeights[16].right, 2.0f); // line 31
    EXPECT_EQ(kHalfWeights[0].left, 5.0f);
    EXPECT_EQ(kHalfWeights[0].right, 8.0f);
}

TEST(ReverbLines, mixedLinesFollowTheirDefinition)
{
    constexpr double kDecay = 2.0, kSetting = 0.5;
    ReverbLines lines;
    lines.resize(kRate);
    lines.setDecay(kRate, 2.0f, 0.8f, 0.5f);
    std::array<std::vector<double>, 16> cells;
    std::array<std::size_t, 16> position{};
    std::array<double, 16> state{}, gain{}, loss{};
    for (std::size_t k = 0; k < 16; ++k) {
        const double length = lines.mixedLengths()[k];
        cells[k].resize(static_cast<std::size_t>(length));
        const double d = -3.0 * length / (kRate * kDecay);
        loss[k] = std::min(0.92, d * std::log(10.0) / 4.0 * (1.0 - 1.0 / (kSetting * kSetting)));
        gain[k] = std::pow(10.0, d) * (1.0 - loss[k]) / 4.0;
    }
    Stereo noise = Stereo::noise(64 * 300, 0.3f);
    double worst = 0.0;
    for (std::size_t done = 0; done < noise.left.size(); done += 64) {
        ReverbBuffer input, left{}, right{};
        std::copy_n(noise.left.begin() + static_cast<long>(done), 64, input.begin());
        lines.runMixed(64, input, left, right);
        for (std::size_t n = 0; n < 64; ++n) {
            for (std::size_t k = 0; k < 16; ++k)
                state[k] = gain[k] * cells[k][position[k]] + loss[k] * state[k];
            double sumLeft = 0.0, sumRight = 0.0;
            for (std::size_t k = 0; k < 16; ++k) {
                double w = 0.0; // entry (k, j) of the matrix: the parity of their common bits
                for (std::size_t j = 0; j < 16; ++j)
                    w += std::popcount(k & j) % 2 == 0 ? state[j] : -state[j];
                sumLeft += static_cast<double>(kMixedLeft[k]) * w;
                sumRight += static_cast<double>(kMixedRight[k]) * w;
                cells[k][position[k]] = w + static_cast<double>(input[n]);
                position[k] = (position[k] + 1) % cells[k].size();
            }
            worst = std::max({worst, std::abs(sumLeft - static_cast<double>(left[n])),
                              std::abs(sumRight - static_cast<double>(right[n]))});
        }
    }
    EXPECT_LT(worst, 1e-4);
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
        Stereo warm(64); // the pre-delay is now the remembered one
        warm.inOneBlock([&](int n, float* const* ch) { rig.reverb.process(n, ch); });
        rig.reverb.setParameter(FxReverb::preDelay, after);
        Stereo s(kBlock);
        s.left[kAt] = s.right[kAt] = 1.0f;
        s.inOneBlock([&](int n, float* const* ch) { rig.reverb.process(n, ch); });
        return s.left;
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
        Stereo s = Stereo::noise(2000, 0.5f);
        rig.run(s);
        const auto silent = [&](std::size_t frames) {
            Stereo quiet(frames);
            std::fill(quiet.left.begin(), quiet.left.end(), 5e-10f);
            quiet.inOneBlock([&](int n, float* const* ch) { rig.reverb.process(n, ch); });
            return quiet.peak();
        };
        EXPECT_GT(silent(22000), 0.0f); // a decay is 22050 frames
        EXPECT_GT(silent(100), 0.0f);   // compares before it counts
        EXPECT_EQ(silent(100), 0.0f);
        EXPECT_TRUE(rig.reverb.isResting());
        Stereo again = Stereo::impulse(64, 1.0f, 1.0f);
        again.inOneBlock([&](int n, float* const* ch) { rig.reverb.process(n, ch); });
        EXPECT_FALSE(rig.reverb.isResting());
        EXPECT_NEAR(again.left[0], 1.0f - 0.64f, 0.3f); // at the target, without a ramp
    }
}

TEST(Reverb, amountRampsOverTheBlock)
{
    Rig rig(1, 0.3f, 1.0f, 0.0f);
    Stereo s(100);
    const auto ones = [&] {
        std::fill(s.left.begin(), s.left.end(), 1.0f);
        std::fill(s.right.begin(), s.right.end(), 1.0f);
        s.inOneBlock([&](int n, float* const* ch) { rig.reverb.process(n, ch); });
    };
    ones();
    EXPECT_EQ(s.left[99], 1.0f);
    rig.reverb.setParameter(FxReverb::amount, 1.0f);
    ones(); // the tail has not arrived yet, so the dry ramp is alone
    for (const std::size_t i : {0u, 1u, 50u, 99u})
        EXPECT_NEAR(s.left[i], 1.0f - static_cast<float>(i) / 100.0f, 1e-4f);
}

TEST(Reverb, onlyTheMixedTypeStartsEmpty)
{
    for (int type = 0; type < kReverbTypeCount; ++type) {
        Rig rig(type == 0 ? 3 : 0, 0.8f);
        Stereo s = Stereo::noise(5000, 0.5f);
        rig.run(s);
        rig.reverb.setParameter(FxReverb::type, typeValue(type));
        Stereo quiet(8000);
        rig.run(quiet);
        if (type == 1)
            EXPECT_EQ(quiet.peak(), 0.0f);
        else
            EXPECT_GT(quiet.peak(), 0.0f) << type;
    }
}

TEST(Reverb, resetLeavesNoTrace)
{
    for (int type = 0; type < kReverbTypeCount; ++type) {
        Rig rig(type, 1.0f);
        Stereo s = Stereo::noise(5000, 0.5f);
        rig.run(s);
        rig.reverb.reset();
        Stereo quiet(8000);
        rig.run(quiet);
        EXPECT_LT(quiet.peak(), 1e-12f) << type; // the rings' floor is 1e-15
    }
}

// A lengthened or shortened room would move its loudest reflections.
TEST(Reverb, highRatesKeepTheSizeOfTheRoom)
{
    const auto centre = [](int type, double rate) {
        Rig rig(type);
        rig.reverb.setSampleRate(rate);
        rig.reverb.setParameter(FxReverb::decay, 0.2f);
        rig.reverb.setParameter(FxReverb::damp, 1.0f);
        Stereo s = Stereo::impulse(static_cast<std::size_t>(rate * 0.6), 1.0f, 1.0f);
        rig.run(s);
        double weight = 0.0, moment = 0.0;
        for (std::size_t i = 1; i < s.right.size(); ++i) {
            const double e = energy(s.right, i, i + 1);
            weight += e;
            moment += e * static_cast<double>(i) / rate;
        }
        return moment / weight;
    };
    for (const int type : {1, 4})
        EXPECT_NEAR(centre(type, 384000.0), centre(type, 48000.0), 0.02) << type;
}

} // namespace tolm
