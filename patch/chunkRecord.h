#pragma once
// A program between its bytes and the store. What comes from bytes is made safe here: texts end
// inside their fields and values are finite.

#include "patch/programStore.h"

#include <cstdint>
#include <span>

namespace tolm {

inline constexpr std::size_t kRecordBytes = sizeof(ProgramRecord);

using RecordBytes = std::span<const std::uint8_t, kRecordBytes>;

ProgramRecord decodeRecord(RecordBytes bytes);
void encodeRecord(const ProgramStore& store, int program, std::span<std::uint8_t, kRecordBytes> to);

// Between a copy and the store, value by value, so that other threads may touch values meanwhile.
ProgramRecord takeRecord(const ProgramStore& store, int program);
void putRecord(ProgramStore& store, int program, const ProgramRecord& record);

// NaN and infinity become 0: one of them in a filter or an envelope would silence the instrument.
void dropNonFinite(ProgramRecord& record);

inline float& valueOf(ProgramRecord& record, int id)
{
    return record.values[static_cast<std::size_t>(id)];
}

// Selectors are stored as whole numbers that may be a little too large, so they are cut, not
// rounded. Values that no int holds stay outside every selector's range.
inline int truncated(float value)
{
    constexpr float kLimit = 1.0e9f;
    if (value >= kLimit)
        return static_cast<int>(kLimit);
    return value > -kLimit ? static_cast<int>(value) : static_cast<int>(-kLimit);
}

} // namespace tolm
