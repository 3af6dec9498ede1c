#pragma once
// What the reader and the writer of sounds must agree on.

#include "patch/soundText.h"

#include <string>
#include <string_view>

namespace tolm {

inline constexpr int kFirstEffectOrderId = kStoredParameterCount - kEffectSlots;

// Why a factory name or description is refused; empty when it is fine.
std::string nameProblem(std::string_view name);
std::string descriptionProblem(std::string_view description);
std::string_view nameOf(const ProgramRecord& record);
std::string_view withoutMark(std::string_view name);

// Texts are kept short enough for their field, whose rest is cleared.
void putName(ProgramRecord& record, std::string_view name);
void putDescription(ProgramRecord& record, std::string_view description);

} // namespace tolm
