#include "authoring/fatigue_table.h"

#include <algorithm>

namespace zentor {

using namespace fatigue_table;

namespace {

int FieldsNeeded(const StudyDefinition& study) {
  std::size_t points = 0;
  for (const AuthoredSnCurve& curve : study.sn_curves) points = std::max(points, curve.points.size());
  return std::max(kMinimumFields, static_cast<int>(points) + 1);
}

int CapacityNeeded(const StudyDefinition& study) {
  return kUsage + std::max(study.model.HighestNode() - 1, 0) / kNodesPerUsageEntity;
}

void AddOrdinaryEvent(TableBuilder& table, const AuthoredEvent& event) {
  table.SetInt(event.number, kEventNumber, event.number);
  table.SetInt(event.number, kEventCycles, event.cycles);
  for (const AuthoredLoading& loading : event.loadings) {
    const int field = kFirstLoading + loading.number - 1;
    table.SetInt(kLoadCases + event.number, field, loading.stress_case);
    table.SetInt(kMembership + event.number, field, loading.number);
    table.SetReal(kOptions, field, loading.scale);
  }
}

// The stored event number doubles as the load case of the first loading when it is above 1.
int StoredNumber(const AuthoredEvent& event) {
  if (event.loadings.empty()) return event.number;
  const AuthoredLoading& first = event.loadings.front();
  const bool keeps_number =
      event.number == 1 ? first.stress_case == first.study : first.stress_case == event.number;
  if (keeps_number) return event.number;
  return first.stress_case == first.study ? 1 : first.stress_case;
}

void AddMultiStudyEvent(TableBuilder& table, const AuthoredEvent& event) {
  table.SetInt(event.number, kEventNumber, StoredNumber(event));
  table.SetInt(event.number, kEventCycles, event.cycles);
  table.SetReal(event.number, kEventRatio, event.ratio);
  table.SetInt(event.number, kEventPairingFlag, event.paired ? 0 : 1);
  int field = kFirstLoading;
  for (const AuthoredLoading& loading : event.loadings) {
    table.SetInt(kLoadCases + event.number, field, loading.study);
    table.SetReal(kOptions + event.number, field, loading.scale);
    ++field;
  }
}

void AddVariableEvent(TableBuilder& table, const AuthoredEvent& event) {
  const AuthoredLoading loading = event.loadings.empty() ? AuthoredLoading{} : event.loadings.front();
  table.SetInt(event.number, kEventLoadCase, loading.stress_case);
  table.SetInt(event.number, kEventHistory, event.history);
  table.SetInt(event.number, kEventRepetitions, event.cycles);
  table.SetReal(event.number, kEventScale, loading.scale);
  table.SetInt(event.number, kEventStartPoint, event.start_point);
  table.SetInt(event.number, kEventEndPoint, event.end_point);
  table.SetReal(event.number, kEventStartTime, event.start_time);
  table.SetInt(event.number, kEventSetting, event.history_setting);
}

void AddEvents(TableBuilder& table, const StudyDefinition& study) {
  for (const AuthoredEvent& event : study.events) {
    if (study.options.load_amplitude_type == 1) {
      AddVariableEvent(table, event);
    } else if (study.layout == StudyLayout::kMultiStudy) {
      AddMultiStudyEvent(table, event);
    } else {
      AddOrdinaryEvent(table, event);
    }
  }
}

// One field holds the shared history flag and the shell surface, so a shared history means the top surface.
int SharedHistoryField(const StudyOptions& options) {
  if (options.load_amplitude_type == 0) return options.shell_surface;
  if (options.shared_history) return 1;
  return options.shell_surface == 2 ? 2 : 0;
}

void AddMultiStudyOptions(TableBuilder& table, const StudyOptions& options) {
  table.SetInt(kOptions, kOptionAlternatingStress, options.alternating_stress_type);
  table.SetInt(kOptions, kOptionInteraction, options.event_interaction);
  table.SetReal(kOptions, kOptionStrengthReduction, options.strength_reduction_factor);
  table.SetInt(kOptions, kOptionSnCurve, options.sn_curve_option);
  table.SetInt(kOptions, kOptionSharedHistory, SharedHistoryField(options));
  table.SetInt(kOptions, kOptionMeanStress, options.mean_stress_correction);
  table.SetInt(kOptions, kOptionRangeBins, options.range_bins);
  table.SetInt(kOptions, kOptionMeanBins, options.mean_bins);
  table.SetInt(kOptions, kOptionLoadAmplitude, options.load_amplitude_type);
  table.SetReal(kOptions, kOptionInfiniteLife, options.infinite_life);
  table.SetInt(kOptions, kOptionFilter, options.filter_percent);
  table.SetInt(kOptions, kOptionSurfaceOnly, options.surface_only ? 1 : 0);
}

void AddCurves(TableBuilder& table, const StudyDefinition& study) {
  int slot = 0;
  for (const AuthoredSnCurve& curve : study.sn_curves) {
    ++slot;
    table.SetInt(kCurves, kCurvePoints + slot, static_cast<int>(curve.points.size()));
    table.SetReal(kCurves, kCurveRatio + slot, curve.stress_ratio);
    table.SetInt(kCurves, kCurveMaterial + slot, curve.material);
    int field = 2;
    for (const auto& [cycles, stress] : curve.points) {
      table.SetReal(kCurveCycles + 2 * slot, field, cycles);
      table.SetReal(kCurveStresses + 2 * slot, field, stress);
      ++field;
    }
  }
}

void AddElasticPlasticData(TableBuilder& table, const ElasticPlasticData& data) {
  if (data.sm_t.empty() && !data.parameters_defined) return;
  table.SetInt(kCurves, kSmTCount, static_cast<int>(data.sm_t.size()));
  table.SetReal(kCurves, kParameterM, data.m);
  table.SetReal(kCurves, kParameterN, data.n);
  table.SetInt(kCurves, kParameterFlag, data.parameters_defined ? 1 : 0);
  int field = 2;
  for (const auto& [temperature, sm] : data.sm_t) {
    table.SetReal(kSmTTemperatures, field, temperature);
    table.SetReal(kSmTValues, field, sm);
    ++field;
  }
}

void AddLocations(TableBuilder& table, const StudyDefinition& study) {
  table.SetInt(kLocations, kActivatedLocation, study.options.activated_location);
  for (const AuthoredLocation& location : study.locations) {
    const int entity = kLocations + location.number;
    table.SetInt(entity, kLocationNumber, location.number);
    table.SetInt(entity, kLocationNode, location.node);
    table.SetInt(entity, kLocationSetting, location.setting);
    table.SetInt(entity, kLocationSection, location.section);
    table.SetInt(entity, kLocationPathPoints, location.path_points);
    table.SetReal(entity, kLocationRadius, location.radius);
    for (int axis = 0; axis < 3; ++axis) {
      table.SetReal(entity, kLocationStressFactor + axis,
                    location.stress_factors[static_cast<std::size_t>(axis)]);
    }
    table.SetInt(entity, kLocationBendingFlag, location.bending_flag);
  }
}

template <std::size_t N>
void SetReals(TableBuilder& table, int entity, int first_field, const std::array<float, N>& values) {
  int field = first_field;
  for (const float value : values) table.SetReal(entity, field++, value);
}

void AddConditions(TableBuilder& table, const StudyDefinition& study) {
  for (const StoredCondition& condition : study.stored_conditions) {
    const int entity = kConditions + (condition.location - 1) * kMaxAuthoredLoadings + condition.loading;
    table.SetInt(entity, kHasStress, condition.stress ? 1 : 0);
    table.SetInt(entity, kHasLinearised, condition.linearised ? 1 : 0);
    table.SetInt(entity, kHasTemperature, condition.temperature ? 1 : 0);
    if (condition.stress) SetReals(table, entity, kConditionStress, *condition.stress);
    if (condition.linearised) SetReals(table, entity, kConditionLinearised, *condition.linearised);
    if (condition.temperature) table.SetReal(entity, kConditionTemperature, *condition.temperature);
  }
}

void AddMatrixNodes(TableBuilder& table, const StudyOptions& options) {
  int field = 2;
  for (const int node : options.matrix_nodes) table.SetInt(kMatrixNodes, field++, node);
}

}  // namespace

TableBuilder BuildFatigueTable(const StudyDefinition& study) {
  TableBuilder table(FieldsNeeded(study), CapacityNeeded(study));
  table.Create(kOptions);
  AddEvents(table, study);
  AddMatrixNodes(table, study.options);
  if (study.layout == StudyLayout::kMultiStudy) {
    AddMultiStudyOptions(table, study.options);
  } else {
    AddCurves(table, study);
  }
  AddElasticPlasticData(table, study.elastic_plastic);
  AddLocations(table, study);
  AddConditions(table, study);
  return table;
}

bool IsExpressibleLoading(int place, int stress_case, int study) {
  return stress_case == study || (place == 1 && stress_case > 1);
}

}  // namespace zentor
