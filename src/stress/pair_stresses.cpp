#include <cstddef>

#include "stress/equivalent_stress.h"
#include "stress/pair_steps.h"

namespace zentor {

void EvaluatePairStresses(int alternating_type, bool section_mode, PairArrays& pairs) {
  for (std::size_t p = 0; p < static_cast<std::size_t>(pairs.count); ++p) {
    const PairTensors& tensors = pairs.tensors[p];
    const PairStress stress = EvaluatePairStress(alternating_type, tensors.difference, tensors.mean);
    pairs.alternating[p] = stress.alternating;
    pairs.mean_stress[p] = stress.mean;
    pairs.biaxiality[p] = stress.biaxiality;
    if (!section_mode) continue;
    auto [d1, d2, d3] =
        PrincipalPlane(pairs.section[0][p], pairs.section[1][p], pairs.section[2][p], pairs.section[3][p]);
    OrderByMagnitude(d1, d2, d3);
    pairs.section_alternating[p] = AlternatingStressOf(alternating_type, d1, d2, d3);
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
  EvaluatePairStresses(properties.AlternatingStressType, states.section_mode, pairs);
  const LocationCondition condition =
      CorrectPairs(properties.MeanStressCorrection, StrengthOf(study, material), pairs);
  if (condition != LocationCondition::kNone) return condition;
  const bool prefer_same_event = properties.EventInteraction != 1 && study.definition.event_count > 1;
  SortPairs(prefer_same_event, states.section_mode, pairs);
  return LocationCondition::kNone;
}

}  // namespace zentor
