#include "stress/section_linearisation.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace zentor {
namespace {

struct Thickness {
  std::size_t n;  // points
  double t;       // length of the path
  double h;       // distance of its points

  explicit Thickness(const PathStresses& path) : n(path.x.size()) {
    const double dx = path.x[n - 1] - path.x[0];
    const double dy = path.y[n - 1] - path.y[0];
    t = std::sqrt(dx * dx + dy * dy);
    h = t / static_cast<double>(n - 1);
  }
  // Position of point k = 0 .. n - 1, from the middle of the wall.
  double z(std::size_t k) const { return static_cast<double>(k) * h - t / 2.0; }

  // Trapezoid sum of f over the points.
  template <typename Function>
  double Sum(Function f) const {
    double sum = (f(0) + f(n - 1)) * 0.5;
    for (std::size_t k = 1; k + 1 < n; ++k) sum += f(k);
    return h * sum;
  }
};

struct Bending {
  double first, last;
};

// Bending of the weighted stress w about a neutral axis that is shifted by `shift` from the middle.
template <typename Function>
Bending ShiftedBending(const Thickness& wall, double shift, double inertia, Function w) {
  const double moment = wall.Sum([&](std::size_t k) { return (wall.z(k) - shift) * w(k); });
  return {(-wall.t / 2.0 - shift) * moment / inertia, (wall.t / 2.0 - shift) * moment / inertia};
}

double Inertia(double shift, double t) { return (shift * shift + t * t / 12.0) * t; }

// The terms of the curved forms. rotated: stresses in the section's axes.
struct CurvedWall {
  Thickness wall;
  std::span<const double> x;
  std::vector<PlaneComponents> rotated;
  double mean_radius;
  bool flat;  // the path's middle lies on the axis of symmetry, as far as its length tells

  double MeanRadiusFactor() const { return flat ? 1.0 : mean_radius; }
  // Stress times the length of its fibre around the axis.
  double Weighted(std::size_t k, std::size_t c) const { return flat ? rotated[k][c] : rotated[k][c] * x[k]; }
  double Membrane(std::size_t c) const {
    return wall.Sum([&](std::size_t k) { return Weighted(k, c); }) / (wall.t * MeanRadiusFactor());
  }
};

void AlongPath(const CurvedWall& curved, bool no_path_bending, SectionStress& out) {
  const Thickness& wall = curved.wall;
  const auto value = [&](std::size_t k) { return curved.rotated[k][0]; };
  out.membrane[0] = wall.Sum(value) / wall.t;
  if (no_path_bending) return;
  out.first_bending[0] = value(0) - out.membrane[0];
  out.last_bending[0] = value(wall.n - 1) - out.membrane[0];
}

void AcrossPath(const CurvedWall& curved, double rho, SectionStress& out) {
  const double t = curved.wall.t;
  const double shift =
      curved.flat ? t * t / (12.0 * rho) : t * t * std::cos(out.angle) / (12.0 * curved.mean_radius);
  const double inertia = Inertia(shift, t) * curved.MeanRadiusFactor();
  out.membrane[1] = curved.Membrane(1);
  const Bending bending =
      ShiftedBending(curved.wall, shift, inertia, [&](std::size_t k) { return curved.Weighted(k, 1); });
  out.first_bending[1] = bending.first;
  out.last_bending[1] = bending.last;
}

// Hoop stress acts on strips between two normals of the meridian, whose width goes as 1 + z / rho whatever
// the mean radius is.
void Hoop(const CurvedWall& curved, double rho, SectionStress& out) {
  const Thickness& wall = curved.wall;
  const double shift = wall.t * wall.t / (12.0 * rho);
  const auto weighted = [&](std::size_t k) { return curved.rotated[k][2] * (wall.z(k) / rho + 1.0); };
  out.membrane[2] = wall.Sum(weighted) / wall.t;
  const Bending bending = ShiftedBending(wall, shift, Inertia(shift, wall.t), weighted);
  out.first_bending[2] = bending.first;
  out.last_bending[2] = bending.last;
}

}  // namespace

PlaneComponents RotatePlane(const PlaneComponents& stress, double angle) {
  const double c = std::cos(2.0 * angle);
  const double s = std::sin(2.0 * angle);
  const double centre = (stress[0] + stress[1]) / 2.0;
  const double half = (stress[0] - stress[1]) / 2.0;
  return {centre + half * c + stress[3] * s, centre - half * c - stress[3] * s, stress[2],
          -half * s + stress[3] * c};
}

SectionStress LineariseStraight(const PathStresses& path) {
  const Thickness wall(path);
  SectionStress out;
  for (std::size_t c = 0; c < 4; ++c) {
    const auto value = [&](std::size_t k) { return path.stress[k][c]; };
    out.membrane[c] = wall.Sum(value) / wall.t;
    const double moment = wall.Sum([&](std::size_t k) { return value(k) * wall.z(k); });
    out.first_bending[c] = -6.0 * moment / (wall.t * wall.t);
    out.last_bending[c] = 6.0 * moment / (wall.t * wall.t);
  }
  return out;
}

std::optional<SectionStress> LineariseCurved(const PathStresses& path, double rho, bool no_path_bending) {
  if (rho == 0.0) return std::nullopt;
  const Thickness wall(path);
  SectionStress out;
  out.angle = std::atan2(path.y[wall.n - 1] - path.y[0], path.x[wall.n - 1] - path.x[0]);
  const double mean_radius = (path.x[0] + path.x[wall.n - 1]) * 0.5;
  CurvedWall curved{wall, path.x, {}, mean_radius, mean_radius < wall.t / 1000.0};
  for (const PlaneComponents& stress : path.stress) curved.rotated.push_back(RotatePlane(stress, out.angle));
  AlongPath(curved, no_path_bending, out);
  AcrossPath(curved, rho, out);
  Hoop(curved, rho, out);
  out.membrane[3] = curved.Membrane(3);
  return out;
}

PlaneComponents EndStress(const SectionStress& section, bool first_end) {
  PlaneComponents sum{};
  const PlaneComponents& bending = first_end ? section.first_bending : section.last_bending;
  for (std::size_t c = 0; c < sum.size(); ++c) sum[c] = section.membrane[c] + bending[c];
  return section.angle == 0.0 ? sum : RotatePlane(sum, -section.angle);
}

}  // namespace zentor
