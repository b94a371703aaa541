#include "stress/section_geometry.h"

#include <algorithm>
#include <cmath>

namespace zentor {
namespace {

constexpr double kCornerShare = 0.0006;
constexpr double kFullTurn = 6.283184932672558;  // a little less than 2 pi: points on a side are inside
constexpr double kLargestXi = 1.00001;
// Beyond this a point that sees a full turn of sides has been put outside by rounding in a collapsed element.
constexpr double kLocalMargin = 0.01;
constexpr double kNoQuadraticTerm = 1e-35;
constexpr double kZeroDiscriminant = -1e-20;

double Distance(PlanePoint a, PlanePoint b) {
  const double dx = a.x - b.x;
  const double dy = a.y - b.y;
  return std::sqrt(dx * dx + dy * dy);
}

// More than three times the element's extent away from it. Such a point sees each side under less than a
// sixth of a turn and is no corner either, so the tests below need not be made.
bool IsFar(const ElementCorners& element, PlanePoint point) {
  PlanePoint low = element.points[0];
  PlanePoint high = low;
  for (std::size_t i = 1; i < static_cast<std::size_t>(element.count); ++i) {
    low = {std::min(low.x, element.points[i].x), std::min(low.y, element.points[i].y)};
    high = {std::max(high.x, element.points[i].x), std::max(high.y, element.points[i].y)};
  }
  const double reach = 3.0 * std::max(high.x - low.x, high.y - low.y);
  return point.x < low.x - reach || point.x > high.x + reach || point.y < low.y - reach ||
         point.y > high.y + reach;
}

double AngleAt(PlanePoint point, PlanePoint a, PlanePoint b) {
  const double lengths = Distance(point, a) * Distance(point, b);
  if (!(lengths > 0.0)) return 0.0;
  const double dot = (a.x - point.x) * (b.x - point.x) + (a.y - point.y) * (b.y - point.y);
  // |cosine| <= 1 in theory; rounding can push it past 1, and acos would then return NaN.
  return std::acos(std::clamp(dot / lengths, -1.0, 1.0));
}

// A coordinate of the bilinear map: c + xi * a + eta * b + xi * eta * ab.
struct BilinearTerms {
  double c, xi, eta, xi_eta;
};

BilinearTerms TermsOf(double f1, double f2, double f3, double f4) {
  return {0.25 * (f1 + f2 + f3 + f4), 0.25 * (-f1 + f2 + f3 - f4), 0.25 * (-f1 - f2 + f3 + f4),
          0.25 * (f1 - f2 + f3 - f4)};
}

struct Roots {
  int count = 0;
  std::array<double, 2> values{};
};

// Roots of a r^2 + b r + c, that of the positive square root first. The root in which b and the square root
// would cancel is taken from the product of the roots: nearly parallel sides make a very small.
Roots QuadraticRoots(double a, double b, double c) {
  if (std::abs(a) <= kNoQuadraticTerm) return b == 0.0 ? Roots{} : Roots{1, {-c / b, 0.0}};
  double discriminant = b * b - 4.0 * a * c;
  if (!(discriminant >= kZeroDiscriminant)) return {};
  discriminant = std::max(discriminant, 0.0);
  const double root = std::sqrt(discriminant);
  const double sum = b < 0.0 ? -b + root : -b - root;
  const double large = sum / (2.0 * a);
  const double small = sum == 0.0 ? 0.0 : 2.0 * c / sum;
  return b < 0.0 ? Roots{2, {large, small}} : Roots{2, {small, large}};
}

// eta for a known xi, from the coordinate that changes more with it.
std::optional<double> EtaOf(const BilinearTerms& x, const BilinearTerms& y, PlanePoint point, double xi) {
  const double slope_x = x.eta + x.xi_eta * xi;
  const double slope_y = y.eta + y.xi_eta * xi;
  const bool by_x = std::abs(slope_x) >= std::abs(slope_y);
  const double slope = by_x ? slope_x : slope_y;
  if (slope == 0.0) return std::nullopt;
  return by_x ? (point.x - x.c - x.xi * xi) / slope : (point.y - y.c - y.xi * xi) / slope;
}

std::optional<LocalPoint> FindInQuadrilateral(const std::array<PlanePoint, 4>& p, PlanePoint point) {
  const BilinearTerms x = TermsOf(p[0].x, p[1].x, p[2].x, p[3].x);
  const BilinearTerms y = TermsOf(p[0].y, p[1].y, p[2].y, p[3].y);
  const double dx = point.x - x.c;
  const double dy = point.y - y.c;
  // (dx - x.xi xi) (y.eta + y.xi_eta xi) = (dy - y.xi xi) (x.eta + x.xi_eta xi)
  const double a = y.xi * x.xi_eta - x.xi * y.xi_eta;
  const double b = dx * y.xi_eta - x.xi * y.eta - dy * x.xi_eta + y.xi * x.eta;
  const double c = dx * y.eta - dy * x.eta;
  const Roots roots = QuadraticRoots(a, b, c);
  for (int i = 0; i < roots.count; ++i) {
    const double xi = roots.values[static_cast<std::size_t>(i)];
    if (!(std::abs(xi) <= kLargestXi)) continue;
    const std::optional<double> eta = EtaOf(x, y, point, xi);
    if (eta && std::abs(*eta) <= 1.0 + kLocalMargin) return LocalPoint{xi, *eta};
  }
  return std::nullopt;
}

// Twice the signed area.
double Cross(PlanePoint a, PlanePoint b, PlanePoint c) {
  return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

std::optional<LocalPoint> FindInTriangle(const std::array<PlanePoint, 4>& p, PlanePoint point) {
  const double area = Cross(p[0], p[1], p[2]);
  const LocalPoint local{Cross(p[0], point, p[2]) / area, Cross(p[0], p[1], point) / area};
  const bool inside = local.xi >= -kLocalMargin && local.eta >= -kLocalMargin &&
                      local.xi + local.eta <= 1.0 + kLocalMargin;  // false for NaN, too
  return inside ? std::optional(local) : std::nullopt;
}

}  // namespace

std::vector<PlanePoint> PathPoints(PlanePoint first, PlanePoint last, int n) {
  std::vector<PlanePoint> points(static_cast<std::size_t>(n), first);
  const double step_x = (last.x - first.x) / (n - 1);
  const double step_y = (last.y - first.y) / (n - 1);
  for (std::size_t k = 1; k + 1 < points.size(); ++k) {
    points[k] = {points[k - 1].x + step_x, points[k - 1].y + step_y};
  }
  points.back() = last;
  return points;
}

std::optional<std::size_t> CornerAt(const ElementCorners& element, PlanePoint point) {
  if (IsFar(element, point)) return std::nullopt;
  std::array<double, 4> distances{};
  double sum = 0.0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(element.count); ++i) {
    distances[i] = Distance(point, element.points[i]);
    sum += distances[i];
  }
  if (sum == 0.0) return 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(element.count); ++i) {
    if (distances[i] / sum < kCornerShare) return i;
  }
  return std::nullopt;
}

bool LiesInside(const ElementCorners& element, PlanePoint point) {
  if (IsFar(element, point)) return false;
  double turn = 0.0;
  const auto count = static_cast<std::size_t>(element.count);
  for (std::size_t i = 0; i < count; ++i) {
    turn += AngleAt(point, element.points[i], element.points[(i + 1) % count]);
  }
  return turn > kFullTurn;
}

std::optional<LocalPoint> FindLocal(const ElementCorners& element, PlanePoint point) {
  return element.count == 3 ? FindInTriangle(element.points, point)
                            : FindInQuadrilateral(element.points, point);
}

double Interpolate(int corner_count, LocalPoint at, const std::array<double, 4>& f) {
  const auto [xi, eta] = at;
  if (corner_count == 3) return f[0] * (1.0 - xi - eta) + f[1] * xi + f[2] * eta;
  return 0.25 * ((f[0] * (1.0 - eta) + f[3] * (1.0 + eta)) * (1.0 - xi) +
                 (f[1] * (1.0 - eta) + f[2] * (1.0 + eta)) * (1.0 + xi));
}

}  // namespace zentor
