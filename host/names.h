#pragma once
// Finding programs, parameters and tracks by the names people type.

#include <string>
#include <vector>

namespace tolm {

// Index of `wanted`, which is an index or a name (letter case is ignored when no exact match is
// there). Throws Failure, naming the nearest ones; `what` says what is looked for.
int findByName(const std::vector<std::string>& names, const std::string& wanted,
               const std::string& what);

} // namespace tolm
