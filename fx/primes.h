#pragma once
// Prime numbers: delay lines whose lengths share no factor have no common echo.

#include <array>

namespace tolm {

inline constexpr int kPrimeCount = 3000;

constexpr std::array<int, kPrimeCount> makePrimes()
{
    constexpr int kLimit = 27450; // the 3000th is 27449
    std::array<bool, kLimit> composite{};
    std::array<int, kPrimeCount> primes{};
    std::size_t count = 0;
    for (int n = 2; n < kLimit; ++n) {
        if (composite[static_cast<std::size_t>(n)])
            continue;
        primes[count++] = n;
        for (int m = n * n; n < 166 && m < kLimit; m += n) // 166 * 166 is beyond the limit
            composite[static_cast<std::size_t>(m)] = true;
    }
    return primes;
}
inline constexpr std::array<int, kPrimeCount> kPrimes = makePrimes(); // from 2 upwards

// The smallest prime not below n, of any size.
int primeAtLeast(int n);

} // namespace tolm
