#pragma once
// The 384 programs of an instance, three banks of 128. Filled from the factory bank at
// construction. Values may be read and written from any thread; names, descriptions and whole
// records only by the thread that loads programs.

#include "patch/ProgramRecord.h"

#include <memory>
#include <span>
#include <string_view>

namespace tolm {

class ProgramStore {
public:
    // Copies the factory bank, strips "+" marks, puts "Init Patch" into program 383, resets every
    // effect order to 0..5 and sorts programs 0..127, 128..255 and 256..372 by name.
    ProgramStore();
    // The same from another bank image: 384 records and the initial patch.
    ProgramStore(std::span<const ProgramRecord, kProgramCount> factory, const ProgramRecord& init);

    // `program` must be 0..383 and `id` 0..328.
    float value(int program, int id) const;
    void setValue(int program, int id, float value);

    ProgramRecord& record(int program) { return (*records_)[static_cast<std::size_t>(program)]; }
    const ProgramRecord& record(int program) const
    {
        return (*records_)[static_cast<std::size_t>(program)];
    }
    std::span<ProgramRecord, kProgramCount> records() { return *records_; }
    std::span<const ProgramRecord, kProgramCount> records() const { return *records_; }

    // The zero-terminated text, bounded by the field.
    std::string_view name(int program) const;
    std::string_view description(int program) const;
    // Copies at most 31 (479) characters and clears the rest of the field.
    void setName(int program, std::string_view text);
    void setDescription(int program, std::string_view text);

    void copy(int from, int to) { record(to) = record(from); }

private:
    std::unique_ptr<std::array<ProgramRecord, kProgramCount>> records_;
};

// Order of names inside a sorted group: byte-wise, names that begin with "-" last.
bool programNameLess(std::string_view a, std::string_view b);

} // namespace tolm
