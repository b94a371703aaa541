// From three principal values to one stress: the reductions shared by the scalar statement and the loops over
// pairs. All are chained selects of numbers, so that a loop over them vectorises and gives every lane the
// same bits.
#pragma once

#include <cmath>

#include "study/fatigue_properties.h"

namespace zentor {

// Orders three values by magnitude, largest first; equal magnitudes keep the earlier value in front.
inline void OrderByMagnitude(double& d1, double& d2, double& d3) {
  const auto exchange_if_smaller = [](double& front, double& back) {
    const bool smaller = std::abs(front) < std::abs(back);
    const double first = smaller ? back : front;
    const double second = smaller ? front : back;
    front = first;
    back = second;
  };
  exchange_if_smaller(d1, d2);
  exchange_if_smaller(d1, d3);
  exchange_if_smaller(d2, d3);
}

// Square of the von Mises stress of principal values. Symmetric in them but for the last bit: the order of
// the three terms is part of the result.
inline double VonMisesSquared(double p1, double p2, double p3) {
  return ((p1 - p2) * (p1 - p2) + (p2 - p3) * (p2 - p3) + (p3 - p1) * (p3 - p1)) * 0.5;
}

// von Mises stress with the sign of the principal value of largest magnitude.
inline double SignedVonMises(double q1, double q2, double q3) {
  double largest = std::abs(q2) > std::abs(q1) ? q2 : q1;
  largest = std::abs(q3) > std::abs(largest) ? q3 : largest;
  const double squared = VonMisesSquared(q1, q2, q3);
  const double root = std::sqrt(squared);
  const double value = largest >= 0.0 ? root : -root;
  const double nonzero = squared <= 0.0 ? 0.0 : value;
  return std::abs(largest) <= 1e-20 ? 0.0 : nonzero;
}

// The alternating stress (half range) of a stress difference from its principal values, ordered by magnitude.
// `kind` is an AlternatingStressType; one that the study cannot mean is taken as the stress intensity, the
// largest of the shear measures.
template <int kind>
double AlternatingStressOf(double d1, double d2, double d3) {
  if constexpr (kind == kVonMises) {
    const double squared = VonMisesSquared(d1, d2, d3);
    const double half = squared <= 0.0 ? 0.0 : 0.5 * std::sqrt(squared);
    return std::abs(d1) <= 1e-20 ? 0.0 : half;
  } else if constexpr (kind == kMaximumPrincipal) {
    return 0.5 * std::abs(d1);
  } else {
    const double a = std::abs(d1 - d2);
    const double b = std::abs(d2 - d3);
    const double c = std::abs(d1 - d3);
    const double larger = a < b ? b : a;
    return 0.5 * (larger < c ? c : larger);
  }
}
inline double AlternatingStressOf(int kind, double d1, double d2, double d3) {
  if (kind == kVonMises) return AlternatingStressOf<kVonMises>(d1, d2, d3);
  if (kind == kMaximumPrincipal) return AlternatingStressOf<kMaximumPrincipal>(d1, d2, d3);
  return AlternatingStressOf<kStressIntensity>(d1, d2, d3);
}

// Ratio of the second to the first principal value of a difference, ordered by magnitude; 0 without stress.
inline double BiaxialityOf(double d1, double d2) { return std::abs(d1) <= 1e-40 ? 0.0 : d2 / d1; }

}  // namespace zentor
