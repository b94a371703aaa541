// Principal values of a symmetric tensor to rounding, whatever the tensor is, in straight-line code: the same
// functions serve single tensors and loops over lanes, so both give the same bits.
//
// The deviator D of a tensor has the roots of d^3 - J2 d - J3. With the angle t in -30 .. 30 degrees, sin 3t
// = -1.5 sqrt(3) J3 / J2^1.5, they are
//   r cos(t + 30 deg) >= r sin t >= -r cos(t - 30 deg),   r = 2 sqrt(J2 / 3).
// The trigonometric solution loses half of the digits where two roots meet, because cos 3t is taken from
// 1 - sin^2 3t there. Here it comes from the discriminant as a sum of squares: for E = adj D + J2 / 3, which
// is without trace like D, |D|^2 |E|^2 - (D:E)^2 is a third of the discriminant 4 J2^3 - 27 J3^2, and by
// Lagrange's identity a sum of squares of 2 x 2 minors of (D, E); the same is |D|^2 |F|^2 with the part F of
// E that is perpendicular to D. So cos 3t = |F| / |E| to rounding for every tensor. That the discriminant is
// a sum of squares: E. Kummer, J. reine angew. Math. 26 (1843); as minors of the powers of the matrix: B.
// Parlett, Linear Algebra Appl. 355 (2002); why the cosine alone is not enough: W. Scherzinger and C.
// Dohrmann, Comput. Methods Appl. Mech. Engrg. 197 (2008), M. Habera and A. Zilian, arXiv:2111.02117 (2021).
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "stress/principal_lanes.h"
#include "study/fatigue_properties.h"

namespace zentor {

// The part of the size of stresses by which a largest tension may fall short of the largest compression and
// still count as equal to it. Components stored in single precision are off by 2^-24 of themselves, which
// moves the sum of both principal values by less than 6 * 2^-24 of the largest component.
inline constexpr double kEqualTension = 0x1p-20;

inline constexpr double kRootOfThree = 1.7320508075688772;

ZENTOR_LANES double LargerOf(double a, double b) { return a > b ? a : b; }

// Magnitude of the largest component. With kPlane, here and below, the tensors have no out-of-plane shear:
// what is left out would be zeros, so the bits are the same.
template <bool kPlane = false>
ZENTOR_LANES double SizeOf(const LaneTensor& s) {
  const double normal = LargerOf(LargerOf(std::abs(s.sx), std::abs(s.sy)), std::abs(s.sz));
  if constexpr (kPlane) return LargerOf(normal, std::abs(s.txy));
  const double shear = LargerOf(LargerOf(std::abs(s.txy), std::abs(s.txz)), std::abs(s.tyz));
  return LargerOf(normal, shear);
}

// A power of two with the exponent of a number, and its inverse. Exponents near both ends, where one of the
// two would be no normal number, are drawn in.
struct PowerOfTwo {
  double value, inverse;
};
ZENTOR_LANES PowerOfTwo PowerOfTwoOf(double number) {
  constexpr std::uint64_t kExponent = 0x7FF0000000000000U;
  constexpr std::uint64_t kTwoBiases = 0x7FE0000000000000U;
  const double larger = LargerOf(number, 0x1p-1020);
  const double bounded = larger < 0x1p1020 ? larger : 0x1p1020;
  const std::uint64_t exponent = std::bit_cast<std::uint64_t>(bounded) & kExponent;
  return {std::bit_cast<double>(exponent), std::bit_cast<double>(kTwoBiases - exponent)};
}

// The deviator of a tensor over a power of two that brings its largest component to 1 .. 2: no product of its
// components over- or underflows, and none is rounded otherwise than it would be unscaled.
struct ScaledDeviator {
  LaneTensor d;
  PowerOfTwo scale;
  double centre;  // mean normal stress, not scaled
};
template <bool kPlane = false>
ZENTOR_LANES ScaledDeviator DeviatorOf(const LaneTensor& s) {
  // From differences, in which a pressure on all normal stresses leaves no trace.
  const double u = s.sx - s.sy;
  const double v = s.sy - s.sz;
  const double w = s.sz - s.sx;
  const LaneTensor d = {
      (u - w) * (1.0 / 3.0), (v - u) * (1.0 / 3.0), (w - v) * (1.0 / 3.0), s.txy, s.txz, s.tyz};
  const PowerOfTwo scale = PowerOfTwoOf(SizeOf<kPlane>(d));
  const double up = scale.inverse;
  return {{d.sx * up, d.sy * up, d.sz * up, d.txy * up, kPlane ? 0.0 : d.txz * up, kPlane ? 0.0 : d.tyz * up},
          scale,
          (s.sx + s.sy + s.sz) * (1.0 / 3.0)};
}

// J2, a sum of squares.
template <bool kPlane = false>
ZENTOR_LANES double SecondInvariantOf(const LaneTensor& d) {
  const double normal = 0.5 * (d.sx * d.sx + d.sy * d.sy + d.sz * d.sz);
  if constexpr (kPlane) return normal + d.txy * d.txy;
  return normal + (d.txy * d.txy + d.txz * d.txz + d.tyz * d.tyz);
}
ZENTOR_LANES LaneTensor AdjugateOf(const LaneTensor& d) {
  return {d.sy * d.sz - d.tyz * d.tyz,  d.sx * d.sz - d.txz * d.txz,  d.sx * d.sy - d.txy * d.txy,
          d.txz * d.tyz - d.txy * d.sz, d.txy * d.tyz - d.txz * d.sy, d.txy * d.txz - d.tyz * d.sx};
}
// J3 = det D from D and its adjugate, along the last row.
ZENTOR_LANES double ThirdInvariantOf(const LaneTensor& d, const LaneTensor& adjugate) {
  return d.sz * adjugate.sz + (d.txz * adjugate.txz + d.tyz * adjugate.tyz);
}

// sqrt(J2), 1.5 J3 / J2 and cos 3t of a scaled deviator; 0, 0, 0 for one that is zero.
struct DeviatorAngle {
  double root, projection, cosine;
};
ZENTOR_LANES DeviatorAngle AngleOf(const LaneTensor& d) {
  const double j2 = SecondInvariantOf(d);
  const LaneTensor a = AdjugateOf(d);
  const double inverse = 1.0 / (j2 > 0.0 ? j2 : 1.0);
  const double c = 1.5 * ThirdInvariantOf(d, a) * inverse;  // D:E / D:D
  const double third = j2 * (1.0 / 3.0);
  const LaneTensor f = {a.sx + third - c * d.sx, a.sy + third - c * d.sy, a.sz + third - c * d.sz,
                        a.txy - c * d.txy,       a.txz - c * d.txz,       a.tyz - c * d.tyz};
  return {std::sqrt(j2), c, std::sqrt(3.0 * SecondInvariantOf(f)) * inverse};
}

// Largest less smallest principal value: 2 sqrt(J2) cos t.
ZENTOR_LANES double ExactIntensity(const LaneTensor& s) {
  const ScaledDeviator deviator = DeviatorOf(s);
  const DeviatorAngle angle = AngleOf(deviator.d);
  return 2.0 * angle.root * EvaluatePolynomial(kThirdCosine, 2.0 * angle.cosine - 1.0) * deviator.scale.value;
}

ZENTOR_LANES double ExactVonMises(const LaneTensor& s) {
  const ScaledDeviator deviator = DeviatorOf(s);
  return std::sqrt(3.0 * SecondInvariantOf(deviator.d)) * deviator.scale.value;
}

// Largest first; within 2e-15 of the tensor's largest component (tests).
ZENTOR_LANES LanePrincipals ExactPrincipals(const LaneTensor& s) {
  const ScaledDeviator deviator = DeviatorOf(s);
  const DeviatorAngle angle = AngleOf(deviator.d);
  const double cosine = EvaluatePolynomial(kThirdCosine, 2.0 * angle.cosine - 1.0);
  const double sine3 = -kRootOfThree * angle.projection / (angle.root > 0.0 ? angle.root : 1.0);
  const double sine = sine3 / (4.0 * (cosine * cosine) - 1.0);
  const double radius = (2.0 / kRootOfThree) * angle.root * deviator.scale.value;
  const double side = 0.5 * kRootOfThree * cosine;
  return {radius * (side - 0.5 * sine) + deviator.centre, radius * sine + deviator.centre,
          radius * (-side - 0.5 * sine) + deviator.centre};
}

// The measure of a stress difference, not halved. `kind` as for AlternatingStressOf.
template <int kind>
ZENTOR_LANES double ExactRange(const LaneTensor& s) {
  if constexpr (kind == kVonMises) {
    return ExactVonMises(s);
  } else if constexpr (kind == kMaximumPrincipal) {
    const LanePrincipals p = ExactPrincipals(s);
    return LargerOf(std::abs(p.first), std::abs(p.third));
  } else {
    return ExactIntensity(s);
  }
}

// von Mises stress; negative where the largest compression exceeds the largest tension by more than
// kEqualTension of `size`, the size of the stresses from which the tensor came. The sum of largest and
// smallest principal value is 2 p - d, p the mean normal stress and d the deviator's middle value. d lies
// within sqrt(J2 / 3), where d^3 - J2 d - J3 falls from one turning point to the other: d is at most x where
// that is not above 0 at x. No angle is needed; next to a turning point x is good to some 1e-8, far less than
// the tolerance.
template <bool kPlane = false>
ZENTOR_LANES double ExactSignedVonMises(const LaneTensor& s, double size) {
  const ScaledDeviator deviator = DeviatorOf<kPlane>(s);
  const LaneTensor& d = deviator.d;
  const double j2 = SecondInvariantOf<kPlane>(d);
  const double j3 = kPlane ? d.sz * (d.sx * d.sy - d.txy * d.txy) : ThirdInvariantOf(d, AdjugateOf(d));
  const double root = std::sqrt(j2);
  const double turn = root * (1.0 / kRootOfThree);
  const double x = (2.0 * deviator.centre + kEqualTension * size) * deviator.scale.inverse;
  const double inside = (x * x - j2) * x - j3 <= 0.0 ? root : -root;
  const double above = x < -turn ? -root : inside;
  return kRootOfThree * (x >= turn ? root : above) * deviator.scale.value;
}

}  // namespace zentor
