#pragma once
// One instance of the built plug-in, loaded and driven as a host does it, with everything that a
// test may vary: block lengths, events, time, the order of calls.

#include "vst2/abi.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tolm::test {

struct Stereo {
    std::vector<float> left;
    std::vector<float> right;

    std::size_t frames() const { return left.size(); }
    bool operator==(const Stereo&) const = default;
};

struct Message {
    int frame = 0; // from the start of what is rendered
    std::array<std::uint8_t, 3> bytes{};
};
inline Message noteOn(int frame, int key, int velocity = 100)
{
    return {frame, {0x90, static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(velocity)}};
}
inline Message noteOff(int frame, int key)
{
    return {frame, {0x80, static_cast<std::uint8_t>(key), 0}};
}

// Those due in [start, end), counted from `start`.
std::vector<Message> messagesWithin(const std::vector<Message>& messages, int start, int end);

// First frame that is not silent, or the length.
std::size_t firstSound(const Stereo& sound);
double peakOf(const Stereo& sound, std::size_t from = 0);
double rmsOf(const Stereo& sound, std::size_t from = 0);
// Level of `reference` over the level of the difference; 300 for equal sounds.
double snrDb(const Stereo& reference, const Stereo& other);

class PluginRig {
public:
    // Opened, at the given rate and block length, switched on.
    explicit PluginRig(float rateHz = 44100.0f, int blockFrames = 512,
                       const char* library = TOLM_PLUGIN);
    ~PluginRig();
    PluginRig(const PluginRig&) = delete;
    PluginRig& operator=(const PluginRig&) = delete;

    std::intptr_t dispatch(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* pointer = nullptr, float option = 0.0f)
    {
        return effect_->dispatcher(effect_, opcode, index, value, pointer, option);
    }
    void set(int id, float value) { effect_->setParameter(effect_, id, value); }
    float get(int id) { return effect_->getParameter(effect_, id); }
    std::string programName(int program);
    void selectProgram(int program) { dispatch(vst2::effSetProgram, 0, program); }
    // By name; fails the test when there is none.
    void selectProgram(std::string_view name);
    void switchOn(bool on) { dispatch(vst2::effMainsChanged, 0, on ? 1 : 0); }
    void setRate(float hz) { dispatch(vst2::effSetSampleRate, 0, 0, nullptr, hz); }

    void send(const std::vector<Message>& messages);
    // One block into the end of `sound`.
    void process(int frames, Stereo& sound);
    // Whole blocks of `block` frames (the last may be shorter), each with its messages.
    Stereo render(int frames, const std::vector<Message>& messages = {}, int block = 512);
    // Blocks of the given lengths, from the start again when they are used up.
    Stereo render(int frames, const std::vector<Message>& messages, const std::vector<int>& blocks);

    std::optional<double> tempo; // what the host's time says, if it tells any

private:
    struct Closer {
        void operator()(void* library) const;
    };
    static std::intptr_t answer(vst2::AEffect* effect, std::int32_t opcode, std::int32_t index,
                                std::intptr_t value, void* pointer, float option);

    std::unique_ptr<void, Closer> library_;
    vst2::AEffect* effect_ = nullptr;
    vst2::VstTimeInfo time_;
};

} // namespace tolm::test
