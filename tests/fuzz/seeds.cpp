// fuzz_seeds FROM TO: writes the bytes of the corpus files in FROM into TO, where a fuzzer finds
// them.

#include "tests/fuzz/corpus.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: fuzz_seeds FROM TO\n", stderr);
        return 2;
    }
    const std::filesystem::path to(argv[2]);
    std::filesystem::create_directories(to);
    for (const auto& file : tolm::fuzz::corpusFiles(argv[1])) {
        const std::vector<std::uint8_t> bytes = tolm::fuzz::readInput(file);
        std::ofstream out(to / file.stem(), std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    }
    return 0;
}
