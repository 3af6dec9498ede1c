// Cost of every effect and each of its types, in ns per stereo frame, on noise in blocks of 512.

#include "fx/effectChain.h"
#include "plugin/catalogue.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace tolm {

namespace {

constexpr int kFrames = 512;

struct Case {
    const char* name;
    EffectKind kind;
    int typeId;
    float type;
    float sweep = 0.0f; // of the delay time
};

// The setting that selects type n when `range` is what the effect multiplies it by.
constexpr float typeSetting(int n, float range)
{
    return std::min((static_cast<float>(n) + 0.5f) / range, 1.0f);
}
constexpr float phaserType(int n)
{
    return typeSetting(n, 6.1f);
}
constexpr float eighth(int n)
{
    return typeSetting(n, 8.0f);
}
constexpr float quarter(int n)
{
    return typeSetting(n, 4.0f);
}

constexpr Case kCases[] = {
    {"dist/LP+Crunch", EffectKind::distortion, kDistType, eighth(0)},
    {"dist/LP+Toxic", EffectKind::distortion, kDistType, eighth(2)},
    {"dist/LP+Valve", EffectKind::distortion, kDistType, eighth(4)},
    {"dist/LP Only", EffectKind::distortion, kDistType, eighth(6)},
    {"dist/LP+Clip", EffectKind::distortion, kDistType, eighth(8)},
    {"eq/Peaking", EffectKind::equaliser1, kEq1Type, 0.2f},
    {"eq/Lo Shelf", EffectKind::equaliser1, kEq1Type, 0.6f},
    {"eq/Hi Shelf", EffectKind::equaliser1, kEq1Type, 1.0f},
    {"phaser/4-Stage", EffectKind::phaser, kPhaserType, phaserType(0)},
    {"phaser/6-Stage", EffectKind::phaser, kPhaserType, phaserType(1)},
    {"phaser/8-Stage", EffectKind::phaser, kPhaserType, phaserType(2)},
    {"phaser/Flanger+", EffectKind::phaser, kPhaserType, phaserType(3)},
    {"phaser/Chorus II", EffectKind::phaser, kPhaserType, phaserType(6)},
    {"delay/Simple", EffectKind::delay, kDelayType, eighth(0)},
    {"delay/Simple swept", EffectKind::delay, kDelayType, eighth(0), 0.1f},
    {"delay/Ping-Pong", EffectKind::delay, kDelayType, eighth(1)},
    {"delay/PP 50%", EffectKind::delay, kDelayType, eighth(3)},
    {"delay/Multi-Tap", EffectKind::delay, kDelayType, eighth(6)},
    {"delay/Diffuse", EffectKind::delay, kDelayType, eighth(7)},
    {"delay/Diffuse swept", EffectKind::delay, kDelayType, eighth(7), 0.1f},
    {"reverb/Diffuse-1", EffectKind::reverb, kReverbType, quarter(0)},
    {"reverb/Diffuse-2", EffectKind::reverb, kReverbType, quarter(1)},
    {"reverb/Room", EffectKind::reverb, kReverbType, quarter(2)},
    {"reverb/Hall", EffectKind::reverb, kReverbType, quarter(3)},
    {"reverb/Cathedral", EffectKind::reverb, kReverbType, quarter(4)},
};

void setUp(EffectChain& chain, const Case& c)
{
    for (int id = kPhaserType; id <= kEq2Gain; ++id)
        chain.setParameter(id, 0.6f);
    for (int id = kPhaserOn; id <= kEq2On; ++id)
        chain.setParameter(id, 1.0f);
    chain.setParameter(c.typeId, c.type);
}

void runEffect(benchmark::State& state, const Case& c)
{
    Random random(1);
    EffectChain chain(random);
    setUp(chain, c);
    std::vector<float> source(2 * kFrames);
    for (float& x : source)
        x = static_cast<float>(random.next()) / 16384.0f - 1.0f;
    std::vector<float> buffer(source.size());
    std::array<float, kTableSize> lfo{};
    for (std::size_t i = 0; i < lfo.size(); ++i)
        lfo[i] = static_cast<float>(i) / kTableSize - 0.5f;
    DelayModulation modulation{50000, 0, c.sweep, lfo.data()};
    float* channels[] = {buffer.data(), buffer.data() + kFrames};

    for (auto _ : state) {
        buffer = source;
        chain.process(static_cast<int>(c.kind), kFrames, channels, 120.0f, modulation);
        benchmark::DoNotOptimize(buffer.data());
        modulation.phase += 50000u * kFrames;
    }
    state.counters["ns/frame"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFrames * 1e-9,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

const bool registered = [] {
    for (const Case& c : kCases)
        benchmark::RegisterBenchmark(c.name, [&c](benchmark::State& s) { runEffect(s, c); });
    return true;
}();

} // namespace

} // namespace tolm
