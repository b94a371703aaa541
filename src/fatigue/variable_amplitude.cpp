#include "fatigue/variable_amplitude.h"

#include <algorithm>

#include "fatigue/history_messages.h"
#include "fatigue/matrix_listing.h"
#include "fatigue/node_stress_history.h"
#include "services/stop.h"
#include "stress/lost_stress.h"

namespace zentor {
namespace {

bool IsShared(const StudyState& study) { return study.properties.SharedHistory == 1; }

LocationCondition ConditionOf(HistoryCondition condition) {
  if (condition == HistoryCondition::kConstant) return LocationCondition::kHistoryConstant;
  if (condition == HistoryCondition::kFirstEqual) return LocationCondition::kFirstReversalsEqual;
  return LocationCondition::kNone;
}

void RequireCounted(RunContext& run, HistoryCondition condition) {
  if (condition == HistoryCondition::kConstant)
    StopWithNumberAndBeep(run.services, message::kHistoryConstant, 0);
  if (condition == HistoryCondition::kFirstEqual) {
    StopWithNumberAndBeep(run.services, message::kFirstReversalsEqual, 0);
  }
}

void WarnOfOneRangeBin(RunContext& run) {
  run.listing.Blank(2);
  run.listing.ListDirected(
      "*** WARNING - Only one range bin: every cycle gets the range 0 and the damage is 0");
  run.services.ShowMessage(message::kOneRangeBin, {}, Severity::kWarning);
}

// All unit loads act together under a shared history; summed in loading order.
StressTensor SumOfStates(const StudyState& study, const LoadingStates& states) {
  StressTensor sum{};
  for (int e = 1; e <= study.definition.event_count; ++e) {
    for (std::size_t c = 0; c < sum.size(); ++c) sum[c] += states.stress[e][c];
  }
  return sum;
}

HistoryCondition FilterAndCount(const FatigueProperties& properties, std::span<const float> history,
                                RainflowState& state, RangeMeanMatrix& matrix) {
  return FilterAndCount(properties.RangeBinCount, properties.MeanBinCount, properties.FilterPercent, history,
                        state, matrix);
}

LocationCondition ClassesOfSharedHistory(const StudyState& study, const LoadingStates& states, int material,
                                         VariableWorkspace& work) {
  const LocationCondition condition = EvaluateLoadClasses(
      study.properties, SumOfStates(study, states), StrengthOf(study, material), work.classes, work.scales);
  work.edges = Scaled(EdgesOf(work.matrix), work.scales);
  return condition;
}

LocationCondition ClassesOfStressHistory(const StudyState& study, const CombinedLoadTable& table,
                                         const LoadingStates& states, int material, VariableWorkspace& work) {
  const LostStress lost = NodeStressHistory(study.properties, table, states, work.history);
  work.classes.strongest = {};
  work.classes.strongest.lost_alternating =
      0.5 * lost.largest / study.properties.FatigueStrengthReductionFactor;
  const HistoryCondition counted = FilterAndCount(study.properties, work.history, work.rainflow, work.matrix);
  if (counted != HistoryCondition::kNone) return ConditionOf(counted);
  work.edges = EdgesOf(work.matrix);
  return BinsToStressClasses(study.properties, work.matrix, StrengthOf(study, material), work.classes);
}

}  // namespace

void PrepareHistories(RunContext& run, StudyState& study, VariableAmplitude& variable) {
  LoadEventHistories(run, study, variable.history);
  if (!IsShared(study)) BuildCombinedLoadTable(run, study, variable.history, variable.table);
}

void CountEventHistories(RunContext& run, const StudyState& study, MatrixFile& file,
                         VariableAmplitude& variable) {
  const FatigueProperties& properties = study.properties;
  if (properties.RangeBinCount == 1) WarnOfOneRangeBin(run);
  RainflowState state;
  RangeMeanMatrix& matrix = variable.counted;
  for (int e = 1; e <= study.definition.event_count; ++e) {
    PassGate(run.services);
    const std::span<const float> values = variable.history.ValuesOf(study.definition.events[e]);
    if (IsShared(study) && e == 1) {  // already reduced to its reversals when it was loaded
      RequireCounted(run,
                     CountHistory(properties.RangeBinCount, properties.MeanBinCount, values, state, matrix));
      PrintRangeMeanMatrix(run.listing, matrix);
    } else {
      RequireCounted(run, FilterAndCount(properties, values, state, matrix));
    }
    file.WriteEvent(e, EdgesOf(matrix), matrix.counts);
  }
  if (!IsShared(study)) return;
  variable.load_classes.Allocate(properties.RangeBinCount, properties.MeanBinCount);
  BinsToLoadClasses(matrix, variable.load_classes);
}

VariableWorkspace MakeVariableWorkspace(const StudyState& study, const VariableAmplitude& variable) {
  VariableWorkspace work;
  work.matrix = variable.counted;
  if (IsShared(study)) {
    work.classes = variable.load_classes;
  } else {
    work.classes.Allocate(study.properties.RangeBinCount, study.properties.MeanBinCount);
    work.history.resize(variable.table.points);
  }
  work.damage.resize(work.matrix.counts.size());
  work.cycles.resize(work.matrix.counts.size());
  return work;
}

LocationResult EvaluateVariableNode(const StudyState& study, const VariableAmplitude& variable,
                                    const LoadingStates& states, int material, bool above_answered,
                                    VariableWorkspace& work) {
  LocationResult result;
  result.condition = IsShared(study) ? ClassesOfSharedHistory(study, states, material, work)
                                     : ClassesOfStressHistory(study, variable.table, states, material, work);
  if (result.condition == LocationCondition::kNone) {
    result = SumUsage(study, material, above_answered, work.classes);
  }
  AddLost(study, material, work.classes.strongest, result.lost);
  return result;
}

void WriteNodeMatrices(const StudyState& study, int node, MatrixFile& file, VariableWorkspace& work) {
  NodeMatrices(work.classes, study.properties.RangeBinCount, work.damage, work.cycles);
  file.WriteNode(node, work.edges, work.damage, work.cycles);
}

}  // namespace zentor
