// The chunk reader between a store of which only the programs that changed are renewed, so that
// turned away inputs cost next to nothing, and a plug-in that counts what it is asked for.

#include "tests/fuzz/chunkHarness.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

namespace tolm::fuzz {

namespace {

// Most programs have no name and no category, so that loads leave them alone.
std::vector<ProgramRecord> makeImage()
{
    std::vector<ProgramRecord> image(kProgramCount);
    for (std::size_t p = 0; p < image.size(); ++p) {
        if (p % 16 == 0)
            std::string_view("PAD old").copy(image[p].name.data(), 31);
        for (std::size_t id = 0; id < 320; ++id)
            image[p].values[id] = static_cast<float>((p * 31 + id * 17) % 101) / 100.0f;
    }
    return image;
}

struct Plugin final : ChunkHost {
    Plugin()
        : image(makeImage()),
          store(std::span<const ProgramRecord, kProgramCount>(image.data(), kProgramCount), {})
    {
        std::copy(image.begin(), image.end(), store.records().begin());
    }

    void setBendRanges(int up, int down) override
    {
        require(up >= 0 && up <= 64 && down >= 0 && down <= 64, "bend ranges are 0..64");
    }
    bool pauseProcessing() override
    {
        require(++paused == 1, "paused once");
        return true;
    }
    void resumeProcessing() override { require(--paused == 0, "resumed once"); }
    int currentProgram() const override { return program; }
    int currentBank() const override { return program / kBankSize; }
    bool isLoadingFromFile() const override { return fromFile; }
    void setEngineVersion(int) override { noteCall(); }
    void setSmoothing(double, int) override { noteCall(); }
    void setProgram(int index) override
    {
        noteCall();
        require(index >= 0 && index < kProgramCount, "programs are 0..383");
        program = index;
    }
    void loadProgram(int index) override
    {
        noteCall();
        require(index == program, "the selected program is loaded");
    }

    void noteCall()
    {
        ++calls;
        require(paused == 1, "changes only while processing is paused");
    }

    std::vector<ProgramRecord> image;
    ProgramStore store;
    int program = 0, paused = 0, calls = 0;
    bool fromFile = false;
};

void requireSafe(const ProgramRecord& record)
{
    require(std::memchr(record.name.data(), 0, record.name.size()) != nullptr, "names end");
    require(std::memchr(record.description.data(), 0, record.description.size()) != nullptr,
            "descriptions end");
    float sum = 0.0f; // x - x is 0 unless x is not finite
    for (float value : record.values)
        sum += value - value;
    require(sum == 0.0f, "values are finite");
}

// Checks the programs that changed and puts them back.
void checkAndRenew(Plugin& plugin)
{
    for (std::size_t p = 0; p < plugin.image.size(); ++p) {
        ProgramRecord& record = plugin.store.records()[p];
        if (std::memcmp(&record, &plugin.image[p], kRecordBytes) == 0)
            continue;
        requireSafe(record);
        record = plugin.image[p];
    }
}

void writeBack(Plugin& plugin)
{
    static std::vector<std::uint8_t> first(kChunkBytes), second(kChunkBytes);
    const ChunkState state{plugin.program, plugin.program / kBankSize, 12, 2, 2, 16};
    writeChunk(plugin.store, state, std::span<std::uint8_t, kChunkBytes>(first));
    plugin.fromFile = false;
    require(readChunk(first, false, plugin.store, plugin).loaded, "what is written can be read");
    writeChunk(plugin.store, state, std::span<std::uint8_t, kChunkBytes>(first));
    require(readChunk(first, false, plugin.store, plugin).loaded, "and read again");
    writeChunk(plugin.store, state, std::span<std::uint8_t, kChunkBytes>(second));
    require(first == second, "a loaded bank comes back as it is");
}

} // namespace

void require(bool kept, const char* promise)
{
    if (kept)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

void feedChunk(const ChunkInput& input)
{
    static Plugin plugin;
    plugin.program = input.program;
    plugin.fromFile = input.fromFile;
    plugin.calls = 0;
    if (!readChunk(input.bytes, input.isPreset, plugin.store, plugin).loaded) {
        const std::size_t p = input.bytes.size() * 7 % kProgramCount; // one of them stands for all
        require(plugin.calls == 0, "a rejected chunk asks for nothing");
        require(std::memcmp(&plugin.store.records()[p], &plugin.image[p], kRecordBytes) == 0,
                "a rejected chunk changes nothing");
        return;
    }
    if (input.writeBack)
        writeBack(plugin);
    checkAndRenew(plugin);
}

} // namespace tolm::fuzz
