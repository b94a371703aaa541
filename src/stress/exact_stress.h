// Stress measures of single tensors by exact principal values: right to rounding for every tensor, and the
// same for a tensor and its turned copy. The scalar statement of a study that asks for them; loops over pairs
// and points use the same functions (stress/exact_lanes.h) and give the same bits.
#pragma once

#include "stress/principal_stress.h"
#include "study/stress_tensor.h"

namespace zentor {

// Principal values, largest first, within 1e-13 of the largest component.
PrincipalValues PrincipalExact(const StressTensor& s);

// Magnitude of the largest component.
double SizeOf(const StressTensor& s);

// Alternating stress (half range, over Kt) of a stress difference that was not divided by Kt.
double ExactAlternating(int alternating_type, const StressTensor& difference, double kt);

// The same with the biaxiality ratio: second over first principal value in order of magnitude, 0 without
// stress. Magnitudes that are equal but for the rounding of single precision count as equal, and the tension
// comes first then; a second value that is 0 but for rounding counts as 0.
struct ExactMeasures {
  double alternating, biaxiality;
};
ExactMeasures ExactMeasuresOf(int alternating_type, const StressTensor& difference, double kt);
double ExactBiaxiality(const StressTensor& difference);

// von Mises stress with the sign of the principal value of largest magnitude; positive where the largest
// tension equals the largest compression but for the rounding to single precision of components up to `size`.
double ExactSignedStress(const StressTensor& s, double size);

}  // namespace zentor
