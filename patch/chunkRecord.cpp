// Programs in and out of bytes.

#include "patch/chunkRecord.h"

#include "patch/chunkBytes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tolm {

namespace {

constexpr std::size_t kDescriptionOffset = offsetof(ProgramRecord, description);
constexpr std::size_t kValuesOffset = offsetof(ProgramRecord, values);
constexpr std::size_t kReservedOffset = offsetof(ProgramRecord, reserved);

} // namespace

ProgramRecord decodeRecord(RecordBytes bytes)
{
    ProgramRecord record;
    std::memcpy(record.name.data(), bytes.data(), record.name.size());
    std::memcpy(record.description.data(), bytes.data() + kDescriptionOffset,
                record.description.size());
    std::memcpy(record.reserved.data(), bytes.data() + kReservedOffset, record.reserved.size());
    record.name.back() = '\0';
    record.description.back() = '\0';
    const std::uint8_t* from = bytes.data() + kValuesOffset;
    for (float& value : record.values) {
        value = readLittleFloat(from);
        from += sizeof(float);
    }
    dropNonFinite(record);
    return record;
}

void encodeRecord(const ProgramStore& store, int program, std::span<std::uint8_t, kRecordBytes> to)
{
    const ProgramRecord& record = store.record(program);
    std::memcpy(to.data(), record.name.data(), record.name.size());
    std::memcpy(to.data() + kDescriptionOffset, record.description.data(),
                record.description.size());
    std::memcpy(to.data() + kReservedOffset, record.reserved.data(), record.reserved.size());
    std::uint8_t* at = to.data() + kValuesOffset;
    for (int id = 0; id < kStoredParameterCount; ++id) {
        writeLittleFloat(at, store.value(program, id));
        at += sizeof(float);
    }
}

ProgramRecord takeRecord(const ProgramStore& store, int program)
{
    ProgramRecord copy;
    const ProgramRecord& record = store.record(program);
    copy.name = record.name;
    copy.description = record.description;
    copy.reserved = record.reserved;
    for (int id = 0; id < kStoredParameterCount; ++id)
        valueOf(copy, id) = store.value(program, id);
    return copy;
}

void putRecord(ProgramStore& store, int program, const ProgramRecord& record)
{
    ProgramRecord& target = store.record(program);
    target.name = record.name;
    target.description = record.description;
    target.reserved = record.reserved;
    for (int id = 0; id < kStoredParameterCount; ++id)
        store.setValue(program, id, record.values[static_cast<std::size_t>(id)]);
}

void dropNonFinite(ProgramRecord& record)
{
    for (float& value : record.values)
        if (!std::isfinite(value))
            value = 0.0f;
}

} // namespace tolm
