#pragma once
// Counts what takes memory anywhere in the process, the loaded plug-in and the C library included.

namespace tolm::test {

// Since the program's start; every malloc, calloc, realloc and aligned allocation is one.
long allocationCount();

} // namespace tolm::test
