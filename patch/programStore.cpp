// Construction of the program store from a bank image, and its bounded text fields.

#include "patch/programStore.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>

namespace tolm {
namespace {

static_assert(std::endian::native == std::endian::little, "records are kept in file byte order");
static_assert(std::atomic_ref<float>::is_always_lock_free);

// A bank's last eleven places, the initial patch among them, keep the order of the factory bank.
constexpr int kSortedGroups[][2] = {{0, 128}, {128, 256}, {256, 373}};
constexpr int kInitProgram = kProgramCount - 1;

template <std::size_t size>
std::string_view boundedText(const std::array<char, size>& field)
{
    return {field.data(), ::strnlen(field.data(), size)};
}

template <std::size_t size>
void assignText(std::array<char, size>& field, std::string_view text)
{
    const std::size_t length = std::min(text.size(), size - 1);
    std::copy_n(text.begin(), length, field.begin());
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(length), field.end(), '\0');
}

// A leading "+" marks a recommended sound in the factory files only.
void stripMark(std::array<char, 32>& name)
{
    if (name.front() != '+')
        return;
    std::copy(name.begin() + 1, name.end(), name.begin());
    name.back() = '\0';
}

void resetEffectOrder(ProgramRecord& record)
{
    for (int slot = 0; slot < kEffectSlots; ++slot)
        record.values[static_cast<std::size_t>(kStoredParameterCount - kEffectSlots + slot)] =
            static_cast<float>(slot);
}

bool recordLess(const ProgramRecord& a, const ProgramRecord& b)
{
    return programNameLess(boundedText(a.name), boundedText(b.name));
}

} // namespace

ProgramStore::ProgramStore(std::span<const ProgramRecord, kProgramCount> factory,
                           const ProgramRecord& init)
    : records_(std::make_unique<std::array<ProgramRecord, kProgramCount>>())
{
    std::copy(factory.begin(), factory.end(), records_->begin());
    for (ProgramRecord& program : *records_)
        stripMark(program.name);
    record(kInitProgram) = init;
    for (ProgramRecord& program : *records_)
        resetEffectOrder(program);
    for (const auto& [first, last] : kSortedGroups)
        std::sort(records_->begin() + first, records_->begin() + last, recordLess);
}

float ProgramStore::value(int program, int id) const
{
    float& stored =
        (*records_)[static_cast<std::size_t>(program)].values[static_cast<std::size_t>(id)];
    return std::atomic_ref<float>(stored).load(std::memory_order_relaxed);
}

void ProgramStore::setValue(int program, int id, float value)
{
    float& stored = record(program).values[static_cast<std::size_t>(id)];
    std::atomic_ref<float>(stored).store(value, std::memory_order_relaxed);
}

std::string_view ProgramStore::name(int program) const
{
    return boundedText(record(program).name);
}

std::string_view ProgramStore::description(int program) const
{
    return boundedText(record(program).description);
}

void ProgramStore::setName(int program, std::string_view text)
{
    assignText(record(program).name, text);
}

void ProgramStore::setDescription(int program, std::string_view text)
{
    assignText(record(program).description, text);
}

bool programNameLess(std::string_view a, std::string_view b)
{
    const bool aLast = a.starts_with('-');
    const bool bLast = b.starts_with('-');
    return aLast == bLast ? a < b : bLast;
}

} // namespace tolm
