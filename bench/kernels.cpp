// Cost of each stage of the render alone, in ns per voice and frame; of the control stage in ns per
// voice and call. One voice, calls of 64 frames.

#include "engine/arpeggiator.h"
#include "engine/control.h"
#include "engine/envelope.h"
#include "engine/filter.h"
#include "engine/matrix.h"
#include "engine/oscillator.h"
#include "plugin/menus.h"
#include "tests/engine/rig.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace tolm {
namespace {

constexpr int kFrames = kMaxSliceFrames;
constexpr double kRateHz = 44100.0;

void report(benchmark::State& state, const char* unit, double perIteration)
{
    state.counters[unit] =
        benchmark::Counter(static_cast<double>(state.iterations()) * perIteration * 1e-9,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// A held voice in the middle of its note, with the control record of its next call.
struct VoiceRig {
    explicit VoiceRig(const std::vector<std::pair<int, float>>& settings) : rig(kRateHz)
    {
        rig.set(kOscMix, 0.5f);
        rig.set(kFilterCutoff, 0.6f);
        rig.set(kFilterResonance, 0.3f);
        for (const auto& [id, value] : settings)
            rig.set(id, value);
        rig.on(60);
        rig.render(kFrames * 4);
        rig.engine.startBlock(kFrames);
        EngineRecord& r = rig.engine.record();
        while (r.voiceActive[voice] == 0)
            ++voice;
        renewControl();
    }
    void renewControl()
    {
        CallContext call = beginCall(rig.engine.record(), rig.engine, kDefaultTempo, kFrames);
        controlVoice(call, voice, control);
    }
    OscillatorOutput output() { return {samples, split, cutoffFm}; }

    EngineRig rig;
    std::size_t voice = 0;
    VoiceControl control;
    std::array<float, kFrames> samples{};
    std::array<float, kFrames> split{};
    std::array<float, kFrames> cutoffFm{};
};

struct OscillatorCase {
    const char* name;
    std::vector<std::pair<int, float>> settings;
};

const std::vector<OscillatorCase> kOscillators = {
    {"Oscillator/saw", {{kOsc1Shape, 0.0f}, {kOsc2Shape, 0.0f}}},
    {"Oscillator/pulse", {{kOsc1Shape, 0.4f}, {kOsc2Shape, 0.4f}}},
    {"Oscillator/sine", {{kOsc1Shape, 0.7f}, {kOsc2Shape, 0.7f}}},
    {"Oscillator/wavetable", {{kOsc1Shape, 1.0f}, {kOsc2Shape, 1.0f}}},
    {"Oscillator/fatSaw",
     {{kOsc1Shape, 0.0f}, {kOsc2Shape, 0.0f}, {kOsc1Fat, 0.3f}, {kOsc2Fat, 0.3f}}},
    {"Oscillator/fm", {{kOsc1Shape, 0.7f}, {kOsc2Shape, 0.7f}, {kOscFm, 0.1f}}},
    {"Oscillator/sync", {{kOsc1Shape, 0.0f}, {kOsc2Shape, 0.0f}, {kOscSync, 1.0f}}},
    {"Oscillator/ringMod", {{kOsc1Shape, 0.0f}, {kOsc2Shape, 0.0f}, {kRingMod, 0.5f}}},
    {"Oscillator/noise", {{kOsc1Shape, 0.0f}, {kOsc2Shape, 0.0f}, {kNoiseLevel, 0.5f}}},
    {"Oscillator/osc3", {{kOsc1Shape, 0.0f}, {kOsc2Shape, 0.0f}, {kOsc3Level, 0.5f}}},
};

void oscillators(benchmark::State& state, const OscillatorCase& c)
{
    VoiceRig v(c.settings);
    for (auto _ : state) {
        renderOscillators(v.rig.engine.record(), v.voice, v.control, false, v.output());
        benchmark::DoNotOptimize(v.samples.data());
    }
    report(state, "ns/frame", kFrames);
}

// As many voices side by side as one call of the filters takes.
void filter(benchmark::State& state, int type)
{
    VoiceRig v({{kFilterType, static_cast<float>(type)}});
    EngineRecord& r = v.rig.engine.record();
    renderOscillators(r, v.voice, v.control, filterType(type).split, v.output());
    const auto controls = std::make_unique<PerVoice<VoiceControl>>();
    controls->fill(v.control);
    std::array<std::array<float, kFrames>, kFilterLanes> lanes;
    std::vector<FilterInput> inputs;
    for (std::size_t lane = 0; lane < kFilterLanes; ++lane)
        inputs.push_back({lane, lanes[lane], v.split, {}});
    for (auto _ : state) {
        lanes.fill(v.samples);
        filterVoices(r, *controls, kRateHz, inputs);
        benchmark::DoNotOptimize(lanes.data());
    }
    report(state, "ns/frame", kFrames * kFilterLanes);
}

void ampEnvelope(benchmark::State& state)
{
    const VoiceRig v({{kAmpAttack, 0.9f}});
    EnvelopeState envelope;
    std::array<float, kFrames> levels{};
    for (auto _ : state) {
        if (envelope.stage != EnvelopeStage::attack)
            envelope = {};
        runAmpEnvelope(envelope, v.control.ampEnvelope, 0, 0, levels);
        benchmark::DoNotOptimize(levels.data());
    }
    report(state, "ns/frame", kFrames);
}

// All voices, as a call of the engine has them.
void control(benchmark::State& state, int rows)
{
    EngineRig rig(kRateHz);
    rig.set(kPolyphony, 1.0f);
    for (int row = 1; row <= rows; ++row)
        rig.setRow(row, 13 + row % 3, 1 + row % 8, 0.05);
    for (int key = 30; key < 30 + kVoiceCount; ++key)
        rig.on(key);
    rig.render(kFrames * 4);
    rig.engine.startBlock(kFrames);
    const auto controls = std::make_unique<PerVoice<VoiceControl>>();
    for (auto _ : state) {
        CallContext call = beginCall(rig.engine.record(), rig.engine, kDefaultTempo, kFrames);
        for (std::size_t voice = 0; voice < kVoiceCount; ++voice)
            controlVoice(call, voice, (*controls)[voice]);
        benchmark::DoNotOptimize(controls.get());
    }
    report(state, "ns/voice/call", kVoiceCount);
}

// A pattern that plays at every step, a block of 512 frames at a time.
void arpeggiator(benchmark::State& state)
{
    constexpr int kBlock = 512;
    EngineRig rig(kRateHz);
    for (int step = 0; step < kArpSteps; ++step)
        rig.set(kArpNote1 + step, 0.3f);
    rig.set(kArpStepCount, 1.0f);
    rig.set(kArpRate, 0.7f);
    rig.set(kArpOn, 1.0f);
    rig.engine.record().arp.held[60] = 100;
    for (auto _ : state) {
        rig.queue.clear();
        rig.engine.runArpeggiator(kBlock);
        benchmark::DoNotOptimize(rig.queue.data());
    }
    report(state, "ns/frame", kBlock);
}

// Every sounding program of the factory bank with four keys, effects left out: how much of one
// core a mean sound takes.
void factoryMean(benchmark::State& state)
{
    constexpr int kBlock = 512;
    constexpr int kBlocks = 20;
    std::vector<float> left(kBlock);
    std::vector<float> right(kBlock);
    EngineRig rig(kRateHz);
    double frames = 0.0;
    for (auto _ : state) {
        for (int program = 0; program < kProgramCount - 1; ++program) {
            if (rig.engine.programBank().name(program).starts_with("- Init"))
                continue;
            // The rig plays the last place of the bank.
            rig.engine.programBank().copy(program, kProgramCount - 1);
            rig.engine.loadProgram(kProgramCount - 1);
            for (const int key : {48, 55, 60, 64})
                rig.on(key, 100);
            for (int block = 0; block < kBlocks; ++block)
                rig.renderBlock(kBlock, left.data(), right.data());
            frames += kBlock * kBlocks;
        }
    }
    state.counters["x realtime"] =
        benchmark::Counter(frames / kRateHz, benchmark::Counter::kIsRate);
}

const bool registered = [] {
    for (const OscillatorCase& c : kOscillators)
        benchmark::RegisterBenchmark(c.name, [&c](benchmark::State& s) { oscillators(s, c); });
    for (const MenuEntry& entry : kFilterMenu)
        if (entry.id != kSeparatorId)
            benchmark::RegisterBenchmark(
                ("Filter/kernel:" + std::to_string(entry.id) + ' ' + entry.name).c_str(),
                [id = entry.id](benchmark::State& s) { filter(s, id); });
    for (const int rows : {0, 24})
        benchmark::RegisterBenchmark(("Control/rows:" + std::to_string(rows)).c_str(),
                                     [rows](benchmark::State& s) { control(s, rows); });
    return true;
}();

BENCHMARK(ampEnvelope)->Name("Envelope/amp");
BENCHMARK(arpeggiator)->Name("Arp/block");
BENCHMARK(factoryMean)->Name("factory/mean")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tolm
