#include "fx/primes.h"

#include <algorithm>

namespace tolm {

namespace {

// For n below the square of the table's last prime.
bool isPrime(int n)
{
    for (const int p : kPrimes) {
        if (p * p > n)
            return true;
        if (n % p == 0)
            return false;
    }
    return true;
}

} // namespace

int primeAtLeast(int n)
{
    if (n <= kPrimes.back())
        return *std::lower_bound(kPrimes.begin(), kPrimes.end(), n);
    while (!isPrime(n))
        ++n;
    return n;
}

} // namespace tolm
