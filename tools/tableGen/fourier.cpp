#include "tools/tableGen/fourier.h"

#include "engine/constants.h"

#include <cmath>
#include <utility>

namespace tolm {

namespace {

void reverseBits(std::vector<Complex>& data)
{
    const std::size_t size = data.size();
    for (std::size_t i = 1, j = 0; i < size; ++i) {
        std::size_t bit = size >> 1;
        for (; (j & bit) != 0; bit >>= 1)
            j ^= bit;
        j |= bit;
        if (i < j)
            std::swap(data[i], data[j]);
    }
}

// Cooley-Tukey, decimation in time; sign is -1 forward, +1 inverse.
void transform(std::vector<Complex>& data, double sign)
{
    const std::size_t size = data.size();
    reverseBits(data);
    std::vector<Complex> twiddles(size / 2);
    for (std::size_t i = 0; i < twiddles.size(); ++i)
        twiddles[i] =
            std::polar(1.0, sign * 2.0 * kPi * static_cast<double>(i) / static_cast<double>(size));
    for (std::size_t half = 1; half < size; half *= 2) {
        const std::size_t stride = size / (2 * half);
        for (std::size_t start = 0; start < size; start += 2 * half)
            for (std::size_t i = 0; i < half; ++i) {
                const Complex upper = data[start + i];
                const Complex lower = data[start + half + i] * twiddles[i * stride];
                data[start + i] = upper + lower;
                data[start + half + i] = upper - lower;
            }
    }
}

} // namespace

void forwardTransform(std::vector<Complex>& data)
{
    transform(data, -1.0);
}

void inverseTransform(std::vector<Complex>& data)
{
    transform(data, 1.0);
    for (Complex& value : data)
        value /= static_cast<double>(data.size());
}

const std::array<double, 2048>& unitSine()
{
    static_assert(kTableSize == 2048);
    static const std::array<double, 2048> table = [] {
        std::array<double, 2048> values{};
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = std::sin(2.0 * kPi * static_cast<double>(i) / kTableSize);
        return values;
    }();
    return table;
}

} // namespace tolm
