#include <cmath>
#include <cstddef>

#include "stress/equivalent_stress.h"
#include "stress/pair_steps.h"

namespace zentor {
namespace {

using PairValues = std::array<double, kMaxPairs>;
using Tensors = std::array<PairValues, 6>;
using Principals = std::array<PairValues, 3>;

// Plane form over all pairs, written as selects; the same operations as PrincipalPlane.
void PlanePass(const PairValues& sx, const PairValues& sy, const PairValues& sz, const PairValues& txy,
               std::size_t count, Principals& out) {
  for (std::size_t p = 0; p < count; ++p) {
    const double sum = std::abs(sx[p]) + std::abs(sy[p]) + std::abs(sz[p]) + std::abs(txy[p]);
    const double difference = sx[p] - sy[p];
    const double centre = (sx[p] + sy[p]) * 0.5;
    const double radius = 0.5 * std::sqrt(4.0 * (txy[p] * txy[p]) + difference * difference);
    const bool zero = sum < kNegligibleStress;
    out[0][p] = zero ? 0.0 : centre + radius;
    out[1][p] = zero ? 0.0 : centre - radius;
    out[2][p] = zero ? 0.0 : sz[p];
  }
}

StressTensor TensorAt(const Tensors& t, std::size_t p) {
  return {t[0][p], t[1][p], t[2][p], t[3][p], t[4][p], t[5][p]};
}

// The pairs whose difference has out-of-plane shear, both tensors in the general form.
void GeneralPass(const PairArrays& pairs, std::size_t count, Principals& difference, Principals& mean) {
  for (std::size_t p = 0; p < count; ++p) {
    const StressTensor tensor = TensorAt(pairs.difference, p);
    if (!NeedsGeneralForm(tensor)) continue;
    const PrincipalValues d = PrincipalGeneral(tensor);
    const PrincipalValues q = PrincipalGeneral(TensorAt(pairs.mean, p));
    for (std::size_t c = 0; c < 3; ++c) {
      difference[c][p] = d[c];
      mean[c][p] = q[c];
    }
  }
}

bool AllGeneral(const PairArrays& pairs, std::size_t count) {
  for (std::size_t p = 0; p < count; ++p) {
    if (!(std::abs(pairs.difference[4][p]) > 1e-15 || std::abs(pairs.difference[5][p]) > 1e-15)) return false;
  }
  return true;
}

template <int kind>
void ReduceDifferences(std::size_t count, const Principals& d, PairValues& alternating,
                       PairValues& biaxiality) {
  for (std::size_t p = 0; p < count; ++p) {
    double d1 = d[0][p];
    double d2 = d[1][p];
    double d3 = d[2][p];
    OrderByMagnitude(d1, d2, d3);
    alternating[p] = AlternatingStressOf<kind>(d1, d2, d3);
    biaxiality[p] = BiaxialityOf(d1, d2);
  }
}

void ReduceDifferences(int kind, std::size_t count, const Principals& d, PairValues& alternating,
                       PairValues& biaxiality) {
  if (kind == kVonMises) return ReduceDifferences<kVonMises>(count, d, alternating, biaxiality);
  if (kind == kMaximumPrincipal)
    return ReduceDifferences<kMaximumPrincipal>(count, d, alternating, biaxiality);
  return ReduceDifferences<kStressIntensity>(count, d, alternating, biaxiality);
}

void ReduceMeans(std::size_t count, const Principals& q, PairValues& mean_stress) {
  for (std::size_t p = 0; p < count; ++p) mean_stress[p] = SignedVonMises(q[0][p], q[1][p], q[2][p]);
}

}  // namespace

void EvaluatePairStresses(int alternating_type, bool section_mode, PairArrays& pairs) {
  const auto count = static_cast<std::size_t>(pairs.count);
  Principals d;
  Principals q;
  if (section_mode) {  // first: its biaxiality is of no use and is overwritten below
    PlanePass(pairs.section[0], pairs.section[1], pairs.section[2], pairs.section[3], count, d);
    ReduceDifferences(alternating_type, count, d, pairs.section_alternating, pairs.biaxiality);
  }
  if (!AllGeneral(pairs, count)) {
    const Tensors& t = pairs.difference;
    const Tensors& m = pairs.mean;
    PlanePass(t[0], t[1], t[2], t[3], count, d);
    PlanePass(m[0], m[1], m[2], m[3], count, q);
  }
  GeneralPass(pairs, count, d, q);
  ReduceDifferences(alternating_type, count, d, pairs.alternating, pairs.biaxiality);
  ReduceMeans(count, q, pairs.mean_stress);
}

LocationCondition CorrectPairs(int correction, const MaterialStrength& strength, PairArrays& pairs) {
  if (correction == kNoCorrection) return LocationCondition::kNone;
  for (std::size_t p = 0; p < static_cast<std::size_t>(pairs.count); ++p) {
    const CorrectionOutcome outcome =
        CorrectMeanStress(correction, strength, pairs.alternating[p], pairs.mean_stress[p]);
    if (outcome == CorrectionOutcome::kBadStrength) {
      return correction == kSoderberg ? LocationCondition::kNoYieldStrength
                                      : LocationCondition::kNoUltimateStrength;
    }
  }
  return LocationCondition::kNone;
}

LocationCondition EvaluatePairs(const StudyState& study, const LoadingStates& states, int material,
                                PairArrays& pairs) {
  const FatigueProperties& properties = study.properties;
  FormPairs(study, states, pairs);
  EvaluatePairStresses(properties.AlternatingStressType, states.section_mode, pairs);
  const LocationCondition condition =
      CorrectPairs(properties.MeanStressCorrection, StrengthOf(study, material), pairs);
  if (condition != LocationCondition::kNone) return condition;
  const bool prefer_same_event = properties.EventInteraction != 1 && study.definition.event_count > 1;
  SortPairs(prefer_same_event, states.section_mode, pairs);
  return LocationCondition::kNone;
}

}  // namespace zentor
