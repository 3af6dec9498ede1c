#include "vst2/AudioEffectX.h"

#include <cstring>

namespace tolm::vst2 {

namespace {

using Handler = std::intptr_t (*)(AudioEffectX& effect, const Request& request);

struct OpcodeRow {
    std::int32_t opcode;
    Handler handle;
};

template <bool (AudioEffectX::*text)(char*)>
std::intptr_t getText(AudioEffectX& effect, const Request& request)
{
    return request.pointer != nullptr && (effect.*text)(static_cast<char*>(request.pointer));
}

std::intptr_t getIndexedName(AudioEffectX& effect, const Request& request)
{
    if (request.pointer == nullptr)
        return 0;
    const auto category = static_cast<std::int32_t>(request.value);
    return effect.getProgramNameIndexed(category, request.index,
                                        static_cast<char*>(request.pointer));
}

std::intptr_t getOutputPin(AudioEffectX& effect, const Request& request)
{
    if (request.pointer == nullptr)
        return 0;
    return effect.getOutputProperties(request.index,
                                      static_cast<VstPinProperties*>(request.pointer));
}

std::intptr_t canDo(AudioEffectX& effect, const Request& request)
{
    const char* text = static_cast<const char*>(request.pointer);
    return effect.canDo(text != nullptr ? std::string_view(text) : std::string_view());
}

std::intptr_t setKnobMode(AudioEffectX& effect, const Request& request)
{
    if (effect.editor() == nullptr)
        return 0;
    return effect.editor()->setKnobMode(static_cast<std::int32_t>(request.value));
}

// clang-format off
constexpr OpcodeRow kOpcodes[] = {
    {effProcessEvents, [](AudioEffectX& e, const Request& r) -> std::intptr_t { return e.processEvents(static_cast<const VstEvents*>(r.pointer)); }},
    {effCanBeAutomated, [](AudioEffectX& e, const Request& r) -> std::intptr_t { return e.canParameterBeAutomated(r.index); }},
    {effGetProgramNameIndexed, getIndexedName},
    {effGetOutputProperties, getOutputPin},
    {effGetPlugCategory, [](AudioEffectX& e, const Request&) -> std::intptr_t { return e.getPlugCategory(); }},
    {effGetEffectName, getText<&AudioEffectX::getEffectName>},
    {effGetVendorString, getText<&AudioEffectX::getVendorString>},
    {effGetProductString, getText<&AudioEffectX::getProductString>},
    {effGetVendorVersion, [](AudioEffectX& e, const Request&) -> std::intptr_t { return e.getVendorVersion(); }},
    {effVendorSpecific, [](AudioEffectX& e, const Request& r) -> std::intptr_t { return e.vendorSpecific(r.index, r.value, r.pointer, r.option); }},
    {effCanDo, canDo},
    {effGetVstVersion, [](AudioEffectX&, const Request&) -> std::intptr_t { return kInterfaceVersion; }},
    {effSetEditKnobMode, setKnobMode},
    {effGetCurrentMidiProgram, [](AudioEffectX& e, const Request&) -> std::intptr_t { return e.getCurrentMidiProgram(); }},
};
// clang-format on

} // namespace

std::intptr_t AudioEffectX::dispatcher(const Request& request)
{
    for (const OpcodeRow& row : kOpcodes)
        if (row.opcode == request.opcode)
            return row.handle(*this, request);
    return AudioEffect::dispatcher(request);
}

void AudioEffectX::wantMidi()
{
    callHost(audioMasterWantMidi, 0, 1);
}

const VstTimeInfo* AudioEffectX::timeInfo(std::int32_t wantedFlags)
{
    const std::intptr_t answer = callHost(audioMasterGetTime, 0, wantedFlags);
    return reinterpret_cast<const VstTimeInfo*>(answer);
}

void AudioEffectX::sendEventsToHost(VstEvents& events)
{
    callHost(audioMasterProcessEvents, 0, 0, &events);
}

AudioEffectX::HostText AudioEffectX::hostVendorString()
{
    HostText text;
    callHost(audioMasterGetVendorString, 0, 0, text.text);
    return text;
}

std::string_view AudioEffectX::HostText::view() const
{
    return {text, strnlen(text, sizeof text)};
}

} // namespace tolm::vst2
