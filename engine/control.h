#pragma once
// The control stage: once per voice and engine call, settings, LFOs and matrix become the record of
// coefficients that the sample stages work from.

#include "engine/record.h"
#include "fx/Module.h"

#include <cmath>

namespace tolm {

// As values, in the form that every compiler turns into one instruction and vectorises.
inline float atLeast(float x, float lowest)
{
    return x > lowest ? x : lowest;
}
inline float atMost(float x, float highest)
{
    return x < highest ? x : highest;
}

// A value that glides linearly over an engine call; frame i sees start + slope * i.
struct Ramp {
    float start = 0.0f;
    float slope = 0.0f;

    float at(int frame) const { return start + slope * static_cast<float>(frame); }
    bool isZero() const { return start == 0.0f && slope == 0.0f; }
    bool isConstant() const { return slope == 0.0f; }
};

// Sums that the matrix builds for one voice and call, starting from the settings.
struct VoiceModulation {
    std::array<double, kLfoCount> lfo{}; // values of the three LFOs, fade-in included
    std::int64_t pitch = 0;              // 1/128 semitone, both main oscillators
    std::array<std::int64_t, kMainOscillators> oscPitch{};
    std::array<std::int64_t, kMainOscillators> keytrack{1024, 1024}; // 1024 = full
    std::array<std::int64_t, kMainOscillators> wavePosition{};       // 1/1024 wave
    std::array<std::int64_t, kMainOscillators> fatAmount{};          // 1024 = full
    std::array<double, kMainOscillators> fatFactor{1.0, 1.0};
    std::int64_t detune = 0;
    double volume = 0.0;
    double levelExponent = 0.0; // powers of ten
    double lfo3Amp = 1.0;
    double pan = 0.0;
    double panSpread = 0.0;
    double effectsSend = 1.0;
    double oscMix = 0.0;
    double osc3Level = 0.0;
    double noiseLevel = 0.0;
    double noiseColour = 0.0;
    double ringMod = 0.0;
    double pulseWidth = 0.0;
    double fm1 = 0.0;
    double fm2 = 0.0;
    double fmDepth = 1.0;
    bool fmOn = false;
    double cutoff = 0.0; // added to the ramped setting
    double filterEnv = 0.0;
    double filterOffset = 0.0;
    double filterKeytrack = 0.0;
    double resonance = 0.0; // added to the ramped setting
    double comb = 0.0;
    EnvelopeSettings amp;
    EnvelopeSettings filter;
    EnvelopeSettings mod;
    std::int64_t holdFrames = 0;
    double spike = 0.0;
    bool hardSpike = false;
    std::array<double, kLfoCount> lfoRate{};
    std::array<bool, kLfoCount> lfoRateModulated{};
    bool usesModEnvelope = false;
    bool oneShot = false;
};

struct EnvelopeCoefficients {
    float attack = 0.0f; // per-frame multiplier of 1 - level; mod envelope: increment of the level
    float decay = 0.0f;  // per-frame multipliers
    float release = 0.0f;
    float sustain = 0.0f;
};

struct OscillatorControl {
    OscillatorShape shape = OscillatorShape::saw;
    const std::int16_t* table = nullptr;   // 2048 entries and a guard
    const std::int16_t* partner = nullptr; // wavetable: the next wave
    std::int32_t blend = 0;                // share of the partner, 0..1023
    std::uint32_t increment = 0;
    std::uint32_t pulseOffset = 0;
    std::int32_t mainWeight = 1024; // fat mode, out of 1024
    std::int32_t sideWeight = 0;
    bool fat = false;
    std::array<std::uint32_t, kFatVoices> sideIncrement{};
};

// One voice's frames of one engine call.
using SliceBuffer = std::array<float, kMaxSliceFrames>;

struct VoiceControl {
    std::array<OscillatorControl, kMainOscillators> osc;
    const std::int16_t* osc3Table = nullptr;
    std::uint32_t osc3Increment = 0;
    bool fmOn = false;
    Ramp fm1;         // per unit of 16-bit oscillator output
    float fm2 = 0.0f; // likewise
    bool oneShot = false;
    Ramp oscMix;
    Ramp osc3Level;
    Ramp ringMod;
    Ramp noiseLevel;
    OnePole noiseFilter;

    int filterType = 0;
    Ramp cutoff; // normalised
    Ramp resonance;
    float filterEnv = 0.0f;
    float filterOffset = 0.0f;
    float comb = 0.0f;
    float osc1Hz = 0.0f; // corner reference of "LP12+Follow"
    EnvelopeCoefficients filterEnvelope;

    EnvelopeCoefficients ampEnvelope;
    std::uint32_t holdFrames = 0;
    Ramp leftGain;
    Ramp rightGain;
    Ramp effectsSend;
    float spike = 0.0f;
    const float* spikeTable = nullptr;

    EnvelopeCoefficients modEnvelope;
    bool usesModEnvelope = false;
    std::array<std::uint32_t, kLfoCount> lfoIncrement{};
};

// What all voices of one engine call share.
struct CallContext {
    EngineRecord& r;
    const Module& module;
    double tempo; // beats per minute
    int frames;
    float perFrame;                                      // 1 / frames
    std::array<std::uint32_t, kLfoCount> lfoIncrement{}; // without modulation
    Ramp resonance;
    double phaseScale = 0.0;  // 2^32 / sample rate
    VoiceModulation settings; // what every voice starts from
};

CallContext beginCall(EngineRecord& r, const Module& module, double tempo, int frames);
void controlVoice(CallContext& call, std::size_t voice, VoiceControl& control);

} // namespace tolm
