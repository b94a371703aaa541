// Principal values of one general tensor in straight-line code, for loops over lanes.
//
// The solution of PrincipalGeneral with cheaper operations: divisions by constants become multiplications,
// arc cosine and cosine of the library two polynomials and a square root.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "stress/vector_forms.h"

namespace zentor {

// cos(acos(x) / 3) and sin(acos(x) / 3) / sqrt(1 - x) for 0 <= x <= 1 as polynomials in m = 2 x - 1, lowest
// coefficient first: Chebyshev interpolations, truncation errors 9e-17 and 4e-17. Their only singularity is
// at x = -1, so the coefficients fall by a factor of five each and summation is stable.
inline constexpr std::array<double, 18> kThirdCosine = {
    0.9396926207859083,      0.06582180727244977,    -0.006431413987654766,   0.001106654955835011,
    -0.00023364527966181174, 5.491441869621554e-05,  -1.3791275760405691e-05, 3.62328887318235e-06,
    -9.835503662434734e-07,  2.7368039994709837e-07, -7.761004276497005e-08,  2.236595852535534e-08,
    -6.593452892730033e-09,  1.9464781460249392e-09, -5.162220793008615e-10,  1.544985300172905e-10,
    -8.052797618819495e-11,  2.4591338781739102e-11};
inline constexpr std::array<double, 18> kThirdSine = {
    0.48368952529595055,    -0.013907174683594216,   0.0019250670001916168,  -0.0003691720780117935,
    8.215673747468853e-05,  -1.99178223772633e-05,   5.105288605626237e-06,  -1.3607672112518997e-06,
    3.7336980307116155e-07, -1.0475833583999015e-07, 2.990360204845585e-08,  -8.664202091977078e-09,
    2.5660696480175627e-09, -7.603854814984542e-10,  2.0204369896815838e-10, -6.06438280048541e-11,
    3.1774868188955966e-11, -9.722385466988125e-12};

// Horner's scheme on the even and the odd coefficients, which shortens the chain of dependent operations.
// Unrolled by hand: a loop in here would keep the loop over lanes from being vectorised.
template <std::size_t... kSteps>
ZENTOR_LANES double SumPolynomial(const std::array<double, 18>& c, double m,
                                  std::index_sequence<kSteps...> /*steps*/) {
  const double m2 = m * m;
  double even = c[16];
  double odd = c[17];
  ((even = even * m2 + c[14 - 2 * kSteps], odd = odd * m2 + c[15 - 2 * kSteps]), ...);
  return odd * m + even;
}
ZENTOR_LANES double EvaluatePolynomial(const std::array<double, 18>& c, double m) {
  return SumPolynomial(c, m, std::make_index_sequence<8>());
}

struct LaneTensor {
  double sx, sy, sz, txy, txz, tyz;
};

// Minus q and r of PrincipalGeneral, a third of the trace and the sum of squares of the nine components. q
// and r differ from those of PrincipalGeneral by three units of the last place at most: the sums are the same
// to the last bit, only the divisions by 9 and 54 have become multiplications.
struct LaneInvariants {
  double square, r, centre, size;
};
ZENTOR_LANES LaneInvariants InvariantsOf(const LaneTensor& s) {
  const double trace = s.sx + s.sy + s.sz;
  const double b = (s.sy + s.sz) * s.sx + s.sy * s.sz - s.txy * s.txy - s.txz * s.txz - s.tyz * s.tyz;
  const double determinant = s.sx * s.sy * s.sz + 2.0 * s.txy * s.tyz * s.txz - s.sx * (s.tyz * s.tyz) -
                             s.sy * (s.txz * s.txz) - s.sz * (s.txy * s.txy);
  return {(trace * trace - 3.0 * b) * (1.0 / 9.0),
          (27.0 * determinant - (9.0 * b - 2.0 * (trace * trace)) * trace) * (1.0 / 54.0),
          trace * (1.0 / 3.0), trace * trace - 2.0 * b};
}

// `value` where PrincipalGeneral certainly finds three distinct roots, NaN where rounding may decide
// otherwise (a discriminant or second invariant close to its limit), where the roots are repeated, for
// overflow and NaN. The discriminant's error in both computations together is below 100 units of the last
// place of r^2 + |q|^3.
ZENTOR_LANES double WhereDistinct(const LaneInvariants& v, double value) {
  constexpr double kOpen = std::numeric_limits<double>::quiet_NaN();
  const double cube = v.square * v.square * v.square;
  const double square = v.r * v.r;
  const double discriminant = std::abs(square - cube);
  const double clear = discriminant > 0x1p-44 * (square + cube) + 2e-20 ? value : kOpen;
  return v.square > 1e-19 ? clear : kOpen;
}

struct LanePrincipals {
  double first, second, third;
};

// Within 2^-41 of the radius 2 sqrt(-q), plus 2^-50 of the magnitude of a / 3, of the values that
// PrincipalGeneral gives. (Most is lost at the clamp of the cosine, where the angle's derivative is 707; away
// from it the difference is a few units of the last place.) The first is NaN where the roots are not
// certainly distinct and PrincipalGeneral itself must be asked.
ZENTOR_LANES LanePrincipals PrincipalsOf(const LaneTensor& tensor) {
  constexpr double kCosineLimit = 0.999999F;
  constexpr double kHalfRootThree = 0.8660254037844386;
  const LaneInvariants v = InvariantsOf(tensor);
  const double root = std::sqrt(v.square);
  const double cosine = v.r / (v.square * root);
  const double magnitude = std::abs(cosine) > kCosineLimit ? kCosineLimit : std::abs(cosine);
  // Of 3 u = acos(|x|), u in 0 .. 30 degrees; the roots of -x are those of x with the sign and the order
  // turned round.
  const double m = 2.0 * magnitude - 1.0;
  const double c = EvaluatePolynomial(kThirdCosine, m);
  const double s = EvaluatePolynomial(kThirdSine, m) * std::sqrt(1.0 - magnitude);
  const double half = 0.5 * c;
  const double side = kHalfRootThree * s;
  const double radius = 2.0 * root;
  return {WhereDistinct(v, radius * (cosine >= 0.0 ? c : half + side) + v.centre),
          radius * (cosine >= 0.0 ? -half - side : -c) + v.centre,
          radius * (cosine >= 0.0 ? side - half : half - side) + v.centre};
}

}  // namespace zentor
