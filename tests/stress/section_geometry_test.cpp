// Points on a path and in the elements that hold them.
#include "stress/section_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace zentor {
namespace {

constexpr ElementCorners kSquare = {4, {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}}};
constexpr ElementCorners kTriangle = {3, {{{0, 0}, {4, 0}, {0, 3}, {}}}};

// The bilinear map from its shape functions.
PlanePoint MapOf(const ElementCorners& e, double xi, double eta) {
  const double w[4] = {(1 - xi) * (1 - eta) / 4, (1 + xi) * (1 - eta) / 4, (1 + xi) * (1 + eta) / 4,
                       (1 - xi) * (1 + eta) / 4};
  PlanePoint p;
  for (std::size_t i = 0; i < 4; ++i) {
    p.x += w[i] * e.points[i].x;
    p.y += w[i] * e.points[i].y;
  }
  return p;
}

// Around corner 2 of the unit square the distances add up to 2 + sqrt(2), so the limit is 0.0006 of that.
TEST(SectionPoint, CornerTolerance) {
  const double limit = 0.0006 * (2 + std::numbers::sqrt2);
  EXPECT_EQ(CornerAt(kSquare, {1 - 0.99 * limit, 0}), 1U);
  EXPECT_EQ(CornerAt(kSquare, {1 - 1.01 * limit, 0}), std::nullopt);
  EXPECT_EQ(CornerAt(kSquare, {1, 1 + 0.99 * limit}), 2U);  // outside the element, too
  EXPECT_EQ(CornerAt(kTriangle, {0, 3}), 2U);
  EXPECT_EQ(CornerAt(kTriangle, {0.1, 2.9}), std::nullopt);
}

TEST(SectionPoint, SidesCountAsInside) {
  for (const double y : {0.0, -1e-9}) EXPECT_TRUE(LiesInside(kSquare, {0.3, y})) << y;
  EXPECT_FALSE(LiesInside(kSquare, {0.3, -1e-4}));
  EXPECT_TRUE(LiesInside(kTriangle, {2, 1.5}));
}

// The shortcut for points that are far away decides nothing else than the plain tests would, whatever the
// element looks like.
TEST(SectionPoint, AgreesWithThePlainAngleSum) {
  std::mt19937 random(20110309);
  std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
  std::uniform_real_distribution<double> wide(-9.0, 9.0);
  int inside = 0;
  for (int trial = 0; trial < 4000; ++trial) {
    ElementCorners element{trial % 2 == 0 ? 4 : 3, {}};
    for (PlanePoint& p : element.points) p = {coordinate(random), coordinate(random)};
    const bool near = trial % 3 != 0;
    const PlanePoint point =
        near ? PlanePoint{coordinate(random), coordinate(random)} : PlanePoint{wide(random), wide(random)};
    double sum = 0;
    for (int i = 0; i < element.count; ++i) {
      const PlanePoint a = element.points[static_cast<std::size_t>(i)];
      const PlanePoint b = element.points[static_cast<std::size_t>((i + 1) % element.count)];
      const double turn = std::atan2(a.y - point.y, a.x - point.x) - std::atan2(b.y - point.y, b.x - point.x);
      sum += std::abs(std::remainder(turn, 2 * std::numbers::pi));
    }
    EXPECT_EQ(LiesInside(element, point), sum > 6.283184932672558) << "trial " << trial;
    inside += LiesInside(element, point) ? 1 : 0;
  }
  EXPECT_GT(inside, 100);
}

TEST(LocalCoordinates, InvertTheBilinearMap) {
  const ElementCorners shapes[] = {
      kSquare,
      {4, {{{0, 0}, {4, 1}, {5, 3}, {1, 2}}}},                  // parallelogram
      {4, {{{0, 0}, {4, 0}, {3, 2}, {1, 2}}}},                  // upper side shorter
      {4, {{{0, 0}, {2, 1}, {2, 3}, {0, 4}}}},                  // right side shorter
      {4, {{{600, -60}, {612, -58}, {613, -49}, {601, -52}}}},  // no side parallel
      {4, {{{0, 0}, {1, 1e-13}, {1, 1}, {1e-13, 1}}}},          // parallel but for rounding
      {4, {{{0, 0}, {2, 0}, {1, 2}, {1, 2}}}},                  // two corners in one
  };
  for (std::size_t s = 0; s < std::size(shapes); ++s) {
    for (const double xi : {-1.0, -0.62, 0.0, 0.35, 1.0}) {
      for (const double eta : {-1.0, -0.5, 0.0, 0.81, 0.97}) {
        const auto local = FindLocal(shapes[s], MapOf(shapes[s], xi, eta));
        ASSERT_TRUE(local) << "shape " << s << ": " << xi << ", " << eta;
        EXPECT_NEAR(local->xi, xi, 1e-9) << "shape " << s << ": " << xi << ", " << eta;
        EXPECT_NEAR(local->eta, eta, 1e-9) << "shape " << s << ": " << xi << ", " << eta;
      }
    }
  }
}

TEST(LocalCoordinates, CollapsedElementsHaveNone) {
  const ElementCorners line4 = {4, {{{0, 0}, {2, 0}, {2, 0}, {0, 0}}}};
  const ElementCorners point = {4, {{{1, 1}, {1, 1}, {1, 1}, {1, 1}}}};
  EXPECT_FALSE(FindLocal(line4, {1, 0}));
  EXPECT_FALSE(FindLocal(point, {1, 1}));
  const double nan = std::nan("");
  const ElementCorners broken = {3, {{{0, 0}, {1, nan}, {0, 1}, {}}}};
  EXPECT_FALSE(CornerAt(broken, {0.2, 0.2}));
  EXPECT_FALSE(LiesInside(broken, {0.2, 0.2}));
  EXPECT_FALSE(FindLocal(broken, {0.2, 0.2}));
}

}  // namespace
}  // namespace zentor
