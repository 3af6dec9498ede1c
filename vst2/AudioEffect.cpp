#include "vst2/AudioEffect.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace tolm::vst2 {

namespace {

AudioEffect* objectOf(AEffect* effect)
{
    return effect != nullptr ? static_cast<AudioEffect*>(effect->object) : nullptr;
}

// The functions of the record. A host must never see an exception, so none leaves them.
std::intptr_t dispatchFromHost(AEffect* effect, std::int32_t opcode, std::int32_t index,
                               std::intptr_t value, void* pointer, float option) noexcept
{
    AudioEffect* object = objectOf(effect);
    if (object == nullptr)
        return 0;
    std::intptr_t answer = 0;
    try {
        answer = object->dispatcher({opcode, index, value, pointer, option});
    } catch (...) {
        answer = 0;
    }
    if (opcode == effClose) {
        effect->object = nullptr;
        delete object;
    }
    return answer;
}

void setParameterFromHost(AEffect* effect, std::int32_t index, float value) noexcept
{
    try {
        if (AudioEffect* object = objectOf(effect))
            object->setParameter(index, value);
    } catch (...) {
    }
}

float getParameterFromHost(AEffect* effect, std::int32_t index) noexcept
{
    try {
        AudioEffect* object = objectOf(effect);
        return object != nullptr ? object->getParameter(index) : 0.0f;
    } catch (...) {
        return 0.0f;
    }
}

void processFromHost(AEffect* effect, float** inputs, float** outputs, std::int32_t frames) noexcept
{
    try {
        if (AudioEffect* object = objectOf(effect))
            object->processReplacing(inputs, outputs, frames);
    } catch (...) {
    }
}

// Neither accumulating nor double-precision processing is offered; a host that calls them anyway
// finds its buffers unchanged.
void accumulateFromHost(AEffect*, float**, float**, std::int32_t) noexcept {}
void processDoubleFromHost(AEffect*, double**, double**, std::int32_t) noexcept {}

using Handler = std::intptr_t (*)(AudioEffect& effect, const Request& request);

struct OpcodeRow {
    std::int32_t opcode;
    Handler handle;
};

std::intptr_t selectProgram(AudioEffect& effect, const Request& request)
{
    if (request.value >= 0 && request.value < effect.effect()->numPrograms)
        effect.setProgram(static_cast<std::int32_t>(request.value));
    return 0;
}

std::intptr_t setProgramName(AudioEffect& effect, const Request& request)
{
    if (request.pointer != nullptr)
        effect.setProgramName(static_cast<const char*>(request.pointer));
    return 0;
}

std::intptr_t getProgramName(AudioEffect& effect, const Request& request)
{
    if (request.pointer != nullptr)
        effect.getProgramName(static_cast<char*>(request.pointer));
    return 0;
}

template <void (AudioEffect::*getText)(std::int32_t, char*)>
std::intptr_t getParameterText(AudioEffect& effect, const Request& request)
{
    if (request.pointer != nullptr)
        (effect.*getText)(request.index, static_cast<char*>(request.pointer));
    return 0;
}

std::intptr_t setBlockSize(AudioEffect& effect, const Request& request)
{
    constexpr std::intptr_t kMost = std::numeric_limits<std::int32_t>::max();
    effect.setBlockSize(
        static_cast<std::int32_t>(std::clamp<std::intptr_t>(request.value, 0, kMost)));
    return 0;
}

std::intptr_t changeMains(AudioEffect& effect, const Request& request)
{
    if (request.value != 0)
        effect.resume();
    else
        effect.suspend();
    return 0;
}

std::intptr_t getEditorRect(AudioEffect& effect, const Request& request)
{
    if (effect.editor() == nullptr || request.pointer == nullptr)
        return 0;
    ERect* rect = effect.editor()->getRect();
    *static_cast<ERect**>(request.pointer) = rect;
    return rect != nullptr ? 1 : 0;
}

std::intptr_t openEditor(AudioEffect& effect, const Request& request)
{
    return effect.editor() != nullptr && effect.editor()->open(request.pointer) ? 1 : 0;
}

std::intptr_t closeEditor(AudioEffect& effect, const Request&)
{
    if (effect.editor() != nullptr)
        effect.editor()->close();
    return 0;
}

std::intptr_t idleEditor(AudioEffect& effect, const Request&)
{
    if (effect.editor() != nullptr)
        effect.editor()->idle();
    return 0;
}

std::intptr_t getChunk(AudioEffect& effect, const Request& request)
{
    if (request.pointer == nullptr)
        return 0;
    return effect.getChunk(static_cast<void**>(request.pointer), request.index != 0);
}

std::intptr_t setChunk(AudioEffect& effect, const Request& request)
{
    constexpr std::intptr_t kMost = std::numeric_limits<std::int32_t>::max();
    const bool usable = request.pointer != nullptr && request.value >= 0 && request.value <= kMost;
    return effect.setChunk(request.pointer,
                           usable ? static_cast<std::int32_t>(request.value) : 0,
                           request.index != 0);
}

// clang-format off
constexpr OpcodeRow kOpcodes[] = {
    {effOpen, [](AudioEffect& e, const Request&) -> std::intptr_t { e.open(); return 0; }},
    {effClose, [](AudioEffect& e, const Request&) -> std::intptr_t { e.close(); return 0; }},
    {effSetProgram, selectProgram},
    {effGetProgram, [](AudioEffect& e, const Request&) -> std::intptr_t { return e.getProgram(); }},
    {effSetProgramName, setProgramName},
    {effGetProgramName, getProgramName},
    {effGetParamLabel, getParameterText<&AudioEffect::getParameterLabel>},
    {effGetParamDisplay, getParameterText<&AudioEffect::getParameterDisplay>},
    {effGetParamName, getParameterText<&AudioEffect::getParameterName>},
    {effSetSampleRate, [](AudioEffect& e, const Request& r) -> std::intptr_t { e.setSampleRate(r.option); return 0; }},
    {effSetBlockSize, setBlockSize},
    {effMainsChanged, changeMains},
    {effEditGetRect, getEditorRect},
    {effEditOpen, openEditor},
    {effEditClose, closeEditor},
    {effEditIdle, idleEditor},
    {effIdentify, [](AudioEffect&, const Request&) -> std::intptr_t { return kIdentifyAnswer; }},
    {effGetChunk, getChunk},
    {effSetChunk, setChunk},
};
// clang-format on

} // namespace

void copyText(void* to, std::size_t size, std::string_view text)
{
    if (to == nullptr || size == 0)
        return;
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(to, text.data(), length);
    static_cast<char*>(to)[length] = '\0';
}

AudioEffect::AudioEffect(HostCallback host, std::int32_t programs, std::int32_t parameters)
    : host_(host)
{
    effect_.dispatcher = dispatchFromHost;
    effect_.process = accumulateFromHost;
    effect_.setParameter = setParameterFromHost;
    effect_.getParameter = getParameterFromHost;
    effect_.processReplacing = processFromHost;
    effect_.processDoubleReplacing = processDoubleFromHost;
    effect_.numPrograms = programs;
    effect_.numParams = parameters;
    effect_.object = this;
    effect_.version = 1;
}

AudioEffect::~AudioEffect() = default;

std::intptr_t AudioEffect::dispatcher(const Request& request)
{
    for (const OpcodeRow& row : kOpcodes)
        if (row.opcode == request.opcode)
            return row.handle(*this, request);
    return 0;
}

void AudioEffect::setParameterAutomated(std::int32_t index, float value)
{
    setParameter(index, value);
    callHost(audioMasterAutomate, index, 0, nullptr, value);
}

std::intptr_t AudioEffect::callHost(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                    void* pointer, float option)
{
    return host_ != nullptr ? host_(&effect_, opcode, index, value, pointer, option) : 0;
}

void AudioEffect::setFlag(EffectFlag flag, bool on)
{
    effect_.flags = on ? effect_.flags | flag : effect_.flags & ~flag;
}

void AudioEffect::setEditor(std::unique_ptr<EffectEditor> editor)
{
    editor_ = std::move(editor);
    setFlag(effFlagsHasEditor, editor_ != nullptr);
}

} // namespace tolm::vst2
