// Preset-file reader. Control byte: bit 0 bank; the rest is the file, and also a path.

#include "patch/presetFile.h"
#include "tests/fuzz/chunkHarness.h"

namespace tolm::fuzz {

namespace {

void checkPath(std::string_view path)
{
    (void)isPresetPath(path);
    const auto name = programNameFromPath(path);
    require(!name || name->size() + 4 <= path.size(), "a name is part of its path");
    const auto bank = bankFileHeader(path);
    const auto program = programFileHeader(path);
    require(parsePresetHeader(bank, true)->chunkBytes == kChunkBytes, "a path ends in its field");
    require(parsePresetHeader(program, false)->chunkBytes == kChunkBytes,
            "a name ends in its field");
    require(bank[155] == 0 && program[55] == 0, "texts are terminated");
}

} // namespace

void presetFileTarget(Input input)
{
    if (input.empty())
        return;
    const bool isBank = input[0] & 1;
    const Input file = input.subspan(1);
    checkPath(
        {reinterpret_cast<const char*>(file.data()), std::min<std::size_t>(file.size(), 300)});
    const auto chunk = chunkOfPresetFile(file, isBank);
    if (!chunk)
        return;
    require(chunk->empty() || (chunk->data() >= file.data() &&
                               chunk->data() + chunk->size() <= file.data() + file.size()),
            "the chunk lies inside the file");
    feedChunk({*chunk, !isBank, true, false, 130});
}

} // namespace tolm::fuzz
