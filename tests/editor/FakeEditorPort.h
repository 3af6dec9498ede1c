#pragma once
// An offline plug-in that writes down what it was asked, one line per call, such as
// "setParameterQuiet 126 1". What can be asked for afterwards, such as the chosen program, is not
// written down.

#include "editor/OfflinePort.h"

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace tolm::test {

class FakeEditorPort final : public OfflinePort {
public:
    std::vector<std::string> calls;
    bool refusesSize = false;
    // The calls so far, which are forgotten.
    std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

    void setParameter(int id, float value) override
    {
        note("setParameter", id, value);
        OfflinePort::setParameter(id, value);
    }
    void setParameterQuiet(int id, float value) override
    {
        note("setParameterQuiet", id, value);
        OfflinePort::setParameterQuiet(id, value);
    }
    void setParameterAutomated(int id, float value) override
    {
        note("setParameterAutomated", id, value);
        OfflinePort::setParameterAutomated(id, value);
    }
    void beginEdit(int id) override { note("beginEdit", id); }
    void endEdit(int id) override { note("endEdit", id); }
    void reapplyProgram() override { note("reapplyProgram"); }
    void fileDialog(int mode) override { note("fileDialog", mode); }
    void armLearn(int id) override { note("armLearn", id); }
    void forget(int id) override { note("forget", id); }
    void forgetAll() override { note("forgetAll"); }
    void playKey(int key, int velocity) override
    {
        note("playKey", key, velocity);
        OfflinePort::playKey(key, velocity);
    }
    void releaseKey(int key) override
    {
        note("releaseKey", key);
        OfflinePort::releaseKey(key);
    }
    void softAllNotesOff() override { note("softAllNotesOff"); }
    void panic() override { note("panic"); }
    void resetArpStep() override { note("resetArpStep"); }
    void updateHostDisplay() override { note("updateHostDisplay"); }
    bool resizeHostWindow(int width, int height) override
    {
        note("resizeHostWindow", width, height);
        return !refusesSize;
    }

private:
    template <class... Parts>
    void note(const char* call, const Parts&... parts)
    {
        std::ostringstream line;
        line << call;
        ((line << ' ' << parts), ...);
        calls.push_back(line.str());
    }
};

} // namespace tolm::test
