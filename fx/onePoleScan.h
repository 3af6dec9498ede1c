#pragma once
// y = x + k * y[-1], four frames at a time: sums over 1, 2 and 4 frames instead of four steps that
// wait for each other (a prefix sum after Hillis and Steele, 1986). The compilers' portable vectors
// make SSE of it.

#include <cstring>

namespace tolm {

using Frames4 = float __attribute__((vector_size(16)));

inline Frames4 load4(const float* from)
{
    Frames4 v;
    std::memcpy(&v, from, sizeof v);
    return v;
}
inline void store4(float* to, Frames4 v)
{
    std::memcpy(to, &v, sizeof v);
}

class OnePoleScan {
public:
    OnePoleScan() = default;
    OnePoleScan(float k, float state)
        : k_(k),
          k2_(k * k),
          powers_{k, k * k, k * k * k, k * k * k * k},
          state_{state, state, state, state}
    {
    }

    float state() const { return state_[0]; }
    float run(float x)
    {
        const float y = x + k_ * state_[0];
        state_ = Frames4{y, y, y, y};
        return y;
    }
    Frames4 run(Frames4 x)
    {
        constexpr Frames4 kZero{};
        x += __builtin_shufflevector(x, kZero, 4, 0, 1, 2) * k_;
        x += __builtin_shufflevector(x, kZero, 4, 5, 0, 1) * k2_;
        x += powers_ * state_;
        state_ = __builtin_shufflevector(x, x, 3, 3, 3, 3);
        return x;
    }

private:
    float k_ = 0.0f;
    float k2_ = 0.0f;
    Frames4 powers_{};
    Frames4 state_{}; // the last output, in every lane
};

} // namespace tolm
