// The corpus and mutations of it, run as ordinary tests: what a fuzzer found once stays found.

#include "tests/fuzz/corpus.h"
#include "tests/fuzz/targets.h"

#include <gtest/gtest.h>

#include <random>

namespace tolm::fuzz {
namespace {

struct Target {
    const char* name; // of the corpus folder
    void (*run)(Input);
};
constexpr Target kTargets[] = {
    {"chunk", chunkTarget},
    {"presetFile", presetFileTarget},
    {"soundText", soundTextTarget},
};

std::vector<std::vector<std::uint8_t>> corpusOf(const Target& target)
{
    std::vector<std::vector<std::uint8_t>> inputs;
    const std::filesystem::path corpus(TOLM_SOURCE_DIR "/tests/corpus");
    for (const auto& file : corpusFiles(corpus / target.name))
        inputs.push_back(readInput(file));
    return inputs;
}

void mutate(std::vector<std::uint8_t>& bytes, std::minstd_rand& random)
{
    const std::uint8_t edges[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
    for (auto n = random() % 4 + 1; n > 0 && !bytes.empty(); --n) {
        const std::size_t headerHeavy =
            random() % 2 ? bytes.size() : std::min<std::size_t>(bytes.size(), 41);
        std::uint8_t& byte = bytes[random() % headerHeavy];
        byte = random() % 2 ? edges[random() % 5] : static_cast<std::uint8_t>(random());
    }
    if (random() % 8 == 0)
        bytes.resize(random() % (bytes.size() + 64));
}

TEST(FuzzReplay, corpusAndItsMutationsKeepEveryPromise)
{
    for (const Target& target : kTargets) {
        const auto inputs = corpusOf(target);
        ASSERT_FALSE(inputs.empty()) << target.name;
        std::minstd_rand random(3);
        for (const auto& input : inputs) {
            target.run(input);
            for (int i = 0; i < 100; ++i) {
                auto changed = input;
                mutate(changed, random);
                target.run(changed);
            }
        }
    }
}

} // namespace
} // namespace tolm::fuzz
