#include "stress/cycle_consumption.h"

#include <algorithm>
#include <cstddef>

#include "stress/elastic_plastic.h"

namespace zentor {
namespace {

void ClearPair(PairArrays& pairs, std::size_t p) {
  pairs.alternating[p] = 0.0;
  pairs.mean_stress[p] = 0.0;
  pairs.section_alternating[p] = 0.0;
  pairs.ke[p] = 0.0;
  pairs.allowed[p] = 0.0;
  pairs.partial_usage[p] = 0.0;
  pairs.used[p] = 0;
}

void ApplyElasticPlasticFactor(const StudyState& study, const LoadingStates& states, PairArrays& pairs,
                               std::size_t p) {
  pairs.ke[p] = 1.0;
  if (!states.section_mode || !states.elastic_plastic) return;
  const double range = 2.0 * pairs.section_alternating[p];
  const double sm = SmAtTemperature(study.sm_t, pairs.temperature[p]);
  pairs.ke[p] = ElasticPlasticFactor(range, sm, study.sm_t.m, study.sm_t.n);
  pairs.alternating[p] *= pairs.ke[p];
}

}  // namespace

CycleConsumption::CycleConsumption(const StudyState& study, int material, bool above_answered)
    : choice_(CurvesOfMaterial(study, material)), options_(LookupOptionsOf(study, above_answered)) {
  for (int e = 1; e <= kMaxEvents; ++e) remaining_[e] = study.definition.events[e].cycles;
}

bool CycleConsumption::Consume(PairTurn& pair) {
  if (choice_.curves == nullptr) {
    result_.condition = choice_.condition;
    result_.argument = choice_.argument;
    ended_ = true;
    return false;
  }
  std::int32_t& first = remaining_[pair.first_event];
  std::int32_t& second = remaining_[pair.second_event];
  const double ratio = StressRatio(options_, pair.alternating, pair.mean_stress);
  const SnLookup lookup = LookUpInCurves(*choice_.curves, options_, pair.alternating, ratio, first);
  if (lookup.condition != LocationCondition::kNone) result_.condition = lookup.condition;
  if (lookup.condition == LocationCondition::kNoCurveForRatio) {
    ended_ = true;
    return false;
  }
  pair.used = std::min(first, second);
  first -= pair.used;
  if (&first != &second) second -= pair.used;
  pair.allowed = lookup.allowed;
  pair.partial_usage = pair.used / lookup.allowed;

  const double n = pair.used;
  result_.any_used = true;
  weighted_biaxiality_ += pair.biaxiality * n;
  cycles_ += n;
  result_.life_sum = static_cast<float>(static_cast<double>(result_.life_sum) + lookup.allowed);
  if (options_.stress_factor) {
    result_.smallest_stress_factor = std::min(result_.smallest_stress_factor, lookup.stress_factor);
  }
  result_.usage += pair.partial_usage;
  return true;
}

bool CycleConsumption::BelowCurve(double alternating) const {
  if (!HasOneCurve() || options_.stress_factor) return false;
  return IsBelowCurve(choice_.curves->front(), alternating * (1.0 + 2e-7));
}

LocationResult CycleConsumption::Result() const {
  LocationResult result = result_;
  if (!ended_ && cycles_ > 0.0) result.biaxiality = weighted_biaxiality_ / cycles_;
  return result;
}

LocationResult ConsumePairs(const StudyState& study, const LoadingStates& states, int material,
                            bool above_answered, PairArrays& pairs) {
  CycleConsumption consumption(study, material, above_answered);
  for (std::size_t p = 0; p < static_cast<std::size_t>(pairs.count); ++p) {
    PairTurn turn{pairs.first_event[p], pairs.second_event[p]};
    if (!consumption.HasCycles(turn.first_event) || !consumption.HasCycles(turn.second_event)) {
      ClearPair(pairs, p);
      continue;
    }
    ApplyElasticPlasticFactor(study, states, pairs, p);
    turn.alternating = pairs.alternating[p];
    turn.mean_stress = pairs.mean_stress[p];
    turn.biaxiality = pairs.biaxiality[p];
    if (!consumption.Consume(turn)) break;
    pairs.alternating[p] = turn.alternating;
    pairs.used[p] = turn.used;
    pairs.allowed[p] = turn.allowed;
    pairs.partial_usage[p] = turn.partial_usage;
  }
  LocationResult result = consumption.Result();
  result.lost = pairs.lost;
  return result;
}

}  // namespace zentor
