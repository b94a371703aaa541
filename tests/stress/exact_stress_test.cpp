#include "stress/exact_stress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "stress/pair_stress.h"
#include "stress/principal_batch.h"
#include "stress/turned_tensor.h"

namespace zentor {
namespace {

using Real = long double;

// Jacobi's rotations: another method, in higher precision.
std::array<Real, 3> PrincipalsByJacobi(const StressTensor& s) {
  Real a[3][3] = {{s[0], s[3], s[4]}, {s[3], s[1], s[5]}, {s[4], s[5], s[2]}};
  for (int sweep = 0; sweep < 30; ++sweep) {
    for (const auto& [p, q] : {std::pair{0, 1}, {0, 2}, {1, 2}}) {
      if (a[p][q] == 0) continue;
      const Real theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
      const Real t = (theta < 0 ? -1 : 1) / (std::abs(theta) + std::hypot(theta, Real{1}));
      const Real cosine = 1 / std::hypot(t, Real{1});
      const Real sine = t * cosine;
      const int k = 3 - p - q;
      const Real shift = t * a[p][q];
      const Real kp = cosine * a[k][p] - sine * a[k][q];
      const Real kq = sine * a[k][p] + cosine * a[k][q];
      a[p][p] -= shift, a[q][q] += shift, a[p][q] = a[q][p] = 0;
      a[k][p] = a[p][k] = kp, a[k][q] = a[q][k] = kq;
    }
  }
  std::array<Real, 3> values = {a[0][0], a[1][1], a[2][2]};
  std::sort(values.begin(), values.end(), std::greater<>());
  return values;
}

// Repeated, nearly repeated, zero, plane, sheared by a trifle, of every size down to subnormal numbers.
std::vector<StressTensor> Tensors(std::size_t count) {
  std::mt19937 random(21);
  std::normal_distribution<double> normal;
  const auto pick = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
  std::vector<StressTensor> tensors = {{}};
  while (tensors.size() < count) {
    PrincipalValues d = {normal(random), normal(random), normal(random)};
    const int kind = pick(6);
    if (kind <= 1) d[1] = d[0] * (1.0 + (kind == 0 ? 0.0 : std::ldexp(normal(random), -pick(54))));
    if (kind == 2) d[1] = d[2] = 0.0;
    if (kind == 3) d[1] = d[2] = d[0];
    if (kind == 4) d = {d[0], 0.0, -d[0]};
    if (kind == 5) d = {1e7 + d[0], 1e7 + d[1], 1e7 + d[2]};
    StressTensor s = pick(3) == 0 ? StressTensor{d[0], d[1], d[2], 0, 0, 0}
                                  : test::Turned(d, test::RandomRotation(random));
    if (pick(3) == 0) s = test::InSinglePrecision(s);
    if (pick(3) == 0) s[static_cast<std::size_t>(pick(5))] *= std::ldexp(1.0, -pick(400));
    const int size = pick(9);
    const double factor = size < 6 ? 1.0 : size < 9 ? std::ldexp(1.0, pick(1980) - 990) : 1e-320;
    for (double& c : s) c *= factor;
    tensors.push_back(s);
  }
  return tensors;
}

TEST(PrincipalExact, WithinAFewRoundingsOfTheLargestComponent) {
  constexpr Real kSmallest = std::numeric_limits<double>::denorm_min();
  const std::vector<StressTensor> tensors = Tensors(40000);
  for (const StressTensor& s : tensors) {
    SCOPED_TRACE(testing::PrintToString(s));
    const PrincipalValues found = PrincipalExact(s);
    const std::array<Real, 3> expected = PrincipalsByJacobi(s);
    const Real bound = 3e-15L * SizeOf(s) + 4 * kSmallest;
    for (std::size_t k = 0; k < 3; ++k) ASSERT_LE(std::abs(found[k] - expected[k]), bound) << k;
    // The measures, which are not taken from these values.
    const auto& [p1, p2, p3] = expected;
    const Real largest = std::max(std::abs(p1), std::abs(p3));
    const Real mises = std::sqrt(((p1 - p2) * (p1 - p2) + (p2 - p3) * (p2 - p3) + (p3 - p1) * (p3 - p1)) / 2);
    ASSERT_LE(std::abs(ExactAlternating(kStressIntensity, s, 0.25) - 2 * (p1 - p3)), 4 * bound);
    ASSERT_LE(std::abs(ExactAlternating(kVonMises, s, 0.25) - 2 * mises), 4 * bound);
    ASSERT_LE(std::abs(ExactAlternating(kMaximumPrincipal, s, 0.25) - 2 * largest), 4 * bound);
    const double signed_stress = ExactSignedStress(s, SizeOf(s));
    ASSERT_LE(std::abs(std::abs(signed_stress) - mises), bound);
    const bool tie = mises <= bound || std::abs(p1 + p3) <= 2e-6L * SizeOf(s) + 2 * bound;
    ASSERT_TRUE(tie || (signed_stress < 0) == (p1 + p3 < 0));
  }
}

TEST(PrincipalExact, LoopsHaveItsBits) {
  std::vector<StressTensor> tensors = Tensors(4003);
  tensors[7][4] = std::numeric_limits<double>::quiet_NaN();
  tensors[9][0] = 1e308, tensors[9][1] = -1e308;
  std::array<std::vector<double>, 6> components;
  for (std::size_t c = 0; c < 6; ++c) {
    for (const StressTensor& s : tensors) components[c].push_back(s[c]);
  }
  for (const VectorForm form : kVectorForms) {
    if (!RunsVectorForm(form)) continue;
    std::array<std::vector<double>, 3> values;
    std::array<std::span<const double>, 6> in;
    std::array<std::span<double>, 3> out;
    std::copy(components.begin(), components.end(), in.begin());
    for (std::size_t k = 0; k < 3; ++k) values[k].resize(tensors.size()), out[k] = values[k];
    PrincipalBatch(in, out, form);
    for (std::size_t i = 0; i < tensors.size(); ++i) {
      const PrincipalValues expected = PrincipalExact(tensors[i]);
      for (std::size_t k = 0; k < 3; ++k) {
        const bool same =
            std::bit_cast<std::uint64_t>(values[k][i]) == std::bit_cast<std::uint64_t>(expected[k]);
        ASSERT_TRUE(same || (std::isnan(values[k][i]) && std::isnan(expected[k]))) << i;
      }
    }
  }
}

// Components in single precision: the tension counts as the largest, also under a smaller mean of larger
// loads.
TEST(ExactSignedStress, PositiveWhereTensionEqualsCompressionInEveryOrientation) {
  std::mt19937 random(5);
  FatigueProperties properties;
  properties.ExactPrincipalStresses = true;
  for (int i = 0; i < 2000; ++i) {
    const test::Rotation r = test::RandomRotation(random);
    const StressTensor shear = test::InSinglePrecision(test::Turned({90, 0, -90}, r));
    const StressTensor back = test::InSinglePrecision(test::Turned({-89, 0, 89}, r));
    EXPECT_NEAR(SignedStressOf(properties, shear), 90 * std::sqrt(3.0), 1e-4);
    const PairStress pair = EvaluatePair(properties, shear, back);
    EXPECT_NEAR(pair.mean, 0.5 * std::sqrt(3.0), 1e-4);
    EXPECT_NEAR(pair.biaxiality, -1.0, 1e-6);
    EXPECT_LT(SignedStressOf(properties, test::InSinglePrecision(test::Turned({90, 0, -90.001}, r))), 0.0);
    const StressTensor tie = test::InSinglePrecision(test::Turned({90, 45, -45}, r));
    EXPECT_NEAR(BiaxialityOfPair(properties, tie, {}), 0.5, 1e-6) << "tension first";
  }
}

}  // namespace
}  // namespace zentor
