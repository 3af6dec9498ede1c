// Loading, driving and measuring.

#include "tests/render/PluginRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <dlfcn.h>
#include <stdexcept>

namespace tolm::test {

namespace {

using Entry = vst2::AEffect* (*)(vst2::HostCallback);

// Energy of both channels from a frame on, or of their difference to other ones.
double energyOf(const Stereo& s, std::size_t from, const Stereo* other = nullptr)
{
    double sum = 0.0;
    for (std::size_t i = from; i < s.frames(); ++i) {
        const double left = double{s.left[i]} - (other ? other->left[i] : 0.0f);
        const double right = double{s.right[i]} - (other ? other->right[i] : 0.0f);
        sum += left * left + right * right;
    }
    return sum;
}

} // namespace

std::vector<Message> messagesWithin(const std::vector<Message>& messages, int start, int end)
{
    std::vector<Message> due;
    for (const Message& message : messages)
        if (message.frame >= start && message.frame < end)
            due.push_back({message.frame - start, message.bytes});
    return due;
}

std::size_t firstSound(const Stereo& s)
{
    std::size_t i = 0;
    while (i < s.frames() && s.left[i] == 0.0f && s.right[i] == 0.0f)
        ++i;
    return i;
}

double peakOf(const Stereo& s, std::size_t from)
{
    float peak = 0.0f;
    for (std::size_t i = from; i < s.frames(); ++i)
        peak = std::max({peak, std::abs(s.left[i]), std::abs(s.right[i])});
    return static_cast<double>(peak);
}

double rmsOf(const Stereo& s, std::size_t from)
{
    return std::sqrt(energyOf(s, from) / (2.0 * static_cast<double>(s.frames() - from)));
}

double snrDb(const Stereo& reference, const Stereo& other)
{
    const double difference = energyOf(reference, 0, &other);
    return difference == 0.0 ? 300.0 : 10.0 * std::log10(energyOf(reference, 0) / difference);
}

void PluginRig::Closer::operator()(void* library) const
{
    dlclose(library);
}

PluginRig::PluginRig(float rateHz, int blockFrames, const char* library)
    : library_(dlopen(library, RTLD_NOW | RTLD_LOCAL))
{
    if (!library_)
        throw std::runtime_error(dlerror());
    const auto entry = reinterpret_cast<Entry>(dlsym(library_.get(), "VSTPluginMain"));
    effect_ = entry == nullptr ? nullptr : entry(answer);
    if (effect_ == nullptr)
        throw std::runtime_error("no instance");
    effect_->user = this;
    dispatch(vst2::effOpen);
    setRate(rateHz);
    dispatch(vst2::effSetBlockSize, 0, blockFrames);
    selectProgram(0);
    switchOn(true);
}

PluginRig::~PluginRig()
{
    switchOn(false);
    dispatch(vst2::effClose);
}

std::intptr_t PluginRig::answer(vst2::AEffect* effect, std::int32_t opcode, std::int32_t,
                                std::intptr_t, void*, float)
{
    if (opcode == vst2::audioMasterVersion)
        return vst2::kInterfaceVersion;
    auto* rig = effect == nullptr ? nullptr : static_cast<PluginRig*>(effect->user);
    if (opcode != vst2::audioMasterGetTime || rig == nullptr || !rig->tempo)
        return 0;
    rig->time_.tempo = *rig->tempo;
    rig->time_.flags = vst2::kTempoValid;
    return reinterpret_cast<std::intptr_t>(&rig->time_);
}

std::string PluginRig::programName(int program)
{
    char text[256] = {};
    dispatch(vst2::effGetProgramNameIndexed, program, -1, text);
    return text;
}

void PluginRig::selectProgram(std::string_view name)
{
    for (int program = 0; program < effect_->numPrograms; ++program)
        if (programName(program) == name) {
            selectProgram(program);
            return;
        }
    ADD_FAILURE() << "no program is called " << name;
}

void PluginRig::send(const std::vector<Message>& messages)
{
    if (messages.empty())
        return;
    std::vector<vst2::VstMidiEvent> events(messages.size());
    std::vector<std::byte> bytes(sizeof(vst2::VstEvents) + messages.size() * sizeof(void*));
    auto* list = new (bytes.data()) vst2::VstEvents;
    list->numEvents = static_cast<std::int32_t>(messages.size());
    for (std::size_t i = 0; i < messages.size(); ++i) {
        events[i].deltaFrames = messages[i].frame;
        std::memcpy(events[i].midiData, messages[i].bytes.data(), 3);
        auto* event = reinterpret_cast<vst2::VstEvent*>(&events[i]);
        std::memcpy(bytes.data() + offsetof(vst2::VstEvents, events) + i * sizeof event, &event,
                    sizeof event);
    }
    dispatch(vst2::effProcessEvents, 0, 0, list);
}

void PluginRig::process(int frames, Stereo& sound)
{
    const std::size_t at = sound.frames();
    // Anything that the plug-in leaves unwritten shows.
    sound.left.resize(at + static_cast<std::size_t>(frames), 1e9f);
    sound.right.resize(at + static_cast<std::size_t>(frames), 1e9f);
    float* outputs[] = {sound.left.data() + at, sound.right.data() + at};
    effect_->processReplacing(effect_, nullptr, outputs, frames);
}

Stereo PluginRig::render(int frames, const std::vector<Message>& messages, int block)
{
    return render(frames, messages, std::vector<int>{block});
}

Stereo PluginRig::render(int frames, const std::vector<Message>& messages,
                         const std::vector<int>& blocks)
{
    Stereo sound;
    sound.left.reserve(static_cast<std::size_t>(frames));
    sound.right.reserve(static_cast<std::size_t>(frames));
    std::size_t next = 0;
    for (int start = 0; start < frames;) {
        const int length = std::min(blocks[next++ % blocks.size()], frames - start);
        send(messagesWithin(messages, start, start + length));
        process(length, sound);
        start += length;
    }
    return sound;
}

} // namespace tolm::test
