#pragma once
// The later half of the interface: events, pins, names, capabilities, and the questions that a
// plug-in asks its host.

#include "vst2/AudioEffect.h"

namespace tolm::vst2 {

class AudioEffectX : public AudioEffect {
public:
    using AudioEffect::AudioEffect;

    std::intptr_t dispatcher(const Request& request) override;

    virtual std::int32_t processEvents(const VstEvents*) { return 0; }
    virtual bool canParameterBeAutomated(std::int32_t) const { return true; }
    virtual bool getProgramNameIndexed(std::int32_t /*category*/, std::int32_t, char*)
    {
        return false;
    }
    // Fields are written one by one: the record may end before its `future` field.
    virtual bool getOutputProperties(std::int32_t, VstPinProperties*) { return false; }
    virtual std::int32_t getPlugCategory() const { return 0; }
    // Texts go into buffers of kEffectNameSize and kVendorStringSize bytes.
    virtual bool getEffectName(char*) { return false; }
    virtual bool getVendorString(char*) { return false; }
    virtual bool getProductString(char*) { return false; }
    virtual std::int32_t getVendorVersion() const { return 0; }
    virtual std::intptr_t vendorSpecific(std::int32_t, std::intptr_t, void*, float) { return 0; }
    virtual std::int32_t canDo(std::string_view) const { return 0; }
    virtual std::int32_t getCurrentMidiProgram() const { return -1; }

protected:
    void wantMidi();
    // Null when the host has none; valid until the host's callback is used again.
    const VstTimeInfo* timeInfo(std::int32_t wantedFlags);
    void sendEventsToHost(VstEvents& events);
    // The host's name for its maker.
    struct HostText {
        char text[256] = {}; // more than the interface names: some hosts write longer texts
        std::string_view view() const;
    };
    HostText hostVendorString();
};

} // namespace tolm::vst2
