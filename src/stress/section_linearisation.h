// Membrane and bending parts of the stresses along a straight path through a wall.
//
// The sums are trapezoid sums over the path points, so the bending part of a linear distribution comes out
// too large by the factor 1 + 2 / (n - 1)^2; membrane parts of linear distributions are exact.
// The curved forms follow J. L. Gordon, ASME paper 76-WA/PVP-16 (1976), but for the inertia, in which the
// square of the shift is added (docs/sections.md).
#pragma once

#include <array>
#include <optional>
#include <span>

namespace zentor {

// SX, SY, SZ, TXY in the study's stress unit.
using PlaneComponents = std::array<double, 4>;

// Parts of the stresses at the two ends of a path, in axes that are turned by `angle` from the X axis
// (radians; 0 for a straight section).
struct SectionStress {
  PlaneComponents membrane{};
  PlaneComponents first_bending{}, last_bending{};  // at points 1 and n
  double angle = 0.0;
};

// A path of n >= 2 points at equal distances: x, y and the stresses, each of length n, ends apart.
struct PathStresses {
  std::span<const double> x, y;
  std::span<const PlaneComponents> stress;
};

// The components in axes turned by `angle` (radians, from X towards Y).
PlaneComponents RotatePlane(const PlaneComponents& stress, double angle);

// Straight section: components in the axes of the model.
SectionStress LineariseStraight(const PathStresses& path);

// Section of an axisymmetric wall (X is the radius) whose meridian has the radius of curvature rho: component
// 1 along the path, 2 across it, 3 hoop, 4 shear. `no_path_bending`: component 1 has no bending part. Nothing
// when rho is 0.
std::optional<SectionStress> LineariseCurved(const PathStresses& path, double rho, bool no_path_bending);

// Membrane plus bending at an end, in the axes of the model.
PlaneComponents EndStress(const SectionStress& section, bool first_end);

}  // namespace zentor
