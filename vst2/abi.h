#pragma once
// The binary interface between an audio host and a plug-in: the records both sides lay out alike,
// and the numbers of what they ask of each other. Declarations only; both the plug-in and the
// command line host include them.

#include <cstddef>
#include <cstdint>

namespace tolm::vst2 {

// Four characters, the first in the most significant byte.
constexpr std::int32_t fourCharacters(const char (&text)[5])
{
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return static_cast<std::int32_t>(code);
}

struct AEffect;

// What a host offers. The effect is null while the plug-in's entry runs.
using HostCallback = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                       std::intptr_t value, void* pointer, float option);
using Dispatcher = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                     std::intptr_t value, void* pointer, float option);
using ProcessFloat = void (*)(AEffect*, float** inputs, float** outputs, std::int32_t frames);
using ProcessDouble = void (*)(AEffect*, double** inputs, double** outputs, std::int32_t frames);
using SetParameter = void (*)(AEffect*, std::int32_t index, float value);
using GetParameter = float (*)(AEffect*, std::int32_t index);

inline constexpr std::int32_t kEffectMagic = fourCharacters("VstP");
inline constexpr std::int32_t kIdentifyAnswer = fourCharacters("NvEf");
inline constexpr std::int32_t kInterfaceVersion = 2400;
inline constexpr std::int32_t kCategorySynth = 2;

// Buffers that a host holds ready for texts, terminator included. Hosts give more than the 8 bytes
// that the interface once named for parameter texts; every text of ours fits 24.
inline constexpr std::size_t kProgramNameSize = 24;
inline constexpr std::size_t kParameterTextSize = 24;
inline constexpr std::size_t kEffectNameSize = 32;
inline constexpr std::size_t kVendorStringSize = 64;

enum EffectFlag : std::int32_t {
    effFlagsHasEditor = 1 << 0,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsIsSynth = 1 << 8,
    effFlagsNoSoundInStop = 1 << 9,
    effFlagsCanDoubleReplacing = 1 << 12,
};

struct AEffect {
    std::int32_t magic = kEffectMagic;
    Dispatcher dispatcher = nullptr;
    ProcessFloat process = nullptr; // accumulating, deprecated
    SetParameter setParameter = nullptr;
    GetParameter getParameter = nullptr;
    std::int32_t numPrograms = 0;
    std::int32_t numParams = 0;
    std::int32_t numInputs = 0;
    std::int32_t numOutputs = 0;
    std::int32_t flags = 0;
    std::intptr_t reserved1 = 0; // the host's
    std::intptr_t reserved2 = 0; // the host's
    std::int32_t initialDelay = 0;
    std::int32_t realQualities = 0;
    std::int32_t offQualities = 0;
    float ioRatio = 1.0f;
    void* object = nullptr;
    void* user = nullptr;
    std::int32_t uniqueId = 0;
    std::int32_t version = 0;
    ProcessFloat processReplacing = nullptr;
    ProcessDouble processDoubleReplacing = nullptr;
    char future[56] = {};
};

enum EffectOpcode : std::int32_t {
    effOpen = 0,
    effClose = 1,
    effSetProgram = 2,
    effGetProgram = 3,
    effSetProgramName = 4,
    effGetProgramName = 5,
    effGetParamLabel = 6,
    effGetParamDisplay = 7,
    effGetParamName = 8,
    effSetSampleRate = 10,
    effSetBlockSize = 11,
    effMainsChanged = 12,
    effEditGetRect = 13,
    effEditOpen = 14,
    effEditClose = 15,
    effEditIdle = 19,
    effIdentify = 22,
    effGetChunk = 23,
    effSetChunk = 24,
    effProcessEvents = 25,
    effCanBeAutomated = 26,
    effString2Parameter = 27,
    effGetProgramNameIndexed = 29,
    effGetInputProperties = 33,
    effGetOutputProperties = 34,
    effGetPlugCategory = 35,
    effSetSpeakerArrangement = 42,
    effSetBypass = 44,
    effGetEffectName = 45,
    effGetVendorString = 47,
    effGetProductString = 48,
    effGetVendorVersion = 49,
    effVendorSpecific = 50,
    effCanDo = 51,
    effGetTailSize = 52,
    effIdle = 53,
    effGetParameterProperties = 56,
    effGetVstVersion = 58,
    effEditKeyDown = 59,
    effEditKeyUp = 60,
    effSetEditKnobMode = 61,
    effGetMidiProgramName = 62,
    effGetCurrentMidiProgram = 63,
    effGetMidiProgramCategory = 64,
    effHasMidiProgramsChanged = 65,
    effGetMidiKeyName = 66,
    effBeginSetProgram = 67,
    effEndSetProgram = 68,
    effGetSpeakerArrangement = 69,
    effShellGetNextPlugin = 70,
    effStartProcess = 71,
    effStopProcess = 72,
    effSetTotalSampleToProcess = 73,
    effSetPanLaw = 74,
    effBeginLoadBank = 75,
    effBeginLoadProgram = 76,
    effSetProcessPrecision = 77,
    effGetNumMidiInputChannels = 78,
    effGetNumMidiOutputChannels = 79,
};

enum HostOpcode : std::int32_t {
    audioMasterAutomate = 0,
    audioMasterVersion = 1,
    audioMasterCurrentId = 2,
    audioMasterIdle = 3,
    audioMasterWantMidi = 6,
    audioMasterGetTime = 7,
    audioMasterProcessEvents = 8,
    audioMasterIOChanged = 13,
    audioMasterSizeWindow = 15,
    audioMasterGetSampleRate = 16,
    audioMasterGetBlockSize = 17,
    audioMasterGetInputLatency = 18,
    audioMasterGetOutputLatency = 19,
    audioMasterGetCurrentProcessLevel = 23,
    audioMasterGetAutomationState = 24,
    audioMasterGetVendorString = 32,
    audioMasterGetProductString = 33,
    audioMasterGetVendorVersion = 34,
    audioMasterVendorSpecific = 35,
    audioMasterCanDo = 37,
    audioMasterGetLanguage = 38,
    audioMasterGetDirectory = 41,
    audioMasterUpdateDisplay = 42,
    audioMasterBeginEdit = 43,
    audioMasterEndEdit = 44,
    audioMasterOpenFileSelector = 45,
    audioMasterCloseFileSelector = 46,
};

inline constexpr std::int32_t kMidiType = 1;
inline constexpr std::int32_t kSysExType = 6;

// Head of every event; what follows `flags` depends on the type.
struct VstEvent {
    std::int32_t type = 0;
    std::int32_t byteSize = 0;
    std::int32_t deltaFrames = 0; // from the block's start
    std::int32_t flags = 0;
    char data[16] = {};
};

struct VstMidiEvent {
    std::int32_t type = kMidiType;
    std::int32_t byteSize = 24; // hosts say 24 or 32
    std::int32_t deltaFrames = 0;
    std::int32_t flags = 0;
    std::int32_t noteLength = 0;
    std::int32_t noteOffset = 0;
    char midiData[4] = {};
    char detune = 0;
    char noteOffVelocity = 0;
    char reserved1 = 0;
    char reserved2 = 0;
};

// `events` holds numEvents entries; the record is as long as that needs.
struct VstEvents {
    std::int32_t numEvents = 0;
    std::intptr_t reserved = 0;
    VstEvent* events[1] = {};
};

enum TimeFlag : std::int32_t {
    kTransportChanged = 1,
    kTransportPlaying = 1 << 1,
    kTransportCycleActive = 1 << 2,
    kTransportRecording = 1 << 3,
    kNanosValid = 1 << 8,
    kPpqPosValid = 1 << 9,
    kTempoValid = 1 << 10,
    kBarsValid = 1 << 11,
    kCyclePosValid = 1 << 12,
    kTimeSigValid = 1 << 13,
};

struct VstTimeInfo {
    double samplePos = 0.0;
    double sampleRate = 0.0;
    double nanoSeconds = 0.0;
    double ppqPos = 0.0; // quarter notes
    double tempo = 0.0;  // beats per minute
    double barStartPos = 0.0;
    double cycleStartPos = 0.0;
    double cycleEndPos = 0.0;
    std::int32_t timeSigNumerator = 0;
    std::int32_t timeSigDenominator = 0;
    std::int32_t smpteOffset = 0;
    std::int32_t smpteFrameRate = 0;
    std::int32_t samplesToNextClock = 0;
    std::int32_t flags = 0;
};

enum PinFlag : std::int32_t { kPinIsActive = 1, kPinIsStereo = 2 };

struct VstPinProperties {
    char label[64] = {};
    std::int32_t flags = 0;
    std::int32_t arrangementType = 0;
    char shortLabel[8] = {};
    char future[48] = {}; // some hosts reserve only what comes before
};

struct ERect {
    std::int16_t top = 0;
    std::int16_t left = 0;
    std::int16_t bottom = 0;
    std::int16_t right = 0;
};

static_assert(sizeof(VstEvent) == 32);
static_assert(sizeof(VstMidiEvent) == 32);
static_assert(offsetof(VstMidiEvent, deltaFrames) == 8);
static_assert(offsetof(VstMidiEvent, midiData) == 24);
static_assert(sizeof(VstPinProperties) == 128);
static_assert(offsetof(VstPinProperties, flags) == 64);
static_assert(offsetof(VstPinProperties, future) == 80);
static_assert(sizeof(VstTimeInfo) == 88);
static_assert(offsetof(VstTimeInfo, tempo) == 32);
static_assert(offsetof(VstTimeInfo, flags) == 84);
static_assert(sizeof(ERect) == 8);
static_assert(sizeof(void*) != 8 || sizeof(AEffect) == 192);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, dispatcher) == 8);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, numPrograms) == 40);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, flags) == 56);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, initialDelay) == 80);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, object) == 96);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, uniqueId) == 112);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, processReplacing) == 120);
static_assert(sizeof(void*) != 8 || offsetof(AEffect, future) == 136);
static_assert(sizeof(void*) != 8 || offsetof(VstEvents, events) == 16);

} // namespace tolm::vst2
