#pragma once
// All state of an engine. Per-voice fields are parallel arrays and a voice is an index; what only
// the render touches is gathered per voice in a VoiceSlot. Written and read by the one thread that
// drives the engine, but for the bend ranges, which the editor sets at any time.

#include "engine/tables.h"
#include "fx/Random.h"
#include "fx/effectChain.h"

#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>

namespace tolm {

template <class T>
using PerVoice = std::array<T, kVoiceCount>;

enum class EnvelopeStage : std::uint8_t { attack, decay, sustain, release };

enum class OscillatorShape : std::int32_t { saw, pulse, sine, wavetable };
enum class SubShape : std::int32_t { saw, pulse, triangle };
enum class FmMode : std::int32_t { feedback, dual, filter };
enum class LfoShape : std::int32_t { saw, pulse, sine, random };
enum class ArpMode : std::int32_t { simple, voice, oneShot, chord, modulation, dynamic, duophonic };

// Marks a ramp that has no previous value: it starts at its target.
inline constexpr float kNoPrevious = -1000.0f;

inline constexpr int kMainOscillators = 2;
inline constexpr int kLfoCount = 3;
inline constexpr int kFatVoices = 6;
inline constexpr int kSyncRingFrames = 64;
inline constexpr int kFilterStateSize = 11;

struct VoiceNote {
    std::uint32_t age = 0; // frames since the note's start
    float pitch = 0.0f;    // 1/128 semitone, the key times 128
    std::uint8_t note = 0;
    std::uint8_t velocity = 0;
};

struct EnvelopeState {
    float level = 0.0f; // 0..1
    EnvelopeStage stage = EnvelopeStage::attack;
};

// Detune ratios of the fat voices: r, r^a, r^b and their reciprocals.
struct FatFactors {
    double factor = 0.0; // r; 0: not computed yet
    std::array<double, kFatVoices> ratio{};
};

using FilterState = std::array<float, kFilterStateSize>;

// Values of the previous engine call, from which this call's ramps start. A negative value (for
// cutoff one below -99, for the oscillator 3 level one below -1) means that there is none.
struct VoiceRampStarts {
    float leftGain = kNoPrevious;
    float rightGain = kNoPrevious;
    float effectsSend = kNoPrevious;
    float noiseLevel = kNoPrevious;
    float oscMix = kNoPrevious;
    float osc3Level = kNoPrevious;
    float ringMod = kNoPrevious;
    float fm = kNoPrevious;
    float cutoff = kNoPrevious;
};

// Delay memory of the comb filter. Only what was written since the last clear is read.
inline constexpr int kCombFrames = 8192;
struct CombLine {
    std::array<float, kCombFrames> buffer{};
    std::uint32_t position = 0;
    int filled = 0; // frames written since the line was cleared
    float delayFrames = 0.0f;

    float tap(int frames) const
    {
        const std::uint32_t at = position - static_cast<std::uint32_t>(frames);
        return frames <= filled ? buffer[at % kCombFrames] : 0.0f;
    }
    void push(float x)
    {
        buffer[position] = std::abs(x) < 1e-9f ? 0.0f : x;
        position = (position + 1) % kCombFrames;
        filled = filled < kCombFrames ? filled + 1 : filled;
    }
};

// How fast an LFO turns, kept for as long as nothing that it depends on changes.
struct LfoFrequency {
    float rate = -1.0f; // normalised; negative: not known yet
    bool sync = false;
    double tempo = 0.0;
    double sampleRateHz = 0.0;
    float hz = 0.0f;
    std::uint32_t increment = 0; // per frame

    bool isFor(float r, bool s, double t, double sr) const
    {
        return rate == r && sync == s && tempo == t && sampleRateHz == sr;
    }
};

// What the render keeps of a voice from call to call. Phases are 32-bit turns.
struct VoiceSlot {
    std::uint32_t osc1Phase = 0;
    std::uint32_t osc2Phase = 0;
    std::uint32_t osc3Phase = 0;
    std::uint32_t osc2DualPhase = 0; // read by FM mode "1->2 dual"
    std::array<std::array<std::uint32_t, kFatVoices>, kMainOscillators> fatPhase{};

    std::array<std::uint32_t, kLfoCount> lfoPhase{};
    std::array<float, kLfoCount> lfoHeld{};              // last random draw, -1..1
    std::array<float, kLfoCount> lfoSmoothed{};          // random output
    std::array<std::uint32_t, kLfoCount> lfoIncrement{}; // of the previous call

    // Powers are recomputed only when what they depend on has changed.
    std::array<LfoFrequency, kLfoCount> lfoFrequency{}; // where rows move the rate
    std::array<FatFactors, kMainOscillators> fat{};
    double levelExponent = 0.0;
    double levelFactor = 1.0; // 10^levelExponent

    EnvelopeState amp;
    EnvelopeState filter;
    EnvelopeState mod;

    VoiceRampStarts previous;
    FilterState filterState{};
    float noisePrevious = 0.0f; // noise-colour high-pass: last input and output
    float noiseColoured = 0.0f;
    float followPrevious = 0.0f; // "LP12+Follow" high-pass: last input and output
    float followOutput = 0.0f;
    float followHz = -1.0f; // corner that the coefficients were computed for
    float followGain = 0.0f;
    float followPole = 0.0f;

    bool oneShotFinished = false; // oscillator 2 has wrapped once
    bool syncRingValid = false;   // cleared before the first use after a note-on or a switch-on
    std::uint32_t syncPosition = 0;
    std::array<float, kSyncRingFrames> syncRing{};
};

struct OscillatorSettings {
    OscillatorShape shape = OscillatorShape::saw;
    int coarse = 0; // semitones, -36..36
    int fine = 0;   // 1/128 semitone, -64..64
    int fat = 0;    // 0..128
    float fatFactor = 1.0f;
    int wave = 0; // 0..69
};

// Attack, decay and release are normalised times; the sustain is already squared.
struct EnvelopeSettings {
    float attack = 0.0f;
    float decay = 0.0f;
    float sustain = 0.0f;
    float release = 0.0f;
};

struct LfoSettings {
    LfoShape shape = LfoShape::saw;
    float rate = 0.0f;
    float skew = 1.0f;
    float sawExponent = 1.0f;
    float sineExponent = 1.0f;
    float smoothing = 1.0f; // of "S+H", per engine call
    float fadeSeconds = 0.0f;
    LfoFrequency frequency; // of the setting
    bool sync = false;
    bool keyReset = false;
    bool tableStale = true;                    // shape or skew changed since the table was built
    std::array<float, kTableSize + 1> table{}; // -1..1; the last entry repeats the first
};

// A parameter that glides across the host block: the driver sets the slope, the render reads `base`
// at a call's start and advances it at its end.
struct BlockRamp {
    float target = 0.0f;
    float base = -2.0f; // below -1: never set
    float slope = 0.0f; // per frame
};

struct MatrixRow {
    std::uint8_t source = 0; // 0: row off
    std::uint8_t destination = 0;
    std::uint8_t voices = 0; // index of the voice-mask table
    double amount = 0.0;     // -1..1
};

// A row with a source, as the evaluation wants it: from row 24 down to row 1.
struct ActiveRow {
    std::uint8_t row = 0; // 0..23
    std::uint8_t source = 0;
    std::uint8_t destination = 0; // 0 when unknown
    std::uint32_t voices = 0;     // bit per stacked voice number
};

struct ActiveRows {
    std::array<ActiveRow, kMatrixRows> rows{};
    std::array<double, kMatrixRows> amounts{}; // of all rows, by row number
    int count = 0;
    bool scalesAmounts = false; // some row has an "MM Amount" destination
    bool usesModEnvelope = false;
    std::uint32_t sources = 0; // bit per source in use
};

// Two lines that meet at (knee, 1 - knee).
struct ControllerCurve {
    bool inForce = false;
    double knee = 0.5;
    double lowerSlope = 1.0;
    double upperSlope = 1.0;
};

struct ArpeggiatorState {
    bool on = false;
    bool sync = false;
    ArpMode mode = ArpMode::simple;
    int lengthShift = 0; // ticks, -31..31
    int steps = 1;       // 1..32
    float swing = 0.5f;
    float rate = 0.0f;
    double rateHz = 0.1; // steps per second when free
    float velocityBlend = 0.0f;
    int rangeSemitones = 0; // 0, 12 or 24; kept, read by nothing
    std::array<float, kArpSteps> stepNote{};
    std::array<float, kArpSteps> stepVelocity{};
    bool gridStale = true; // a step, the length or the swing changed since the grid was built
    std::array<float, kArpTicks> gridNote{}; // 1: nothing happens at this tick
    std::array<float, kArpTicks> gridVelocity{};

    std::array<std::uint8_t, kKeyCount> held{}; // velocity, 0 = up
    float velocityOut = 0.5f;
    float noteOut = 0.0f;
    int soundingNote = -1;
    int secondNote = -1; // Duophonic: second note; Voice 2/4/6/8: walk cursor
    int transpose = 0;
    double phase = 0.0;            // frames since the last tick
    std::uint32_t tickCounter = 0; // ticks since the pattern was restarted
    int restartOffset = -1;        // frame of the current block at which the pattern restarts
    std::uint32_t currentStep = 0;
};

inline constexpr int kArpBufferFrames = 8192;

// What a window shows of one voice's matrix.
struct WatchedVoice {
    std::size_t voice = kVoiceCount;            // kVoiceCount: nobody looks
    std::array<float, kMatrixRows> rowSource{}; // of the last engine call, by row
};

struct EngineRecord {
    // Notes and voices.
    int polyphony = 12;
    int currentProgram = 0;
    int lastNote = -1;
    int unisonVoices = 1;
    int unisonDetune = 0; // 1/128 semitone per stack step, 0..64
    bool monoMode = false;
    bool retriggerPending = true;
    bool noteOnSinceBlock = false;
    bool anyKeyDown = false;
    bool releaseEnabled = true; // the sustain pedal is up
    std::uint8_t sustainPedal = 0;
    std::array<std::uint8_t, kKeyCount> monoHeld{};
    std::array<bool, kMaxStack> stackSwitch{}; // "Voice 1".."Voice 8"
    bool voiceSelectionActive = false;
    int engineVersion = 16; // of the patch data, from the last bank chunk

    // Controllers.
    std::atomic<int> bendUpRange{2}; // semitones, 0..64; written by the editor
    std::atomic<int> bendDownRange{2};
    int bendRaw = 0; // -8192..8192
    int bendSmoothed = 0;
    int bendSmoothing = 16; // out of 128
    double bendValue = 0.0; // -1..1
    int bendOffset = 0;     // 1/128 semitone
    double modWheel = 0.0;
    double modWheelSmoothed = 0.0;
    double modWheelSmoothingFactor = 0.1;
    double breath = 0.0;
    double foot = 0.0;
    double expression = 0.0;
    double aftertouch = 0.0;

    // Glide.
    bool glideOn = false;
    float glideAmount = 0.0f;
    float glideOffset = 0.0f; // 1/128 semitone, added to every voice
    float glideCoefficient = 1.0f;

    // Sound settings, as the parameters leave them.
    std::array<OscillatorSettings, kMainOscillators> oscillator{};
    SubShape osc3Shape = SubShape::saw;
    float osc3Level = 0.0f;
    float oscMix = 0.0f;
    float noiseColour = 0.0f;
    float noiseLevel = 0.0f;
    float ringMod = 0.0f;
    float fmFeedback = 0.0f;
    FmMode fmMode = FmMode::feedback;
    bool oscSync = false;
    BlockRamp cutoff{0.5f, -1.5f, 0.0f};
    BlockRamp pulseWidth;
    BlockRamp fm;
    float resonance = 0.0f;
    float previousResonance = 0.0f;
    float filterEnvAmount = 0.5f;
    float filterOffset = 0.0f;
    float filterKeytrack = 0.0f;
    int filterType = 0;
    float voiceSpread = 0.0f;
    EnvelopeSettings ampEnvelope;
    EnvelopeSettings filterEnvelope;
    EnvelopeSettings modEnvelope;
    std::array<LfoSettings, kLfoCount> lfo{};
    std::array<MatrixRow, kMatrixRows> matrix{};
    ActiveRows activeRows;
    bool matrixStale = true; // a row changed since the list of active rows was built
    ControllerCurve velocityCurve;
    ControllerCurve wheelCurve;
    ControllerCurve breathCurve;
    ArpeggiatorState arp;
    DelayModulation delayModulation;

    WatchedVoice watched;

    // Output.
    float outputGain = -1.0f; // negative: jump to the target
    float outputGainTarget = 1.0f;
    OnePole dcBlocker;
    std::array<float, 2> dcInput{};
    std::array<float, 2> dcOutput{};

    // Render.
    std::int32_t sampleClock = 0; // frames since the block's start
    std::uint32_t noiseSeed = 1;
    OnePole noiseFilter;             // b0 = -b1 is c1, a1 is c0
    float noiseFilterColour = -1.0f; // colour that it was computed for
    Random random;

    PerVoice<std::uint32_t> voiceActive{};
    PerVoice<std::uint32_t> voiceReleased{};
    PerVoice<std::uint32_t> voiceUnisonIndex{};
    PerVoice<VoiceNote> voiceNote{};
    PerVoice<std::uint32_t> voiceFilterType{};
    PerVoice<float> voiceRandom{};
    PerVoice<VoiceSlot> slot{};
    PerVoice<CombLine> combLine{};

    RateTables rateTables{};
    PitchTable pitch{}; // Hz; belongs to the instance because a host may retune it

    // "Arp Note" and "Arp Vel" of the current block, by frame.
    std::array<float, kArpBufferFrames> arpNoteBuffer{};
    std::array<float, kArpBufferFrames> arpVelocityBuffer{};
};

} // namespace tolm
