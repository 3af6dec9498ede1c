#pragma once
// The one random source of an instance: 32-bit linear congruential, 15-bit output. Seedable, so a
// render repeats exactly.

#include <cstdint>

namespace tolm {

inline constexpr std::uint32_t kLcgMultiplier = 214013;
inline constexpr std::uint32_t kLcgIncrement = 2531011;

class Random {
public:
    static constexpr int kMax = 32767;

    explicit Random(std::uint32_t seed = 1) : state_(seed) {}

    // 0..32767
    int next()
    {
        state_ = state_ * kLcgMultiplier + kLcgIncrement;
        return static_cast<int>((state_ >> 16) & 0x7FFF);
    }

private:
    std::uint32_t state_;
};

} // namespace tolm
