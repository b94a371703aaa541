// Principal values of many general tensors at once.
#pragma once

#include <array>
#include <span>

#include "stress/vector_forms.h"

namespace zentor {

// values[k][i]: the values of tensor i in the order of PrincipalGeneral; components[c][i]: its components SX,
// SY, SZ, TXY, TXZ, TYZ, all of one length, any length. Branches are taken as PrincipalGeneral takes them;
// the values differ from its by at most 2^-41 of 2 sqrt(-q), half the diameter of the circle through the
// three roots' angles, plus 2^-51 of the mean normal stress. The output must not overlap the input. Every
// form gives the same bits. REQUIRES: RunsVectorForm(form).
void PrincipalBatch(const std::array<std::span<const double>, 6>& components,
                    const std::array<std::span<double>, 3>& values, VectorForm form = BestVectorForm());

}  // namespace zentor
