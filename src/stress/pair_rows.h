// Loops over the pairs of a node, row by row: what the loops of both kinds of principal stresses share.
#pragma once

#include "stress/pair_lanes.h"
#include "stress/pair_passes.h"

namespace zentor {

// The tensors of the pairs of one loading: the loading itself and the first of its partners.
struct Partners {
  std::size_t first, second;  // places of the loading and of the first partner
  LaneTensor one;
  const double *sx, *sy, *sz, *txy, *txz, *tyz;
};
ZENTOR_LANES Partners PartnersOf(const PairsOfLoading& row, const LoadingStresses& s) {
  const std::size_t i = row.first;
  const std::size_t j = row.second;
  return {i,        j,        {s[0][i], s[1][i], s[2][i], s[3][i], s[4][i], s[5][i]},
          &s[0][j], &s[1][j], &s[2][j],
          &s[3][j], &s[4][j], &s[5][j]};
}

// Difference and mean of a loading and one of its partners.
ZENTOR_LANES LaneTensor DifferenceOf(const Partners& s, std::size_t j) {
  return {s.one.sx - s.sx[j],   s.one.sy - s.sy[j],   s.one.sz - s.sz[j],
          s.one.txy - s.txy[j], s.one.txz - s.txz[j], s.one.tyz - s.tyz[j]};
}
ZENTOR_LANES LaneTensor Over(const LaneTensor& s, double kt) {
  return {s.sx / kt, s.sy / kt, s.sz / kt, s.txy / kt, s.txz / kt, s.tyz / kt};
}
ZENTOR_LANES LaneTensor MeanOf(const Partners& s, std::size_t j) {
  return {(s.one.sx + s.sx[j]) * 0.5,   (s.one.sy + s.sy[j]) * 0.5,   (s.one.sz + s.sz[j]) * 0.5,
          (s.one.txy + s.txy[j]) * 0.5, (s.one.txz + s.txz[j]) * 0.5, (s.one.tyz + s.tyz[j]) * 0.5};
}

// A row's last vector writes behind the row; the next row overwrites that.
template <std::size_t kLanes, typename Pair>
ZENTOR_LANES void EvaluateRows(const PairStressRequest& request, const UsagePlan& plan,
                               const LoadingStresses& stress, PairValues& alternating) {
  const Pair pair(request, plan, stress);
  for (std::size_t k = 0; k < plan.rows; ++k) {
    const Partners s = PartnersOf(plan.row[k], stress);
    double* const out = &alternating[plan.row[k].place];
    const std::size_t count = RoundedUp(plan.row[k].count, kLanes);
    ZENTOR_INDEPENDENT
    for (std::size_t j = 0; j < count; ++j) out[j] = pair(s, j);
  }
}

template <std::size_t kLanes, template <int, int> typename Pair, int kind>
ZENTOR_LANES void EvaluateCorrected(const PairStressRequest& request, const UsagePlan& plan,
                                    const LoadingStresses& stress, PairValues& alternating) {
  switch (request.correction) {
    case kNoCorrection:
      return EvaluateRows<kLanes, Pair<kind, kNoCorrection>>(request, plan, stress, alternating);
    case kGerber:
      return EvaluateRows<kLanes, Pair<kind, kGerber>>(request, plan, stress, alternating);
    default:  // Soderberg's formula is Goodman's
      return EvaluateRows<kLanes, Pair<kind, kGoodman>>(request, plan, stress, alternating);
  }
}

template <std::size_t kLanes, template <int, int> typename Pair>
ZENTOR_LANES void EvaluateAll(const PairStressRequest& request, const UsagePlan& plan,
                              const LoadingStresses& stress, PairValues& alternating) {
  switch (request.alternating_type) {
    case kVonMises:
      return EvaluateCorrected<kLanes, Pair, kVonMises>(request, plan, stress, alternating);
    case kMaximumPrincipal:
      return EvaluateCorrected<kLanes, Pair, kMaximumPrincipal>(request, plan, stress, alternating);
    default:
      return EvaluateCorrected<kLanes, Pair, kStressIntensity>(request, plan, stress, alternating);
  }
}

using PassForms =
    FormOf<void(const PairStressRequest&, const UsagePlan&, const LoadingStresses&, PairValues&)>;

}  // namespace zentor
