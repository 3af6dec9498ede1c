#pragma once
// Chunks written field by field, and a plug-in that notes what a load asks of it.

#include "patch/chunk.h"

#include <cstring>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tolm::test {

// Chunks have the byte order of the machines that play them.
template <class Number>
void put(std::vector<std::uint8_t>& bytes, std::size_t at, Number value)
{
    std::memcpy(std::span(bytes).subspan(at, sizeof value).data(), &value, sizeof value);
}

inline std::int32_t get32(const std::vector<std::uint8_t>& bytes, std::size_t at)
{
    std::int32_t value = 0;
    std::memcpy(&value, std::span(bytes).subspan(at, sizeof value).data(), sizeof value);
    return value;
}

struct ChunkBytes {
    std::vector<std::uint8_t> bytes;
    std::size_t recordBytes;

    explicit ChunkBytes(int count, int version = 16, std::size_t eachRecord = 1840)
        : bytes(40 + static_cast<std::size_t>(count) * eachRecord), recordBytes(eachRecord)
    {
        field(0, eachRecord == 1840 ? 329 : 258);
        field(4, count);
        field(16, 2);
        field(20, 2);
        field(24, version);
        field(32, 16);
    }
    ChunkBytes& field(std::size_t offset, std::int32_t value)
    {
        put(bytes, offset, value);
        return *this;
    }
    std::size_t recordOffset(int record) const
    {
        return 40 + static_cast<std::size_t>(record) * recordBytes;
    }
    ChunkBytes& name(int record, std::string_view text)
    {
        text.copy(reinterpret_cast<char*>(&bytes.at(recordOffset(record))), text.size());
        return *this;
    }
    ChunkBytes& value(int record, int id, float v)
    {
        const std::size_t valuesAt = recordBytes == 1840 ? 512 : 32;
        put(bytes, recordOffset(record) + valuesAt + 4 * static_cast<std::size_t>(id), v);
        return *this;
    }
};

inline std::vector<ProgramRecord> noise(unsigned seed)
{
    std::minstd_rand random(seed);
    std::vector<ProgramRecord> records(kProgramCount);
    for (ProgramRecord& record : records) {
        for (std::size_t i = 0; i < 23; ++i)
            record.name[i] = static_cast<char>('a' + random() % 26);
        for (std::size_t i = 0; i < 400; ++i)
            record.description[i] = static_cast<char>(' ' + random() % 90);
        record.reserved[3] = static_cast<std::uint8_t>(random());
        for (float& value : record.values)
            value = static_cast<float>(random() % 1001) / 1000.0f;
    }
    return records;
}

// A plug-in around a store of random programs.
struct Rig final : ChunkHost {
    explicit Rig(unsigned seed = 1) : original(noise(seed))
    {
        const std::span<const ProgramRecord, kProgramCount> image(original.data(), kProgramCount);
        store = std::make_unique<ProgramStore>(image, original.back());
        std::copy(original.begin(), original.end(), store->records().begin());
    }

    void setBendRanges(int up, int down) override
    {
        bendUp = up;
        bendDown = down;
        log.push_back("bend");
    }
    bool pauseProcessing() override
    {
        log.push_back("pause");
        return canPause;
    }
    void resumeProcessing() override { log.push_back("resume"); }
    bool canPause = true;

    int currentProgram() const override { return program; }
    int currentBank() const override { return bank; }
    bool isLoadingFromFile() const override { return fromFile; }
    void setEngineVersion(int version) override
    {
        engineVersion = version;
        log.push_back("engine");
    }
    void setSmoothing(double modWheel, int bend) override
    {
        wheelFactor = modWheel;
        bendSmoothing = bend;
        log.push_back("smoothing");
    }
    void setProgram(int index) override
    {
        program = index;
        bank = index / kBankSize;
        log.push_back("set " + std::to_string(index));
    }
    void loadProgram(int index) override { log.push_back("load " + std::to_string(index)); }

    ChunkResult read(const ChunkBytes& chunk, bool isPreset)
    {
        log.clear();
        return readChunk(chunk.bytes, isPreset, *store, *this);
    }
    std::vector<std::uint8_t> write() const
    {
        std::vector<std::uint8_t> bytes(kChunkBytes, 0xEE);
        writeChunk(*store, {program, bank, 20, bendUp, bendDown, engineVersion},
                   std::span<std::uint8_t, kChunkBytes>(bytes));
        return bytes;
    }
    bool untouched() const
    {
        return std::memcmp(original.data(), store->records().data(),
                           original.size() * sizeof(ProgramRecord)) == 0;
    }
    bool untouched(int index) const
    {
        return std::memcmp(&original[static_cast<std::size_t>(index)], &store->record(index),
                           sizeof(ProgramRecord)) == 0;
    }

    std::vector<ProgramRecord> original;
    std::unique_ptr<ProgramStore> store;
    std::vector<std::string> log;
    int program = 0, bank = 0, bendUp = -1, bendDown = -1;
    int engineVersion = 16, bendSmoothing = 16;
    double wheelFactor = 0.1;
    bool fromFile = false;
};

} // namespace tolm::test
