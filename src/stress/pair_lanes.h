// Stresses of one pair in straight-line code, for loops over lanes. Conditions are chained selects of
// numbers: compilers turn those into vector code.
#pragma once

#include <cmath>
#include <limits>

#include "stress/equivalent_stress.h"
#include "stress/principal_lanes.h"
#include "stress/principal_stress.h"

namespace zentor {

inline constexpr double kOpen = std::numeric_limits<double>::quiet_NaN();  // the scalar statement must decide
// Tensors whose size is at most this many times their -q: the mean normal stress is then below 150 times
// sqrt(-q), and what is lost in the difference that makes q leaves 26 bits.
inline constexpr double kSmallestShare = 0x1p16;

// Limits of the general form in terms of a difference that was not divided by the reduction factor Kt.
struct DifferenceLimits {
  double half_over_kt = 0.0;        // 1.5 / Kt: from sqrt(-q) to the alternating von Mises stress
  double shear_square = 0.0;        // out-of-plane shear, squared and summed, above which one is above 1e-15
  double discriminant = 0.0;        // certainly above 1e-20 when divided by Kt^6
  double discriminant_error = 0.0;  // part of size^3 by which the division moves the discriminant
  double least_square = 0.0, largest_square = 0.0;
};
inline DifferenceLimits DifferenceLimitsOf(double kt) {
  const double kt2 = kt * kt;
  return {1.5 / kt,
          2.001e-30 * kt2,
          4e-20 * (kt2 * kt2 * kt2),
          kt == 1.0 ? 0.0 : 0x1p-39,
          1e-16 * (kt2 > 1.0 ? kt2 : 1.0),
          1e80 * (kt2 < 1.0 ? kt2 : 1.0)};
}

// Alternating von Mises stress 1.5 sqrt(-q), whatever the angle; within 2^-27 of the scalar one. The scalar
// statement divides each component by Kt, which moves q by 64 rounding units of the size and the discriminant
// by 16384 of its third power at most; 1.5 sqrt(-q) then differs from the stress of the three roots by some
// units of their size.
ZENTOR_LANES double AlternatingVonMises(const LaneTensor& difference, const DifferenceLimits& limits) {
  const LaneInvariants v = InvariantsOf(difference);
  const double value = limits.half_over_kt * std::sqrt(v.square);
  const double cube = v.square * v.square * v.square;
  const double square = v.r * v.r;
  const double error = 0x1p-44 * (square + cube) + limits.discriminant_error * (v.size * v.size * v.size);
  const double clear = std::abs(square - cube) > error + limits.discriminant ? value : kOpen;
  const double distinct = v.square > limits.least_square ? clear : kOpen;
  const double finite = v.square < limits.largest_square ? distinct : kOpen;
  const double precise = v.size < kSmallestShare * v.square ? finite : kOpen;
  const double shear = difference.txz * difference.txz + difference.tyz * difference.tyz;
  const double general = shear > limits.shear_square ? precise : kOpen;
  return v.size == 0.0 ? 0.0 : general;
}

// Stress intensity or largest principal stress, halved; within 2^-38. `difference`: divided by Kt.
template <int kind>
ZENTOR_LANES double AlternatingPrincipal(const LaneTensor& difference) {
  const LanePrincipals p = PrincipalsOf(difference);
  const double range = p.first - p.second;
  double d1 = p.first;
  double d2 = p.second;
  double d3 = p.third;
  OrderByMagnitude(d1, d2, d3);
  const double centre = std::abs(p.first + p.second + p.third);
  const double precise = centre < 0x1p10 * range ? AlternatingStressOf<kind>(d1, d2, d3) : kOpen;
  const double finite = p.first == p.first ? precise : kOpen;
  const double txz = std::abs(difference.txz);
  const double tyz = std::abs(difference.tyz);
  return (txz > tyz ? txz : tyz) > 1e-15 ? finite : kOpen;
}

// Signed von Mises stress of a mean tensor in the general form without its angles, within 2^-40. Its values
// are r cos(u) + p, r cos(u + 120 deg) + p and r cos(u + 240 deg) + p with r = 2 sqrt(-q), u in 0 .. 60
// degrees and p the mean normal stress. Whatever u is, they give the von Mises stress 3 sqrt(-q). The first
// is the largest and the second the smallest, so the sign is that of their sum r cos(u + 60 deg) + 2 p:
// whether y = cos(u + 60 deg) exceeds y0 = -p / sqrt(-q). y lies within 0.5 and solves 4 y^3 - 3 y + cos(3 u)
// = 0, whose left side falls there, so y > y0 where it is positive at y0; here both sides are multiplied by
// sqrt(-q)^3. Where it is too close to 0 to tell, the principal values themselves decide.
ZENTOR_LANES double SignedMeanStress(const LaneTensor& mean) {
  constexpr double kCosineLimit = 0.999999F;
  const LaneInvariants v = InvariantsOf(mean);
  const double root = std::sqrt(v.square);
  const double cube = v.square * root;
  const double limit = kCosineLimit * cube;
  const double low = v.r < -limit ? -limit : v.r;
  const double cosine = low > limit ? limit : low;
  const double p = v.centre;
  const double left_side = (3.0 * v.square - 4.0 * (p * p)) * p + cosine;
  const double inside = left_side > 0.0 ? root : -root;
  const double above = p <= -0.5 * root ? -root : inside;
  const double signed_root = p >= 0.5 * root ? root : above;
  const double margin = std::abs(p) >= 0.5 * root ? cube : std::abs(left_side);
  const double decided = margin > 0x1p-30 * cube ? 3.0 * signed_root : kOpen;
  const double distinct = WhereDistinct(v, decided);
  const double precise = v.size < kSmallestShare * v.square ? distinct : kOpen;
  return v.size == 0.0 ? 0.0 : precise;
}

// The corrections of approximate stresses. An error of the strength less the mean stress grows by 2^6 at
// most.
ZENTOR_LANES double GoodmanStress(double alternating, double mean, double su) {
  const double size = std::abs(mean);
  const double reserve = su - mean;
  const double clearance = 0x1p-6 * (su + size);
  const double corrected = reserve > 2e-10 ? su * alternating / reserve : kOpen;
  const double below = reserve > clearance ? corrected : kOpen;
  const double decided = reserve < -clearance ? static_cast<double>(1e30F) : below;
  const double large_enough = size > 1e-9 * alternating ? decided : kOpen;
  const double changed = size == 0.0 ? alternating : large_enough;
  return alternating == 0.0 ? 0.0 : changed;
}
ZENTOR_LANES double GerberStress(double alternating, double mean, double su) {
  const double size = std::abs(mean);
  const double ratio = mean / su;
  const double corrected = alternating / ((1.0 - ratio) * (1.0 + ratio));
  const double bounded = std::abs(su + mean) > 0x1p-6 * (su + size) ? corrected : kOpen;
  const double reserve = su - mean;
  const double clearance = 0x1p-6 * (su + size);
  const double possible = reserve > 2e-10 ? bounded : kOpen;
  const double below = reserve > clearance ? possible : kOpen;
  const double decided = reserve < -clearance ? static_cast<double>(1e30F) : below;
  const double large_enough = size > 1e-9 * alternating ? decided : kOpen;
  const double changed = size == 0.0 ? alternating : large_enough;
  return alternating == 0.0 ? 0.0 : changed;
}

// The scalar statement of the correction, written as selects: its bits.
template <int correction>
ZENTOR_LANES double CorrectedAsStated(double alternating, double mean, double su) {
  const double ratio = mean / su;
  const double lowered =
      correction == kGerber ? alternating / (1.0 - ratio * ratio) : su * alternating / (su - mean);
  const double corrected = su - mean < 1e-10 ? static_cast<double>(1e30F) : lowered;
  const double needed = std::abs(mean) / alternating <= static_cast<double>(1e-10F) ? alternating : corrected;
  return alternating <= 0.0 ? alternating : needed;
}

// Plane form of both tensors and everything after it: the bits of the scalar statement.
struct LanePlane {
  double first, second, third;
};
ZENTOR_LANES LanePlane PlanePrincipals(double sx, double sy, double sz, double txy) {
  const double sum = std::abs(sx) + std::abs(sy) + std::abs(sz) + std::abs(txy);
  const double difference = sx - sy;
  const double centre = (sx + sy) * 0.5;
  const double radius = 0.5 * std::sqrt(4.0 * (txy * txy) + difference * difference);
  return {sum < kNegligibleStress ? 0.0 : centre + radius, sum < kNegligibleStress ? 0.0 : centre - radius,
          sum < kNegligibleStress ? 0.0 : sz};
}
template <int kind>
ZENTOR_LANES double AlternatingPlane(const LaneTensor& s) {
  const LanePlane p = PlanePrincipals(s.sx, s.sy, s.sz, s.txy);
  double d1 = p.first;
  double d2 = p.second;
  double d3 = p.third;
  OrderByMagnitude(d1, d2, d3);
  return AlternatingStressOf<kind>(d1, d2, d3);
}
ZENTOR_LANES double SignedMeanPlane(const LaneTensor& s) {
  const LanePlane p = PlanePrincipals(s.sx, s.sy, s.sz, s.txy);
  return SignedVonMises(p.first, p.second, p.third);
}

}  // namespace zentor
