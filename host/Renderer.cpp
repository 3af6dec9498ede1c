// The block loop.

#include "host/Renderer.h"

#include "host/Failure.h"
#include "host/interrupt.h"

#include <algorithm>
#include <cmath>

namespace tolm {
namespace {

// Instruments hold a limited number of events per block; a denser block is cut in two.
constexpr std::size_t kMaxEventsPerCall = 128;

VstTimeInfo timeAt(const TempoMap& tempo, double sampleRateHz, std::int64_t frame)
{
    const double seconds = static_cast<double>(frame) / sampleRateHz;
    VstTimeInfo time{};
    time.samplePos = static_cast<double>(frame);
    time.sampleRate = sampleRateHz;
    time.ppqPos = tempo.quarterAt(seconds);
    time.tempo = tempo.bpmAt(seconds);
    time.barStartPos = tempo.barStart(time.ppqPos);
    time.timeSigNumerator = tempo.signatureAt(time.ppqPos).numerator;
    time.timeSigDenominator = tempo.signatureAt(time.ppqPos).denominator;
    time.flags = kTransportPlaying | kPpqPosValid | kTempoValid | kBarsValid |
                 kTimeSigValid | (frame == 0 ? kTransportChanged : 0);
    return time;
}

// One part's way through the song, a block at a time, added to the mix.
class PartPlayer {
public:
    PartPlayer(Part& part, const TempoMap& tempo, const RenderPlan& plan)
        : part_(part),
          tempo_(tempo),
          plan_(plan),
          left_(static_cast<std::size_t>(plan.blockFrames)),
          right_(left_.size())
    {
        part_.plugin->start();
    }

    void addBlock(std::int64_t start, std::span<float> mix)
    {
        const std::int64_t end = start + static_cast<std::int64_t>(mix.size() / 2);
        for (std::int64_t frame = start; frame < end;) {
            const std::int64_t next = callEnd(frame, end);
            addCall(frame, next, mix.subspan(static_cast<std::size_t>(frame - start) * 2));
            frame = next;
        }
    }

private:
    // Ends the call before the first event that is too many; events of one frame stay together.
    std::int64_t callEnd(std::int64_t frame, std::int64_t blockEnd) const
    {
        if (part_.events.size() - next_ <= kMaxEventsPerCall)
            return blockEnd;
        const std::int64_t tooMany = part_.events[next_ + kMaxEventsPerCall].frame;
        return std::min(std::max(tooMany, frame + 1), blockEnd);
    }

    void addCall(std::int64_t frame, std::int64_t end, std::span<float> mix)
    {
        const std::size_t first = next_;
        while (next_ < part_.events.size() && part_.events[next_].frame < end)
            ++next_;
        part_.plugin->setTime(timeAt(tempo_, plan_.sampleRateHz, frame));
        part_.plugin->send(std::span(part_.events).subspan(first, next_ - first), frame);
        const auto frames = static_cast<std::size_t>(end - frame);
        part_.plugin->process(std::span(left_).first(frames), std::span(right_).first(frames));
        const float gain = part_.gain * plan_.gain;
        for (std::size_t i = 0; i < frames; ++i) {
            mix[2 * i] += gain * left_[i];
            mix[2 * i + 1] += gain * right_[i];
        }
    }

    Part& part_;
    const TempoMap& tempo_;
    const RenderPlan& plan_;
    std::size_t next_ = 0;
    std::vector<float> left_;
    std::vector<float> right_;
};

void measure(std::span<const float> mix, Levels& levels)
{
    for (const float sample : mix) {
        if (!std::isfinite(sample))
            throw Failure("the plug-in put out values that are no numbers");
        const double size = std::abs(static_cast<double>(sample));
        levels.peak = std::max(levels.peak, size);
        levels.squares += size * size;
        levels.overs += size > 1.0 ? 1 : 0;
    }
    levels.frames += static_cast<std::int64_t>(mix.size() / 2);
}

} // namespace

double Levels::peakDb() const
{
    return 20.0 * std::log10(peak);
}

double Levels::rmsDb() const
{
    return 10.0 *
           std::log10(squares / (2.0 * static_cast<double>(std::max<std::int64_t>(frames, 1))));
}

Levels render(std::vector<Part>& parts, const TempoMap& tempo, const RenderPlan& plan,
              AudioFile& file, Progress& progress)
{
    std::vector<PartPlayer> players;
    players.reserve(parts.size());
    for (Part& part : parts)
        players.emplace_back(part, tempo, plan);

    Levels levels;
    std::vector<float> mix(2 * static_cast<std::size_t>(plan.blockFrames));
    for (std::int64_t frame = 0; frame < plan.totalFrames; frame += plan.blockFrames) {
        throwIfInterrupted();
        mix.resize(2 * static_cast<std::size_t>(
                           std::min<std::int64_t>(plan.blockFrames, plan.totalFrames - frame)));
        std::fill(mix.begin(), mix.end(), 0.0f);
        for (PartPlayer& player : players)
            player.addBlock(frame, mix);
        measure(mix, levels);
        file.write(mix);
        progress.show(static_cast<double>(frame) / static_cast<double>(plan.totalFrames));
    }
    return levels;
}

} // namespace tolm
