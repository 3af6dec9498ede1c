// Loading, naming and driving a plug-in. The answers to its questions stand in hostAnswers.cpp.

#include "host/Plugin.h"

#include "host/Failure.h"
#include "host/textNumbers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <dlfcn.h>

namespace tolm {
namespace {

using Entry = AEffect*(*)(HostCallback);

constexpr std::array kEntryNames = {"VSTPluginMain", "Main", "main"};
constexpr std::size_t kTextBytes = 1024; // far beyond the interface's limits, which few keep

Entry findEntry(void* library)
{
    for (const char* name : kEntryNames)
        if (void* symbol = dlsym(library, name))
            return reinterpret_cast<Entry>(symbol);
    return nullptr;
}

} // namespace

void Plugin::LibraryCloser::operator()(void* library) const
{
    dlclose(library);
}

Plugin::Plugin(const std::filesystem::path& file, double sampleRateHz, int blockFrames)
    : path_(std::filesystem::absolute(file).string()),
      directory_(std::filesystem::absolute(file).parent_path().string()),
      sampleRateHz_(sampleRateHz),
      blockFrames_(blockFrames)
{
    if (!std::filesystem::is_regular_file(path_))
        throw Failure("no such plug-in: " + quoted(file.string()));
    library_.reset(dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library_)
        throw Failure("cannot load the plug-in: " + std::string(dlerror()));
    const Entry entry = findEntry(library_.get());
    if (entry == nullptr)
        throw Failure(quoted(file.string()) + " is no VST 2.4 plug-in: it has no entry");
    effect_ = entry(&Plugin::callback);
    if (effect_ == nullptr || effect_->magic != kEffectMagic || effect_->dispatcher == nullptr)
        throw Failure(quoted(file.string()) + " gave no VST 2.4 plug-in");
    open();
    try {
        checkIsInstrument();
    } catch (const Failure&) {
        dispatch(effClose);
        throw;
    }
    prepareBuffers();
}

Plugin::~Plugin()
{
    if (running_) {
        dispatch(effStopProcess);
        dispatch(effMainsChanged, 0, 0);
    }
    dispatch(effClose);
}

void Plugin::open()
{
    effect_->user = this;
    dispatch(effOpen);
    dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRateHz_));
    dispatch(effSetBlockSize, 0, blockFrames_);
}

void Plugin::checkIsInstrument() const
{
    const bool synth = (effect_->flags & effFlagsIsSynth) != 0;
    if (!synth && dispatch(effGetPlugCategory) != kCategorySynth)
        throw Failure(quoted(path_) + " is an effect, not an instrument");
    if (effect_->numOutputs < 1)
        throw Failure(quoted(path_) + " has no audio output");
}

void Plugin::prepareBuffers()
{
    const auto inputs = static_cast<std::size_t>(std::max(effect_->numInputs, 0));
    const auto outputs = static_cast<std::size_t>(effect_->numOutputs);
    channels_.assign(inputs + outputs, std::vector<float>(static_cast<std::size_t>(blockFrames_)));
    for (std::size_t i = 0; i < channels_.size(); ++i)
        (i < inputs ? inputs_ : outputs_).push_back(channels_[i].data());
}

std::intptr_t Plugin::dispatch(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                               void* ptr, float opt) const
{
    return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}

std::string Plugin::text(std::int32_t opcode, std::int32_t index) const
{
    std::array<char, kTextBytes> buffer{};
    dispatch(opcode, index, 0, buffer.data());
    buffer.back() = '\0';
    return std::string(trimmed(buffer.data()));
}

std::string Plugin::name() const
{
    const std::string own = text(effGetEffectName);
    return own.empty() ? std::filesystem::path(path_).stem().string() : own;
}

ERect Plugin::editorSize() const
{
    ERect* size = nullptr;
    dispatch(effEditGetRect, 0, 0, &size);
    return size != nullptr ? *size : ERect{};
}

bool Plugin::openEditor(void* parent) const
{
    return dispatch(effEditOpen, 0, 0, parent) != 0;
}

std::vector<std::string> Plugin::programNames() const
{
    std::vector<std::string> names;
    std::array<char, kTextBytes> buffer{};
    for (int i = 0; i < programCount(); ++i) {
        buffer.fill('\0');
        if (dispatch(effGetProgramNameIndexed, i, -1, buffer.data()) == 0)
            break;
        buffer.back() = '\0';
        names.emplace_back(trimmed(buffer.data()));
    }
    if (static_cast<int>(names.size()) == programCount())
        return names;

    // Without the indexed question each program has to be visited.
    names.clear();
    const int before = currentProgram();
    for (int i = 0; i < programCount(); ++i) {
        selectProgram(i);
        names.push_back(text(effGetProgramName));
    }
    selectProgram(before);
    return names;
}

int Plugin::currentProgram() const
{
    return static_cast<int>(dispatch(effGetProgram));
}

void Plugin::selectProgram(int index) const
{
    dispatch(effSetProgram, 0, index);
}

void Plugin::loadChunk(ChunkKind kind, std::span<std::byte> chunk) const
{
    dispatch(effSetChunk, static_cast<int>(kind), static_cast<std::intptr_t>(chunk.size()),
             chunk.data());
}

std::vector<std::string> Plugin::parameterNames() const
{
    std::vector<std::string> names;
    for (int i = 0; i < parameterCount(); ++i)
        names.push_back(text(effGetParamName, i));
    return names;
}

std::string Plugin::parameterText(int index) const
{
    const std::string label = text(effGetParamLabel, index);
    return text(effGetParamDisplay, index) + (label.empty() ? "" : " " + label);
}

void Plugin::start()
{
    dispatch(effMainsChanged, 0, 1);
    dispatch(effStartProcess);
    running_ = true;
}

void Plugin::send(std::span<const FrameEvent> events, std::int64_t base)
{
    if (events.empty())
        return;
    midi_.assign(events.size(), {});
    eventList_.assign(offsetof(VstEvents, events) + events.size() * sizeof(VstEvent*), {});
    auto* list = reinterpret_cast<VstEvents*>(eventList_.data());
    list->numEvents = static_cast<std::int32_t>(events.size());
    for (std::size_t i = 0; i < events.size(); ++i) {
        midi_[i].type = kMidiType;
        midi_[i].byteSize = sizeof(VstMidiEvent);
        midi_[i].deltaFrames = static_cast<std::int32_t>(events[i].frame - base);
        std::memcpy(midi_[i].midiData, events[i].bytes.data(), events[i].bytes.size());
        const auto* address = &midi_[i];
        std::memcpy(eventList_.data() + offsetof(VstEvents, events) + i * sizeof address, &address,
                    sizeof address);
    }
    dispatch(effProcessEvents, 0, 0, list);
}

void Plugin::process(std::span<float> left, std::span<float> right)
{
    const auto frames = static_cast<std::int32_t>(left.size());
    if ((effect_->flags & effFlagsCanReplacing) != 0 && effect_->processReplacing != nullptr) {
        effect_->processReplacing(effect_, inputs_.data(), outputs_.data(), frames);
    } else if (effect_->process != nullptr) {
        for (float* output : outputs_)
            std::fill_n(output, left.size(), 0.0f);
        effect_->process(effect_, inputs_.data(), outputs_.data(), frames);
    }
    std::copy_n(outputs_.front(), left.size(), left.begin());
    std::copy_n(outputs_[outputs_.size() > 1 ? 1 : 0], right.size(), right.begin());
}

} // namespace tolm
