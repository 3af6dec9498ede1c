#pragma once
// An engine without a plug-in around it: set parameters, play notes, render blocks.

#include "engine/Tolm.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tolm {

inline constexpr double kRate = 44100.0;
inline constexpr int kConst = 7; // matrix source that is always 1

struct Stereo {
    std::vector<float> left;
    std::vector<float> right;
};

class EngineRig : public EngineOwner {
public:
    // Program "Init Patch" at the given rate. Its velocity row is taken out, so that a voice's gain
    // is known.
    explicit EngineRig(double rateHz = kRate) : engine(*this)
    {
        engine.setSampleRate(rateHz);
        engine.resetVoices();
        program_ = kProgramCount - 1;
        engine.loadProgram(program_);
        setRow(1, 0, 0, 0.0);
    }

    void set(int id, float value) { setParameter(id, value); }
    void set(std::initializer_list<std::pair<int, float>> settings)
    {
        for (const auto& [id, value] : settings)
            set(id, value);
    }
    // Neighbouring ids, as the four of an envelope.
    void setFrom(int firstId, std::initializer_list<float> values)
    {
        for (const float value : values)
            set(firstId++, value);
    }
    // Row 1..24: source and destination ids, amount -1..1, voice-mask id.
    void setRow(int row, int source, int destination, double amount, int voices = 0)
    {
        set(kModSource1 + row - 1, static_cast<float>(source));
        set(kModAmount1 + row - 1, static_cast<float>((amount + 1.0) / 2.0));
        set(kModDestination1 + row - 1, static_cast<float>(destination));
        set(kModVoices1 + row - 1, static_cast<float>(voices));
    }
    void on(int key, int velocity = 127, int mask = kAllStackedVoices)
    {
        engine.noteOn(key, velocity, static_cast<std::uint32_t>(mask));
    }
    void off(int key, int mask = kAllStackedVoices)
    {
        engine.noteOff(key, static_cast<std::uint32_t>(mask));
    }

    // One host block with the arpeggiator's events played at their frames. No effects.
    void renderBlock(int frames, float* left, float* right)
    {
        queue.clear();
        engine.startBlock(frames);
        if (engine.record().arp.on)
            engine.runArpeggiator(frames);
        int position = 0;
        for (const QueuedEvent& event : queue) {
            renderTo(position, std::min<int>(event.offset, frames), left, right);
            if (event.status == kNoteOn && event.data2 > 0)
                on(event.data1, event.data2, event.tag);
            else
                off(event.data1, event.tag);
        }
        renderTo(position, frames, left, right);
        engine.updateGlobalModulation();
        engine.advanceDelayModulation(frames);
        float* outputs[] = {left, right};
        engine.applyOutputStage(frames, outputs);
        engine.endBlock();
    }
    Stereo render(int frames, int block = 512)
    {
        Stereo out{std::vector<float>(static_cast<std::size_t>(frames)),
                   std::vector<float>(static_cast<std::size_t>(frames))};
        for (int at = 0; at < frames; at += block)
            renderBlock(std::min(block, frames - at), out.left.data() + at, out.right.data() + at);
        return out;
    }
    int sounding() const
    {
        const auto& active = engine.record().voiceActive;
        return static_cast<int>(std::count(active.begin(), active.end(), 1u));
    }

    bool hostIsOwnHost() const override { return ownHost; }
    double hostTempo() const override { return tempo; }
    float getParameter(int id) const override { return engine.programBank().value(program_, id); }
    void setParameter(int id, float value) override
    {
        if (id >= 0 && id < kStoredParameterCount)
            engine.programBank().setValue(program_, id, value);
        engine.setEngineParameter(id, value);
    }
    void setEffectOrder(int, int) override {}
    void appendEvent(const QueuedEvent& event) override { queue.push_back(event); }

    Tolm engine;
    double tempo = kDefaultTempo;
    bool ownHost = false;
    std::vector<QueuedEvent> queue;

private:
    void renderTo(int& position, int end, float* left, float* right)
    {
        float bypassLeft[kMaxSliceFrames];
        float bypassRight[kMaxSliceFrames];
        while (position < end) {
            const int frames = std::min(kMaxSliceFrames, end - position);
            float* effects[] = {left + position, right + position};
            float* bypass[] = {bypassLeft, bypassRight};
            engine.renderVoices(frames, effects, bypass, true);
            for (int i = 0; i < frames; ++i) {
                left[position + i] += bypassLeft[i];
                right[position + i] += bypassRight[i];
            }
            position += frames;
        }
    }

    int program_ = 0;
};

} // namespace tolm
