// Scenarios of the whole voice: nanoseconds per voice and frame, and how often faster than real
// time.

#include "tests/engine/rig.h"

#include <benchmark/benchmark.h>

namespace tolm {
namespace {

constexpr int kBlock = 512;
constexpr double kRateHz = 44100.0;

void twoSaws(EngineRig& rig)
{
    rig.set(kOsc1Shape, 0.0f);
    rig.set(kOsc2Shape, 0.0f);
    rig.set(kOscMix, 0.5f);
    rig.set(kFilterType, 0.0f);
    rig.set(kFilterCutoff, 0.6f);
    rig.set(kFilterResonance, 0.3f);
    rig.set(kFilterEnvAmount, 0.3f);
    // Envelopes that keep moving: long attacks and decays.
    for (const int attack : {kAmpAttack, kFilterAttack}) {
        rig.set(attack, 0.9f);
        rig.set(attack + 1, 1.0f);
    }
}

void fat(EngineRig& rig)
{
    twoSaws(rig);
    rig.set(kOsc1Fat, 0.1f);
    rig.set(kOsc2Fat, 0.1f);
}

void fatLowpass24(EngineRig& rig)
{
    fat(rig);
    rig.set(kFilterType, 1.0f);
}

void fm(EngineRig& rig)
{
    twoSaws(rig);
    rig.set(kOsc1Shape, 0.7f);
    rig.set(kOsc2Shape, 0.7f);
    rig.set(kOscFm, 0.05f);
    rig.set(kFmFeedback, 0.2f);
}

void fmLadder(EngineRig& rig)
{
    fm(rig);
    rig.set(kFilterType, 7.0f);
}

void fullMatrix(EngineRig& rig)
{
    twoSaws(rig);
    for (int row = 1; row <= kMatrixRows; ++row)
        rig.setRow(row, 13 + row % 3, 1 + row % 8, 0.05);
}

using Setup = void (*)(EngineRig&);

void runVoices(benchmark::State& state, Setup setup)
{
    const auto voices = static_cast<int>(state.range(0));
    EngineRig rig(kRateHz);
    rig.set(kPolyphony, 1.0f);
    setup(rig);
    for (int v = 0; v < voices; ++v)
        rig.on(30 + v);
    std::vector<float> left(kBlock);
    std::vector<float> right(kBlock);
    for (auto _ : state) {
        rig.renderBlock(kBlock, left.data(), right.data());
        benchmark::DoNotOptimize(left.data());
    }
    if (rig.sounding() != voices)
        state.SkipWithError("voices have ended");
    const double frames = static_cast<double>(state.iterations()) * kBlock;
    state.counters["ns/voice/frame"] = benchmark::Counter(
        frames * voices * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["x realtime"] =
        benchmark::Counter(frames / kRateHz, benchmark::Counter::kIsRate);
}

BENCHMARK_CAPTURE(runVoices, plain, twoSaws)
    ->Name("voices/plain")
    ->Arg(1)
    ->Arg(8)
    ->Arg(32)
    ->Arg(72);
BENCHMARK_CAPTURE(runVoices, fat, fat)->Name("voices/fat")->Arg(1)->Arg(8)->Arg(32)->Arg(72);
BENCHMARK_CAPTURE(runVoices, fatLp24, fatLowpass24)->Name("voices/fatLP24")->Arg(72);
BENCHMARK_CAPTURE(runVoices, fm, fm)->Name("voices/fm")->Arg(1)->Arg(8)->Arg(32)->Arg(72);
BENCHMARK_CAPTURE(runVoices, fmLadder, fmLadder)->Name("voices/fmLadder")->Arg(72);
BENCHMARK_CAPTURE(runVoices, matrix, fullMatrix)->Name("voices/24rows")->Arg(72);

void idle(benchmark::State& state)
{
    EngineRig rig(kRateHz);
    std::vector<float> left(kBlock);
    std::vector<float> right(kBlock);
    for (auto _ : state) {
        rig.renderBlock(kBlock, left.data(), right.data());
        benchmark::DoNotOptimize(left.data());
    }
    state.counters["x realtime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * kBlock / kRateHz, benchmark::Counter::kIsRate);
}
BENCHMARK(idle);

} // namespace
} // namespace tolm
