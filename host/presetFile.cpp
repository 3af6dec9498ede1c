// Reader of .fxb and .fxp headers. All fields are big-endian.

#include "host/presetFile.h"

#include "host/Failure.h"

#include <fstream>
#include <iterator>
#include <string_view>

namespace tolm {
namespace {

// magic, byte size, kind, version, plug-in id, plug-in version, count: 4 bytes each; then 28 bytes
// of name in a program, 128 reserved ones in a bank; then the chunk's size.
constexpr std::size_t kKindAt = 8;
constexpr std::size_t kUniqueIdAt = 16;

struct Layout {
    std::string_view magic;
    ChunkKind kind;
    std::size_t sizeAt;
};
constexpr Layout kLayouts[] = {
    {"FBCh", ChunkKind::bank,    156},
    {"FPCh", ChunkKind::program, 56 },
};

std::uint32_t bigEndian(std::string_view bytes, std::size_t at)
{
    std::uint32_t value = 0;
    for (const char c : bytes.substr(at, 4))
        value = value << 8 | static_cast<unsigned char>(c);
    return value;
}

PresetFile parse(std::string_view bytes)
{
    if (!bytes.starts_with("CcnK") || bytes.size() < kUniqueIdAt + 4)
        throw Failure("it is neither a bank nor a program");
    const std::string_view magic = bytes.substr(kKindAt, 4);
    if (magic == "FxBk" || magic == "FxCk")
        throw Failure("it lists single values and holds no chunk");
    for (const Layout& layout : kLayouts) {
        if (magic != layout.magic)
            continue;
        const std::size_t start = layout.sizeAt + 4;
        if (bytes.size() < start || bytes.size() - start < bigEndian(bytes, layout.sizeAt))
            throw Failure("it is cut short");
        const auto chunk = bytes.substr(start, bigEndian(bytes, layout.sizeAt));
        const auto* first = reinterpret_cast<const std::byte*>(chunk.data());
        return {
            layout.kind,
            static_cast<std::int32_t>(bigEndian(bytes, kUniqueIdAt)),
            {first, first + chunk.size()}
        };
    }
    throw Failure("its kind is unknown");
}

} // namespace

PresetFile readPresetFile(const std::filesystem::path& path)
{
    std::error_code ignored;
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path, ignored))
        throw Failure("cannot open the preset file " + quoted(path.string()));
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    try {
        return parse(bytes);
    } catch (const Failure& reason) {
        throw Failure("cannot use " + quoted(path.string()) + ": " + reason.what());
    }
}

} // namespace tolm
