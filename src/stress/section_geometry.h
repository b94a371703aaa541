// Points of a section's path and the plane elements that hold them: pure geometry.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace zentor {

struct PlanePoint {
  double x = 0.0, y = 0.0;
};

// Corners of an element, in its order; count is 3 or 4.
struct ElementCorners {
  int count = 0;
  std::array<PlanePoint, 4> points{};
};

// Place of a point in its element. 4 corners: xi, eta in -1 .. 1, corner 1 at (-1, -1), corner 2 at (1, -1).
// 3 corners: the area coordinates of corners 2 and 3.
struct LocalPoint {
  double xi = 0.0, eta = 0.0;
};

// n points from `first` to `last`; the inner ones by adding the step (last - first) / (n - 1) again and
// again. REQUIRES: n >= 2.
std::vector<PlanePoint> PathPoints(PlanePoint first, PlanePoint last, int n);

// The first corner (from 0) at which the point lies: whose distance is less than 0.0006 of the sum of the
// distances to all corners.
std::optional<std::size_t> CornerAt(const ElementCorners& element, PlanePoint point);

// Whether the angles under which the point sees the sides add up to a full turn.
bool LiesInside(const ElementCorners& element, PlanePoint point);

// The place of a point that lies inside; nothing when the element is too degenerate to tell.
std::optional<LocalPoint> FindLocal(const ElementCorners& element, PlanePoint point);

// Bilinear (4 corners) or linear (3 corners) interpolation of the values at the corners.
double Interpolate(int corner_count, LocalPoint at, const std::array<double, 4>& corner_values);

}  // namespace zentor
