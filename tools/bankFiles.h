#pragma once
// Commands of tolm-bank between readable sounds and the preset files that users exchange.

#include <filesystem>

namespace tolm {

// An "init.toml" beside the text says what the text leaves out, as in the factory's directory;
// without one that is zero. All throw std::runtime_error with one clear line.

// A text with exactly one sound to a program file.
void writeProgramFile(const std::filesystem::path& text, const std::filesystem::path& output);
// A text with up to 128 sounds to a bank file; copies of the initial patch fill it up.
void writeBankFile(const std::filesystem::path& text, const std::filesystem::path& output);
// A program or bank file, of any version, to a text.
void writeTextOfFile(const std::filesystem::path& source, const std::filesystem::path& output);

} // namespace tolm
