#pragma once
// Discrete Fourier transforms of the table generators.

#include <array>
#include <complex>
#include <vector>

namespace tolm {

using Complex = std::complex<double>;

// Radix-2 transforms in place; the size is a power of two. The inverse divides by the size.
void forwardTransform(std::vector<Complex>& data);
void inverseTransform(std::vector<Complex>& data);

// sin(2 pi k / 2048) for k = 0..2047. Harmonics of a table read it at (harmonic * i) & kTableMask,
// which is exact where an argument k * i would lose digits.
const std::array<double, 2048>& unitSine();

} // namespace tolm
