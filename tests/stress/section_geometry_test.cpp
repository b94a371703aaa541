// Points on a path and in the elements that hold them.
#include "stress/section_geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

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
  EXPECT_EQ(CornerAt(kTriangle, {0.1, 2.9}), std::nullopt);
}

TEST(SectionPoint, InsideOnSidesAndOutside) {
  const ElementCorners clockwise = {4, {{{0, 0}, {0, 1}, {1, 1}, {1, 0}}}};
  for (const PlanePoint p : {PlanePoint{0.5, 0.5}, {0.3, 0.0}, {0.3, -1e-9}, {0.9, 0.2}}) {
    EXPECT_TRUE(LiesInside(kSquare, p) && LiesInside(clockwise, p)) << p.x << ", " << p.y;
  }
  for (const PlanePoint p : {PlanePoint{0.3, -1e-4}, {-0.2, 0.5}, {1.1, 0.2}, {50, 0.5}}) {
    EXPECT_FALSE(LiesInside(kSquare, p) || LiesInside(clockwise, p)) << p.x << ", " << p.y;
  }
  EXPECT_TRUE(LiesInside(kTriangle, {2, 1.5}));
  EXPECT_FALSE(LiesInside(kTriangle, {2.1, 1.6}));
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
  EXPECT_FALSE(FindLocal(line4, {1, 0}));
  const double nan = std::nan("");
  const ElementCorners broken = {3, {{{0, 0}, {1, nan}, {0, 1}, {}}}};
  EXPECT_FALSE(CornerAt(broken, {0.2, 0.2}));
  EXPECT_FALSE(LiesInside(broken, {0.2, 0.2}));
  EXPECT_FALSE(FindLocal(broken, {0.2, 0.2}));
}

}  // namespace
}  // namespace zentor
