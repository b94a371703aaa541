#include "fatigue/variable_amplitude_location.h"

#include <algorithm>

#include "fatigue/conditions.h"
#include "fatigue/elastic_plastic_switch.h"
#include "fatigue/loading_states.h"
#include "fatigue/sn_preparation.h"
#include "fatigue/variable_amplitude.h"
#include "services/stop.h"
#include "stress/pair_listing.h"

namespace zentor {
namespace {

constexpr int kNoCurve = 9053;

LocationResult Evaluate(FatigueRun& run, const LoadingStates& states, VariableWorkspace& work) {
  const int node = run.study.location_node;
  const int material = MaterialOfNode(run.study, node);
  LocationResult result;
  do {
    result = EvaluateVariableNode(run.study, run.variable, states, material, run.above_curve_answered, work);
    ActOnCondition(run, result.condition, result.argument, node, run.study.properties.ActivatedLocation);
  } while (result.condition != LocationCondition::kNone);
  return result;
}

void PrintClasses(FatigueRun& run, const CycleClasses& classes) {
  PrintPairTableHeading(run.context);
  for (std::size_t k = 0; k < static_cast<std::size_t>(classes.count); ++k) {
    if (classes.used[k] <= 0) continue;
    PairRow row;
    row.used = classes.used[k];
    row.allowed = classes.allowed[k];
    row.alternating = classes.alternating[k];
    row.partial_usage = classes.partial_usage[k];
    PrintPairRow(run.context, row);
  }
}

[[noreturn]] void StopWithoutUsableCurve(FatigueRun& run) {
  PrintMissingCurve(run.context, run.study.sn_curves);
  PrintAlternatingStressTable(run.context, PairArrays{});
  StopWithMessageAndBeep(run.context.services, kNoCurve);
}

// What keeps the cycle classes from being formed is told before what is wrong with the curves.
void RequireClasses(FatigueRun& run, const LoadingStates& states, VariableWorkspace& work) {
  const int node = run.study.location_node;
  const LocationResult formed =
      EvaluateVariableNode(run.study, run.variable, states, MaterialOfNode(run.study, node), true, work);
  run.lost.Add(node, formed.lost);
  if (!ArisesBeforeLookup(formed.condition)) return;
  ActOnCondition(run, formed.condition, 0, node, run.study.properties.ActivatedLocation);
}

// Returns the usage factor of the location.
double RunPass(FatigueRun& run, const LoadingStates& states, VariableWorkspace& work) {
  PrepareCurves(run, run.study.location_node);
  if (!HasUsableCurve(run.study)) StopWithoutUsableCurve(run);
  const LocationResult result = Evaluate(run, states, work);
  PrintClasses(run, work.classes);
  return result.usage;
}

// The factor for elastic-plastic ranges does not exist for cycle classes, and the warnings say that it is
// missing.
void PrintUsage(FatigueRun& run, double usage) {
  PrintCumulativeUsage(run.context, usage, false);
  PrintElasticPlasticWarnings(run, false);
}

}  // namespace

void RunVariableAmplitudeLocation(FatigueRun& run) {
  const int node = run.study.location_node;
  LoadingStates states;
  LocationLoadingStates(run, states);
  CountEventHistories(run.context, run.study, *run.matrices, run.variable);
  VariableWorkspace work = MakeVariableWorkspace(run.study, run.variable);

  RequireClasses(run, states, work);
  const double usage = RunPass(run, states, work);
  const std::vector<int>& listed = run.study.matrix_nodes;
  if (std::find(listed.begin(), listed.end(), node) != listed.end()) {
    WriteNodeMatrices(run.study, node, *run.matrices, work);
  }
  PrintUsage(run, usage);

  RunPass(run, states, work);
  if (usage > 0.0) WriteNodeMatrices(run.study, node, *run.matrices, work);
  PrintUsage(run, usage);
}

}  // namespace zentor
