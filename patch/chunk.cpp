// Writer and reader of chunks.

#include "patch/chunk.h"

#include "patch/chunkBytes.h"
#include "patch/conversions.h"
#include "patch/legacyLayout.h"

#include <algorithm>
#include <cstring>

namespace tolm {

namespace {

// Below this version nothing is known of the layout.
constexpr int kOldestVersion = 2;
// From this version on a chunk with 128 programs is one of several banks.
constexpr int kFirstBankedVersion = 12;
// From this version on categories are stored as values.
constexpr int kFirstCategoryVersion = 7;
// Patch data below this engine version was made without wheel smoothing.
constexpr int kFirstSmoothedEngineVersion = 15;
constexpr double kImmediateModWheel = 1.0;
constexpr int kImmediateBend = 128;

struct ChunkHeader {
    std::int32_t valuesPerProgram = kStoredParameterCount;
    std::int32_t programCount = kBankSize;
    std::int32_t currentProgram = 0;
    std::int32_t polyphony = 0; // written, not read back
    std::int32_t bendUpRange = 0;
    std::int32_t bendDownRange = 0;
    std::int32_t version = kChunkVersion;
    std::int32_t bankIndex = 0;
    std::int32_t engineVersion = 0;
    std::int32_t reserved = 0;
};

// The fields as they follow each other in the bytes.
constexpr std::int32_t ChunkHeader::*kHeaderFields[] = {
    &ChunkHeader::valuesPerProgram, &ChunkHeader::programCount, &ChunkHeader::currentProgram,
    &ChunkHeader::polyphony,        &ChunkHeader::bendUpRange,  &ChunkHeader::bendDownRange,
    &ChunkHeader::version,          &ChunkHeader::bankIndex,    &ChunkHeader::engineVersion,
    &ChunkHeader::reserved,
};
static_assert(std::size(kHeaderFields) * 4 == kChunkHeaderBytes);

void encodeHeader(const ChunkHeader& header, std::uint8_t* to)
{
    for (auto field : kHeaderFields) {
        writeLittle32(to, static_cast<std::uint32_t>(header.*field));
        to += 4;
    }
}

ChunkHeader decodeHeader(const std::uint8_t* from)
{
    ChunkHeader header;
    for (auto field : kHeaderFields) {
        header.*field = static_cast<std::int32_t>(readLittle32(from));
        from += 4;
    }
    return header;
}

enum class Layout { bank, single, legacy };

Layout layoutOf(const ChunkHeader& header, bool isPreset)
{
    if (!isPreset)
        return Layout::bank;
    return header.valuesPerProgram == kLegacyValueCount ? Layout::legacy : Layout::single;
}

bool holdsAllPrograms(const ChunkHeader& header, Layout layout, std::size_t byteSize)
{
    if (header.programCount < 0)
        return false;
    const std::uint64_t recordBytes = layout == Layout::legacy ? kLegacyRecordBytes : kRecordBytes;
    const std::uint64_t count = static_cast<std::uint32_t>(header.programCount);
    return kChunkHeaderBytes + count * recordBytes <= byteSize;
}

bool isFullBank(const ChunkHeader& header)
{
    return header.programCount == kBankSize && header.version >= kFirstBankedVersion;
}

// The record of a chunk that a single-program load takes.
int sourceRecord(const ChunkHeader& header)
{
    return isFullBank(header) ? header.currentProgram & (kBankSize - 1) : header.currentProgram;
}

// Whether what the layout selects exists. Banks reduce their selection instead, and an empty legacy
// chunk would only wipe the store.
bool selectsExistingProgram(const ChunkHeader& header, Layout layout)
{
    if (layout == Layout::bank)
        return true;
    if (header.currentProgram < 0 || header.currentProgram >= kProgramCount)
        return false;
    return layout == Layout::legacy ? header.programCount > 0
                                    : sourceRecord(header) < header.programCount;
}

RecordBytes recordAt(std::span<const std::uint8_t> bytes, int record)
{
    return bytes.subspan(kChunkHeaderBytes + static_cast<std::size_t>(record) * kRecordBytes)
        .first<kRecordBytes>();
}

// The first program that a bank replaces. A file's bank goes where the user looks; an index that
// names no bank counts as the first.
int bankDestination(const ChunkHeader& header, const ChunkHost& host)
{
    if (!isFullBank(header))
        return 0;
    if (host.isLoadingFromFile())
        return host.currentBank() * kBankSize;
    const bool exists = header.bankIndex >= 0 && header.bankIndex < kBankCount;
    return exists ? header.bankIndex * kBankSize : 0;
}

void takeEngineVersion(const ChunkHeader& header, ChunkHost& host)
{
    if (header.engineVersion < kFirstSmoothedEngineVersion)
        host.setSmoothing(kImmediateModWheel, kImmediateBend);
    host.setEngineVersion(header.engineVersion);
}

void selectProgram(int program, ChunkHost& host)
{
    host.setProgram(program);
    host.loadProgram(program);
}

int wrappedProgram(std::int32_t index)
{
    const int rest = index % kProgramCount;
    return rest < 0 ? rest + kProgramCount : rest;
}

void loadBank(const ChunkHeader& header, std::span<const std::uint8_t> bytes, ProgramStore& store,
              ChunkHost& host)
{
    if (!host.isLoadingFromFile())
        takeEngineVersion(header, host);
    const int first = bankDestination(header, host);
    const int count = std::min(header.programCount, kProgramCount - first);
    for (int i = 0; i < count; ++i) {
        ProgramRecord record = decodeRecord(recordAt(bytes, i));
        convertProgram(record, header.version, LoadPath::bank);
        putRecord(store, first + i, record);
    }
    selectProgram(wrappedProgram(header.currentProgram), host);
    if (header.version < kFirstCategoryVersion)
        takeCategoriesFromNames(store, true);
}

void loadSingleProgram(const ChunkHeader& header, std::span<const std::uint8_t> bytes,
                       ProgramStore& store, ChunkHost& host)
{
    const int current = host.currentProgram();
    ProgramRecord record = decodeRecord(recordAt(bytes, sourceRecord(header)));
    convertProgram(record, header.version, LoadPath::singleProgram);
    putRecord(store, current, record);
    takeCategoriesFromNames(store, false);
    selectProgram(current, host);
}

void loadLegacyPrograms(const ChunkHeader& header, std::span<const std::uint8_t> bytes,
                        ProgramStore& store, ChunkHost& host)
{
    std::size_t offset = kChunkHeaderBytes;
    for (int program = 0; program < kProgramCount; ++program) {
        if (program < header.programCount)
            putRecord(store, program,
                      convertLegacyProgram(bytes.subspan(offset).first<kLegacyRecordBytes>()));
        else
            putRecord(store, program, ProgramRecord{});
        offset += kLegacyRecordBytes;
    }
    selectProgram(header.currentProgram, host);
    const int current = host.currentProgram();
    if (header.version < kFirstBalancedVersion) {
        ProgramRecord record = takeRecord(store, current);
        rebalanceRingModulation(record);
        dropNonFinite(record);
        putRecord(store, current, record);
    }
    takeCategoriesFromNames(store, false);
    selectProgram(current, host);
}

class ProcessingPause {
public:
    explicit ProcessingPause(ChunkHost& host) : host_(host), paused_(host.pauseProcessing()) {}
    ~ProcessingPause() { host_.resumeProcessing(); }
    explicit operator bool() const { return paused_; }
    ProcessingPause(const ProcessingPause&) = delete;
    ProcessingPause& operator=(const ProcessingPause&) = delete;

private:
    ChunkHost& host_;
    bool paused_;
};

using Loader = void (*)(const ChunkHeader&, std::span<const std::uint8_t>, ProgramStore&,
                        ChunkHost&);

Loader loaderOf(Layout layout)
{
    constexpr Loader kLoaders[] = {loadBank, loadSingleProgram, loadLegacyPrograms};
    return kLoaders[static_cast<std::size_t>(layout)];
}

} // namespace

void writeChunk(const ProgramStore& store, const ChunkState& state,
                std::span<std::uint8_t, kChunkBytes> to)
{
    ChunkHeader header;
    header.currentProgram = state.currentProgram;
    header.polyphony = state.polyphony;
    header.bendUpRange = state.bendUpRange;
    header.bendDownRange = state.bendDownRange;
    header.bankIndex = state.currentBank;
    header.engineVersion = state.engineVersion;
    encodeHeader(header, to.data());
    for (int slot = 0; slot < kBankSize; ++slot)
        encodeRecord(store, state.currentBank * kBankSize + slot,
                     to.subspan(kChunkHeaderBytes + static_cast<std::size_t>(slot) * kRecordBytes)
                         .first<kRecordBytes>());
}

const char* chunkMessageText(ChunkMessage message)
{
    switch (message) {
    case ChunkMessage::veryOld:
        return "Very Old patches are rejected.";
    case ChunkMessage::resaveOldProgram:
        return "Old patch: Please resave after conversion.";
    case ChunkMessage::none:
        break;
    }
    return nullptr;
}

ChunkResult readChunk(std::span<const std::uint8_t> bytes, bool isPreset, ProgramStore& store,
                      ChunkHost& host)
{
    if (bytes.size() < kChunkHeaderBytes)
        return {};
    const ChunkHeader header = decodeHeader(bytes.data());
    host.setBendRanges(std::clamp(header.bendUpRange, 0, kMaxBendRange),
                       std::clamp(header.bendDownRange, 0, kMaxBendRange));
    if (header.version < kOldestVersion)
        return {false, ChunkMessage::veryOld};
    const Layout layout = layoutOf(header, isPreset);
    if (!holdsAllPrograms(header, layout, bytes.size()) || !selectsExistingProgram(header, layout))
        return {};
    {
        const ProcessingPause pause(host);
        if (!pause)
            return {};
        loaderOf(layout)(header, bytes, store, host);
    }
    const bool oldProgram = isPreset && header.version == kOldestVersion;
    return {true, oldProgram ? ChunkMessage::resaveOldProgram : ChunkMessage::none};
}

} // namespace tolm
