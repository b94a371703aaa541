#include "stress/pair_passes.h"

#include <cmath>

#include "stress/pair_rows.h"

namespace zentor {
namespace {

// One pair in the general form, approximately.
template <int kind, int correction>
struct GeneralPair {
  GeneralPair(const PairStressRequest& request, const UsagePlan&, const LoadingStresses&)
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
  PlanePair(const PairStressRequest& request, const UsagePlan&, const LoadingStresses&)
      : kt(request.kt), strength(request.strength) {}

  ZENTOR_LANES double operator()(const Partners& s, std::size_t j) const {
    const LaneTensor difference = Over(DifferenceOf(s, j), kt);
    const double alternating = AlternatingPlane<kind>(difference);
    if constexpr (correction == kNoCorrection) return alternating;
    return CorrectedAsStated<correction>(alternating, SignedMeanPlane(MeanOf(s, j)), strength);
  }

  double kt, strength;
};

constexpr PairPasses kBaseline = {PassForms::Baseline<EvaluateAll<kNarrowLanes, PlanePair>>,
                                  PassForms::Baseline<EvaluateAll<kNarrowLanes, GeneralPair>>};
#ifdef ZENTOR_X86_FORMS
constexpr PairPasses kBits256 = {PassForms::Bits256<EvaluateAll<kNarrowLanes, PlanePair>>,
                                 PassForms::Bits256<EvaluateAll<kNarrowLanes, GeneralPair>>};
constexpr PairPasses kBits512 = {PassForms::Bits512<EvaluateAll<kWideLanes, PlanePair>>,
                                 PassForms::Bits512<EvaluateAll<kWideLanes, GeneralPair>>};
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
