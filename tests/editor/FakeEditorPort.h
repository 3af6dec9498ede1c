#pragma once
// An offline plug-in that writes down what it was asked, one line per call, such as
// "setParameterQuiet 126 1". Questions without consequences are not written down.

#include "editor/OfflinePort.h"

#include <string>
#include <vector>

namespace tolm::test {

class FakeEditorPort final : public OfflinePort {
public:
    std::vector<std::string> calls;
    bool refusesSize = false;
    // The calls so far, which are forgotten.
    std::vector<std::string> takeCalls();

    void setParameter(int id, float value) override;
    void setParameterQuiet(int id, float value) override;
    void setParameterAutomated(int id, float value) override;
    void beginEdit(int id) override;
    void endEdit(int id) override;
    void reapplyProgram() override;
    void replaceCurrent(const ProgramRecord& record) override;
    void replaceProgram(int program, const ProgramRecord& record) override;
    void setProgram(int program) override;
    void setProgramName(std::string_view name) override;
    void setDescription(std::string_view text) override;
    void choosePreset(int position) override;
    void previousPreset() override;
    void nextPreset() override;
    void chooseBank(float value) override;
    void chooseCategory(int position) override;
    void rebuildPresetList() override;
    void fileDialog(int mode) override;
    void armLearn(int id) override;
    void forget(int id) override;
    void forgetAll() override;
    void playKey(int key, int velocity) override;
    void releaseKey(int key) override;
    void moveModWheel(int value) override;
    void softAllNotesOff() override;
    void panic() override;
    void resetArpStep() override;
    void setBendUpRange(int semitones) override;
    void setBendDownRange(int semitones) override;
    void updateHostDisplay() override;
    bool resizeHostWindow(int width, int height) override;
    void writeUserFile(std::string_view name, std::string_view text) override;

private:
    template <class... Parts>
    void note(const char* call, const Parts&... parts);
};

} // namespace tolm::test
