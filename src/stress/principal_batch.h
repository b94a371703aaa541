// Exact principal values of many tensors at once.
#pragma once

#include <array>
#include <span>

#include "stress/vector_forms.h"

namespace zentor {

// values[k][i]: the values of tensor i, largest first; components[c][i]: its components SX, SY, SZ, TXY, TXZ,
// TYZ, all of one length, any length. The bits of PrincipalExact. REQUIRES: RunsVectorForm(form).
void PrincipalBatch(const std::array<std::span<const double>, 6>& components,
                    const std::array<std::span<double>, 3>& values, VectorForm form = BestVectorForm());

}  // namespace zentor
