#include "FakeEditorPort.h"

#include <sstream>
#include <utility>

namespace tolm::test {

template <class... Parts>
void FakeEditorPort::note(const char* call, const Parts&... parts)
{
    std::ostringstream line;
    line << call;
    ((line << ' ' << parts), ...);
    calls.push_back(line.str());
}

std::vector<std::string> FakeEditorPort::takeCalls()
{
    return std::exchange(calls, {});
}

void FakeEditorPort::setParameter(int id, float value)
{
    note("setParameter", id, value);
    OfflinePort::setParameter(id, value);
}

void FakeEditorPort::setParameterQuiet(int id, float value)
{
    note("setParameterQuiet", id, value);
    OfflinePort::setParameterQuiet(id, value);
}

void FakeEditorPort::setParameterAutomated(int id, float value)
{
    note("setParameterAutomated", id, value);
    OfflinePort::setParameterAutomated(id, value);
}

void FakeEditorPort::beginEdit(int id)
{
    note("beginEdit", id);
}

void FakeEditorPort::endEdit(int id)
{
    note("endEdit", id);
}

void FakeEditorPort::reapplyProgram()
{
    note("reapplyProgram");
}

void FakeEditorPort::replaceCurrent(const ProgramRecord& record)
{
    note("replaceCurrent", record.name.data());
    OfflinePort::replaceCurrent(record);
}

void FakeEditorPort::replaceProgram(int program, const ProgramRecord& record)
{
    note("replaceProgram", program, record.name.data());
    OfflinePort::replaceProgram(program, record);
}

void FakeEditorPort::setProgram(int program)
{
    note("setProgram", program);
    OfflinePort::setProgram(program);
}

void FakeEditorPort::setProgramName(std::string_view name)
{
    note("setProgramName", name);
    OfflinePort::setProgramName(name);
}

void FakeEditorPort::setDescription(std::string_view text)
{
    note("setDescription", text);
    OfflinePort::setDescription(text);
}

void FakeEditorPort::choosePreset(int position)
{
    note("choosePreset", position);
    OfflinePort::choosePreset(position);
}

void FakeEditorPort::previousPreset()
{
    note("previousPreset");
    OfflinePort::previousPreset();
}

void FakeEditorPort::nextPreset()
{
    note("nextPreset");
    OfflinePort::nextPreset();
}

void FakeEditorPort::chooseBank(float value)
{
    note("chooseBank", value);
    OfflinePort::chooseBank(value);
}

void FakeEditorPort::chooseCategory(int position)
{
    note("chooseCategory", position);
    OfflinePort::chooseCategory(position);
}

void FakeEditorPort::rebuildPresetList()
{
    note("rebuildPresetList");
    OfflinePort::rebuildPresetList();
}

void FakeEditorPort::fileDialog(int mode)
{
    note("fileDialog", mode);
}

void FakeEditorPort::armLearn(int id)
{
    note("armLearn", id);
    OfflinePort::armLearn(id);
}

void FakeEditorPort::forget(int id)
{
    note("forget", id);
    OfflinePort::forget(id);
}

void FakeEditorPort::forgetAll()
{
    note("forgetAll");
    OfflinePort::forgetAll();
}

void FakeEditorPort::playKey(int key, int velocity)
{
    note("playKey", key, velocity);
    OfflinePort::playKey(key, velocity);
}

void FakeEditorPort::releaseKey(int key)
{
    note("releaseKey", key);
    OfflinePort::releaseKey(key);
}

void FakeEditorPort::moveModWheel(int value)
{
    note("moveModWheel", value);
    OfflinePort::moveModWheel(value);
}

void FakeEditorPort::softAllNotesOff()
{
    note("softAllNotesOff");
}

void FakeEditorPort::panic()
{
    note("panic");
    OfflinePort::panic();
}

void FakeEditorPort::resetArpStep()
{
    note("resetArpStep");
}

void FakeEditorPort::setBendUpRange(int semitones)
{
    note("setBendUpRange", semitones);
    OfflinePort::setBendUpRange(semitones);
}

void FakeEditorPort::setBendDownRange(int semitones)
{
    note("setBendDownRange", semitones);
    OfflinePort::setBendDownRange(semitones);
}

void FakeEditorPort::updateHostDisplay()
{
    note("updateHostDisplay");
}

bool FakeEditorPort::resizeHostWindow(int width, int height)
{
    note("resizeHostWindow", width, height);
    return !refusesSize && OfflinePort::resizeHostWindow(width, height);
}

void FakeEditorPort::writeUserFile(std::string_view name, std::string_view text)
{
    note("writeUserFile", name);
    OfflinePort::writeUserFile(name, text);
}

} // namespace tolm::test
