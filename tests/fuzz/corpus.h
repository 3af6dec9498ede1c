#pragma once
// Corpus files are text: ".toml" as it is, ".hex" as bytes in hex, "#" starts a comment, "*N"
// repeats the last byte N times.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tolm::fuzz {

inline std::vector<std::uint8_t> readHex(const std::filesystem::path& path)
{
    std::ifstream in(path);
    std::vector<std::uint8_t> bytes;
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        for (std::string word; words >> word;) {
            if (word[0] == '*') {
                if (bytes.empty())
                    throw std::runtime_error(path.string() + ": nothing to repeat");
                bytes.insert(bytes.end(), std::stoul(word.substr(1)) - 1, bytes.back());
                continue;
            }
            for (std::size_t i = 0; i + 1 < word.size(); i += 2)
                bytes.push_back(
                    static_cast<std::uint8_t>(std::stoul(word.substr(i, 2), nullptr, 16)));
        }
    }
    return bytes;
}

inline std::vector<std::uint8_t> readInput(const std::filesystem::path& path)
{
    if (path.extension() == ".hex")
        return readHex(path);
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline std::vector<std::filesystem::path> corpusFiles(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".hex" || entry.path().extension() == ".toml")
            files.push_back(entry.path());
    return files;
}

} // namespace tolm::fuzz
