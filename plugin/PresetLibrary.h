#pragma once
// The programs as the user handles them: saved and loaded as files, browsed by bank or category,
// renamed. Not for the audio thread; other threads may call side by side.

#include "patch/browser.h"
#include "patch/presetFileTransfer.h"
#include "plugin/Notices.h"

#include <atomic>
#include <memory>

namespace tolm {

using ChunkBuffer = std::array<std::uint8_t, kChunkBytes>;

class PresetLibrary final : private PresetFileHost {
public:
    PresetLibrary(SynthCore& core, Notices& notices) : core_(core), notices_(notices) {}

    // The selector of an open window, or null: then every dialog counts as cancelled.
    // User-interface thread, like the dialog.
    void useFileSelector(FileSelector* selector) { selector_ = selector; }
    // 0 load bank, 1 save bank, 2 load program, 3 save program; other modes do nothing.
    void fileDialog(int mode);
    // True when the file was loaded or saved; a failure changes nothing but, where the chunk's
    // rules say so, the bend ranges.
    bool transferFile(const std::string& path, FileMode mode);

    // The current bank. Valid until the next call.
    std::span<const std::uint8_t, kChunkBytes> saveChunk() override;
    // Loads, reports and tells the editor. False when rejected.
    bool loadChunk(std::span<const std::uint8_t> bytes, bool singleProgram);

    void setProgram(int program) override;
    // At most 31 characters of it. The list is built again.
    void setProgramName(std::string_view name) override;

    void rebuildPresetList();
    void choose(int position);
    void previous();
    void next();
    // The three-position control's value 0..1.
    void chooseBank(float value);
    // A menu position 0..13; others do nothing.
    void chooseCategory(int position);

    // For the editor's list control.
    PresetBrowser browser() const;
    std::string label(int position) const;

private:
    // A file's chunk: marked as such for as long as it loads.
    bool loadFileChunk(std::span<const std::uint8_t> bytes, bool isPreset) override;
    int currentProgram() const override { return core_.currentProgram(); }
    std::string_view currentProgramName() const override;
    void loadProgram(int program) override { setProgram(program); }

    bool deliver(std::span<const std::uint8_t> bytes, bool singleProgram, bool fromFile);
    template <class Pick>
    void select(Pick&& pick);

    SynthCore& core_;
    Notices& notices_;
    FileSelector* selector_ = nullptr;
    PresetBrowser browser_;               // under the core's text lock
    std::unique_ptr<ChunkBuffer> buffer_; // allocated when first asked for
};

} // namespace tolm
