#pragma once
// The plug-in as a host sees it: identity, texts, programs, parameters, and the audio calls, which
// it hands to the core. The audio thread calls processEvents and processReplacing, other threads
// everything else; both call setParameter.

#include "plugin/Notices.h"
#include "plugin/PresetLibrary.h"
#include "plugin/SynthCore.h"
#include "plugin/platform.h"
#include "vst2/AudioEffectX.h"

#include <array>
#include <memory>

namespace tolm {

class EditorPort;
class PluginEditorPort;

class VstSynth : public vst2::AudioEffectX, private TempoSource {
public:
    // Without `files` the editor keeps nothing for the user.
    VstSynth(vst2::HostCallback host, std::unique_ptr<SettingsStore> settings,
             std::unique_ptr<MessageBox> messages, std::unique_ptr<UserFiles> files = nullptr);
    ~VstSynth() override;

    SynthCore& core() { return core_; }
    PresetLibrary& presets() { return presets_; }
    Notices& notices() { return notices_; }
    // For the window, which lives shorter than the synth.
    EditorPort& editorPort();

    void open() override;
    void suspend() override;
    void resume() override;
    void setSampleRate(float hz) override;
    void setBlockSize(std::int32_t frames) override;
    void processReplacing(float** inputs, float** outputs, std::int32_t frames) override;
    void setParameter(std::int32_t id, float value) override;
    float getParameter(std::int32_t id) const override;
    void setParameterAutomated(std::int32_t id, float value) override;
    void setProgram(std::int32_t program) override;
    std::int32_t getProgram() const override;
    void setProgramName(const char* name) override;
    void getProgramName(char* text) override;
    void getParameterLabel(std::int32_t id, char* text) override;
    // Leaves the buffer as it is for the parameters that only the editor shows.
    void getParameterDisplay(std::int32_t id, char* text) override;
    void getParameterName(std::int32_t id, char* text) override;
    bool canParameterBeAutomated(std::int32_t) const override { return true; }
    bool getProgramNameIndexed(std::int32_t category, std::int32_t program, char* text) override;
    bool getOutputProperties(std::int32_t pin, vst2::VstPinProperties* properties) override;
    std::int32_t getPlugCategory() const override { return vst2::kCategorySynth; }
    // The current bank, also when a single program is asked for. The buffer stays valid until the
    // next call. Always 235560 bytes, or 0 when there is no memory for them.
    std::int32_t getChunk(void** data, bool singleProgram) override;
    // Answers 235560 in every case.
    std::int32_t setChunk(const void* data, std::int32_t bytes, bool singleProgram) override;
    std::int32_t processEvents(const vst2::VstEvents* events) override;
    bool getEffectName(char* text) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    std::int32_t getVendorVersion() const override { return 1; }
    std::intptr_t vendorSpecific(std::int32_t index, std::intptr_t value, void* pointer,
                                 float option) override;
    std::int32_t canDo(std::string_view what) const override;

    // The accumulating twin of processReplacing. The host's accumulating entry does not lead here.
    virtual void process(float** inputs, float** outputs, std::int32_t frames);
    // A change that the editor made itself and needs no echo of.
    virtual void setParameterQuiet(std::int32_t id, float value);
    // The host's record of a gesture on a parameter; ids that it does not know are ignored.
    // User-interface thread, like the next two.
    void beginEdit(std::int32_t id);
    void endEdit(std::int32_t id);
    void updateHostDisplay();
    // Device pixels. False when the host does not.
    bool resizeHostWindow(std::int32_t width, std::int32_t height);
    // Copies the current program over another; false when there is no such program.
    virtual bool copyProgram(std::int32_t destination);

    // Makers of hosts, found out at open and kept. Only the own host changes anything so far; the
    // editor asks for the first two.
    struct HostKind {
        bool own = false;
        bool cockosOrZynewave = false;
        bool imageLineOrCakewalk = false;
        bool steinberg = false;
    };
    const HostKind& hostKind() const { return hostKind_; }

    // What the editor's matrix menus offer first; user-interface thread only.
    int rememberedMatrixSource = 13; // LFO 1
    int rememberedVoiceMask = 0;

private:
    double beatsPerMinute() override;
    void sendControllerFor(std::int32_t id, float value);
    void replaceTuning(const void* bytes);

    std::unique_ptr<SettingsStore> settings_;
    std::unique_ptr<MessageBox> messages_;
    std::unique_ptr<UserFiles> files_;
    SynthCore core_;
    Notices notices_;
    PresetLibrary presets_;
    std::unique_ptr<PluginEditorPort> port_;
    HostKind hostKind_;
    std::int32_t numAutomatable_ = kHostParameterCount; // ids below are reported to the host
};

} // namespace tolm
