#include "fatigue/stress_loops.h"

#include <cmath>
#include <limits>
#include <utility>

#include "stress/exact_lanes.h"
#include "stress/pair_lanes.h"

namespace zentor {
namespace {

constexpr double kZero = 1e-20;             // limits of the general form, as in PrincipalGeneral
constexpr double kCosineLimit = 0.999999F;  // single precision, widened
constexpr double kUndecided = 1e-10;        // below it the sign is left to the principal values themselves

template <std::size_t... kEvents>
ZENTOR_LANES double SumAt(const EventGroup& group, std::size_t c, std::size_t i,
                          std::index_sequence<kEvents...> /*events*/) {
  double sum = group.start[c][i];
  ((sum += static_cast<double>(group.loads[kEvents][i]) * group.units[kEvents][c]), ...);
  return sum;
}

template <std::size_t kEvents, std::size_t kComponents>
ZENTOR_LANES void AddEvents(const EventGroup& events, std::size_t n, TensorTile& t) {
  const EventGroup group = events;  // which no store can change
  constexpr auto kAll = std::make_index_sequence<kEvents>();
  ZENTOR_INDEPENDENT
  for (std::size_t i = 0; i < n; ++i) {
    t[0][i] = SumAt(group, 0, i, kAll);
    t[1][i] = SumAt(group, 1, i, kAll);
    t[2][i] = SumAt(group, 2, i, kAll);
    t[3][i] = SumAt(group, 3, i, kAll);
    if constexpr (kComponents == 6) {
      t[4][i] = SumAt(group, 4, i, kAll);
      t[5][i] = SumAt(group, 5, i, kAll);
    }
  }
}

ZENTOR_LANES std::size_t CountGeneral(const TensorTile& t, std::size_t n) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < n; ++i) {
    count += static_cast<std::size_t>(std::abs(t[4][i]) > 1e-15) |
             static_cast<std::size_t>(std::abs(t[5][i]) > 1e-15);
  }
  return count;
}

ZENTOR_LANES std::size_t PlaneStresses(const TensorTile& t, std::size_t n, TileRow& w) {
  for (std::size_t i = 0; i < n; ++i) w[i] = SignedMeanPlane({t[0][i], t[1][i], t[2][i], t[3][i], 0.0, 0.0});
  return 0;
}

template <bool kPlane>
ZENTOR_LANES std::size_t ExactStresses(const TensorTile& t, std::size_t n, TileRow& w) {
  for (std::size_t i = 0; i < n; ++i) {
    const LaneTensor s = {t[0][i], t[1][i], t[2][i], t[3][i], kPlane ? 0.0 : t[4][i], kPlane ? 0.0 : t[5][i]};
    w[i] = ExactSignedVonMises<kPlane>(s, SizeOf<kPlane>(s));
  }
  return 0;
}

// The general form without its angles. Its values are r cos(u) - s, r cos(u + 120 deg) - s and r cos(u + 240
// deg) - s with r = 2 sqrt(-q), u in 0 .. 60 degrees and s = a / 3. Whatever u is, they give the von Mises
// stress 3 sqrt(-q). The first is the largest and the second the smallest, so the sign is that of their sum r
// cos(u + 60 deg) - 2 s: whether y = cos(u + 60 deg) exceeds y0 = s / sqrt(-q). y lies within 0.5 and solves
// 4 y^3 - 3 y + cos(3 u) = 0, whose left side falls there, so y > y0 where it is positive at y0. Where it is
// too close to 0 to tell, and where the general form has repeated roots, the principal values themselves
// decide (the result is NaN here). Apart from those points the result differs from theirs by rounding only.
ZENTOR_LANES std::size_t GeneralStresses(const TensorTile& t, std::size_t n, TileRow& w) {
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
  std::size_t open = 0;
  for (std::size_t i = 0; i < n; ++i) open += static_cast<std::size_t>(std::isnan(w[i]));
  return open;
}

using SumForms = FormOf<void(const EventGroup&, std::size_t, TensorTile&)>;
using CountForms = FormOf<std::size_t(const TensorTile&, std::size_t)>;
using StressForms = FormOf<std::size_t(const TensorTile&, std::size_t, TileRow&)>;
using Sums = std::array<StressLoops::Sum, kEventGroup>;

template <std::size_t kComponents, std::size_t... kEvents>
constexpr Sums BaselineSums(std::index_sequence<kEvents...> /*events*/) {
  return {SumForms::Baseline<AddEvents<kEvents + 1, kComponents>>...};
}

constexpr auto kGroups = std::make_index_sequence<kEventGroup>();
constexpr StressLoops kBaseline = {BaselineSums<6>(kGroups),
                                   BaselineSums<4>(kGroups),
                                   CountForms::Baseline<CountGeneral>,
                                   StressForms::Baseline<PlaneStresses>,
                                   StressForms::Baseline<ExactStresses<false>>,
                                   StressForms::Baseline<ExactStresses<true>>,
                                   StressForms::Baseline<GeneralStresses>};

#ifdef ZENTOR_X86_FORMS

template <std::size_t kComponents, std::size_t... kEvents>
constexpr Sums Sums256(std::index_sequence<kEvents...> /*events*/) {
  return {SumForms::Bits256<AddEvents<kEvents + 1, kComponents>>...};
}

template <std::size_t kComponents, std::size_t... kEvents>
constexpr Sums Sums512(std::index_sequence<kEvents...> /*events*/) {
  return {SumForms::Bits512<AddEvents<kEvents + 1, kComponents>>...};
}

constexpr StressLoops kLoops256 = {Sums256<6>(kGroups),
                                   Sums256<4>(kGroups),
                                   CountForms::Bits256<CountGeneral>,
                                   StressForms::Bits256<PlaneStresses>,
                                   StressForms::Bits256<ExactStresses<false>>,
                                   StressForms::Bits256<ExactStresses<true>>,
                                   StressForms::Bits256<GeneralStresses>};
constexpr StressLoops kLoops512 = {Sums512<6>(kGroups),
                                   Sums512<4>(kGroups),
                                   CountForms::Bits512<CountGeneral>,
                                   StressForms::Bits512<PlaneStresses>,
                                   StressForms::Bits512<ExactStresses<false>>,
                                   StressForms::Bits512<ExactStresses<true>>,
                                   StressForms::Bits512<GeneralStresses>};

#endif

}  // namespace

const StressLoops& StressLoopsOf([[maybe_unused]] VectorForm form) {
#ifdef ZENTOR_X86_FORMS
  if (form == VectorForm::kBits512) return kLoops512;
  if (form == VectorForm::kBits256) return kLoops256;
#endif
  return kBaseline;
}

}  // namespace zentor
