#include "stress/principal_stress.h"

#include <gtest/gtest.h>

#include <cmath>

#include "stress/equivalent_stress.h"
#include "stress/pair_stress.h"

namespace zentor {
namespace {

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

TEST(PrincipalGeneral, OrderOfTheThreeRoots) {
  const PrincipalValues p = PrincipalGeneral({0, 0, 0, 0, 40, 0});  // pure shear: 40, -40, 0
  EXPECT_NEAR(p[0], 40, 1e-12);
  EXPECT_NEAR(p[1], -40, 1e-12);
  EXPECT_NEAR(p[2], 0, 1e-12);
}

// Of two values close together the cosine, 1 but for 3e-8, is held at its limit; farther apart it is not.
TEST(PrincipalGeneral, CosineIsHeldBelowOne) {
  const double angle = std::acos(double{0.999999F}) / 3;
  const double radius = 2.0 / 3.0 * std::sqrt(VonMisesSquared(300, 0.03, 0));
  const PrincipalValues held = PrincipalGeneral({300, 0.03, 0, 0, 0, 0});
  EXPECT_NEAR(held[0], 100.01 + radius * std::cos(angle), 1e-9);
  EXPECT_NEAR(held[1], 100.01 - radius * std::sin(angle + std::acos(-1.0) / 6), 1e-9);
  const PrincipalValues free = PrincipalGeneral({300, 0.3, 0, 0, 0, 0});
  EXPECT_NEAR(free[1], 0, 1e-6);
  EXPECT_NEAR(free[2], 0.3, 1e-6);
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
