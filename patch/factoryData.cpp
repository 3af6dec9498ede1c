// The factory bank that the build embeds: 384 records and the initial patch behind them. In a
// library of its own, so that the compiler of the bank can use the store without it.

#include "patch/programStore.h"

#include <array>

namespace tolm {

extern "C" const std::array<ProgramRecord, kProgramCount + 1> tolmFactoryBank;

ProgramStore::ProgramStore()
    : ProgramStore(std::span(tolmFactoryBank).first<kProgramCount>(), tolmFactoryBank.back())
{
}

} // namespace tolm
