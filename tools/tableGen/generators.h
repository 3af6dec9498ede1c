#pragma once
// The generators behind the constant tables. They run once, at build time, in double precision.

#include "engine/tables.h"

namespace tolm {

void fillSine(ConstantTables& tables);
void fillSaws(ConstantTables& tables);
void fillSquareAndTriangle(ConstantTables& tables);
void fillStepResidual(ConstantTables& tables);
void fillWaves(ConstantTables& tables);
void fillSaturation(ConstantTables& tables);

} // namespace tolm
