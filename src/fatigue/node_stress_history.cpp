#include "fatigue/node_stress_history.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <limits>

#include "fatigue/reversals.h"
#include "stress/equivalent_stress.h"
#include "stress/principal_stress.h"

namespace zentor {
namespace {

// Points are taken in tiles that stay in the first-level cache: 6 components and a stress of 8 bytes each.
constexpr std::size_t kTile = 256;
using Row = std::array<double, kTile>;
using Tensors = std::array<Row, 6>;

constexpr double kZero = 1e-20;             // limits of the general form, as in PrincipalGeneral
constexpr double kCosineLimit = 0.999999F;  // single precision, widened
constexpr double kUndecided = 1e-10;        // below it the sign is left to the principal values themselves

void SumLoadings(const CombinedLoadTable& table, const LoadingStates& states, std::size_t first,
                 std::size_t n, Tensors& t) {
  for (Row& component : t) std::fill_n(component.begin(), n, 0.0);
  for (int e = 1; e <= table.events(); ++e) {
    const float* const load = table.loads[e].data() + first;
    const StressTensor& unit = states.stress[e];
    for (std::size_t c = 0; c < t.size(); ++c) {
      double* const sum = t[c].data();
      const double s = unit[c];
      for (std::size_t i = 0; i < n; ++i) sum[i] += static_cast<double>(load[i]) * s;
    }
  }
}

StressTensor TensorAt(const Tensors& t, std::size_t i) {
  return {t[0][i], t[1][i], t[2][i], t[3][i], t[4][i], t[5][i]};
}

double StressOf(const StressTensor& s) {
  return SignedVonMises(NeedsGeneralForm(s) ? PrincipalGeneral(s) : PrincipalPlane(s[0], s[1], s[2], s[3]));
}

std::size_t CountGeneral(const Tensors& t, std::size_t n) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < n; ++i) {
    count += static_cast<std::size_t>(std::abs(t[4][i]) > 1e-15) |
             static_cast<std::size_t>(std::abs(t[5][i]) > 1e-15);
  }
  return count;
}

// The same operations as PrincipalPlane, written as selects.
void PlaneStresses(const Tensors& t, std::size_t n, Row& w) {
  for (std::size_t i = 0; i < n; ++i) {
    const double sx = t[0][i];
    const double sy = t[1][i];
    const double sz = t[2][i];
    const double txy = t[3][i];
    const double sum = std::abs(sx) + std::abs(sy) + std::abs(sz) + std::abs(txy);
    const double centre = (sx + sy) * 0.5;
    const double radius = 0.5 * std::sqrt(4.0 * (txy * txy) + (sx - sy) * (sx - sy));
    const double stress = SignedVonMises(centre + radius, centre - radius, sz);
    w[i] = sum < kNegligibleStress ? 0.0 : stress;
  }
}

// The general form without its angles. Its values are r cos(u) - s, r cos(u + 120 deg) - s and r cos(u + 240
// deg) - s with r = 2 sqrt(-q), u in 0 .. 60 degrees and s = a / 3. Whatever u is, they give the von Mises
// stress 3 sqrt(-q). The first is the largest and the second the smallest, so the sign is that of their sum r
// cos(u + 60 deg) - 2 s: whether y = cos(u + 60 deg) exceeds y0 = s / sqrt(-q). y lies within 0.5 and solves
// 4 y^3 - 3 y + cos(3 u) = 0, whose left side falls there, so y > y0 where it is positive at y0. Where it is
// too close to 0 to tell, and where the general form has repeated roots, the principal values themselves
// decide (the result is NaN here). Apart from those points the result differs from theirs by rounding only.
void GeneralStresses(const Tensors& t, std::size_t n, Row& w) {
  for (std::size_t i = 0; i < n; ++i) {
    const double sx = t[0][i];
    const double sy = t[1][i];
    const double sz = t[2][i];
    const double txy = t[3][i];
    const double txz = t[4][i];
    const double tyz = t[5][i];
    const double a = -(sx + sy + sz);
    const double b = (sy + sz) * sx + sy * sz - txy * txy - txz * txz - tyz * tyz;
    const double determinant =
        sx * sy * sz + 2.0 * txy * tyz * txz - sx * (tyz * tyz) - sy * (txz * txz) - sz * (txy * txy);
    const double q = (3.0 * b - a * a) / 9.0;
    const double r = ((9.0 * b - 2.0 * (a * a)) * a + 27.0 * determinant) / 54.0;
    const double discriminant = r * r + q * q * q;
    const double root = std::sqrt(-q);
    const double ratio = r / (-q * root);
    const double low = ratio < -kCosineLimit ? -kCosineLimit : ratio;
    const double cosine = low > kCosineLimit ? kCosineLimit : low;
    const double y0 = a / 3.0 / root;
    const double left_side = (4.0 * y0 * y0 - 3.0) * y0 + cosine;
    const double inside = left_side > 0.0 ? 1.0 : -1.0;
    const double above = y0 >= 0.5 ? -1.0 : inside;
    const double sign = y0 <= -0.5 ? 1.0 : above;
    const double margin = std::abs(y0) >= 0.5 ? 1.0 : std::abs(left_side);
    const double distinct = q < -kZero ? std::abs(discriminant) : 0.0;
    const double decided = margin > kUndecided ? distinct : 0.0;
    w[i] = decided > kZero ? sign * (3.0 * root) : std::numeric_limits<double>::quiet_NaN();
  }
}

// Points that the loops above could not settle, and plane points among general ones.
void SettleRest(const Tensors& t, std::size_t n, bool all_general, Row& w) {
  for (std::size_t i = 0; i < n; ++i) {
    const StressTensor tensor = TensorAt(t, i);
    if (std::isnan(w[i]) || !(all_general || NeedsGeneralForm(tensor))) w[i] = StressOf(tensor);
  }
}

void TileStresses(const Tensors& t, std::size_t n, Row& w) {
  const std::size_t general = CountGeneral(t, n);
  if (general == 0) return PlaneStresses(t, n, w);
  GeneralStresses(t, n, w);
  SettleRest(t, n, general == n, w);
}

}  // namespace

void NodeStressHistory(const CombinedLoadTable& table, const LoadingStates& states, std::span<float> w) {
  assert(w.size() == table.points);
  Tensors t;
  Row stress;
  for (std::size_t first = 0; first < table.points; first += kTile) {
    const std::size_t n = std::min(kTile, table.points - first);
    SumLoadings(table, states, first, n, t);
    TileStresses(t, n, stress);
    float* const out = w.data() + first;
    for (std::size_t i = 0; i < n; ++i) out[i] = static_cast<float>(stress[i]);
  }
}

void NodeStressHistoryByPoint(const CombinedLoadTable& table, const LoadingStates& states,
                              std::span<float> w) {
  for (std::size_t p = 0; p < table.points; ++p) {
    StressTensor sum{};
    for (int e = 1; e <= table.events(); ++e) {
      const auto load = static_cast<double>(table.loads[e][p]);
      for (std::size_t c = 0; c < sum.size(); ++c) sum[c] += load * states.stress[e][c];
    }
    w[p] = static_cast<float>(StressOf(sum));
  }
}

HistoryCondition FilterAndCount(const FatigueProperties& properties, std::span<float> history,
                                RainflowState& state, RangeMeanMatrix& matrix) {
  const float threshold = FilterThreshold(history, properties.FilterPercent);
  const ReversalCount reversals = ExtractReversals(history, threshold, history);
  if (reversals.condition != HistoryCondition::kNone) return reversals.condition;
  return CountHistory(properties.RangeBinCount, properties.MeanBinCount, history.first(reversals.count),
                      state, matrix);
}

}  // namespace zentor
