#pragma once
// A plug-in without sound, host or files: programs, browser and settings in memory. Pictures of the
// editor are made of it, and tests build on it. Everything happens at once and on one thread.

#include "patch/programStore.h"
#include "plugin/EditorPort.h"

#include <map>

namespace tolm {

class OfflinePort : public EditorPort {
public:
    OfflinePort();

    float value(int id) const override;
    void setParameter(int id, float value) override;
    void setParameterQuiet(int id, float value) override;
    void setParameterAutomated(int id, float value) override;
    void beginEdit(int) override {}
    void endEdit(int) override {}
    void reapplyProgram() override {}
    EditorNews takeNews() override;
    EditorMeters meters() override { return shownMeters; }

    int currentProgram() const override { return program_; }
    ProgramRecord record(int program) const override;
    void replaceCurrent(const ProgramRecord& record) override;
    void replaceProgram(int program, const ProgramRecord& record) override;
    const ProgramRecord& factoryRecord(int program) const override;
    const ProgramRecord& initialRecord() const override;
    void setProgram(int program) override;
    void setProgramName(std::string_view name) override;
    void setDescription(std::string_view text) override;
    PresetBrowser browser() const override { return browser_; }
    std::string presetLabel(int position) const override;
    int currentBank() const override { return bank_; }
    void choosePreset(int position) override;
    void previousPreset() override;
    void nextPreset() override;
    void chooseBank(float value) override;
    void chooseCategory(int position) override;
    void rebuildPresetList() override;
    void fileDialog(int) override {}
    void useFileSelector(FileSelector*) override {}

    void armLearn(int id) override { learning_ = id; }
    void forget(int id) override;
    void forgetAll() override { controllers.clear(); }
    std::optional<int> learningId() const override { return learning_; }
    std::vector<int> controllersOf(int id) const override;

    void playKey(int key, int velocity) override;
    void releaseKey(int key) override;
    void moveModWheel(int value) override;
    void softAllNotesOff() override {}
    void panic() override { shownMeters.keys.reset(); }
    void resetArpStep() override {}
    int oscillatorWave(int oscillator) const override;
    int bendUpRange() const override { return bendUp_; }
    int bendDownRange() const override { return bendDown_; }
    void setBendUpRange(int semitones) override { bendUp_ = semitones; }
    void setBendDownRange(int semitones) override { bendDown_ = semitones; }

    int& rememberedMatrixSource() override { return matrixSource_; }
    int& rememberedVoiceMask() override { return voiceMask_; }
    std::optional<EditorNotice> takeNotice() override;

    void updateHostDisplay() override {}
    bool resizeHostWindow(int, int) override { return true; }
    std::optional<std::string> readUserFile(std::string_view name) const override;
    void writeUserFile(std::string_view name, std::string_view text) override;

    // What the port is to show and say next.
    EditorMeters shownMeters;
    EditorNews news;
    std::optional<EditorNotice> notice;
    std::map<std::string, std::string, std::less<>> userFiles;
    std::map<int, int> controllers; // parameter by controller

private:
    void select(std::optional<int> program);
    void store(int id, float value);

    ProgramStore programs_;
    const ProgramStore factory_;
    PresetBrowser browser_;
    std::array<float, kParameterCount - kStoredParameterCount> editorValues_{};
    int program_ = 0;
    int bank_ = 0;
    int bendUp_ = 2;
    int bendDown_ = 2;
    int matrixSource_ = 13; // LFO 1
    int voiceMask_ = 0;
    std::optional<int> learning_;
};

} // namespace tolm
