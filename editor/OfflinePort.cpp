#include "editor/OfflinePort.h"

#include "patch/chunkRecord.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tolm {

namespace {

bool isProgram(int program)
{
    return program >= 0 && program < kProgramCount;
}

bool isKey(int key)
{
    return key >= 0 && key < kKeyCount;
}

} // namespace

OfflinePort::OfflinePort()
{
    editorValues_[kPitchWheel - kStoredParameterCount] = 0.5f;
    rebuildPresetList();
    news = {};
}

float OfflinePort::value(int id) const
{
    if (id < 0 || id >= kParameterCount)
        return 0.0f;
    if (id < kStoredParameterCount)
        return programs_.value(program_, id);
    return editorValues_[static_cast<std::size_t>(id - kStoredParameterCount)];
}

void OfflinePort::store(int id, float value)
{
    if (id < 0 || id >= kParameterCount)
        return;
    const float stored = std::isfinite(value) ? value : 0.0f;
    if (id < kStoredParameterCount)
        programs_.setValue(program_, id, stored);
    else
        editorValues_[static_cast<std::size_t>(id - kStoredParameterCount)] = stored;
}

void OfflinePort::setParameter(int id, float value)
{
    if (id < 0 || id >= kParameterCount)
        return;
    store(id, value);
    news.parameters.set(static_cast<std::size_t>(id));
}

void OfflinePort::setParameterQuiet(int id, float value)
{
    store(id, value);
}

void OfflinePort::setParameterAutomated(int id, float value)
{
    OfflinePort::setParameter(id, value);
}

EditorNews OfflinePort::takeNews()
{
    return std::exchange(news, {});
}

ProgramRecord OfflinePort::record(int program) const
{
    return takeRecord(programs_, std::clamp(program, 0, kProgramCount - 1));
}

void OfflinePort::replaceCurrent(const ProgramRecord& record)
{
    OfflinePort::replaceProgram(program_, record);
}

void OfflinePort::replaceProgram(int program, const ProgramRecord& record)
{
    if (!isProgram(program))
        return;
    ProgramRecord safe = record;
    dropNonFinite(safe);
    safe.name.back() = '\0';
    safe.description.back() = '\0';
    putRecord(programs_, program, safe);
    news.presetList = true;
    if (program == program_)
        OfflinePort::setProgram(program);
}

const ProgramRecord& OfflinePort::factoryRecord(int program) const
{
    return factory_.record(std::clamp(program, 0, kProgramCount - 1));
}

const ProgramRecord& OfflinePort::initialRecord() const
{
    return factory_.record(kProgramCount - 1);
}

void OfflinePort::setProgram(int program)
{
    if (!isProgram(program))
        return;
    program_ = program;
    bank_ = program / kBankSize;
    news.program = true;
    for (std::size_t id = 0; id < kStoredParameterCount; ++id)
        news.parameters.set(id);
}

void OfflinePort::setProgramName(std::string_view name)
{
    programs_.setName(program_, name);
    OfflinePort::rebuildPresetList();
}

void OfflinePort::setDescription(std::string_view text)
{
    programs_.setDescription(program_, text);
}

std::string OfflinePort::presetLabel(int position) const
{
    return tolm::presetLabel(browser_, programs_, position);
}

void OfflinePort::select(std::optional<int> program)
{
    if (program)
        OfflinePort::setProgram(*program);
}

void OfflinePort::choosePreset(int position)
{
    select(tolm::choosePreset(browser_, position));
}

void OfflinePort::previousPreset()
{
    select(tolm::previousPreset(browser_));
}

void OfflinePort::nextPreset()
{
    select(tolm::nextPreset(browser_));
}

void OfflinePort::chooseBank(float value)
{
    bank_ = bankFromControl(value);
    OfflinePort::rebuildPresetList();
}

void OfflinePort::chooseCategory(int position)
{
    if (tolm::chooseCategory(browser_, position))
        OfflinePort::rebuildPresetList();
}

void OfflinePort::rebuildPresetList()
{
    select(tolm::rebuildPresetList(browser_, programs_, bank_, program_));
    news.presetList = true;
}

void OfflinePort::forget(int id)
{
    std::erase_if(controllers, [id](const auto& entry) { return entry.second == id; });
}

std::vector<int> OfflinePort::controllersOf(int id) const
{
    std::vector<int> found;
    for (const auto& [controller, parameter] : controllers)
        if (parameter == id)
            found.push_back(controller);
    return found;
}

void OfflinePort::playKey(int key, int)
{
    if (isKey(key))
        shownMeters.keys.set(static_cast<std::size_t>(key));
}

void OfflinePort::releaseKey(int key)
{
    if (isKey(key))
        shownMeters.keys.reset(static_cast<std::size_t>(key));
}

void OfflinePort::moveModWheel(int value)
{
    OfflinePort::setParameter(kModWheel, static_cast<float>(std::clamp(value, 0, 127)) / 127.0f);
}

int OfflinePort::oscillatorWave(int oscillator) const
{
    return waveIndex(programs_.value(program_, oscillator == 1 ? kOsc1Wave : kOsc2Wave));
}

std::optional<EditorNotice> OfflinePort::takeNotice()
{
    return std::exchange(notice, std::nullopt);
}

std::optional<std::string> OfflinePort::readUserFile(std::string_view name) const
{
    const auto found = userFiles.find(name);
    return found != userFiles.end() ? std::optional(found->second) : std::nullopt;
}

void OfflinePort::writeUserFile(std::string_view name, std::string_view text)
{
    userFiles.insert_or_assign(std::string(name), std::string(text));
}

} // namespace tolm
