#include "gui/sine.h"

#include <cmath>

namespace tolm::gui {

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

// Taylor series, for angles within an eighth of a turn.
double shortSine(double x)
{
    const double s = x * x;
    return x * (1.0 + s * (-1.0 / 6 + s * (1.0 / 120 + s * (-1.0 / 5040 + s * (1.0 / 362880)))));
}
double shortCosine(double x)
{
    const double s = x * x;
    return 1.0 +
           s * (-0.5 + s * (1.0 / 24 + s * (-1.0 / 720 + s * (1.0 / 40320 - s * (1.0 / 3628800)))));
}

} // namespace

Direction directionOf(double angle)
{
    const double quarters = std::floor(angle / kHalfPi + 0.5);
    const double rest = angle - quarters * kHalfPi;
    const double c = shortCosine(rest);
    const double s = shortSine(rest);
    switch (static_cast<int>(quarters - 4.0 * std::floor(quarters / 4.0))) {
    case 0:
        return {c, s};
    case 1:
        return {-s, c};
    case 2:
        return {-c, -s};
    default:
        return {s, -c};
    }
}

} // namespace tolm::gui
