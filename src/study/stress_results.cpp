#include "study/stress_results.h"

#include <algorithm>
#include <string>

#include "database/study_lock.h"
#include "study/study_messages.h"

namespace zentor {
namespace {

bool ComesFromFile(int load_case) { return load_case > 0 && load_case != kZeroLoadCase; }

StressKind FindListedStressKind(SolverServices& services, const EventTable& table) {
  StressKind kind = StressKind::kNone;
  for (const Loading& loading : table.loadings) {
    if (kind != StressKind::kNone || !ComesFromFile(loading.load_case)) continue;
    services.SelectSecondStudyName(loading.time_step);
    kind = FindStressKind(services, 1);
  }
  services.GetStudyName();  // selects the study's own name again
  return kind;
}

[[noreturn]] void StopWithoutStressFile(RunContext& run) {
  run.listing.ListDirected("STOP - Missing stress file (file with extension .STE or .STN)");
  StopWithMessage(run.services, message::kStressFileMissing);
}

[[noreturn]] void StopWithoutNode(RunContext& run) {
  run.listing.Blank(4);
  run.listing.Line("  *** ERROR - Node corresponding to this location is not defined");
  run.listing.Blank();
  run.listing.ListDirected("");
  run.listing.ListDirected("    STOP");
  StopWithMessage(run.services, message::kLocationNodeUnknown);
}

}  // namespace

StressKind FindStressKind(SolverServices& services, int buffer) {
  if (services.StudyFileExistsIn(".STE", buffer)) return StressKind::kSte;
  if (services.StudyFileExistsIn(".STN", buffer)) return StressKind::kStn;
  if (services.StudyFileExistsIn(".STP", buffer)) return StressKind::kStp;
  return StressKind::kNone;
}

bool ListedStudyIsWhole(RunContext& run) {
  const std::string base = run.services.SecondStudyName();
  if (base.empty() || !run.files.Exists(HalfBuiltMark(base))) return true;
  run.services.NoteToBatchUser("listed study " + base + ":");
  return false;
}

bool NeedsStressFile(const StudyState& study) {
  const auto& cases = study.conditions.stress_case;
  return std::any_of(cases.begin(), cases.end(), ComesFromFile);
}

void CheckStressResults(RunContext& run, StudyState& study) {
  const FatigueProperties& p = study.properties;
  study.stress_kind = IsMultiStudy(p) ? FindListedStressKind(run.services, study.definition)
                                      : FindStressKind(run.services, 0);
  const bool driver_checks = IsAllNodes(p) && !IsMultiStudy(p) && !IsVariableAmplitude(p);
  if (study.stress_kind == StressKind::kNone && !driver_checks) StopWithoutStressFile(run);
  if (IsAllNodes(p)) return;
  const int node = study.location_node;
  if (node < 1 || DbGetInt(run.database, DbTable::kNod, node, 1) == 0) StopWithoutNode(run);
}

}  // namespace zentor
