#pragma once
// The files of the factory sounds. What cannot be read or written ends as a Failure.

#include "patch/soundText.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

inline constexpr const char* kInitFile = "init.toml";
inline constexpr const char* kPlanFile = "bank.toml";
inline constexpr const char* kExceptionFile = "exceptions.toml"; // from the rules of tools/audition

// One clear line for the person at the terminal.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};
void check(const SoundTextStatus& status);

std::string readFile(const std::filesystem::path& path);
// Written aside and renamed, so that a failure leaves no half file.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

// The sounds of a directory, file by file in order of their names, and the initial patch.
ProgramRecord readInit(const std::filesystem::path& directory);
std::vector<Sound> readDirectory(const std::filesystem::path& directory);

std::unique_ptr<FactoryImage> compileDirectory(const std::filesystem::path& directory);
// The patterns of a text, over the initial patch of the directory of sounds.
std::vector<ProgramRecord> compilePatterns(const std::filesystem::path& text,
                                           const std::filesystem::path& sounds);
std::unique_ptr<FactoryImage> readImage(const std::filesystem::path& path);

} // namespace tolm
