#pragma once
// While an object of this class lives, its thread computes denormal numbers as zero: they are
// inaudible, and slow on many processors. The host's own mode comes back at the end of the scope.

#if defined(__SSE__) || defined(_M_X64)
#include <immintrin.h>
#define TOLM_HAS_SSE 1
#endif

namespace tolm {

class FlushDenormals {
public:
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

#ifdef TOLM_HAS_SSE
    FlushDenormals() : saved_(_mm_getcsr())
    {
        _mm_setcsr(saved_ | kFlushToZero | kInputsAreZero);
    }
    ~FlushDenormals()
    {
        _mm_setcsr(saved_);
    }

private:
    static constexpr unsigned kFlushToZero = 0x8000;
    static constexpr unsigned kInputsAreZero = 0x0040;
    unsigned saved_;
#else
    FlushDenormals() = default;
    ~FlushDenormals() {}
#endif
};

} // namespace tolm
