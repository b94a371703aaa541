// Stress states as every layer above the study input passes them.
#pragma once

#include <array>

namespace zentor {

// Six components in the fixed order SX, SY, SZ, TXY, TXZ, TYZ, in the study's stress unit.
using StressTensor = std::array<double, 6>;
// Linearised stress of a section's end: SX, SY, SZ, TXY.
using LinearisedStress = std::array<double, 4>;

}  // namespace zentor
