// Linearisation against closed forms, and the curved forms against terms worked out by hand.
#include "stress/section_linearisation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <vector>

namespace zentor {
namespace {

constexpr double kTight = 1e-12;

// A path of length t from (5, 7) with stresses v, -v, 2 v, v / 2, v = f(z) at the distance z from the middle.
SectionStress Linearise(double t, int n, const std::function<double(double z)>& f) {
  std::vector<double> x, y;
  std::vector<PlaneComponents> stress;
  for (int k = 0; k < n; ++k) {
    const double s = t * k / (n - 1);
    const double v = f(s - t / 2);
    x.push_back(5 + s * std::cos(0.4));
    y.push_back(7 + s * std::sin(0.4));
    stress.push_back({v, -v, 2 * v, 0.5 * v});
  }
  return LineariseStraight({x, y, stress});
}

void ExpectNear(const PlaneComponents& found, const PlaneComponents& wanted, double tolerance,
                const std::string& what) {
  for (std::size_t c = 0; c < 4; ++c)
    EXPECT_NEAR(found[c], wanted[c], tolerance) << what << ", component " << c;
}

PlaneComponents Times(const PlaneComponents& v, double factor) {
  return {v[0] * factor, v[1] * factor, v[2] * factor, v[3] * factor};
}

// Trapezoid sums of polynomials by the Euler-Maclaurin formula, which ends after their last derivative.
TEST(StraightSection, PolynomialsHaveTheTrapezoidSumsClosedForms) {
  const double t = 3.0;
  const PlaneComponents unit = {1, -1, 2, 0.5};
  for (const int n : {2, 3, 17, 65}) {
    const std::string what = std::to_string(n) + " points";
    const double h = t / (n - 1);
    // 80 + 20 z: bending too large by 1 + 2 / (n - 1)^2, three times the half difference for n = 2.
    const SectionStress linear = Linearise(t, n, [](double z) { return 80 + 20 * z; });
    const double bending = 20 * t / 2 * (1 + 2.0 / ((n - 1) * (n - 1)));
    ExpectNear(linear.membrane, Times(unit, 80), 80 * kTight, what);
    ExpectNear(linear.last_bending, Times(unit, bending), 80 * kTight, what);
    ExpectNear(linear.first_bending, Times(unit, -bending), 80 * kTight, what);

    const SectionStress quadratic = Linearise(t, n, [](double z) { return z * z; });
    ExpectNear(quadratic.membrane, Times(unit, t * t / 12 + h * h / 6), kTight, what);
    ExpectNear(quadratic.last_bending, {}, kTight, what);

    const SectionStress cubic = Linearise(t, n, [](double z) { return z * z * z; });
    const double moment = std::pow(t, 5) / 80 + h * h * t * t * t / 12 - std::pow(h, 4) * t / 30;
    ExpectNear(cubic.membrane, {}, kTight, what);
    ExpectNear(cubic.last_bending, Times(unit, 6 * moment / (t * t)), 1e-11, what);
  }
}

// Points at X = 1, 2, 3 (t = 2, h = 1, mean radius 2), rho = 4; every number below by hand.
TEST(CurvedSection, TermByTerm) {
  const std::vector<double> x = {1, 2, 3};
  const std::vector<double> y = {0, 0, 0};
  const std::vector<PlaneComponents> stress = {{2, 1, 4, 1}, {5, 2, 4, 0}, {4, 3, 8, 2}};
  const PathStresses path{x, y, stress};
  const auto section = LineariseCurved(path, 4.0, false);
  ASSERT_TRUE(section);
  EXPECT_EQ(section->angle, 0.0);
  ExpectNear(section->membrane, {4.0, 2.25, 5.25, 0.875}, kTight, "membrane");
  // Across: shift 1/6, inertia (1/36 + 1/3) 2 2 = 13/9, moment 5/2. Hoop: shift 1/12, inertia 49/72, moment
  // 21/8.
  ExpectNear(section->first_bending, {-2.0, -105.0 / 52, -117.0 / 28, 0.0}, kTight, "first");
  ExpectNear(section->last_bending, {0.0, 75.0 / 52, 99.0 / 28, 0.0}, kTight, "last");

  const auto flagged = LineariseCurved(path, 4.0, true);
  EXPECT_EQ(flagged->membrane, section->membrane);
  ExpectNear(flagged->first_bending, {0.0, -105.0 / 52, -117.0 / 28, 0.0}, kTight, "first, no path bending");
  EXPECT_EQ(flagged->last_bending[0], 0.0);

  EXPECT_FALSE(LineariseCurved(path, 0.0, false));
}

// On the axis of symmetry nothing is weighted with the radius; the shift comes from rho. Path from (0, 0) to
// (0, 2) with rho = 4: shift 1/12, inertia 49/72; in its axes component 1 is SY.
TEST(CurvedSection, FlatOnTheAxisOfSymmetry) {
  const std::vector<double> x = {0, 0, 0};
  const std::vector<double> y = {0, 1, 2};
  const std::vector<PlaneComponents> stress = {{3, 2, 3, -1}, {4, 5, 4, 0}, {10, 4, 10, -2}};
  const auto section = LineariseCurved({x, y, stress}, 4.0, false);
  ASSERT_TRUE(section);
  EXPECT_NEAR(section->angle, std::numbers::pi / 2, kTight);
  // Across: weights 3, 4, 10 as in the hand calculation of the hoop terms above. Shear turns its sign.
  const double found[] = {section->membrane[0], section->membrane[1], section->membrane[3],
                          section->first_bending[1], section->last_bending[1]};
  const double wanted[] = {4.0, 5.25, 0.75, -117.0 / 28, 99.0 / 28};
  for (std::size_t i = 0; i < std::size(wanted); ++i) EXPECT_NEAR(found[i], wanted[i], kTight) << i;
}

}  // namespace
}  // namespace zentor
