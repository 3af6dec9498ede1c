#include "editor/layout.h"

#include "editor/actions.h"
#include "plugin/catalogue.h"

#include <array>
#include <cstddef>
#include <utility>

namespace tolm {

namespace {

using gui::Rect;

constexpr float kKnobCell = 58.0f; // a knob with its label
constexpr float kKnobHeight = 62.0f;
constexpr float kSmallCell = 44.0f;

constexpr Rect cell(float x, float y)
{
    return {x, y, kKnobCell, kKnobHeight};
}
constexpr Rect smallCell(float x, float y)
{
    return {x, y, kSmallCell, 58.0f};
}

using enum ControlKind;
constexpr Page V = Page::voice;
constexpr Page M = Page::modulation;
constexpr Page P = Page::arpeggiator;
constexpr Accent A1 = Accent::osc1;
constexpr Accent A2 = Accent::osc2;
constexpr Accent F = Accent::filter;
constexpr Accent B = Accent::value;
constexpr Accent MOD = Accent::modulation;
constexpr Accent R = Accent::rhythm;
constexpr Accent N = Accent::neutral;

// The upper row of the voice area; panels are 161 high and 8 apart.
constexpr float kOsc1X = 0.0f;
constexpr float kOsc2X = 262.0f;
constexpr float kMixX = 524.0f;
constexpr float kFilterX = 754.0f;
// The lower row.
constexpr float kLowerY = 169.0f;
constexpr float kFmX = 612.0f;
constexpr float kVoicesX = 796.0f;
constexpr float kEnvX[3] = {0.0f, 204.0f, 408.0f};
// The modulation page.
constexpr float kLfoX[3] = {0.0f, 248.0f, 496.0f};
constexpr float kPlayX = 744.0f;
// The arpeggiator page.
constexpr float kStepsX = 274.0f;

// clang-format off
constexpr PanelRow kPanels[] = {
    {V, {kOsc1X, 0, 254, 161}, "OSC 1", A1},
    {V, {kOsc2X, 0, 254, 161}, "OSC 2", A2},
    {V, {kMixX, 0, 222, 161}, "MIX", N},
    {V, {kFilterX, 0, 342, 161}, "FILTER", F},
    {V, {kEnvX[0], kLowerY, 196, 161}, "AMP ENVELOPE", B},
    {V, {kEnvX[1], kLowerY, 196, 161}, "FILTER ENVELOPE", F},
    {V, {kEnvX[2], kLowerY, 196, 161}, "MOD ENVELOPE", MOD},
    {V, {kFmX, kLowerY, 176, 161}, "FM & SYNC", A2},
    {V, {kVoicesX, kLowerY, 300, 161}, "VOICES", B},
    {M, {kLfoX[0], 0, 240, 234}, "LFO 1", MOD},
    {M, {kLfoX[1], 0, 240, 234}, "LFO 2", MOD},
    {M, {kLfoX[2], 0, 240, 234}, "LFO 3", MOD},
    {M, {kPlayX, 0, 260, 234}, "GLIDE & BEND", B},
    {P, {0, 0, 266, 234}, "ARPEGGIATOR", R},
    {P, {kStepsX, 0, 730, 234}, "PATTERN", R},
};

constexpr auto kSingleControls = std::to_array<ControlRow>({
    {V, kOsc1Shape, shapes, {kOsc1X + 126, 6, 120, 18}, "", "Oscillator 1 shape", "Saw, pulse, sine or wavetable", A1},
    {V, kTagOsc1WaveMenu, menu, {kOsc1X + 10, 72, 194, 18}, "", "Oscillator 1 wave", "One of 70 waves, for the wavetable shape", A1},
    {V, kTagOsc1WaveStepper, stepper, {kOsc1X + 208, 72, 36, 18}, "", "Oscillator 1 wave step", "Previous and next wave", A1},
    {V, kOsc1Coarse, knob, cell(kOsc1X + 16, 94), "Coarse", "Oscillator 1 coarse", "Pitch in semitones", A1},
    {V, kOsc1Fine, knob, cell(kOsc1X + 98, 94), "Fine", "Oscillator 1 fine", "Pitch in cents", A1},
    {V, kOsc1Fat, knob, cell(kOsc1X + 180, 94), "Fat", "Oscillator 1 fat", "Six detuned copies around the tone", A1},

    {V, kOsc2Shape, shapes, {kOsc2X + 126, 6, 120, 18}, "", "Oscillator 2 shape", "Saw, pulse, sine or wavetable", A2},
    {V, kTagOsc2WaveMenu, menu, {kOsc2X + 10, 72, 194, 18}, "", "Oscillator 2 wave", "One of 70 waves, for the wavetable shape", A2},
    {V, kTagOsc2WaveStepper, stepper, {kOsc2X + 208, 72, 36, 18}, "", "Oscillator 2 wave step", "Previous and next wave", A2},
    {V, kOsc2Coarse, knob, cell(kOsc2X + 16, 94), "Coarse", "Oscillator 2 coarse", "Pitch in semitones", A2},
    {V, kOsc2Fine, knob, cell(kOsc2X + 98, 94), "Fine", "Oscillator 2 fine", "Pitch in cents", A2},
    {V, kOsc2Fat, knob, cell(kOsc2X + 180, 94), "Fat", "Oscillator 2 fat", "Six detuned copies around the tone", A2},

    {V, kOscMix, knob, cell(kMixX + 12, 28), "Osc 1 : 2", "Oscillator mix", "Balance of oscillators 1 and 2", N},
    {V, kRingMod, knob, cell(kMixX + 82, 28), "Ring Mod", "Ring modulation", "Fades from the mix to the product of both oscillators", N},
    {V, kPulseWidth, knob, cell(kMixX + 152, 28), "Pulse Width", "Pulse width", "Of both oscillators' pulses", N},
    {V, kOsc3Level, knob, cell(kMixX + 12, 94), "Osc 3", "Oscillator 3 level", "Sub oscillator, an octave below oscillator 1", N},
    {V, kNoiseLevel, knob, cell(kMixX + 82, 94), "Noise", "Noise level", "Noise beside the oscillators", N},
    {V, kNoiseColour, knob, cell(kMixX + 152, 94), "Colour", "Noise colour", "From full noise to its highest part", N},
    {V, kOsc3Shape, shapes, {kMixX + 122, 6, 90, 18}, "Osc 3", "Oscillator 3 shape", "Of the sub oscillator", N},

    {V, kFilterType, menu, {kFilterX + 84, 6, 206, 18}, "", "Filter type", "Eighteen filters; notes that sound keep theirs", F},
    {V, kTagFilterStepper, stepper, {kFilterX + 296, 6, 36, 18}, "", "Filter type step", "Previous and next filter", F},
    {V, kFilterCutoff, bigKnob, {kFilterX + 248, 26, 86, 84}, "Cutoff", "Filter cutoff", "Corner of the filter", F},
    {V, kFilterResonance, knob, cell(kFilterX + 10, 94), "Resonance", "Filter resonance", "Emphasis at the corner", F},
    {V, kFilterEnvAmount, knob, cell(kFilterX + 70, 94), "Env Amt", "Filter envelope amount", "How far the envelope opens the filter", F},
    {V, kFilterKeytrack, knob, cell(kFilterX + 130, 94), "Keytrack", "Filter key tracking", "How far the corner follows the key", F},
    {V, kFilterOffset, knob, cell(kFilterX + 190, 94), "Offset", "Filter offset", "Second corner, drive or teeth, by the type", F},

    {V, kAmpAttack, knob, smallCell(kEnvX[0] + 10, kLowerY + 98), "Attack", "Amplitude attack", "Time to full level", B},
    {V, kAmpDecay, knob, smallCell(kEnvX[0] + 54, kLowerY + 98), "Decay", "Amplitude decay", "Time to fall to the sustain level", B},
    {V, kAmpSustain, knob, smallCell(kEnvX[0] + 98, kLowerY + 98), "Sustain", "Amplitude sustain", "Level while the key is held", B},
    {V, kAmpRelease, knob, smallCell(kEnvX[0] + 142, kLowerY + 98), "Release", "Amplitude release", "Time to silence after the key", B},
    {V, kFilterAttack, knob, smallCell(kEnvX[1] + 10, kLowerY + 98), "Attack", "Filter attack", "Time to full opening", F},
    {V, kFilterDecay, knob, smallCell(kEnvX[1] + 54, kLowerY + 98), "Decay", "Filter decay", "Time to fall to the sustain level", F},
    {V, kFilterSustain, knob, smallCell(kEnvX[1] + 98, kLowerY + 98), "Sustain", "Filter sustain", "Opening while the key is held", F},
    {V, kFilterRelease, knob, smallCell(kEnvX[1] + 142, kLowerY + 98), "Release", "Filter release", "Time to close after the key", F},
    {V, kModAttack, knob, smallCell(kEnvX[2] + 10, kLowerY + 98), "Attack", "Modulation attack", "Time to full level", MOD},
    {V, kModDecay, knob, smallCell(kEnvX[2] + 54, kLowerY + 98), "Decay", "Modulation decay", "Time to fall to the sustain level", MOD},
    {V, kModSustain, knob, smallCell(kEnvX[2] + 98, kLowerY + 98), "Sustain", "Modulation sustain", "Level while the key is held", MOD},
    {V, kModRelease, knob, smallCell(kEnvX[2] + 142, kLowerY + 98), "Release", "Modulation release", "Time to zero after the key", MOD},

    {V, kOscFm, bigKnob, {kFmX + 8, kLowerY + 24, 84, 84}, "FM Amount", "FM amount", "How far oscillator 1 bends oscillator 2", A2},
    {V, kFmFeedback, knob, cell(kFmX + 104, kLowerY + 36), "Feedback", "FM feedback", "How far oscillator 2 bends itself", A2},
    {V, kFmMode, menu, {kFmX + 10, kLowerY + 120, 92, 22}, "", "FM mode", "What is bent, and by what", A2},
    {V, kOscSync, toggle, {kFmX + 108, kLowerY + 120, 58, 22}, "Sync", "Oscillator sync", "Oscillator 2 starts anew with every cycle of oscillator 1", A2},

    {V, kVolume, bigKnob, {kVoicesX + 206, kLowerY + 24, 86, 84}, "Volume", "Volume", "Output level of the program", B},
    {V, kVoices, knob, smallCell(kVoicesX + 10, kLowerY + 26), "Stack", "Stacked voices", "Voices that each key plays", B},
    {V, kVoiceDetune, knob, smallCell(kVoicesX + 58, kLowerY + 26), "Detune", "Voice detune", "Between the voices of a stack", B},
    {V, kVoiceSpread, knob, smallCell(kVoicesX + 106, kLowerY + 26), "Spread", "Voice spread", "Stereo width of a stack", B},
    {V, kPolyphony, knob, smallCell(kVoicesX + 154, kLowerY + 26), "Poly", "Polyphony", "Voices in use, 8 to 72", B},
    {V, kMonoMode, toggle, {kVoicesX + 206, kLowerY + 126, 84, 20}, "Mono", "Mono mode", "One key at a time, the last one", B},

    {M, kGlide, knob, cell(kPlayX + 14, 34), "Glide", "Glide", "Time from note to note; off at the left end", B},
    {M, kTagBendUp, knob, cell(kPlayX + 100, 34), "Bend Up", "Bend range up", "Semitones of the pitch wheel upwards", B},
    {P, kArpOn, toggle, {196, 7, 60, 18}, "On", "Arpeggiator on", "Held keys play the pattern", R},
    {P, kArpMode, menu, {10, 34, 246, 20}, "", "Arpeggiator mode", "What keys and steps do", R},
    {P, kArpRate, knob, cell(8, 86), "Rate", "Arpeggiator rate", "Steps per second, or the length of a step with Sync", R},
    {P, kArpLength, knob, cell(72, 86), "Length", "Arpeggiator note length", "Rests end their notes earlier or later", R},
    {P, kArpSwing, knob, cell(136, 86), "Swing", "Arpeggiator swing", "Moves the third step of each four", R},
    {P, kArpRange, knob, cell(200, 86), "Velocity", "Arpeggiator velocity mix", "From the velocities of the keys to those of the steps", R},
    {P, kArpSync, toggle, {10, 158, 54, 20}, "Sync", "Arpeggiator sync", "The rate follows the tempo", R},
    {P, kArpStepCount, number, {kStepsX + 652, 7, 68, 18}, "", "Arpeggiator steps", "How many steps are played", R},

    {M, kTagBendDown, knob, cell(kPlayX + 186, 34), "Bend Down", "Bend range down", "Semitones of the pitch wheel downwards", B},
});

constexpr std::array<ControlRow, 6> lfoControls(std::size_t n)
{
    const int first = kLfo1Shape + 9 * static_cast<int>(n);
    const float x = kLfoX[n];
    return {{
        {M, first, shapes, {x + 112, 6, 120, 18}, "", "LFO shape", "Saw, pulse, sine or random steps", MOD},
        {M, first + 1, knob, cell(x + 10, 160), "Rate", "LFO rate", "In Hz, or as a note length with Sync", MOD},
        {M, first + 2, knob, cell(x + 68, 160), "Skew", "LFO skew", "Bends the shape", MOD},
        {M, first + 3, knob, cell(x + 126, 160), "Fade In", "LFO fade-in", "Time until it acts in full", MOD},
        {M, first + 4, toggle, {x + 184, 166, 46, 20}, "Sync", "LFO sync", "Follows the tempo", MOD},
        {M, first + 5, toggle, {x + 184, 192, 46, 20}, "Reset", "LFO reset", "Every note starts it anew", MOD},
    }};
}

// Two columns of twelve rows.
constexpr std::array<ControlRow, 4> matrixRow(std::size_t n)
{
    const Page X = Page::matrix;
    const int row = static_cast<int>(n);
    const float x = n < kMatrixRows / 2 ? 36.0f : 538.0f;
    const float y = 38.0f + 16.0f * static_cast<float>(n % (kMatrixRows / 2));
    return {{
        {X, kModSource1 + row, matrixField, {x, y, 94, 15}, "", "Matrix source", "What modulates", MOD},
        {X, kModAmount1 + row, matrixAmount, {x + 98, y, 202, 15}, "", "Matrix amount", "How far, and to which side", MOD},
        {X, kModDestination1 + row, matrixField, {x + 300, y, 100, 15}, "", "Matrix destination", "What is modulated", MOD},
        {X, kModVoices1 + row, matrixField, {x + 404, y, 52, 15}, "", "Matrix voices", "Which voices of a stack it acts on", MOD},
    }};
}
// clang-format on

template <std::size_t... sizes>
constexpr auto joined(const std::array<ControlRow, sizes>&... parts)
{
    std::array<ControlRow, (sizes + ...)> all{};
    std::size_t at = 0;
    const auto append = [&](const auto& part) {
        for (const ControlRow& row : part)
            all[at++] = row;
    };
    (append(parts), ...);
    return all;
}

template <std::size_t... rows>
constexpr auto matrixControls(std::index_sequence<rows...>)
{
    return joined(matrixRow(rows)...);
}

constexpr auto kControls = joined(kSingleControls, lfoControls(0), lfoControls(1), lfoControls(2),
                                  matrixControls(std::make_index_sequence<kMatrixRows>{}));

} // namespace

const DisplayPlaces kDisplayPlaces = {
    {{kOsc1X + 10, 30, 234, 38}, {kOsc2X + 10, 30, 234, 38}},
    {kFilterX + 10, 30, 220, 60},
    {{kEnvX[0] + 10, kLowerY + 28, 176, 66},
     {kEnvX[1] + 10, kLowerY + 28, 176, 66},
     {kEnvX[2] + 10, kLowerY + 28, 176, 66}},
    {{kLfoX[0] + 10, 32, 220, 120}, {kLfoX[1] + 10, 32, 220, 120}, {kLfoX[2] + 10, 32, 220, 120}},
    {kVoicesX + 10, kLowerY + 112, 188, 36},
    {kPlayX + 10, 104, 240, 120},
    {930, 7, 64, 18},
    {10, 58, 210, 20},
    {224, 58, 32, 20},
    {10, 158, 248, 70},
    {kStepsX, 0, 730, 234},
};

gui::Rect pagePlace(Page page)
{
    switch (page) {
    case Page::header:
        return {12, 8, 1096, 44};
    case Page::voice:
        return {12, 60, 1096, 330};
    case Page::keyboard:
        return {12, 640, 1096, 72};
    default:
        return {104, 398, 1004, 234};
    }
}

std::span<const ControlRow> controlRows()
{
    return kControls;
}

std::span<const PanelRow> panelRows()
{
    return kPanels;
}

} // namespace tolm
