#include <cstddef>

#include "stress/equivalent_stress.h"
#include "stress/exact_stress.h"
#include "stress/pair_steps.h"
#include "stress/pair_stress.h"
#include "stress/principal_stress.h"

namespace zentor {

namespace {

// The alternating stress of the linearised components of a pair, which are those of a plane tensor over Kt.
double SectionStress(const FatigueProperties& properties, double sx, double sy, double sz, double txy) {
  const int type = properties.AlternatingStressType;
  if (properties.ExactPrincipalStresses) return ExactAlternating(type, {sx, sy, sz, txy, 0.0, 0.0}, 1.0);
  auto [d1, d2, d3] = PrincipalPlane(sx, sy, sz, txy);
  OrderByMagnitude(d1, d2, d3);
  return AlternatingStressOf(type, d1, d2, d3);
}

}  // namespace

void EvaluatePairStresses(const StudyState& study, const LoadingStates& states, int material,
                          PairArrays& pairs) {
  pairs.lost = {};
  for (std::size_t p = 0; p < static_cast<std::size_t>(pairs.count); ++p) {
    const PairStress stress = EvaluatePair(study.properties, states.stress[pairs.first_loading[p]],
                                           states.stress[pairs.second_loading[p]]);
    pairs.alternating[p] = stress.alternating;
    pairs.mean_stress[p] = stress.mean;
    pairs.biaxiality[p] = stress.biaxiality;
    AddLost(study, material, stress, pairs.lost);
    if (!states.section_mode) continue;
    pairs.section_alternating[p] = SectionStress(study.properties, pairs.section[0][p], pairs.section[1][p],
                                                 pairs.section[2][p], pairs.section[3][p]);
  }
}

LocationCondition CorrectPairs(int correction, const MaterialStrength& strength, PairArrays& pairs) {
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
  EvaluatePairStresses(study, states, material, pairs);
  const LocationCondition condition =
      CorrectPairs(properties.MeanStressCorrection, StrengthOf(study, material), pairs);
  if (condition != LocationCondition::kNone) return condition;
  const bool prefer_same_event = properties.EventInteraction != 1 && study.definition.event_count > 1;
  SortPairs(prefer_same_event, states.section_mode, pairs);
  return LocationCondition::kNone;
}

}  // namespace zentor
