#pragma once
// The memory of a one-pole filter; its coefficients come from outside, so several filters share
// them.

#include "fx/Module.h"

namespace tolm {

struct OnePoleMemory {
    float x1 = 0.0f;
    float y1 = 0.0f;

    float run(const OnePole& c, float x)
    {
        const float y = c.b0 * x + c.b1 * x1 - c.a1 * y1;
        x1 = x;
        y1 = y;
        return y;
    }
    // As run, with outputs too small to hear stored and returned as 0.
    float runFlushed(const OnePole& c, float x)
    {
        run(c, x);
        flushOutput();
        return y1;
    }
    // A predicted branch: selecting the 0 by arithmetic would lengthen the recursion.
    void flushOutput()
    {
        if (std::abs(y1) < 1e-9f) [[unlikely]]
            y1 = 0.0f;
    }
    void flush()
    {
        x1 = flushTiny(x1);
        y1 = flushTiny(y1);
    }
};

} // namespace tolm
