// Stress fields of elasticity in closed form, and the usage factors that follow from them.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "validation/published_case.h"
#include "validation/whole_run.h"

namespace zentor::validation {

namespace {

enum Measure { kIntensity, kVonMises, kMaxPrincipal };
constexpr const char* kMeasureNames[] = {"stress intensity", "von Mises", "maximum principal"};

// Alternating stresses at the nodes of the pair of the two cases, by `measure`.
RunResults Alternate(StudyDefinition study, Measure measure, const std::vector<int>& cases) {
  study.options.alternating_stress_type = measure;
  AddEvent(study, kUnitCycles, cases);
  return RunStudy(study);
}

// Closed ends, radii 10 and 20, internal pressure 30.
constexpr double kBore = 10.0, kOutside = 20.0, kPressure = 30.0;
Tensor Lame(double r) {
  const double a = kPressure * kBore * kBore / (kOutside * kOutside - kBore * kBore);
  const double b = a * kOutside * kOutside / (r * r);
  return {a - b, a, a + b};
}

std::vector<Comparison> ThickCylinder() {
  StudyDefinition study = WallStudy(kBore, kOutside, 64, {Lame});
  std::vector<Comparison> comparisons;
  const double shear[] = {40.0,
                          10.0};  // largest shear stress at bore and outside, p b^2 / (b^2 - a^2) at the bore
  const double of_shear[] = {1.0, std::sqrt(3.0) / 2};
  for (const Measure measure : {kIntensity, kVonMises}) {
    const RunResults results = Alternate(study, measure, {1, kZeroStressCase});
    for (const int end : {0, 1}) {
      const std::string place = end == 0 ? "bore, " : "outside, ";
      comparisons.push_back({"alternating stress, " + place + kMeasureNames[measure],
                             shear[end] * of_shear[measure], results.Usage(end == 0 ? 1 : 65), 1e-6});
    }
  }
  study.options.activated_location = 1;
  study.elastic_plastic = ConstantSm(1000.0, 2.0, 0.2);
  const RunResults section = Alternate(study, kMaxPrincipal, {1, kZeroStressCase});
  // Mean of the hoop stress, and the moment of A (1 + b^2 / r^2) about the middle of the wall.
  const double t = kOutside - kBore, middle = (kBore + kOutside) / 2;
  const double moment = Lame(kBore)[1] * kOutside * kOutside *
                        (std::log(kOutside / kBore) - middle * (1 / kBore - 1 / kOutside));
  comparisons.push_back({"linearised hoop stress at the bore", kPressure * kBore / t - 6 * moment / (t * t),
                         section.location.pairs.at(0).sn, 5e-4});
  return comparisons;
}

// Kirsch's stresses around a hole of radius 1 in a plate under tension 100 along X.
constexpr double kTension = 100.0;
Tensor Kirsch(double r, double theta) {
  const double u = 1 / (r * r), c2 = std::cos(2 * theta), s2 = std::sin(2 * theta);
  const double radial = kTension / 2 * (1 - u + (1 - 4 * u + 3 * u * u) * c2);
  const double hoop = kTension / 2 * (1 + u - (1 + 3 * u * u) * c2);
  const double shear = -kTension / 2 * (1 + 2 * u - 3 * u * u) * s2;
  const double mean = (radial + hoop) / 2, half = (radial - hoop) / 2;
  return {mean + half * c2 - shear * s2, mean - half * c2 + shear * s2, 0, half * s2 + shear * c2};
}

std::vector<Comparison> PlateWithHole() {
  constexpr double kDegree = std::numbers::pi / 180;
  const RunResults results = Alternate(PointStudy({{Kirsch(1, 90 * kDegree), Kirsch(1, 60 * kDegree),
                                                    Kirsch(1, 0), Kirsch(2, 90 * kDegree), Kirsch(1e6, 0)}}),
                                       kIntensity, {1, kZeroStressCase});
  const auto factor = [&](int node) { return results.Usage(node) / results.Usage(5); };
  return {{"stress concentration at 90 degrees", 3.0, factor(1), 1e-6},
          {"stress concentration at 60 degrees", 2.0, factor(2), 1e-6},
          {"stress concentration at 0 degrees (compression)", 1.0, factor(3), 1e-6},
          {"ratio at twice the radius, 90 degrees", 1.21875, factor(4), 1e-6}};
}

// Width 20, depth 30, length 200, force 100 at the tip, up and down: x from the tip, y from the neutral axis.
Tensor Cantilever(double x, double y) {
  constexpr double kForce = 100.0, kWidth = 20.0, kDepth = 30.0,
                   kInertia = kWidth * kDepth * kDepth * kDepth / 12;
  return {kForce * x * y / kInertia, 0, 0, kForce / (2 * kInertia) * (kDepth * kDepth / 4 - y * y)};
}

std::vector<Comparison> CantileverBeam() {
  StudyDefinition study =
      PointStudy({{Cantilever(200, 15), Cantilever(100, 15), Cantilever(200, 7.5), Cantilever(200, 0)}});
  study.stress_cases.push_back(study.stress_cases[0]);
  study.stress_cases[1].number = 2;
  for (float& value : study.stress_cases[1].fields[0].values) value = -value;
  const RunResults results = Alternate(study, kVonMises, {1, 2});
  const double bending = 6 * 100.0 * 200 / (20 * 30 * 30), shear = 1.5 * 100.0 / (20 * 30);
  return {{"alternating stress at the root, surface", bending, results.Usage(1), 1e-6},
          {"alternating stress at half length, surface", bending / 2, results.Usage(2), 1e-6},
          {"alternating stress at the root, half way to the neutral axis",
           std::hypot(bending / 2, std::sqrt(3.0) * 0.75 * shear), results.Usage(3), 1e-6},
          {"alternating stress in the neutral axis", std::sqrt(3.0) * shear, results.Usage(4), 1e-6}};
}

using Vector = std::array<double, 3>;
Vector Cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Vector Unit(const Vector& a) {
  const double length = std::hypot(a[0], a[1], a[2]);
  return {a[0] / length, a[1] / length, a[2] / length};
}

// Shear stress between the directions u and v.
Tensor Shear(double stress, const Vector& u, const Vector& v) {
  const auto at = [&](std::size_t i, std::size_t j) { return stress * (u[i] * v[j] + u[j] * v[i]); };
  return {at(0, 0), at(1, 1), at(2, 2), at(0, 1), at(0, 2), at(1, 2)};
}

// A bar of diameter 10 under a torque of 1000; twelve points around it, its axis along each of five
// directions.
std::vector<Comparison> TorsionOfABar() {
  const double stress = 16 * 1000.0 / (std::numbers::pi * 1000.0);
  std::vector<Tensor> states;
  for (const Vector& direction : {Vector{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {1, 2, 3}}) {
    const Vector axis = Unit(direction);
    const Vector across = Unit(Cross(axis, {0.3, -0.5, 0.8}));
    const Vector third = Cross(axis, across);
    for (int k = 0; k < 12; ++k) {
      const double angle = 2 * std::numbers::pi * k / 12, c = std::cos(angle), s = std::sin(angle);
      const Vector around = {c * third[0] - s * across[0], c * third[1] - s * across[1],
                             c * third[2] - s * across[2]};
      states.push_back(Shear(stress, axis, around));
    }
  }
  std::vector<Comparison> comparisons;
  const double of_shear[] = {1.0, std::sqrt(3.0) / 2, 0.5};
  for (const Measure measure : {kIntensity, kVonMises, kMaxPrincipal}) {
    const RunResults results = Alternate(PointStudy({states}), measure, {1, kZeroStressCase});
    Comparison worst;
    for (int node = 1; node <= static_cast<int>(states.size()); ++node) {
      const Comparison at_node = {
          std::string("alternating stress, the point farthest off, ") + kMeasureNames[measure],
          stress * of_shear[measure], results.Usage(node), 1e-6};
      if (node == 1 || at_node.Difference() > worst.Difference()) worst = at_node;
    }
    comparisons.push_back(worst);
  }
  return comparisons;
}

}  // namespace

std::vector<PublishedCase> ClosedForms() {
  return {
      {"Thick cylinder under internal pressure", "Lame's solution, closed ends",
       "Radii 10 and 20, pressure from 0 to 30, 64 elements through the wall with the stresses of the "
       "solution at their nodes.",
       "Alternating stresses are half of the range. The hoop stress at the bore is linearised in closed form "
       "(membrane p a / t and "
       "the bending stress of equal moment) and by a section of 65 points, whose trapezoid rule makes the "
       "bending part 0.05 % too "
       "large.",
       ThickCylinder},
      {"Infinite plate with a circular hole", "Kirsch's solution",
       "Tension from 0 to 100 far from the hole; 90 degrees is across the tension.",
       "Stress intensities of the range over the one far away.", PlateWithHole},
      {"Cantilever in bending", "Beam theory, parabolic shear stress",
       "Width 20, depth 30, length 200, a force at the tip alternating between 100 and -100.",
       "Von Mises stress; fully reversed, so that the alternating stress is the stress of one direction.",
       CantileverBeam},
      {"Torsion of a round bar", "16 T / (pi d^3), principal stresses at 45 degrees to the axis",
       "Diameter 10, torque from 0 to 1000, twelve points around the bar, its axis along X, Y, Z, (1, 1, 0) "
       "and (1, 2, 3).",
       "Alternating stresses are half of the range: 1, sqrt(3) / 2 and 1 / 2 of the shear stress.",
       TorsionOfABar},
  };
}

}  // namespace zentor::validation
