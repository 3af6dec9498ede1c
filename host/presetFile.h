#pragma once
// Bank (.fxb) and program (.fxp) files: the header is checked here, the chunk is the plug-in's.

#include "host/Plugin.h"

namespace tolm {

struct PresetFile {
    ChunkKind kind = ChunkKind::bank;
    std::int32_t uniqueId = 0;
    std::vector<std::byte> chunk;
};

// Throws Failure when the file cannot be read or is not whole.
PresetFile readPresetFile(const std::filesystem::path& path);

} // namespace tolm
