#include "stress/principal_stress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "stress/equivalent_stress.h"
#include "stress/pair_stress.h"
#include "stress/turned_tensor.h"

namespace zentor {
namespace {

PrincipalValues Sorted(PrincipalValues p) {
  std::sort(p.begin(), p.end());
  return p;
}

TEST(PrincipalPlane, ClosedForms) {
  struct Case {
    double sx, sy, sz, txy;
    PrincipalValues expected;
  };
  const Case cases[] = {
      {120, 0, 0, 0, {120, 0, 0}},     // uniaxial
      {0, -80, 0, 0, {0, -80, 0}},     // compression along Y
      {0, 0, 0, 30, {30, -30, 0}},     // pure shear
      {50, 50, 50, 0, {50, 50, 50}},   // hydrostatic
      {80, 20, -7, 40, {100, 0, -7}},  // 3-4-5 circle, the normal stress comes last whatever its size
      {1e-16, 2e-16, 3e-16, 3e-16, {0, 0, 0}},
      {1e-15, 0, 0, 0, {0, 0, 0}},  // the limit is the single-precision 1e-15, slightly above 1e-15
      {1.00000001e-15, 0, 0, 0, {1.00000001e-15, 0, 0}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(PrincipalPlane(c.sx, c.sy, c.sz, c.txy), c.expected) << c.sx << " " << c.sy << " " << c.txy;
  }
}

// The clamp of the cosine turns the angle by at most acos(0.999999) / 3, and a principal value moves by at
// most that angle times 2 / 3 of the von Mises stress; away from repeated values nothing is clamped.
TEST(PrincipalGeneral, RotationsKeepPrincipalValues) {
  std::mt19937 random(20110309);
  std::uniform_real_distribution<double> value(-300, 300);
  for (int i = 0; i < 2000; ++i) {
    PrincipalValues d = {value(random), value(random), value(random)};
    if (i % 3 == 1) d[1] = d[0];                                 // repeated: the clamp acts
    if (i % 3 == 2) d[1] = d[0] + 0.1 * (value(random) - d[0]);  // close together
    const double mises = std::sqrt(VonMisesSquared(d[0], d[1], d[2]));
    const double mean = (d[0] + d[1] + d[2]) / 3;
    const double cosine = 13.5 * (d[0] - mean) * (d[1] - mean) * (d[2] - mean) / (mises * mises * mises);
    const bool clamped = std::abs(cosine) > 0.99999898;
    const double tolerance = clamped ? 2.0 / 3.0 * mises * std::acos(0.999998986) / 3.0 * 1.001 : 1e-8 * 300;

    const PrincipalValues found = Sorted(PrincipalGeneral(test::Turned(d, test::RandomRotation(random))));
    const PrincipalValues expected = Sorted(d);
    // Two equal larger values: where rounding leaves no discriminant, all three come out as the mean.
    if (d[0] == d[1] && cosine < 0 && found[0] == found[2]) {
      EXPECT_NEAR(found[0], mean, 1e-9 * 300) << "case " << i;
      continue;
    }
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(found[k], expected[k], tolerance) << "case " << i;
    EXPECT_NEAR(found[0] + found[1] + found[2], 3 * mean, 1e-9 * 900) << "case " << i;
  }
}

TEST(PrincipalGeneral, OrderOfTheThreeRoots) {
  const PrincipalValues p = PrincipalGeneral({0, 0, 0, 0, 40, 0});  // pure shear: 40, -40, 0
  EXPECT_NEAR(p[0], 40, 1e-12);
  EXPECT_NEAR(p[1], -40, 1e-12);
  EXPECT_NEAR(p[2], 0, 1e-12);
}

// Discriminants of at most 1e-20 take the formula of repeated values, right or not for the tensor.
TEST(PrincipalGeneral, VanishingDiscriminant) {
  const PrincipalValues hydrostatic = PrincipalGeneral({70, 70, 70, 0, 0, 0});
  for (const double value : hydrostatic) EXPECT_NEAR(value, 70, 1e-12);

  const double tension =
      2e-4;  // third root of R > 0 is a third of the stress, with a single-precision exponent
  const double third = std::pow(tension * tension * tension / 27, static_cast<double>(1.0F / 3.0F));
  const PrincipalValues uniaxial = PrincipalGeneral({0, 0, tension, 0, 0, 0});
  EXPECT_DOUBLE_EQ(uniaxial[0], 2 * third + tension / 3);
  EXPECT_DOUBLE_EQ(uniaxial[1], -third + tension / 3);
  EXPECT_EQ(uniaxial[1], uniaxial[2]);

  const PrincipalValues compression = PrincipalGeneral({0, 0, -tension, 0, 0, 0});
  EXPECT_EQ(compression, (PrincipalValues{-tension / 3, -tension / 3, -tension / 3}));
}

TEST(SignedVonMises, SignOfTheLargestFirstOnTies) {
  EXPECT_DOUBLE_EQ(SignedVonMises({100, 0, 0}), 100);
  EXPECT_DOUBLE_EQ(SignedVonMises({0, 0, -100}), -100);
  EXPECT_DOUBLE_EQ(SignedVonMises({50, -50, 0}), 50 * std::sqrt(3.0));
  EXPECT_DOUBLE_EQ(SignedVonMises({-50, 50, 0}), -50 * std::sqrt(3.0));
  EXPECT_DOUBLE_EQ(SignedVonMises({0, -50, 50}), -50 * std::sqrt(3.0));
  EXPECT_EQ(SignedVonMises({70, 70, 70}), 0);
  EXPECT_EQ(SignedVonMises({1e-20, 0, 0}), 0);
}

TEST(EvaluatePairStress, Definitions) {
  const StressTensor none{};
  const StressTensor pressure = {60, 60, 60, 0, 0, 0};
  const StressTensor biaxial = {100, 40, 0, 0, 0, 0};
  EXPECT_EQ(EvaluatePairStress(kStressIntensity, pressure, none).alternating, 0);
  EXPECT_EQ(EvaluatePairStress(kVonMises, pressure, none).alternating, 0);
  EXPECT_EQ(EvaluatePairStress(kMaximumPrincipal, pressure, none).alternating, 30);
  EXPECT_EQ(EvaluatePairStress(kStressIntensity, biaxial, none).alternating, 50);
  EXPECT_DOUBLE_EQ(EvaluatePairStress(kVonMises, biaxial, none).alternating, 0.5 * std::sqrt(7600.0));
  EXPECT_EQ(EvaluatePairStress(kMaximumPrincipal, biaxial, none).biaxiality, 0.4);
  // Equal magnitudes: the earlier value stays in front.
  EXPECT_EQ(EvaluatePairStress(kVonMises, {0, 0, 0, 25, 0, 0}, none).biaxiality, -1);
  // A mean tensor's out-of-plane shear counts only when the difference has one too.
  const StressTensor sheared = {30, 0, 0, 0, 40, 0};
  EXPECT_DOUBLE_EQ(EvaluatePairStress(kVonMises, biaxial, sheared).mean, 30);
  EXPECT_NEAR(EvaluatePairStress(kVonMises, sheared, sheared).mean, std::sqrt(900 + 3 * 1600.0), 1e-10);
}

}  // namespace
}  // namespace zentor
