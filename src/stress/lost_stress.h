// Stresses that the closed formulas for repeated principal values lose (docs/numerics.md): counted, so that a
// run as stated can say where its results are too low.
#pragma once

#include <algorithm>
#include <cmath>

#include "stress/principal_stress.h"
#include "study/stress_tensor.h"

namespace zentor {

struct PairStress;
struct StudyState;

// What was lost at a node.
struct LostStress {
  int count = 0;         // pairs; points of a stress history; 1 for the classes of a node
  double largest = 0.0;  // alternating stress (half range over Kt) that counts as none or as too low

  void Add(double stress, int times = 1) {
    count += times;
    largest = std::max(largest, stress);
  }
};

// Whether values of the general form can have lost stress to its branch for repeated ones. That gives the
// last two the same value; where they then differ from the first by more than 0.02, a discriminant of at most
// 1e-20 leaves them right to a thousandth.
inline bool MayBeLost(const PrincipalValues& p) { return p[1] == p[2] && std::abs(p[0] - p[1]) <= 0.02; }

// The true von Mises stress of a tensor whose principal values came out as `found`, where these are off by
// more than a thousandth of the largest component; 0 otherwise. REQUIRES: MayBeLost(found).
double LostStressOf(const StressTensor& s, const PrincipalValues& found);

// Counts a pair that lost its alternating stress, or its mean stress where that matters: where it is
// corrected for, or several S-N curves tell stress ratios apart. Stresses of less than a hundredth of the
// lowest stress on the node's curves do not count: they do no damage, whatever the mean stress correction
// makes of them.
void AddLost(const StudyState& study, int material, const PairStress& stress, LostStress& lost);

}  // namespace zentor
