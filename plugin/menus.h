#pragma once
// The tables behind menus: what a choice is called, the id that is stored for it and what it stands
// for. Engine, sound compiler and editor iterate these rows; the order is the menus'.

#include "engine/constants.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

namespace tolm {

struct MenuEntry {
    int id;
    const char* name;
};

inline constexpr int kSeparatorId = 111; // a line between entries, never stored

// clang-format off
inline constexpr MenuEntry kFilterMenu[] = {
    {0, "Lowpass 12dB"},
    {1, "Lowpass 24dB"},
    {17, "LP Ladder 12dB"},
    {7, "LP Ladder 24dB"},
    {111, "-"},
    {8, "LP24 -> LP12"},
    {9, "BP12 -> LP12"},
    {10, "BS12 -> LP12"},
    {11, "HP12 -> LP12"},
    {3, "Comb -> LP24"},
    {111, "-"},
    {2, "LP12+Dist"},
    {4, "LP12+Bitcrush"},
    {6, "LP12+Follow"},
    {5, "LP24+Saturation"},
    {111, "-"},
    {16, "LP/BP/HP Sweep"},
    {12, "LP12/LP12 Split"},
    {13, "BP12/LP12 Split"},
    {14, "BS12/LP12 Split"},
    {15, "HP12/LP12 Split"},
};

inline constexpr MenuEntry kArpModeMenu[] = {
    {3, "Mode: Chord"},
    {6, "Mode: Duophonic"},
    {5, "Mode: Dynamic"},
    {4, "Mode: Modulation"},
    {0, "Mode: Simple"},
    {2, "Mode: One Shot"},
    {1, "Mode: Voice 2/4/6/8"},
};

inline constexpr MenuEntry kFmModeMenu[] = {
    {0, "1->2 fbk"},
    {1, "1->2 dual"},
    {2, "Filter FM"},
};

inline constexpr MenuEntry kSourceMenu[] = {
    {0, "---"},
    {1, "Velocity"},
    {2, "Note #"},
    {3, "MWheel"},
    {4, "PWheel"},
    {5, "ATouch"},
    {7, "Const"},
    {6, "Random"},
    {8, "Arp Note"},
    {9, "Arp Vel"},
    {10, "Breath"},
    {11, "Foot"},
    {12, "Expr"},
    {13, "LFO 1"},
    {14, "LFO 2"},
    {15, "LFO 3"},
    {16, "LFO1*MW"},
    {17, "LFO2*MW"},
    {18, "LFO3*MW"},
    {19, "LFO1*AT"},
    {20, "LFO2*AT"},
    {21, "LFO3*AT"},
    {24, "Voice #"},
    {25, "Mod Env"},
    {23, "Filter Env"},
    {22, "Amp Env"},
};

// Eight groups for the editor's sub-menus; kDestinationGroups holds where each begins.
inline constexpr MenuEntry kDestinationMenu[] = {
    {0, "---"},
    {11, "Osc 1 Semi"},
    {47, "Osc 1 Fine"},
    {49, "Osc 1 Fat"},
    {15, "Osc 1 Wave"},
    {32, "Osc 1 Phase"},
    {53, "Osc 1 KeyTrk"},
    {12, "Osc 2 Semi"},
    {48, "Osc 2 Fine"},
    {50, "Osc 2 Fat"},
    {16, "Osc 2 Wave"},
    {33, "Osc 2 Phase"},
    {54, "Osc 2 KeyTrk"},
    {93, "Osc 2 OneShot"},
    {37, "Osc 3 Level"},
    {87, "Osc 3 Phase"},
    {8, "Osc Mix"},
    {27, "Noise Level"},
    {89, "Noise Colour"},
    {14, "Ring Mod"},
    {25, "Pulse Width"},
    {30, "FM 1"},
    {52, "FM 2"},
    {91, "FM Depth"},
    {57, "Mod Attack"},
    {58, "Mod Decay"},
    {59, "Mod Sustain"},
    {60, "Mod Relase"},
    {55, "Spike Soft"},
    {85, "Spike Hard"},
    {6, "Filter Env"},
    {5, "Filter Cutoff"},
    {26, "Filter Reso"},
    {51, "Filter Offset"},
    {92, "Filter KeyTrk"},
    {13, "Filter Type"},
    {21, "Filter Attack"},
    {22, "Filter Decay"},
    {23, "Filter Sustain"},
    {24, "Filter Release"},
    {17, "Amp Attack"},
    {18, "Amp Decay"},
    {19, "Amp Sustain"},
    {20, "Amp Release"},
    {31, "Amp Hold"},
    {96, "Breath Curve"},
    {94, "MWheel Curve"},
    {95, "Velocity Curve"},
    {34, "LFO 1 Rate"},
    {35, "LFO 2 Rate"},
    {36, "LFO 3 Rate"},
    {43, "LFO 1 Phase"},
    {44, "LFO 2 Phase"},
    {45, "LFO 3 Phase"},
    {39, "LFO 1*Semi"},
    {9, "LFO 1*Fine"},
    {38, "LFO 1*PW"},
    {10, "LFO 2*Cutoff"},
    {42, "LFO 2*EnvAmt"},
    {46, "LFO 2*FXDly"},
    {28, "LFO 3*Amp"},
    {29, "LFO 3*Pan"},
    {41, "LFO 3*Comb"},
    {61, "MM Amount 1"},
    {62, "MM Amount 2"},
    {63, "MM Amount 3"},
    {64, "MM Amount 4"},
    {65, "MM Amount 5"},
    {66, "MM Amount 6"},
    {67, "MM Amount 7"},
    {68, "MM Amount 8"},
    {69, "MM Amount 9"},
    {70, "MM Amount 10"},
    {71, "MM Amount 11"},
    {72, "MM Amount 12"},
    {73, "MM Amount 13"},
    {74, "MM Amount 14"},
    {75, "MM Amount 15"},
    {76, "MM Amount 16"},
    {77, "MM Amount 17"},
    {78, "MM Amount 18"},
    {79, "MM Amount 19"},
    {80, "MM Amount 20"},
    {81, "MM Amount 21"},
    {82, "MM Amount 22"},
    {83, "MM Amount 23"},
    {84, "MM Amount 24"},
    {1, "Pitch Semi"},
    {2, "Pitch Fine"},
    {3, "Volume"},
    {88, "Level (dB)"},
    {4, "Pan"},
    {90, "Pan Spread"},
    {7, "Detune"},
    {86, "FX Dry/Wet"},
};
inline constexpr int kDestinationGroups[] = {1, 17, 24, 30, 45, 48, 63, 87};

struct VoiceMask {
    int id;
    const char* name;
    std::uint32_t bits; // bit k: stacked voice number k, which players call voice k + 1
};

inline constexpr VoiceMask kVoiceMaskMenu[] = {
    {0, "---", 0xFFFF},
    {1, "1", 0x1},
    {2, "2", 0x2},
    {3, "3", 0x4},
    {4, "4", 0x8},
    {5, "5", 0x10},
    {6, "6", 0x20},
    {7, "7", 0x40},
    {8, "8", 0x80},
    {9, "1+2", 0x3},
    {10, "1+3", 0x5},
    {11, "1+4", 0x9},
    {12, "1+5", 0x11},
    {13, "2+3", 0x6},
    {14, "2+4", 0xA},
    {18, "3+4", 0xC},
    {19, "5+6", 0x30},
    {20, "7+8", 0xC0},
    {21, "1+2+3", 0x7},
    {15, "1+3+5", 0x15},
    {16, "2+3+4", 0xE},
    {17, "2+4+6", 0x2A},
    {23, "3+4+5", 0x1C},
    {22, "4+5+6", 0x38},
    {24, "4+6+8", 0xA8},
    {25, "Odd", 0x55},
    {26, "Even", 0xAA},
};

// What the 70 waves are called, family by family.
inline constexpr const char* kWaveNames[] = {
    "Round", "Mellow", "Soft", "Warm", "Clear", "Full",
    "Hollow Soft", "Hollow Warm", "Hollow Full", "Hollow Bright",
    "Pulse 46", "Pulse 38", "Pulse 30", "Pulse 22", "Pulse 14", "Pulse 8",
    "Organ Flute", "Organ Jazz", "Organ Octaves", "Organ Fifths", "Organ Whistle", "Organ Full",
    "Organ Gospel",
    "Voice A", "Voice E", "Voice I", "Voice O", "Voice U", "Voice Neutral", "Voice Singer",
    "Marimba", "Xylophone", "Tine", "Glass", "Celesta", "Chime Keys",
    "Eight Levels", "Four Levels", "Three Levels", "Sixteen Steps", "Eight Steps", "Folded",
    "FM Horn", "FM Brass", "FM Reed", "FM Metal", "FM Wood", "FM Bell",
    "Clarinet", "Nasal", "Bassoon", "Viola", "Bowed Body", "Brass",
    "Sync 2.5", "Sync 3.5", "Sync 5.5", "Sync 8.5",
    "Harp", "Clav",
    "Church Bell", "Free Bar", "Gong",
    "Sub Clang", "Sub Fifth",
    "Breath", "Choir Air", "Growl", "Sheet Metal", "Wind",
};
static_assert(std::size(kWaveNames) == kWaveCount);

// By category id; the two lists differ in wording for ids 5, 7 and 11.
inline constexpr const char* kCategoryNames[] = {
    "---",
    "Arpeggiated",
    "Bass",
    "Chords",
    "Drums",
    "Keyboards",
    "Leads",
    "Mallets",
    "Pads",
    "Plucked",
    "Sound Effects",
    "Synths",
    "Textures",
    "Wind",
};
inline constexpr const char* kCategoryFilterNames[] = {
    "Show All",
    "Category: Arpeggiated",
    "Category: Bass",
    "Category: Chords",
    "Category: Drums",
    "Category: Keys",
    "Category: Leads",
    "Category: Mallet",
    "Category: Pads",
    "Category: Plucked",
    "Category: Sound Effects",
    "Category: Synth",
    "Category: Textures",
    "Category: Wind",
};

// Note lengths: "*" is dotted, "T" triplet. Units are 1/64 of a whole note (a quarter note is 16).
struct NoteLength {
    const char* name;
    double sixtyFourths;
};

inline constexpr NoteLength kLfoLengths[] = { // LFO rate index 0..26
    {"8/1*", 768.0},
    {"8/1", 512.0},
    {"8/1T", 1024.0 / 3.0},
    {"4/1*", 384.0},
    {"4/1", 256.0},
    {"4/1T", 512.0 / 3.0},
    {"2/1*", 192.0},
    {"2/1", 128.0},
    {"2/1T", 256.0 / 3.0},
    {"1/1*", 96.0},
    {"1/1", 64.0},
    {"1/1T", 128.0 / 3.0},
    {"1/2*", 48.0},
    {"1/2", 32.0},
    {"1/2T", 64.0 / 3.0},
    {"1/4*", 24.0},
    {"1/4", 16.0},
    {"1/4T", 32.0 / 3.0},
    {"1/8*", 12.0},
    {"1/8", 8.0},
    {"1/8T", 16.0 / 3.0},
    {"1/16*", 6.0},
    {"1/16", 4.0},
    {"1/16T", 8.0 / 3.0},
    {"1/32*", 3.0},
    {"1/32", 2.0},
    {"1/32T", 4.0 / 3.0},
};
inline constexpr NoteLength kDelayLengths[] = { // delay rate index 0..20; the last is out of reach
    {"1/1*", 96.0},
    {"1/1", 64.0},
    {"1/1T", 128.0 / 3.0},
    {"1/2*", 48.0},
    {"1/2", 32.0},
    {"1/2T", 64.0 / 3.0},
    {"1/4*", 24.0},
    {"1/4", 16.0},
    {"1/4T", 32.0 / 3.0},
    {"1/8*", 12.0},
    {"1/8", 8.0},
    {"1/8T", 16.0 / 3.0},
    {"1/16*", 6.0},
    {"1/16", 4.0},
    {"1/16T", 8.0 / 3.0},
    {"1/32*", 3.0},
    {"1/32", 2.0},
    {"1/32T", 4.0 / 3.0},
    {"1/64*", 1.5},
    {"1/64", 1.0},
    {"1/64T", 2.0 / 3.0},
    {"1/128*", 0.75},
};
inline constexpr NoteLength kArpLengths[] = { // arpeggiator step length, index 0..20
    {"1/2*", 48.0},
    {"1/2", 32.0},
    {"1/2T", 64.0 / 3.0},
    {"1/4*", 24.0},
    {"1/4", 16.0},
    {"1/4T", 32.0 / 3.0},
    {"1/8*", 12.0},
    {"1/8", 8.0},
    {"1/8T", 16.0 / 3.0},
    {"1/16*", 6.0},
    {"1/16", 4.0},
    {"1/16T", 8.0 / 3.0},
    {"1/32*", 3.0},
    {"1/32", 2.0},
    {"1/32T", 4.0 / 3.0},
    {"1/64*", 1.5},
    {"1/64", 1.0},
    {"1/64T", 2.0 / 3.0},
    {"1/128*", 0.75},
    {"1/128", 0.5},
    {"1/128T", 1.0 / 3.0},
};
// clang-format on

static_assert(std::size(kFilterMenu) == 21);
static_assert(std::size(kSourceMenu) == 26);
static_assert(std::size(kDestinationMenu) == 95);
static_assert(std::size(kVoiceMaskMenu) == 27);

// The name stored under `id`, or nullptr.
constexpr const char* menuName(std::span<const MenuEntry> menu, int id)
{
    for (const MenuEntry& entry : menu)
        if (entry.id == id && id != kSeparatorId)
            return entry.name;
    return nullptr;
}

} // namespace tolm
