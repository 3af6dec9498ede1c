#pragma once
// Makes the programs of a directory equally loud by their Volume lines.

#include <filesystem>
#include <string>

namespace tolm {

// All programs, or the one of that name. Rewrites the files that change, line by line; prints what
// changed and which programs could not reach their target.
void levelDirectory(const std::filesystem::path& directory, const std::string& program);

} // namespace tolm
