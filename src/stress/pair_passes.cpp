#include "stress/pair_passes.h"

#include <cmath>

#include "stress/pair_lanes.h"

namespace zentor {
namespace {

// The tensors of the pairs of one loading: the loading itself and the first of its partners.
struct Partners {
  LaneTensor one;
  const double *sx, *sy, *sz, *txy, *txz, *tyz;
};
ZENTOR_LANES Partners PartnersOf(const PairsOfLoading& row, const LoadingStresses& s) {
  const std::size_t i = row.first;
  const std::size_t j = row.second;
  return {{s[0][i], s[1][i], s[2][i], s[3][i], s[4][i], s[5][i]},
          &s[0][j],
          &s[1][j],
          &s[2][j],
          &s[3][j],
          &s[4][j],
          &s[5][j]};
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

// One pair in the general form, approximately.
template <int kind, int correction>
struct GeneralPair {
  explicit GeneralPair(const PairStressRequest& request)
      : limits(DifferenceLimitsOf(request.kt)), kt(request.kt), strength(request.strength) {}

  ZENTOR_LANES double operator()(const Partners& s, std::size_t j) const {
    double alternating;
    if constexpr (kind == kVonMises) {
      alternating = AlternatingVonMises(DifferenceOf(s, j), limits);
    } else {
      alternating = AlternatingPrincipal<kind>(Over(DifferenceOf(s, j), kt));
    }
    if constexpr (correction == kNoCorrection) return alternating;
    const double mean = SignedMeanStress(MeanOf(s, j));
    return correction == kGerber ? GerberStress(alternating, mean, strength)
                                 : GoodmanStress(alternating, mean, strength);
  }

  DifferenceLimits limits;
  double kt, strength;
};

// One pair in the plane form, exactly.
template <int kind, int correction>
struct PlanePair {
  explicit PlanePair(const PairStressRequest& request) : kt(request.kt), strength(request.strength) {}

  ZENTOR_LANES double operator()(const Partners& s, std::size_t j) const {
    const LaneTensor difference = Over(DifferenceOf(s, j), kt);
    const double alternating = AlternatingPlane<kind>(difference);
    if constexpr (correction == kNoCorrection) return alternating;
    return CorrectedAsStated<correction>(alternating, SignedMeanPlane(MeanOf(s, j)), strength);
  }

  double kt, strength;
};

// A row's last vector writes behind the row; the next row overwrites that.
template <std::size_t kLanes, typename Pair>
ZENTOR_LANES void EvaluateRows(const PairStressRequest& request, const UsagePlan& plan,
                               const LoadingStresses& stress, PairValues& alternating) {
  const Pair pair(request);
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

using Forms = FormOf<void(const PairStressRequest&, const UsagePlan&, const LoadingStresses&, PairValues&)>;

constexpr PairPasses kBaseline = {Forms::Baseline<EvaluateAll<kNarrowLanes, PlanePair>>,
                                  Forms::Baseline<EvaluateAll<kNarrowLanes, GeneralPair>>};
#ifdef ZENTOR_X86_FORMS
constexpr PairPasses kBits256 = {Forms::Bits256<EvaluateAll<kNarrowLanes, PlanePair>>,
                                 Forms::Bits256<EvaluateAll<kNarrowLanes, GeneralPair>>};
constexpr PairPasses kBits512 = {Forms::Bits512<EvaluateAll<kWideLanes, PlanePair>>,
                                 Forms::Bits512<EvaluateAll<kWideLanes, GeneralPair>>};
#endif

}  // namespace

const PairPasses& PassesOf(VectorForm form) {
#ifdef ZENTOR_X86_FORMS
  if (form == VectorForm::kBits512) return kBits512;
  if (form == VectorForm::kBits256) return kBits256;
#endif
  static_cast<void>(form);
  return kBaseline;
}

bool AllPairsPlane(const UsagePlan& plan, const LoadingStresses& stress, double kt) {
  const double limit = 0.49e-15 * kt;
  double largest = 0.0;
  for (std::size_t i = 0; i < plan.loadings; ++i) {
    const double txz = std::abs(stress[4][i]);
    const double tyz = std::abs(stress[5][i]);
    largest = txz <= limit && tyz <= limit ? largest : 1.0;
  }
  return largest == 0.0;
}

}  // namespace zentor
