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

// A row's last vector writes behind the row; the next row overwrites that.
template <std::size_t kLanes>
ZENTOR_LANES void VonMisesPass(const UsagePlan& plan, const LoadingStresses& stress,
                               const DifferenceLimits& given, PairValues& alternating) {
  const DifferenceLimits limits = given;
  for (std::size_t k = 0; k < plan.rows; ++k) {
    const Partners s = PartnersOf(plan.row[k], stress);
    double* const out = &alternating[plan.row[k].place];
    const std::size_t count = RoundedUp(plan.row[k].count, kLanes);
    ZENTOR_INDEPENDENT
    for (std::size_t j = 0; j < count; ++j) {
      out[j] = AlternatingVonMises({s.one.sx - s.sx[j], s.one.sy - s.sy[j], s.one.sz - s.sz[j],
                                    s.one.txy - s.txy[j], s.one.txz - s.txz[j], s.one.tyz - s.tyz[j]},
                                   limits);
    }
  }
}

template <std::size_t kLanes, int kind>
ZENTOR_LANES void PrincipalPass(const UsagePlan& plan, const LoadingStresses& stress, double kt,
                                PairValues& alternating) {
  for (std::size_t k = 0; k < plan.rows; ++k) {
    const Partners s = PartnersOf(plan.row[k], stress);
    double* const out = &alternating[plan.row[k].place];
    const std::size_t count = RoundedUp(plan.row[k].count, kLanes);
    ZENTOR_INDEPENDENT
    for (std::size_t j = 0; j < count; ++j) {
      out[j] = AlternatingPrincipal<kind>({(s.one.sx - s.sx[j]) / kt, (s.one.sy - s.sy[j]) / kt,
                                           (s.one.sz - s.sz[j]) / kt, (s.one.txy - s.txy[j]) / kt,
                                           (s.one.txz - s.txz[j]) / kt, (s.one.tyz - s.tyz[j]) / kt});
    }
  }
}

template <std::size_t kLanes>
ZENTOR_LANES void MeanPass(const UsagePlan& plan, const LoadingStresses& stress, PairValues& mean) {
  for (std::size_t k = 0; k < plan.rows; ++k) {
    const Partners s = PartnersOf(plan.row[k], stress);
    double* const out = &mean[plan.row[k].place];
    const std::size_t count = RoundedUp(plan.row[k].count, kLanes);
    ZENTOR_INDEPENDENT
    for (std::size_t j = 0; j < count; ++j) {
      out[j] = SignedMeanStress({(s.one.sx + s.sx[j]) * 0.5, (s.one.sy + s.sy[j]) * 0.5,
                                 (s.one.sz + s.sz[j]) * 0.5, (s.one.txy + s.txy[j]) * 0.5,
                                 (s.one.txz + s.txz[j]) * 0.5, (s.one.tyz + s.tyz[j]) * 0.5});
    }
  }
}

template <std::size_t kLanes>
ZENTOR_LANES void CorrectionPass(const PairStressRequest& request, std::size_t pairs, const PairValues& mean,
                                 PairValues& alternating) {
  const std::size_t count = RoundedUp(pairs, kLanes);
  const double su = request.strength;
  if (request.correction == kGerber) {
    ZENTOR_INDEPENDENT
    for (std::size_t p = 0; p < count; ++p) alternating[p] = GerberStress(alternating[p], mean[p], su);
  } else {
    ZENTOR_INDEPENDENT
    for (std::size_t p = 0; p < count; ++p) alternating[p] = GoodmanStress(alternating[p], mean[p], su);
  }
}

template <std::size_t kLanes>
ZENTOR_LANES void GeneralPass(const PairStressRequest& request, const UsagePlan& plan,
                              const LoadingStresses& stress, PairValues& alternating, PairValues& mean) {
  if (request.alternating_type == kVonMises) {
    VonMisesPass<kLanes>(plan, stress, DifferenceLimitsOf(request.kt), alternating);
  } else if (request.alternating_type == kMaximumPrincipal) {
    PrincipalPass<kLanes, kMaximumPrincipal>(plan, stress, request.kt, alternating);
  } else {
    PrincipalPass<kLanes, kStressIntensity>(plan, stress, request.kt, alternating);
  }
  if (request.correction == kNoCorrection) return;
  MeanPass<kLanes>(plan, stress, mean);
  CorrectionPass<kLanes>(request, plan.pairs, mean, alternating);
}

template <std::size_t kLanes, int kind, int correction>
ZENTOR_LANES void PlaneRows(const PairStressRequest& request, const UsagePlan& plan,
                            const LoadingStresses& stress, PairValues& alternating) {
  const double kt = request.kt;
  const double su = request.strength;
  for (std::size_t k = 0; k < plan.rows; ++k) {
    const Partners s = PartnersOf(plan.row[k], stress);
    double* const out = &alternating[plan.row[k].place];
    const std::size_t count = RoundedUp(plan.row[k].count, kLanes);
    ZENTOR_INDEPENDENT
    for (std::size_t j = 0; j < count; ++j) {
      const double uncorrected =
          AlternatingPlane<kind>((s.one.sx - s.sx[j]) / kt, (s.one.sy - s.sy[j]) / kt,
                                 (s.one.sz - s.sz[j]) / kt, (s.one.txy - s.txy[j]) / kt);
      if constexpr (correction == kNoCorrection) {
        out[j] = uncorrected;
      } else {
        const double mean = SignedMeanPlane((s.one.sx + s.sx[j]) * 0.5, (s.one.sy + s.sy[j]) * 0.5,
                                            (s.one.sz + s.sz[j]) * 0.5, (s.one.txy + s.txy[j]) * 0.5);
        out[j] = CorrectedAsStated<correction>(uncorrected, mean, su);
      }
    }
  }
}

template <std::size_t kLanes, int kind>
ZENTOR_LANES void PlaneOfKind(const PairStressRequest& request, const UsagePlan& plan,
                              const LoadingStresses& stress, PairValues& alternating) {
  switch (request.correction) {
    case kNoCorrection:
      return PlaneRows<kLanes, kind, kNoCorrection>(request, plan, stress, alternating);
    case kGerber:
      return PlaneRows<kLanes, kind, kGerber>(request, plan, stress, alternating);
    default:
      return PlaneRows<kLanes, kind, kGoodman>(request, plan, stress, alternating);
  }
}

template <std::size_t kLanes>
ZENTOR_LANES void PlanePass(const PairStressRequest& request, const UsagePlan& plan,
                            const LoadingStresses& stress, PairValues& alternating) {
  if (request.alternating_type == kVonMises) {
    PlaneOfKind<kLanes, kVonMises>(request, plan, stress, alternating);
  } else if (request.alternating_type == kMaximumPrincipal) {
    PlaneOfKind<kLanes, kMaximumPrincipal>(request, plan, stress, alternating);
  } else {
    PlaneOfKind<kLanes, kStressIntensity>(request, plan, stress, alternating);
  }
}

using General = FormOf<void(const PairStressRequest&, const UsagePlan&, const LoadingStresses&, PairValues&,
                            PairValues&)>;
using Plane = FormOf<void(const PairStressRequest&, const UsagePlan&, const LoadingStresses&, PairValues&)>;

constexpr PairPasses kBaseline = {Plane::Baseline<PlanePass<kNarrowLanes>>,
                                  General::Baseline<GeneralPass<kNarrowLanes>>};
#ifdef ZENTOR_X86_FORMS
constexpr PairPasses kBits256 = {Plane::Bits256<PlanePass<kNarrowLanes>>,
                                 General::Bits256<GeneralPass<kNarrowLanes>>};
constexpr PairPasses kBits512 = {Plane::Bits512<PlanePass<kWideLanes>>,
                                 General::Bits512<GeneralPass<kWideLanes>>};
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
