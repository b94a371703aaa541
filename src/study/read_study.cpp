#include "study/read_study.h"

#include <exception>

#include "platform/text.h"
#include "services/message_arguments.h"
#include "study/completion_flag.h"
#include "study/definition_echo.h"
#include "study/elastic_plastic_input.h"
#include "study/events_input.h"
#include "study/extended_options.h"
#include "study/fatigue_properties_input.h"
#include "study/listing_head.h"
#include "study/locations_input.h"
#include "study/model_input.h"
#include "study/properties_echo.h"
#include "study/result_record_file.h"
#include "study/sn_curves_input.h"
#include "study/stored_conditions.h"
#include "study/stress_results.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

// The flag of an earlier run goes before the run ends, which may take the process with it.
void ForgetCompletionUnopened(RunContext& run, bool has_study_list) {
  try {
    DbOpenStudyTables(run.database);
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the caller has a fault to report
  }
  ForgetEarlierCompletion(run, has_study_list);
}

// A study with a list of studies needs the stresses of the first of them.
void RequireFirstListedStudy(RunContext& run) {
  SolverServices& services = run.services;
  services.SelectSecondStudyName(1);
  const bool whole = ListedStudyIsWhole(run);
  const StressKind kind = FindStressKind(services, 1);
  services.GetStudyName();  // selects the study's own name again
  if (whole && kind != StressKind::kNone) return;
  ForgetCompletionUnopened(run, true);
  if (!whole) StopWithMessage(services, message::kStudyHalfBuilt);
  StopWithMessage(services, message::kStudyWithoutStressFile,
                  TextArguments(platform::ToWide(services.SecondStudyName())));
}

void FindStudyList(RunContext& run, StudyState& study) {
  try {
    study.has_study_list = run.services.StudyFileExistsIn(".FTS", 0);
    if (study.has_study_list) RequireFirstListedStudy(run);
  } catch (const std::exception&) {
    run.services.GetStudyName();
    ForgetCompletionUnopened(run, study.has_study_list);
    throw;
  }
}

// A file without content is no table, and the study is read as if it had none.
void WarnOfEmptyTables(RunContext& run, const StudyState& study) {
  for (const DbTable table :
       {DbTable::kMas, DbTable::kNod, DbTable::kEle, DbTable::kMat, DbTable::kFtc, DbTable::kSnc}) {
    const auto i = static_cast<std::size_t>(table) - 1;
    if (!run.database.zero_bytes[i] || (table == DbTable::kSnc && !study.has_study_list)) continue;
    run.services.ShowMessage(message::kTableWithoutContent,
                             TextArguments(platform::ToWide(run.database.paths[i])), Severity::kWarning);
  }
}

void ReadProperties(RunContext& run, StudyState& study) {
  try {
    DbOpenStudyTables(run.database);
    study.properties = ReadFatigueProperties(run, study.has_study_list);
  } catch (const std::exception&) {
    ForgetEarlierCompletion(run, study.has_study_list);
    throw;
  }
  SetCompletionFlag(run, study.properties, 0);
}

void OpenTables(RunContext& run, StudyState& study) {
  ReadProperties(run, study);
  WarnOfEmptyTables(run, study);
  CheckFatigueProperties(run, study);
  if (IsVariableAmplitude(study.properties)) study.matrix_nodes = ReadMatrixNodes(run);
  run.services.SetRunMode(DbGetInt(run.database, DbTable::kMas, 3, 33));
  study.properties.ExactPrincipalStresses =
      ReadExtendedOptions(run.files, run.services.StudyFileName(ftx_format::kExtension))
          .exact_principal_stresses;
}

void ReadModel(RunContext& run, StudyState& study) {
  study.sizes = ReadModelSizes(run.database);
  CheckStressNumbers(run, study.sizes);
  if (study.properties.SurfaceOnly == 1) ReadSurface(run, study);
  ReadMaterials(run, study);
  ReadNodeMaterials(run, study);
  CheckModelSizes(run, study.sizes);
  ShowLine(run.services, message::kStartNotice, study.sizes.highest_node);
}

void OpenOutputs(RunContext& run, StudyState& study) {
  const FatigueProperties& p = study.properties;
  ReadActivatedLocation(run, study);
  OpenListing(run, study);
  EchoFatigueProperties(run, study);
  CheckActivatedLocation(run, p);
  OpenResultRecords(run);
  if (!IsAllNodes(p)) {
    AppendResultRecord(run, ResultRecord(1)
                                .Int(p.ActivatedLocation)
                                .Int(study.location_node)
                                .Int(p.ShellSurface)
                                .Int(p.ShellLayer));
  }
  run.listing.Flush();
}

void ShowCounts(RunContext& run, const StudyState& study) {
  const FatigueProperties& p = study.properties;
  ShowLine(run.services, message::kLoadingCount, study.definition.loading_count);
  if (!IsVariableAmplitude(p)) ShowLine(run.services, message::kEventCount, study.definition.event_count);
  if (IsMultiStudy(p)) return;
  if (IsAllNodes(p)) {
    ShowLine(run.services, message::kAllNodesNotice);
  } else {
    ShowLine(run.services, message::kLocationNotice, p.ActivatedLocation);
  }
}

void ReadHistories(RunContext& run, StudyState& study, StudyInputSteps& steps) {
  FatigueProperties& p = study.properties;
  if (!EventsShareHistory(study.definition)) p.SharedHistory = 0;
  if (p.SharedHistory != 1 && p.AlternatingStressType != kVonMises) {
    StopWithMessage(run.services, message::kSharedHistoryNeeded);
  }
  steps.LoadHistories(run, study);
}

void ReadLoadings(RunContext& run, StudyState& study, StudyInputSteps& steps) {
  if (IsVariableAmplitude(study.properties)) {
    ReadVariableAmplitudeEvents(run, study);
  } else if (IsMultiStudy(study.properties)) {
    ReadMultiStudyEvents(run, study);
  } else {
    ReadEvents(run, study);
  }
  ShowCounts(run, study);
  if (IsVariableAmplitude(study.properties)) ReadHistories(run, study, steps);
}

void ReadAndEchoDefinition(RunContext& run, StudyState& study) {
  const FatigueProperties& p = study.properties;
  const bool constant_amplitude = !IsVariableAmplitude(p);
  if (constant_amplitude) EchoEvents(run.listing, study.definition);
  ReadSnCurves(run, study);
  ReadElasticPlasticData(run, study);
  if (constant_amplitude) ReadLocations(run, study);
  if (!IsMultiStudy(p)) EchoLocations(run.listing, study);
  if (study.sm_t.count > 0 || study.location_section > 0) EchoSections(run.listing, study);
  ApplyStoredConditions(run, study);
  if (!IsMultiStudy(p)) EchoStoredConditions(run, study);
  CheckStoredConditions(run, study);
  run.listing.Flush();
}

void ReadStresses(RunContext& run, StudyState& study, StudyInputSteps& steps) {
  const bool from_file = NeedsStressFile(study);
  if (from_file) CheckStressResults(run, study);
  if (IsAllNodes(study.properties)) return;
  // With all stresses stored a temperature may still come from a load case; it must not be left at 0.
  if (study.readiness.EpLinearizedReady && (from_file || NeedsTemperatures(study))) {
    ReadLocationTemperatures(run, study);
  }
  if (from_file) steps.BuildStressStore(run, study);
}

// Every loading of an event has its linearised stresses stored, or is without stresses.
bool AllLinearisedStored(const StudyState& study) {
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int load_case = study.conditions.linearised_case[k];
    const bool stored = load_case == kAppliedLoadCase || load_case == kZeroLoadCase;
    if (study.definition.loadings[k].event != 0 && !stored) return false;
  }
  return true;
}

void ScaleSectionStresses(StudyState& study) {
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int load_case = study.conditions.linearised_case[k];
    if (load_case <= 0 || load_case == kZeroLoadCase) continue;
    for (double& component : study.conditions.linearised[k])
      component *= study.definition.loadings[k].scale_factor;
  }
}

void PrepareSection(RunContext& run, StudyState& study, StudyInputSteps& steps) {
  ElasticPlasticReadiness& readiness = study.readiness;
  readiness.EpSectionReady = readiness.EpTemperatureReady;
  if (!readiness.EpTemperatureReady || AllLinearisedStored(study)) return;
  if (study.location_section < 1) {
    readiness.EpSectionReady = false;
    return;
  }
  ShowLine(run.services, message::kSectionStressesNotice);
  readiness.EpSectionReady = steps.FormSectionStresses(run, study);
  if (readiness.EpSectionReady) ScaleSectionStresses(study);
}

}  // namespace

void ReadStudy(RunContext& run, StudyState& study, StudyInputSteps& steps) {
  FindStudyList(run, study);
  OpenTables(run, study);
  ReadModel(run, study);
  OpenOutputs(run, study);
  ReadLoadings(run, study, steps);
  ReadAndEchoDefinition(run, study);
  if (!IsAllNodes(study.properties)) SetLinearizedReadiness(study);
  ReadStresses(run, study, steps);
  if (!IsAllNodes(study.properties)) PrepareSection(run, study, steps);
  run.listing.Flush();
}

}  // namespace zentor
