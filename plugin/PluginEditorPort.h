#pragma once
// The editor's port into a running synth, and the ear of its window: what changes on any thread is
// noted in atomic words, which the user interface collects. Everything else is called on the
// user-interface thread. Lives as long as the synth, whether or not a window is open.

#include "plugin/EditorHooks.h"
#include "plugin/EditorPort.h"
#include "plugin/platform.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

namespace tolm {

class PresetLibrary;
class ProgramStore;
class SynthCore;
class VstSynth;

class PluginEditorPort final : public EditorPort, public EditorHooks {
public:
    // `files` may be null: then nothing is kept for the user.
    PluginEditorPort(VstSynth& synth, UserFiles* files);
    ~PluginEditorPort() override;

    float value(int id) const override;
    void setParameter(int id, float value) override;
    void setParameterQuiet(int id, float value) override;
    void setParameterAutomated(int id, float value) override;
    void beginEdit(int id) override;
    void endEdit(int id) override;
    void reapplyProgram() override;
    EditorNews takeNews() override;
    EditorMeters meters() override;

    int currentProgram() const override;
    ProgramRecord record(int program) const override;
    void replaceCurrent(const ProgramRecord& record) override;
    void replaceProgram(int program, const ProgramRecord& record) override;
    const ProgramRecord& factoryRecord(int program) const override;
    const ProgramRecord& initialRecord() const override;
    void setProgram(int program) override;
    void setProgramName(std::string_view name) override;
    void setDescription(std::string_view text) override;
    PresetBrowser browser() const override;
    std::string presetLabel(int position) const override;
    int currentBank() const override;
    void choosePreset(int position) override;
    void previousPreset() override;
    void nextPreset() override;
    void chooseBank(float value) override;
    void chooseCategory(int position) override;
    void rebuildPresetList() override;
    void fileDialog(int mode) override;
    void useFileSelector(FileSelector* selector) override;

    void armLearn(int id) override;
    void forget(int id) override;
    void forgetAll() override;
    std::optional<int> learningId() const override;
    std::vector<int> controllersOf(int id) const override;

    void playKey(int key, int velocity) override;
    void releaseKey(int key) override;
    void moveModWheel(int value) override;
    void softAllNotesOff() override;
    void panic() override;
    void resetArpStep() override;
    int oscillatorWave(int oscillator) const override;
    int bendUpRange() const override;
    int bendDownRange() const override;
    void setBendUpRange(int semitones) override;
    void setBendDownRange(int semitones) override;

    int& rememberedMatrixSource() override;
    int& rememberedVoiceMask() override;
    std::optional<EditorNotice> takeNotice() override;

    void updateHostDisplay() override;
    bool resizeHostWindow(int width, int height) override;
    std::optional<std::string> readUserFile(std::string_view name) const override;
    void writeUserFile(std::string_view name, std::string_view text) override;

    // EditorHooks: any thread, but for show.
    void parameterChanged(int id, float value) override;
    void keyShown(int, bool) override {}
    void keysChanged() override {}
    void noteActivity() override {}
    void programChanged(int program) override;
    void programNamesChanged() override;
    void everythingChanged() override;
    void mouseWheelMoved(std::intptr_t value, float distance) override;
    bool show(std::string_view title, std::string_view text) override;

private:
    // What is not about a single parameter.
    enum Happening : unsigned { programNews = 1, presetListNews = 2, everythingNews = 4 };

    SynthCore& core() const;
    PresetLibrary& presets() const;
    const ProgramStore& factory() const;
    void keepEditorValue(int id, float value);
    void hearEffectOrder(int id, float value);
    void note(Happening happening);

    VstSynth& synth_;
    UserFiles* files_;
    std::array<std::atomic<std::uint64_t>, (kTagCount + 63) / 64> changed_{};
    std::atomic<unsigned> happened_{0};
    std::atomic<float> wheelDistance_{0.0f};
    std::array<float, kParameterCount - kStoredParameterCount> editorValues_{};
    mutable std::unique_ptr<ProgramStore> factory_; // made when first asked for
    std::deque<EditorNotice> notices_;
    bool windowOpen_ = false;
    bool wasLearning_ = false;
};

} // namespace tolm
