#include "engine/tables.h"

#include <algorithm>
#include <cmath>

namespace tolm {

void buildPitchTable(PitchTable& table)
{
    constexpr double kLowestHz = 1.021974609375;
    for (int i = 0; i < kPitchUnitsPerOctave; ++i) {
        double hz = kLowestHz * std::exp2(static_cast<double>(i) / kPitchUnitsPerOctave);
        for (int p = i; p < kPitchCount; p += kPitchUnitsPerOctave, hz *= 2.0)
            table[static_cast<std::size_t>(p)] = static_cast<float>(hz);
    }
}

} // namespace tolm
