// A plug-in that makes visible what the host does. Left: the sum of velocity / 127 of all held
// keys, times "Level" and the program's factor. Right: what "Right" selects. The environment
// variable TOLM_TEST_INSTRUMENT turns it into odder kinds: "effect", "mono", "accumulate", "nan".

#include "vst2/AudioEffectX.h"

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

int choiceOf(float value)
{
    return std::clamp(static_cast<int>(value * static_cast<float>(rightCount)), 0, rightCount - 1);
}

void putText(char* to, const char* text)
{
    copyText(to, kParameterTextSize, text);
}

class Instrument final : public AudioEffectX {
public:
    Instrument(HostCallback host, std::string_view kind)
        : AudioEffectX(host, std::size(kPrograms), parameterCount),
          mono_(kind == "mono"),
          putsOutNan_(kind == "nan")
    {
        effect_.uniqueId = fourCharacters("Test");
        effect_.numOutputs = mono_ ? 1 : 2;
        setFlag(effFlagsProgramChunks, true);
        setFlag(effFlagsIsSynth, kind != "effect");
        setFlag(effFlagsCanReplacing, kind != "accumulate");
        effect_.process = [](AEffect* effect, float**, float** outputs, std::int32_t frames) {
            auto* base = static_cast<AudioEffect*>(effect->object);
            static_cast<Instrument*>(base)->render(outputs, frames, true);
        };
    }

    std::intptr_t dispatcher(const Request& request) override
    {
        if (request.opcode != effStartProcess && request.opcode != effStopProcess)
            return AudioEffectX::dispatcher(request);
        fault(!on_);
        started_ = request.opcode == effStartProcess;
        return 0;
    }
    void open() override
    {
        fault(open_);
        open_ = true;
    }
    // The tests look for this file name: the host closed what it had switched off.
    void close() override
    {
        const char* log = std::getenv("TOLM_TEST_LOG");
        std::FILE* file = log != nullptr ? std::fopen(log, "a") : nullptr;
        if (file == nullptr)
            return;
        std::fputs(on_ || started_ ? "left on\n" : "closed\n", file);
        std::fclose(file);
    }
    void setSampleRate(float hz) override
    {
        fault(on_);
        rateHz_ = hz;
    }
    void setBlockSize(std::int32_t frames) override
    {
        fault(on_);
        blockFrames_ = frames;
    }
    void resume() override
    {
        fault(rateHz_ <= 0.0f || blockFrames_ <= 0);
        on_ = true;
    }
    void suspend() override { on_ = false; }

    void setProgram(std::int32_t program) override { program_ = program; }
    std::int32_t getProgram() const override { return program_; }
    void getProgramName(char* text) override { putText(text, kPrograms[program_].name); }
    bool getProgramNameIndexed(std::int32_t, std::int32_t program, char* text) override
    {
        putText(text, kPrograms[program].name);
        return true;
    }
    void setParameter(std::int32_t id, float value) override { valueOf(id) = value; }
    float getParameter(std::int32_t id) const override
    {
        return values_[static_cast<std::size_t>(id)];
    }
    void getParameterName(std::int32_t id, char* text) override
    {
        putText(text, kParameterNames[id]);
    }
    void getParameterLabel(std::int32_t id, char* text) override
    {
        putText(text, id == pitch ? "Hz" : "");
    }
    void getParameterDisplay(std::int32_t id, char* text) override
    {
        const double value = static_cast<double>(valueOf(id));
        if (id == right)
            putText(text, kRightNames[choiceOf(valueOf(id))]);
        else if (id == pitch)
            std::snprintf(text, kParameterTextSize, "%.1f", 20.0 * std::pow(1000.0, value));
        else
            std::snprintf(text, kParameterTextSize, "%.2f", value);
    }
    // Bank 0.1, program 0.2, plus a hundredth of the bytes' sum.
    std::int32_t setChunk(const void* data, std::int32_t bytes, bool singleProgram) override
    {
        const auto* first = static_cast<const char*>(data);
        chunkValue_ = (singleProgram ? 0.2f : 0.1f) +
                      static_cast<float>(std::accumulate(first, first + bytes, 0)) / 100.0f;
        return 1;
    }
    std::int32_t processEvents(const VstEvents* list) override
    {
        const VstEvent* const* events = list->events;
        for (int i = 0; i < list->numEvents; ++i) {
            fault(events[i]->type != kMidiType);
            VstMidiEvent midi;
            std::memcpy(static_cast<void*>(&midi), events[i], sizeof midi);
            events_.push_back(midi);
        }
        fault(events_.size() > 200); // more than an instrument need take
        return 1;
    }
    void processReplacing(float**, float** outputs, std::int32_t frames) override
    {
        render(outputs, frames, false);
    }

private:
    float& valueOf(std::int32_t id) { return values_[static_cast<std::size_t>(id)]; }
    void fault(bool present) { faultCount_ += present ? 1 : 0; }

    void play(const VstMidiEvent& event)
    {
        const int kind = event.midiData[0] & 0xF0;
        const auto key = static_cast<std::size_t>(event.midiData[1] & 0x7F);
        if (kind == 0x90)
            held_[key] = static_cast<float>(event.midiData[2]) / 127.0f;
        else if (kind == 0x80)
            held_[key] = 0.0f;
        else if (kind == 0xC0)
            program_ = event.midiData[1];
        heldSum_ = std::accumulate(held_.begin(), held_.end(), 0.0f);
    }

    float rightValue(const VstTimeInfo& time) const
    {
        const double signature = time.timeSigNumerator / (10.0 * time.timeSigDenominator);
        const double values[rightCount] = {time.tempo / 1000.0,
                                           time.ppqPos / 1000.0,
                                           time.barStartPos / 1000.0,
                                           signature,
                                           static_cast<double>(chunkValue_),
                                           faultCount_ / 1000.0};
        return static_cast<float>(values[choiceOf(values_[right])]);
    }

    void render(float** outputs, int frames, bool add)
    {
        constexpr int kFlags = kTempoValid | kPpqPosValid | kTransportPlaying;
        const VstTimeInfo* time = timeInfo(kTempoValid);
        fault(!open_ || !on_ || !started_ || frames > blockFrames_ || frames < 1);
        fault(time == nullptr || (time->flags & kFlags) != kFlags);
        if (time == nullptr)
            return;
        fault(time->samplePos != nextSample_ || time->sampleRate != static_cast<double>(rateHz_));
        nextSample_ += frames;
        std::size_t next = 0;
        for (int i = 0; i < frames; ++i) {
            while (next < events_.size() && events_[next].deltaFrames <= i)
                play(events_[next++]);
            const float left = heldSum_ * values_[level] * kPrograms[program_].factor;
            outputs[0][i] = (add ? outputs[0][i] : 0.0f) + (putsOutNan_ ? NAN : left);
            if (!mono_)
                outputs[1][i] = (add ? outputs[1][i] : 0.0f) + rightValue(*time);
        }
        fault(next != events_.size()); // an offset outside the block
        events_.clear();
    }

    bool mono_, putsOutNan_;
    bool open_ = false, on_ = false, started_ = false;
    float rateHz_ = 0.0f;
    std::int32_t blockFrames_ = 0;
    std::array<float, parameterCount> values_{1.0f, 0.0f, 0.5f};
    std::int32_t program_ = 0;
    float chunkValue_ = 0.0f;
    std::vector<VstMidiEvent> events_;
    std::array<float, 128> held_{};
    float heldSum_ = 0.0f;
    double nextSample_ = 0.0;
    int faultCount_ = 0;
};

} // namespace

extern "C" __attribute__((visibility("default"))) tolm::vst2::AEffect*
VSTPluginMain(tolm::vst2::HostCallback host)
{
    if (host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) != kInterfaceVersion)
        return nullptr;
    const char* kind = std::getenv("TOLM_TEST_INSTRUMENT");
    return (new Instrument(host, kind != nullptr ? kind : ""))->effect();
}
