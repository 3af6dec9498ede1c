// Headers and rules of preset files.

#include "patch/presetFile.h"

#include "patch/chunkBytes.h"

#include <algorithm>

namespace tolm {

namespace {

constexpr std::uint32_t kChunkMagic = 0x43636E4B;   // 'CcnK'
constexpr std::uint32_t kBankMagic = 0x46424368;    // 'FBCh'
constexpr std::uint32_t kProgramMagic = 0x46504368; // 'FPCh'
constexpr std::uint32_t kFormatVersion = 1;
constexpr std::uint32_t kPluginVersion = 1;
constexpr std::size_t kIdOffset = 16;
constexpr std::size_t kTextOffset = 28;    // path in banks, name in programs
constexpr std::size_t kUncountedBytes = 8; // magic and size field themselves
constexpr std::size_t kExtensionLength = 4;
constexpr std::size_t kShortestNamingPath = 6;

// The chunk size is the header's last field.
constexpr std::size_t sizeOffset(std::size_t headerBytes)
{
    return headerBytes - 4;
}

template <std::size_t headerBytes>
std::array<std::uint8_t, headerBytes> makeHeader(std::uint32_t magic, std::uint32_t count,
                                                 std::string_view text)
{
    std::array<std::uint8_t, headerBytes> header{};
    const std::uint32_t fields[] = {
        kChunkMagic, static_cast<std::uint32_t>(kChunkBytes + headerBytes - kUncountedBytes),
        magic,       kFormatVersion,
        kPluginId,   kPluginVersion,
        count,
    };
    std::uint8_t* to = header.data();
    for (std::uint32_t field : fields) {
        writeBig32(to, field);
        to += 4;
    }
    const std::size_t room = sizeOffset(headerBytes) - kTextOffset - 1; // a zero stays behind it
    const std::string_view kept = text.substr(0, room);
    std::copy(kept.begin(), kept.end(), header.begin() + kTextOffset);
    writeBig32(header.data() + sizeOffset(headerBytes), static_cast<std::uint32_t>(kChunkBytes));
    return header;
}

} // namespace

std::optional<FileMode> fileModeOf(int index)
{
    if (index < 0 || index >= static_cast<int>(std::size(kFileModes)))
        return std::nullopt;
    return static_cast<FileMode>(index);
}

std::optional<PresetHeader> parsePresetHeader(std::span<const std::uint8_t> bytes, bool isBank)
{
    const std::size_t headerBytes = presetHeaderBytes(isBank);
    if (bytes.size() < headerBytes)
        return std::nullopt;
    return PresetHeader{readBig32(bytes.data() + kIdOffset),
                        readBig32(bytes.data() + sizeOffset(headerBytes))};
}

std::optional<std::span<const std::uint8_t>> chunkOfPresetFile(std::span<const std::uint8_t> file,
                                                               bool isBank)
{
    const std::optional<PresetHeader> header = parsePresetHeader(file, isBank);
    if (!header || header->pluginId != kPluginId)
        return std::nullopt;
    const std::span<const std::uint8_t> rest = file.subspan(presetHeaderBytes(isBank));
    if (header->chunkBytes > rest.size())
        return std::nullopt;
    return rest.first(header->chunkBytes);
}

std::array<std::uint8_t, kBankFileHeaderBytes> bankFileHeader(std::string_view path)
{
    return makeHeader<kBankFileHeaderBytes>(kBankMagic, kBankSize, path);
}

std::array<std::uint8_t, kProgramFileHeaderBytes> programFileHeader(std::string_view programName)
{
    return makeHeader<kProgramFileHeaderBytes>(kProgramMagic, kStoredParameterCount, programName);
}

bool isPresetPath(std::string_view path)
{
    return path.find(".fxb") != std::string_view::npos ||
           path.find(".fxp") != std::string_view::npos;
}

std::optional<std::string_view> programNameFromPath(std::string_view path)
{
    if (path.size() < kShortestNamingPath)
        return std::nullopt;
    const std::size_t separator = path.find_last_of("/\\");
    const std::string_view file =
        separator == std::string_view::npos ? path : path.substr(separator + 1);
    if (file.size() < kExtensionLength)
        return std::nullopt;
    return file.substr(0, file.size() - kExtensionLength);
}

std::string suggestedFileName(FileMode mode, std::string_view programName)
{
    return std::string(programName) + "." + fileModeRow(mode).extension;
}

} // namespace tolm
