#include "fatigue/node_stress_history.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

#include "fatigue/reversals.h"
#include "stress/equivalent_stress.h"
#include "stress/principal_stress.h"

namespace zentor {
namespace {

// Points are taken in tiles that stay in the first-level cache: 6 components and 3 principal values of 8
// bytes each.
constexpr std::size_t kTile = 256;
using Row = std::array<double, kTile>;
using Tensors = std::array<Row, 6>;
using Principals = std::array<Row, 3>;

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

// The same operations as PrincipalPlane, written as selects.
void PlaneForm(const Tensors& t, std::size_t n, Principals& out) {
  for (std::size_t i = 0; i < n; ++i) {
    const double sx = t[0][i];
    const double sy = t[1][i];
    const double sz = t[2][i];
    const double txy = t[3][i];
    const double sum = std::abs(sx) + std::abs(sy) + std::abs(sz) + std::abs(txy);
    const double centre = (sx + sy) * 0.5;
    const double radius = 0.5 * std::sqrt(4.0 * (txy * txy) + (sx - sy) * (sx - sy));
    const bool zero = sum < kNegligibleStress;
    out[0][i] = zero ? 0.0 : centre + radius;
    out[1][i] = zero ? 0.0 : centre - radius;
    out[2][i] = zero ? 0.0 : sz;
  }
}

void GeneralFormWhereNeeded(const Tensors& t, std::size_t n, Principals& out) {
  for (std::size_t i = 0; i < n; ++i) {
    const StressTensor tensor = {t[0][i], t[1][i], t[2][i], t[3][i], t[4][i], t[5][i]};
    if (!NeedsGeneralForm(tensor)) continue;
    const PrincipalValues values = PrincipalGeneral(tensor);
    for (std::size_t k = 0; k < values.size(); ++k) out[k][i] = values[k];
  }
}

}  // namespace

void NodeStressHistory(const CombinedLoadTable& table, const LoadingStates& states, std::span<float> w) {
  assert(w.size() == table.points);
  Tensors t;
  Principals p;
  for (std::size_t first = 0; first < table.points; first += kTile) {
    const std::size_t n = std::min(kTile, table.points - first);
    SumLoadings(table, states, first, n, t);
    PlaneForm(t, n, p);
    GeneralFormWhereNeeded(t, n, p);
    float* const out = w.data() + first;
    for (std::size_t i = 0; i < n; ++i)
      out[i] = static_cast<float>(SignedVonMises(p[0][i], p[1][i], p[2][i]));
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
