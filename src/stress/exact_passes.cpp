#include "stress/exact_lanes.h"
#include "stress/pair_rows.h"

namespace zentor {
namespace {

template <int kind, int correction>
struct ExactPair {
  ExactPair(const PairStressRequest& request, const UsagePlan& plan, const LoadingStresses& stress)
      : half_over_kt(0.5 / request.kt), strength(request.strength) {
    if constexpr (correction == kNoCorrection) return;
    for (std::size_t i = 0; i < plan.loadings; ++i) {
      size[i] = SizeOf({stress[0][i], stress[1][i], stress[2][i], stress[3][i], stress[4][i], stress[5][i]});
    }
  }

  ZENTOR_LANES double operator()(const Partners& s, std::size_t j) const {
    const double alternating = half_over_kt * ExactRange<kind>(DifferenceOf(s, j));
    if constexpr (correction == kNoCorrection) return alternating;
    const double mean = ExactSignedVonMises(MeanOf(s, j), LargerOf(size[s.first], size[s.second + j]));
    return CorrectedAsStated<correction>(alternating, mean, strength);
  }

  double half_over_kt, strength;
  std::array<double, kLoadingPlaces> size{};
};

}  // namespace

PairPass ExactPassOf(VectorForm form) {
#ifdef ZENTOR_X86_FORMS
  if (form == VectorForm::kBits512) return PassForms::Bits512<EvaluateAll<kWideLanes, ExactPair>>;
  if (form == VectorForm::kBits256) return PassForms::Bits256<EvaluateAll<kNarrowLanes, ExactPair>>;
#endif
  static_cast<void>(form);
  return PassForms::Baseline<EvaluateAll<kNarrowLanes, ExactPair>>;
}

}  // namespace zentor
