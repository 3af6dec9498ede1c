#include "tools/audition/play.h"

#include "plugin/SynthCore.h"
#include "plugin/blockDriver.h"
#include "plugin/eventIntake.h"
#include "plugin/platform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>

namespace tolm {
namespace {

constexpr int kBlockFrames = 256;
constexpr std::size_t kMaxBlockEvents = 32;
// Silence: nothing above -90 dBFS for half a second, longer than the gap between most echoes.
constexpr float kSilence = 3.2e-5f;
constexpr std::size_t kSilentFrames = kAuditionRateHz / 2;

class SteadyTempo final : public TempoSource {
public:
    double beatsPerMinute() override { return kDefaultTempo; }
};

double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

std::size_t framesOf(double seconds)
{
    return static_cast<std::size_t>(std::llround(seconds * kAuditionRateHz));
}

// A fresh one for every phrase: controllers and the slow movements of effects outlast a program
// load.
struct Instrument {
    Instrument() { core.engine().setSampleRate(kAuditionRateHz); }

    std::unique_ptr<SettingsStore> settings = fileSettingsStore({}, {}); // holds nothing
    SteadyTempo tempo;
    SynthCore core{*settings, tempo};
};

class Performance {
public:
    Performance(const ProgramRecord& program, const Phrase& phrase) : phrase_(phrase)
    {
        Tolm& engine = core_.engine();
        engine.seed(1); // the load draws phases
        engine.programBank().record(0) = program;
        core_.loadProgram(0);
        core_.setRunning(true);
    }

    Rendering run(double tailSeconds)
    {
        rendering_.keyUpFrame = framesOf(phrase_.keyUpSeconds);
        const std::size_t end = rendering_.keyUpFrame + 1 + framesOf(tailSeconds);
        rendering_.left.reserve(end + kBlockFrames);
        rendering_.right.reserve(end + kBlockFrames);
        const double start = threadCpuSeconds();
        while (frames() < end && !(frames() > rendering_.keyUpFrame && isSilent()))
            playBlock();
        rendering_.cpuNsPerFrame =
            (threadCpuSeconds() - start) * 1e9 / static_cast<double>(std::max(frames(), {1}));
        return std::move(rendering_);
    }

private:
    std::size_t frames() const { return rendering_.left.size(); }
    bool isSilent() const { return frames() > lastLoudFrame_ + kSilentFrames; }

    void playBlock()
    {
        const std::size_t start = frames();
        sendEvents(start);
        rendering_.left.resize(start + kBlockFrames);
        rendering_.right.resize(start + kBlockFrames);
        float* const outputs[] = {rendering_.left.data() + start, rendering_.right.data() + start};
        processBlock(core_, outputs, kBlockFrames, OutputMode::replace);
        for (const float* channel : outputs)
            for (int i = 0; i < kBlockFrames; ++i)
                if (!(std::fabs(channel[i]) <= kSilence)) // counts what is no number as loud
                    lastLoudFrame_ = start + static_cast<std::size_t>(i);
    }

    void sendEvents(std::size_t start)
    {
        std::array<vst2::VstMidiEvent, kMaxBlockEvents> events;
        alignas(vst2::VstEvents)
            std::array<std::byte, sizeof(vst2::VstEvents) + kMaxBlockEvents * sizeof(void*)>
                bytes;
        auto* list = new (bytes.data()) vst2::VstEvents;
        vst2::VstEvent** entries = list->events;
        std::size_t count = 0;
        for (; next_ < phrase_.events.size() && count < kMaxBlockEvents; ++next_, ++count) {
            const PhraseEvent& from = phrase_.events[next_];
            const std::size_t frame = framesOf(from.seconds);
            if (frame >= start + kBlockFrames)
                break;
            vst2::VstMidiEvent& event = events[count];
            event.deltaFrames = static_cast<std::int32_t>(std::max(frame, start) - start);
            event.midiData[0] = static_cast<char>(from.status);
            event.midiData[1] = static_cast<char>(from.data1);
            event.midiData[2] = static_cast<char>(from.data2);
            entries[count] = reinterpret_cast<vst2::VstEvent*>(&event);
        }
        list->numEvents = static_cast<std::int32_t>(count);
        takeHostEvents(core_, *list);
    }

    const Phrase& phrase_;
    Instrument instrument_;
    SynthCore& core_ = instrument_.core;
    Rendering rendering_;
    std::size_t next_ = 0;
    std::size_t lastLoudFrame_ = 0;
};

} // namespace

Rendering play(const ProgramRecord& program, const Phrase& phrase, double tailSeconds)
{
    return Performance(program, phrase).run(tailSeconds);
}

} // namespace tolm
