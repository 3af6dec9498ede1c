#pragma once
// Preset files: the big-endian headers of ".fxb" banks and ".fxp" programs around a chunk, the
// rules for paths and names, and what the file dialogs say.

#include "patch/chunk.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tolm {

inline constexpr std::uint32_t kPluginId = 0x51584A54; // 'QXJT'

inline constexpr std::size_t kBankFileHeaderBytes = 160;
inline constexpr std::size_t kProgramFileHeaderBytes = 60;

enum class FileMode { loadBank, saveBank, loadProgram, saveProgram };

// One row per mode, in the order of the editor's menus.
struct FileModeRow {
    const char* title;
    const char* extension; // without the dot
    const char* description;
    bool saves;
    bool isBank;
};
inline constexpr FileModeRow kFileModes[] = {
    {"Load Bank",  "fxb", "Cubase Bank",    false, true },
    {"Save Bank",  "fxb", "Cubase Bank",    true,  true },
    {"Load Patch", "fxp", "Cubase Program", false, false},
    {"Save Patch", "fxp", "Cubase Program", true,  false},
};

constexpr const FileModeRow& fileModeRow(FileMode mode)
{
    return kFileModes[static_cast<std::size_t>(mode)];
}
// nullopt outside 0..3.
std::optional<FileMode> fileModeOf(int index);

constexpr std::size_t presetHeaderBytes(bool isBank)
{
    return isBank ? kBankFileHeaderBytes : kProgramFileHeaderBytes;
}

// What loading reads of a header; magics and versions are not looked at.
struct PresetHeader {
    std::uint32_t pluginId = 0;
    std::uint32_t chunkBytes = 0; // as claimed, not checked
};
// `bytes` may be longer than the header; nullopt when it is shorter.
std::optional<PresetHeader> parsePresetHeader(std::span<const std::uint8_t> bytes, bool isBank);
// The chunk inside the bytes of a whole file. nullopt for another plug-in's file and for one that
// is shorter than its header claims; what follows the chunk is ignored.
std::optional<std::span<const std::uint8_t>> chunkOfPresetFile(std::span<const std::uint8_t> file,
                                                               bool isBank);

// Headers for a chunk of kChunkBytes. The path is cut at 127 characters, the name at 27.
std::array<std::uint8_t, kBankFileHeaderBytes> bankFileHeader(std::string_view path);
std::array<std::uint8_t, kProgramFileHeaderBytes> programFileHeader(std::string_view programName);

// Only paths with ".fxb" or ".fxp" somewhere in them are used, in every mode.
bool isPresetPath(std::string_view path);
// The file's name without its extension; nullopt when the path is too short to have both.
std::optional<std::string_view> programNameFromPath(std::string_view path);
std::string suggestedFileName(FileMode mode, std::string_view programName);

} // namespace tolm
