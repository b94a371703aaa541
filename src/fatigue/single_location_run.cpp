#include "fatigue/single_location_run.h"

#include <memory>

#include "fatigue/conditions.h"
#include "fatigue/elastic_plastic_switch.h"
#include "fatigue/loading_states.h"
#include "fatigue/sn_preparation.h"
#include "fatigue/variable_amplitude_location.h"
#include "stress/pair_evaluation.h"
#include "stress/pair_listing.h"

namespace zentor {
namespace {

// Forms, evaluates and sorts the pairs of the location; a missing strength stops the run.
void FormPairs(FatigueRun& run, const LoadingStates& states, int material, PairArrays& pairs) {
  const LocationCondition condition = EvaluatePairs(run.study, states, material, pairs);
  ActOnCondition(run, condition, 0, run.study.location_node, run.study.properties.ActivatedLocation);
}

// Consumes the pairs' cycles; after the user accepted stresses above the curve, once more from the start.
LocationResult Consume(FatigueRun& run, const LoadingStates& states, int material, PairArrays& pairs) {
  LocationResult result = ConsumePairs(run.study, states, material, run.above_curve_answered, pairs);
  while (result.condition != LocationCondition::kNone) {
    ActOnCondition(run, result.condition, result.argument, run.study.location_node,
                   run.study.properties.ActivatedLocation);
    FormPairs(run, states, material, pairs);
    result = ConsumePairs(run.study, states, material, true, pairs);
  }
  return result;
}

void PrintWithoutUsage(FatigueRun& run, const PairArrays& pairs) {
  PrintMissingCurve(run.context, run.study.sn_curves);
  PrintAlternatingStressTable(run.context, pairs);
  PrintNoUsageFactor(run.context, run.study.sn_curves);
}

void RunConstantAmplitudeLocation(FatigueRun& run) {
  const int node = run.study.location_node;
  const int material = MaterialOfNode(run.study, node);
  const auto states = std::make_unique<LoadingStates>();
  const auto pairs = std::make_unique<PairArrays>();

  LocationLoadingStates(run, *states);
  FormPairs(run, *states, material, *pairs);
  PrepareCurves(run, node);
  run.lost.Add(node, pairs->lost);
  if (!HasUsableCurve(run.study)) return PrintWithoutUsage(run, *pairs);

  states->elastic_plastic = DecideElasticPlastic(run);
  const LocationResult result = Consume(run, *states, material, *pairs);
  PrintPairTable(run.context, *pairs, states->elastic_plastic);
  PrintCumulativeUsage(run.context, result.usage, states->elastic_plastic);
  PrintElasticPlasticWarnings(run, states->elastic_plastic);
}

}  // namespace

void RunSingleLocation(FatigueRun& run) {
  if (IsVariableAmplitude(run.study.properties)) {
    RunVariableAmplitudeLocation(run);
  } else {
    RunConstantAmplitudeLocation(run);
  }
}

}  // namespace zentor
