#include "plugin/MeterBoard.h"

#include <algorithm>
#include <cmath>

namespace tolm {

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

// Comparisons that leave not-a-number behind, in lanes that the compiler keeps side by side.
float peakOf(const float* samples, int frames)
{
    std::array<float, 8> lane{};
    const auto lanes = static_cast<int>(lane.size());
    int i = 0;
    for (; i + lanes <= frames; i += lanes)
        for (std::size_t k = 0; k < lane.size(); ++k) {
            const float level = std::abs(samples[i + static_cast<int>(k)]);
            lane[k] = level > lane[k] ? level : lane[k];
        }
    float peak = *std::max_element(lane.begin(), lane.end());
    for (; i < frames; ++i)
        peak = std::max(peak, std::abs(samples[i]));
    return peak;
}

int activeVoices(const EngineRecord& r)
{
    return static_cast<int>(std::count_if(r.voiceActive.begin(), r.voiceActive.end(),
                                          [](std::uint32_t active) { return active != 0; }));
}

std::size_t newestVoice(const EngineRecord& r)
{
    std::size_t newest = kVoiceCount;
    for (std::size_t v = 0; v < kVoiceCount; ++v)
        if (r.voiceActive[v] != 0 &&
            (newest == kVoiceCount || r.voiceNote[v].age < r.voiceNote[newest].age))
            newest = v;
    return newest;
}

int playingStep(const ArpeggiatorState& arp)
{
    const bool plays = arp.on && std::any_of(arp.held.begin(), arp.held.end(),
                                             [](std::uint8_t velocity) { return velocity != 0; });
    return plays ? static_cast<int>(arp.currentStep % kArpSteps) : -1;
}

} // namespace

void MeterBoard::watch(bool on)
{
    watched_.store(on, kRelaxed);
    if (on)
        return;
    EditorMeters forgotten;
    read(forgotten);
    voices_.store(0, kRelaxed);
    arpStep_.store(-1, kRelaxed);
    for (std::atomic<float>& source : rowSource_)
        source.store(0.0f, kRelaxed);
}

void MeterBoard::update(EngineRecord& r, const float* const* outputs, int frames)
{
    if (!watched_.load(kRelaxed)) {
        r.watched.voice = kVoiceCount;
        return;
    }
    for (std::size_t channel = 0; channel < peak_.size(); ++channel) {
        const float peak = peakOf(outputs[channel], frames);
        if (peak > peak_[channel].load(kRelaxed))
            peak_[channel].store(peak, kRelaxed);
    }
    voices_.store(activeVoices(r), kRelaxed);
    arpStep_.store(playingStep(r.arp), kRelaxed);
    showVoice(r, newestVoice(r));
}

// Another voice's sources are known after its first block.
void MeterBoard::showVoice(EngineRecord& r, std::size_t newest)
{
    const bool sounds = newest < kVoiceCount;
    if (newest != r.watched.voice)
        r.watched = {newest, {}};
    for (std::size_t row = 0; row < rowSource_.size(); ++row)
        rowSource_[row].store(r.watched.rowSource[row], kRelaxed);
    r.watched.rowSource.fill(0.0f); // rows that are switched off are not evaluated any more
    for (std::size_t lfo = 0; lfo < lfoPhase_.size(); ++lfo) {
        const double turns = sounds ? r.slot[newest].lfoPhase[lfo] / kPhaseTurn : 0.0;
        lfoPhase_[lfo].store(static_cast<float>(turns), kRelaxed);
    }
}

void MeterBoard::read(EditorMeters& meters)
{
    meters.peakLeft = peak_[0].exchange(0.0f, kRelaxed);
    meters.peakRight = peak_[1].exchange(0.0f, kRelaxed);
    meters.voices = voices_.load(kRelaxed);
    meters.arpStep = arpStep_.load(kRelaxed);
    for (std::size_t row = 0; row < rowSource_.size(); ++row)
        meters.rowSource[row] = rowSource_[row].load(kRelaxed);
    for (std::size_t lfo = 0; lfo < lfoPhase_.size(); ++lfo)
        meters.lfoPhase[lfo] = lfoPhase_[lfo].load(kRelaxed);
}

} // namespace tolm
