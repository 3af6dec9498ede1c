#pragma once
// Reads and writes preset files on disk.

#include "patch/presetFile.h"

namespace tolm {

// What a transfer needs of the plug-in.
class PresetFileHost {
public:
    virtual ~PresetFileHost() = default;

    // A chunk of the current bank; the bytes stay valid until the next call.
    virtual std::span<const std::uint8_t, kChunkBytes> saveChunk() = 0;
    // Loads as from the host, but marked as coming from a file meanwhile. False when rejected.
    virtual bool loadFileChunk(std::span<const std::uint8_t> bytes, bool isPreset) = 0;

    virtual int currentProgram() const = 0;
    virtual std::string_view currentProgramName() const = 0;
    virtual void setProgramName(std::string_view name) = 0;
    virtual void setProgram(int program) = 0;
    virtual void loadProgram(int program) = 0;
};

// True when the file was loaded or saved. A file that is another plug-in's, too short or not to be
// opened changes nothing. Saving goes to a file beside the old one, which is replaced only when all
// is written: a full disk or a crash leaves the old one as it was.
bool transferFile(const std::string& path, FileMode mode, PresetFileHost& host);

} // namespace tolm
