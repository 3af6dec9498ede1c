// What the shared library exports.

#include "plugin/VstSynth.h"

#include <memory>

#if defined(_WIN32)
#define TOLM_EXPORT extern "C" __declspec(dllexport)
#else
#define TOLM_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

// Hosts of any age are welcome; only one that tells no version is none.
tolm::vst2::AEffect* createSynth(tolm::vst2::HostCallback host) noexcept
{
    try {
        if (host == nullptr || host(nullptr, tolm::vst2::audioMasterVersion, 0, 0, nullptr, 0) == 0)
            return nullptr;
        // The record's object is deleted at effClose.
        return (new tolm::VstSynth(host, tolm::systemSettingsStore(), tolm::systemMessageBox(),
                                   tolm::systemUserFiles()))
            ->effect();
    } catch (...) {
        return nullptr;
    }
}

} // namespace

TOLM_EXPORT tolm::vst2::AEffect* VSTPluginMain(tolm::vst2::HostCallback host)
{
    return createSynth(host);
}

TOLM_EXPORT tolm::vst2::AEffect* Main(tolm::vst2::HostCallback host)
{
    return createSynth(host);
}
