#include "fatigue/node_stress_history.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

#include "fatigue/stress_loops.h"
#include "stress/equivalent_stress.h"
#include "stress/lost_stress.h"
#include "stress/pair_stress.h"
#include "stress/principal_stress.h"

namespace zentor {
namespace {

StressTensor TensorAt(const TensorTile& t, std::size_t i) {
  return {t[0][i], t[1][i], t[2][i], t[3][i], t[4][i], t[5][i]};
}

// As stated, by the principal values; what they lost is counted.
double StressOf(const StressTensor& s, LostStress& lost) {
  if (!NeedsGeneralForm(s)) return SignedVonMises(PrincipalPlane(s[0], s[1], s[2], s[3]));
  const PrincipalValues p = PrincipalGeneral(s);
  if (MayBeLost(p)) {
    if (const double stress = LostStressOf(s, p); stress > 0.0) lost.Add(stress);
  }
  return SignedVonMises(p);
}

// Points that the loops could not settle, and plane points among general ones.
void SettleRest(const TensorTile& t, std::size_t n, bool all_general, TileRow& w, LostStress& lost) {
  for (std::size_t i = 0; i < n; ++i) {
    const StressTensor tensor = TensorAt(t, i);
    if (std::isnan(w[i]) || !(all_general || NeedsGeneralForm(tensor))) w[i] = StressOf(tensor, lost);
  }
}

void TileAsStated(const StressLoops& loops, const TensorTile& t, std::size_t n, TileRow& w,
                  LostStress& lost) {
  const std::size_t general = loops.count_general(t, n);
  if (general == 0) {
    loops.plane(t, n, w);
  } else if (const std::size_t open = loops.general(t, n, w); open != 0 || general != n) {
    SettleRest(t, n, general == n, w, lost);
  }
}

// Without out-of-plane shear in any loading there is none in a sum.
bool HasGeneralLoading(const LoadingStates& states, int events) {
  for (int e = 1; e <= events; ++e) {
    if (states.stress[e][4] != 0.0 || states.stress[e][5] != 0.0) return true;
  }
  return false;
}

void SumLoadings(const std::array<StressLoops::Sum, kEventGroup>& sums, const CombinedLoadTable& table,
                 const LoadingStates& states, std::size_t first, std::size_t n, TensorTile& t) {
  static constexpr TileRow kZeros{};
  EventGroup group;
  group.start.fill(kZeros.data());
  for (int e = 1; e <= table.events(); ++e) {
    group.loads[group.count] = table.loads[e].data() + first;
    group.units[group.count] = states.stress[e];
    ++group.count;
    if (group.count == kEventGroup || e == table.events()) {
      sums[group.count - 1](group, n, t);
      group.count = 0;
      for (std::size_t c = 0; c < t.size(); ++c) group.start[c] = t[c].data();
    }
  }
}

}  // namespace

LostStress NodeStressHistory(const FatigueProperties& properties, const CombinedLoadTable& table,
                             const LoadingStates& states, std::span<float> w, VectorForm form) {
  assert(w.size() == table.points);
  const StressLoops& loops = StressLoopsOf(form);
  const bool general = HasGeneralLoading(states, table.events());
  TensorTile t;
  TileRow stress;
  LostStress lost;
  for (std::size_t first = 0; first < table.points; first += kTile) {
    const std::size_t n = std::min(kTile, table.points - first);
    SumLoadings(general ? loops.sum_general : loops.sum_plane, table, states, first, n, t);
    if (properties.ExactPrincipalStresses) {
      (general ? loops.exact : loops.exact_plane)(t, n, stress);
    } else if (general) {
      TileAsStated(loops, t, n, stress, lost);
    } else {
      loops.plane(t, n, stress);
    }
    float* const out = w.data() + first;
    for (std::size_t i = 0; i < n; ++i) out[i] = static_cast<float>(stress[i]);
  }
  return lost;
}

void NodeStressHistoryByPoint(const FatigueProperties& properties, const CombinedLoadTable& table,
                              const LoadingStates& states, std::span<float> w) {
  for (std::size_t p = 0; p < table.points; ++p) {
    StressTensor sum{};
    for (int e = 1; e <= table.events(); ++e) {
      const auto load = static_cast<double>(table.loads[e][p]);
      for (std::size_t c = 0; c < sum.size(); ++c) sum[c] += load * states.stress[e][c];
    }
    w[p] = static_cast<float>(SignedStressOf(properties, sum));
  }
}

}  // namespace zentor
