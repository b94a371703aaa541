// Principal stresses of a symmetric tensor, in the order the solution gives them (not sorted).
#pragma once

#include <array>

#include "study/stress_tensor.h"

namespace zentor {

using PrincipalValues = std::array<double, 3>;

// A plane tensor whose components' magnitudes sum to less counts as zero. Single precision, widened.
inline constexpr double kNegligibleStress = 1e-15F;

// Plane form, for tensors without out-of-plane shear: m + r, m - r, SZ.
PrincipalValues PrincipalPlane(double sx, double sy, double sz, double txy);

// General form: trigonometric solution of the characteristic cubic, with the argument of the arc cosine
// clamped to
// +-0.999999 in single precision (docs/numerics.md says what that means near repeated principal values).
PrincipalValues PrincipalGeneral(const StressTensor& s);

// True when the pair or state needs the general form: |TXZ| or |TYZ| above 1e-15.
inline bool NeedsGeneralForm(const StressTensor& s) {
  return s[4] > 1e-15 || s[4] < -1e-15 || s[5] > 1e-15 || s[5] < -1e-15;
}

// Signed von Mises stress of principal values: the sign of the largest in magnitude (the first on ties), 0
// when that is at most 1e-20 in magnitude.
double SignedVonMises(const PrincipalValues& p);

}  // namespace zentor
