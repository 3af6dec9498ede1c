// A plug-in that makes visible what the host does. Left: the sum of velocity / 127 of all held
// keys, times "Level" and the program's factor. Right: what "Right" selects. The environment
// variable TOLM_TEST_INSTRUMENT turns it into odder kinds: "effect", "mono", "accumulate", "nan".

#include "vst2/abi.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <string_view>
#include <vector>

namespace {

using namespace tolm::vst2;

struct ProgramRow {
    const char* name;
    float factor;
};
constexpr ProgramRow kPrograms[] = {{"Full", 1.0f}, {"Half", 0.5f}, {"Quarter", 0.25f}};

enum Parameter { level, right, pitch, parameterCount };
constexpr const char* kParameterNames[parameterCount] = {"Level", "Right", "Pitch"};

enum Right { tempo, position, bar, signature, chunk, faults, rightCount };
constexpr const char* kRightNames[rightCount] = {"Tempo",     "Position", "Bar",
                                                 "Signature", "Chunk",    "Faults"};

struct Instrument {
    AEffect effect{};
    HostCallback host = nullptr;
    std::array<float, parameterCount> values{1.0f, 0.0f, 0.5f};
    std::intptr_t program = 0;
    std::array<float, 128> held{};
    float heldSum = 0.0f;
    std::vector<VstMidiEvent> events;
    float sampleRate = 0.0f;
    std::intptr_t blockFrames = 0;
    bool open = false;
    bool on = false;
    bool started = false;
    double nextSample = 0.0;
    float chunkValue = 0.0f;
    int faultCount = 0;
    bool mono = false;
    bool putsOutNan = false;

    void fault(bool present) { faultCount += present ? 1 : 0; }
    void play(const VstMidiEvent& event);
    void render(float** outputs, int frames, bool add);
    float rightValue(const VstTimeInfo& time) const;
};

Instrument& self(AEffect* effect)
{
    return *static_cast<Instrument*>(effect->object);
}

int choiceOf(float value)
{
    return std::clamp(static_cast<int>(value * static_cast<float>(rightCount)), 0, rightCount - 1);
}

void Instrument::play(const VstMidiEvent& event)
{
    const int kind = event.midiData[0] & 0xF0;
    const auto key = static_cast<std::size_t>(event.midiData[1] & 0x7F);
    if (kind == 0x90)
        held[key] = static_cast<float>(event.midiData[2]) / 127.0f;
    else if (kind == 0x80)
        held[key] = 0.0f;
    else if (kind == 0xC0)
        program = event.midiData[1];
    heldSum = std::accumulate(held.begin(), held.end(), 0.0f);
}

float Instrument::rightValue(const VstTimeInfo& time) const
{
    switch (choiceOf(values[right])) {
    case tempo:
        return static_cast<float>(time.tempo / 1000.0);
    case position:
        return static_cast<float>(time.ppqPos / 1000.0);
    case bar:
        return static_cast<float>(time.barStartPos / 1000.0);
    case signature:
        return static_cast<float>(time.timeSigNumerator) /
               (10.0f * static_cast<float>(time.timeSigDenominator));
    case chunk:
        return chunkValue;
    default:
        return static_cast<float>(faultCount) / 1000.0f;
    }
}

void Instrument::render(float** outputs, int frames, bool add)
{
    const auto* time = reinterpret_cast<const VstTimeInfo*>(
        host(&effect, audioMasterGetTime, 0, kTempoValid, nullptr, 0.0f));
    constexpr int kFlags = kTempoValid | kPpqPosValid | kTransportPlaying;
    fault(!open || !on || !started || frames > blockFrames || frames < 1);
    fault(time == nullptr || (time->flags & kFlags) != kFlags);
    if (time == nullptr)
        return;
    fault(time->samplePos != nextSample || time->sampleRate != static_cast<double>(sampleRate));
    nextSample += frames;
    std::size_t next = 0;
    for (int i = 0; i < frames; ++i) {
        while (next < events.size() && events[next].deltaFrames <= i)
            play(events[next++]);
        const float factor = kPrograms[static_cast<std::size_t>(program)].factor;
        const float left = putsOutNan ? NAN : heldSum * values[level] * factor;
        outputs[0][i] = (add ? outputs[0][i] : 0.0f) + left;
        if (!mono)
            outputs[1][i] = (add ? outputs[1][i] : 0.0f) + rightValue(*time);
    }
    fault(next != events.size()); // an offset outside the block
    events.clear();
}

void putText(void* target, const char* text)
{
    std::strncpy(static_cast<char*>(target), text, 23);
}

void putDisplay(const Instrument& instrument, int index, char* text)
{
    const float value = instrument.values[static_cast<std::size_t>(index)];
    if (index == right)
        putText(text, kRightNames[choiceOf(value)]);
    else if (index == pitch)
        std::snprintf(text, 24, "%.1f", 20.0 * std::pow(1000.0, static_cast<double>(value)));
    else
        std::snprintf(text, 24, "%.2f", static_cast<double>(value));
}

void takeEvents(Instrument& instrument, const VstEvents& list)
{
    for (int i = 0; i < list.numEvents; ++i) {
        const VstEvent* event = nullptr;
        std::memcpy(&event,
                    reinterpret_cast<const char*>(&list.events) +
                        static_cast<std::size_t>(i) * sizeof event,
                    sizeof event);
        instrument.fault(event->type != kMidiType);
        VstMidiEvent midi;
        std::memcpy(static_cast<void*>(&midi), event, sizeof midi);
        instrument.events.push_back(midi);
    }
    instrument.fault(instrument.events.size() > 200); // more than an instrument need take
}

std::intptr_t dispatch(AEffect* effect, std::int32_t opcode, std::int32_t index,
                       std::intptr_t value, void* ptr, float opt)
{
    Instrument& instrument = self(effect);
    switch (opcode) {
    case effOpen:
        instrument.fault(instrument.open);
        instrument.open = true;
        return 0;
    case effClose:
        // The tests look for this file name: the host closed what it had switched off.
        if (const char* log = std::getenv("TOLM_TEST_LOG"); log != nullptr)
            if (std::FILE* file = std::fopen(log, "a")) {
                std::fputs(instrument.on || instrument.started ? "left on\n" : "closed\n", file);
                std::fclose(file);
            }
        delete &instrument;
        return 0;
    case effSetProgram:
        instrument.program = value;
        return 0;
    case effGetProgram:
        return instrument.program;
    case effGetProgramName:
        putText(ptr, kPrograms[instrument.program].name);
        return 0;
    case effGetProgramNameIndexed:
        putText(ptr, kPrograms[index].name);
        return 1;
    case effGetParamName:
        putText(ptr, kParameterNames[index]);
        return 0;
    case effGetParamLabel:
        putText(ptr, index == pitch ? "Hz" : "");
        return 0;
    case effGetParamDisplay:
        putDisplay(instrument, index, static_cast<char*>(ptr));
        return 0;
    case effSetSampleRate:
        instrument.fault(instrument.on);
        instrument.sampleRate = opt;
        return 0;
    case effSetBlockSize:
        instrument.fault(instrument.on);
        instrument.blockFrames = value;
        return 0;
    case effMainsChanged:
        instrument.fault(instrument.sampleRate <= 0.0f || instrument.blockFrames <= 0);
        instrument.on = value != 0;
        return 0;
    case effStartProcess:
    case effStopProcess:
        instrument.fault(!instrument.on);
        instrument.started = opcode == effStartProcess;
        return 0;
    case effSetChunk: // bank 0.1, program 0.2, plus a hundredth of the bytes' sum
        instrument.chunkValue = 0.1f + 0.1f * static_cast<float>(index);
        for (std::intptr_t i = 0; i < value; ++i)
            instrument.chunkValue += static_cast<float>(static_cast<const char*>(ptr)[i]) / 100.0f;
        return 1;
    case effProcessEvents:
        takeEvents(instrument, *static_cast<const VstEvents*>(ptr));
        return 1;
    default:
        return 0;
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) tolm::vst2::AEffect*
VSTPluginMain(tolm::vst2::HostCallback host)
{
    if (host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) != 2400)
        return nullptr;
    const char* variable = std::getenv("TOLM_TEST_INSTRUMENT");
    const std::string_view kind = variable == nullptr ? "" : variable;
    auto* instrument = new Instrument;
    instrument->host = host;
    instrument->mono = kind == "mono";
    instrument->putsOutNan = kind == "nan";
    AEffect& effect = instrument->effect;
    effect.magic = kEffectMagic;
    effect.object = instrument;
    effect.uniqueId = 0x54657374; // 'Test'
    effect.numPrograms = static_cast<std::int32_t>(std::size(kPrograms));
    effect.numParams = parameterCount;
    effect.numOutputs = instrument->mono ? 1 : 2;
    effect.flags = effFlagsProgramChunks | (kind == "effect" ? 0 : effFlagsIsSynth) |
                   (kind == "accumulate" ? 0 : effFlagsCanReplacing);
    effect.dispatcher = dispatch;
    effect.setParameter = [](AEffect* e, std::int32_t index, float value) {
        self(e).values[static_cast<std::size_t>(index)] = value;
    };
    effect.getParameter = [](AEffect* e, std::int32_t index) {
        return self(e).values[static_cast<std::size_t>(index)];
    };
    effect.process = [](AEffect* e, float**, float** outputs, std::int32_t frames) {
        self(e).render(outputs, frames, true);
    };
    effect.processReplacing = [](AEffect* e, float**, float** outputs, std::int32_t frames) {
        self(e).render(outputs, frames, false);
    };
    return &effect;
}
