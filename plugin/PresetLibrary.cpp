// Files and browser between the user and the store.

#include "plugin/PresetLibrary.h"

#include "plugin/chunkLoad.h"

#include <mutex>

namespace tolm {

void PresetLibrary::fileDialog(int mode)
{
    const std::optional<FileMode> known = fileModeOf(mode);
    if (!known || selector_ == nullptr)
        return;
    const FileModeRow& row = fileModeRow(*known);
    FileRequest request{row.title, row.extension, row.description, {}, row.saves};
    {
        const std::lock_guard lock(core_.textLock());
        request.suggestedName = suggestedFileName(*known, currentProgramName());
    }
    selector_->choose(request, [this, known](const std::string& path) {
        if (isPresetPath(path))
            transferFile(path, *known);
    });
}

bool PresetLibrary::transferFile(const std::string& path, FileMode mode)
{
    return tolm::transferFile(path, mode, *this);
}

std::span<const std::uint8_t, kChunkBytes> PresetLibrary::saveChunk()
{
    const std::lock_guard lock(core_.textLock());
    if (buffer_ == nullptr)
        buffer_ = std::make_unique<ChunkBuffer>();
    writeChunk(core_.engine().programBank(), chunkState(core_), *buffer_);
    return *buffer_;
}

bool PresetLibrary::loadChunk(std::span<const std::uint8_t> bytes, bool singleProgram)
{
    return deliver(bytes, singleProgram, false);
}

bool PresetLibrary::loadFileChunk(std::span<const std::uint8_t> bytes, bool isPreset)
{
    return deliver(bytes, isPreset, true);
}

// Editor and messages are told when the lock is free again, because they may ask for names.
bool PresetLibrary::deliver(std::span<const std::uint8_t> bytes, bool singleProgram, bool fromFile)
{
    ChunkResult result;
    {
        const std::lock_guard lock(core_.textLock());
        result = tolm::loadChunk(core_, bytes, singleProgram, fromFile);
    }
    if (const char* text = chunkMessageText(result.message))
        notices_.post(kChunkMessageTitle, text);
    if (EditorHooks* editor = core_.editor(); editor != nullptr && result.loaded)
        editor->everythingChanged();
    return result.loaded;
}

void PresetLibrary::setProgram(int program)
{
    if (program >= 0 && program < kProgramCount)
        core_.whileSilent([this, program] { core_.loadProgram(program); });
}

// Only this library and the lock's holders change names, so the view lasts as long as a transfer.
std::string_view PresetLibrary::currentProgramName() const
{
    return core_.engine().programBank().name(core_.currentProgram());
}

void PresetLibrary::setProgramName(std::string_view name)
{
    {
        const std::lock_guard lock(core_.textLock());
        core_.engine().programBank().setName(core_.currentProgram(), name);
    }
    rebuildPresetList();
}

// `pick` answers the program to be selected, if any.
template <class Pick>
void PresetLibrary::select(Pick&& pick)
{
    std::optional<int> program;
    {
        const std::lock_guard lock(core_.textLock());
        program = pick();
    }
    if (program)
        setProgram(*program);
}

void PresetLibrary::rebuildPresetList()
{
    select([this] {
        return tolm::rebuildPresetList(browser_, core_.engine().programBank(), core_.currentBank(),
                                       core_.currentProgram());
    });
    if (EditorHooks* editor = core_.editor())
        editor->programNamesChanged();
}

void PresetLibrary::choose(int position)
{
    select([&] { return choosePreset(browser_, position); });
}

void PresetLibrary::previous()
{
    select([this] { return previousPreset(browser_); });
}

void PresetLibrary::next()
{
    select([this] { return nextPreset(browser_); });
}

void PresetLibrary::chooseBank(float value)
{
    core_.setCurrentBank(bankFromControl(value));
    rebuildPresetList();
}

void PresetLibrary::chooseCategory(int position)
{
    {
        const std::lock_guard lock(core_.textLock());
        if (!tolm::chooseCategory(browser_, position))
            return;
    }
    rebuildPresetList();
}

PresetBrowser PresetLibrary::browser() const
{
    const std::lock_guard lock(core_.textLock());
    return browser_;
}

std::string PresetLibrary::label(int position) const
{
    const std::lock_guard lock(core_.textLock());
    return presetLabel(browser_, core_.engine().programBank(), position);
}

} // namespace tolm
