// What the host answers when a plug-in asks or tells it something.

#include "host/Plugin.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>

namespace tolm {
namespace {

constexpr std::intptr_t kHostVersion = 2400;
constexpr std::intptr_t kHostVendorVersion = 1000;
constexpr std::intptr_t kLevelUser = 1;
constexpr std::intptr_t kLevelOffline = 4;
constexpr std::intptr_t kAutomationOff = 1;
constexpr std::intptr_t kEnglish = 1;
constexpr std::size_t kVendorBytes = 64;

constexpr std::array<std::string_view, 3> kAbilities = {"sendVstEvents", "sendVstMidiEvent",
                                                        "sendVstTimeInfo"};

std::intptr_t putText(void* target, std::string_view text)
{
    if (target == nullptr)
        return 0;
    char* out = static_cast<char*>(target);
    const std::size_t length = std::min(text.size(), kVendorBytes - 1);
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
    return 1;
}

std::intptr_t canDo(const void* ability)
{
    const auto asked = ability == nullptr ? "" : static_cast<const char*>(ability);
    return std::find(kAbilities.begin(), kAbilities.end(), asked) != kAbilities.end() ? 1 : 0;
}

} // namespace

std::intptr_t Plugin::callback(AEffect* effect, std::int32_t opcode,
                                             std::int32_t index, std::intptr_t value, void* ptr,
                                             float)
{
    // Instances ask before they are known: while their entry runs only general questions count.
    if (effect != nullptr && effect->user != nullptr)
        return static_cast<Plugin*>(effect->user)->answer(opcode, index, value, ptr);
    switch (opcode) {
    case audioMasterVersion:
        return kHostVersion;
    case audioMasterGetVendorString:
        return putText(ptr, "Tolm");
    case audioMasterGetProductString:
        return putText(ptr, "tolm-render");
    case audioMasterGetVendorVersion:
        return kHostVendorVersion;
    case audioMasterCanDo:
        return canDo(ptr);
    case audioMasterGetLanguage:
        return kEnglish;
    default:
        return 0;
    }
}

std::intptr_t Plugin::answer(std::int32_t opcode, std::int32_t index, std::intptr_t value,
                             void* ptr)
{
    switch (opcode) {
    case audioMasterCurrentId:
        return effect_->uniqueId;
    case audioMasterWantMidi:
    case audioMasterAutomate:
    case audioMasterBeginEdit:
    case audioMasterEndEdit:
    case audioMasterUpdateDisplay:
        return 1;
    case audioMasterGetTime:
        return reinterpret_cast<std::intptr_t>(&time_);
    case audioMasterGetSampleRate:
        return std::lround(sampleRateHz_);
    case audioMasterGetBlockSize:
        return blockFrames_;
    case audioMasterGetCurrentProcessLevel:
        return running_ ? kLevelOffline : kLevelUser;
    case audioMasterGetAutomationState:
        return kAutomationOff;
    case audioMasterCanDo:
        if (ptr != nullptr && std::strcmp(static_cast<const char*>(ptr), "sizeWindow") == 0)
            return sizeWindow_ ? 1 : 0;
        return canDo(ptr);
    case audioMasterSizeWindow:
        return sizeWindow_ && sizeWindow_(index, static_cast<int>(value)) ? 1 : 0;
    case audioMasterGetDirectory:
        return reinterpret_cast<std::intptr_t>(directory_.data());
    default:
        return callback(nullptr, opcode, index, 0, ptr, 0.0f);
    }
}

} // namespace tolm
