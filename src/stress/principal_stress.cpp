#include "stress/principal_stress.h"

#include <algorithm>
#include <cmath>

#include "stress/equivalent_stress.h"

namespace zentor {
namespace {

// Single-precision constants, widened: results near the limits depend on their exact values.
constexpr double kCosineLimit = 0.999999F;
constexpr double kThird = 1.0F / 3.0F;
constexpr double kTwoPiThirds = 2.0943951023931953;
constexpr double kFourPiThirds = 4.1887902047863905;
// Below it a discriminant or a second invariant counts as zero; in the study's stress unit to the 6th and 2nd
// power.
constexpr double kZero = 1e-20;

PrincipalValues ThreeRoots(double q, double r, double shift) {
  // |x| <= 1 in theory; rounding can push it past 1, and the arc cosine would then give NaN.
  const double x = std::clamp(r / std::sqrt(-(q * q * q)), -kCosineLimit, kCosineLimit);
  const double angle = std::acos(x) / 3.0;
  const double radius = 2.0 * std::sqrt(-q);
  return {radius * std::cos(angle) - shift, radius * std::cos(angle + kTwoPiThirds) - shift,
          radius * std::cos(angle + kFourPiThirds) - shift};
}

}  // namespace

PrincipalValues PrincipalPlane(double sx, double sy, double sz, double txy) {
  if (std::abs(sx) + std::abs(sy) + std::abs(sz) + std::abs(txy) < kNegligibleStress) return {0.0, 0.0, 0.0};
  const double centre = (sx + sy) * 0.5;
  const double radius = 0.5 * std::sqrt(4.0 * (txy * txy) + (sx - sy) * (sx - sy));
  return {centre + radius, centre - radius, sz};
}

PrincipalValues PrincipalGeneral(const StressTensor& s) {
  const auto [sx, sy, sz, txy, txz, tyz] = s;
  const double a = -(sx + sy + sz);
  const double b = (sy + sz) * sx + sy * sz - txy * txy - txz * txz - tyz * tyz;
  const double determinant =
      sx * sy * sz + 2.0 * txy * tyz * txz - sx * (tyz * tyz) - sy * (txz * txz) - sz * (txy * txy);
  const double q = (3.0 * b - a * a) / 9.0;
  const double r = ((9.0 * b - 2.0 * (a * a)) * a + 27.0 * determinant) / 54.0;
  const double discriminant = r * r + q * q * q;
  const double shift = a / 3.0;

  if (std::abs(discriminant) <= kZero) {  // repeated roots
    const double s3 = r > 0.0 ? std::pow(r, kThird) : 0.0;
    return {2.0 * s3 - shift, -s3 - shift, -s3 - shift};
  }
  // A discriminant above zero arises only by rounding near repeated roots: a symmetric tensor has real ones.
  if (q < -kZero) return ThreeRoots(q, r, shift);
  return {-shift, -shift, -shift};
}

double SignedVonMises(const PrincipalValues& p) { return SignedVonMises(p[0], p[1], p[2]); }

}  // namespace zentor
