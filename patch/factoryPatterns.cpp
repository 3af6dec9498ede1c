#include "patch/factoryPatterns.h"

#include "patch/soundTextRules.h"

namespace tolm {

extern "C" const ProgramRecord tolmFactoryPatterns[];
extern "C" const char tolmFactoryPatternsEnd;

std::span<const ProgramRecord> factoryPatterns()
{
    const auto bytes = &tolmFactoryPatternsEnd - reinterpret_cast<const char*>(tolmFactoryPatterns);
    return {tolmFactoryPatterns, static_cast<std::size_t>(bytes) / sizeof(ProgramRecord)};
}

std::string_view factoryPatternName(std::size_t pattern)
{
    return nameOf(factoryPatterns()[pattern]);
}

} // namespace tolm
