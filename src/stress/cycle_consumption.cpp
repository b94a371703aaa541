#include <algorithm>
#include <cstddef>

#include "stress/elastic_plastic.h"
#include "stress/pair_evaluation.h"
#include "stress/sn_lookup.h"

namespace zentor {
namespace {

using RemainingCycles = OneBasedArray<std::int32_t, kMaxEvents>;

RemainingCycles DefinedCycles(const EventTable& definition) {
  RemainingCycles remaining;
  for (int e = 1; e <= kMaxEvents; ++e) remaining[e] = definition.events[e].cycles;
  return remaining;
}

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

// Sums over the pairs that use cycles, in pair order: the order is part of the digits.
struct Sums {
  double biaxiality = 0.0;
  double cycles = 0.0;
};

void AddPair(const PairArrays& pairs, std::size_t p, const SnLookup& lookup, bool has_stress_factor,
             Sums& sums, LocationResult& result) {
  const double n = pairs.used[p];
  result.any_used = true;
  sums.biaxiality += pairs.biaxiality[p] * n;
  sums.cycles += n;
  result.life_sum = static_cast<float>(static_cast<double>(result.life_sum) + lookup.allowed);
  if (has_stress_factor) {
    result.smallest_stress_factor = std::min(result.smallest_stress_factor, lookup.stress_factor);
  }
  result.usage += pairs.partial_usage[p];
}

}  // namespace

double StressRatio(double alternating, double mean) {
  return mean + alternating <= 1e-20 ? 0.0 : (mean - alternating) / (mean + alternating);
}

LocationResult ConsumePairs(const StudyState& study, const LoadingStates& states, int material,
                            bool above_answered, PairArrays& pairs) {
  LocationResult result;
  Sums sums;
  RemainingCycles remaining = DefinedCycles(study.definition);
  const SnCurveChoice choice = CurvesOfMaterial(study, material);
  const SnLookupOptions options = LookupOptionsOf(study, above_answered);

  for (std::size_t p = 0; p < static_cast<std::size_t>(pairs.count); ++p) {
    std::int32_t& first = remaining[pairs.first_event[p]];
    std::int32_t& second = remaining[pairs.second_event[p]];
    if (first <= 0 ||
        second <= 0) {  // a negative number of cycles, which only a damaged study has, uses none
      ClearPair(pairs, p);
      continue;
    }
    ApplyElasticPlasticFactor(study, states, pairs, p);
    if (choice.curves == nullptr) {
      result.condition = choice.condition;
      result.argument = choice.argument;
      return result;
    }
    const double ratio = StressRatio(pairs.alternating[p], pairs.mean_stress[p]);
    const SnLookup lookup = LookUpInCurves(*choice.curves, options, pairs.alternating[p], ratio, first);
    if (lookup.condition != LocationCondition::kNone) result.condition = lookup.condition;
    if (lookup.condition == LocationCondition::kNoCurveForRatio) return result;

    const std::int32_t used = std::min(first, second);
    first -= used;
    if (&first != &second) second -= used;
    pairs.used[p] = used;
    pairs.allowed[p] = lookup.allowed;
    pairs.partial_usage[p] = used / lookup.allowed;
    AddPair(pairs, p, lookup, options.stress_factor, sums, result);
  }
  if (sums.cycles > 0.0) result.biaxiality = sums.biaxiality / sums.cycles;
  return result;
}

}  // namespace zentor
