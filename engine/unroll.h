#pragma once
// A hint for short serial loops: the test and the counter of every frame would cost as much as the
// one or two operations inside.

#if defined(__clang__)
#define TOLM_UNROLL _Pragma("unroll 4")
#else
#define TOLM_UNROLL _Pragma("GCC unroll 4")
#endif
