// What a person or a script wants to know after a run.
#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "authoring/study_definition.h"
#include "run_verdict.h"
#include "study_files.h"
#include "study_results.h"
#include "study_settings.h"

namespace zentor::companion {

struct SummaryNode {
  int node = 0;
  std::optional<std::array<float, 3>> point;
  float usage = 0;
  std::optional<float> life;  // of a study with one event; infinite without damage
};

struct RunSummary {
  std::string study;
  std::string title;
  Verdict verdict;
  std::string listing;
  double seconds = 0;                    // of the whole run, as waited for
  std::optional<long> solution_seconds;  // as the listing says
  int solver_exit_code = 0;              // of a solver that was not ended by a signal
  bool all_nodes = false;
  std::size_t nodes_evaluated = 0;
  std::vector<SummaryNode> most_used;  // all nodes
  std::optional<int> location;         // single location
  std::optional<SummaryNode> location_node;
  std::vector<PairRecord> pairs;
  bool has_usage = false;               // single location: an S-N curve was there
  bool elastic_plastic = false;         // single location: the pairs carry Ke and no events
  float strength_reduction_factor = 1;  // stresses were divided by it
  std::vector<std::string> warnings;
};

// Adds the results of a completed run, and what they show about its study (nothing without `content`).
void AddResults(RunSummary& summary, StudyTables& tables, const StudySettings& settings,
                const std::optional<StudyDefinition>& content);

void PrintSummary(const RunSummary& summary, std::ostream& out);
// The keys are documented in docs/zentor-study.md.
nlohmann::ordered_json SummaryJson(const RunSummary& summary);
// The same as text; the control characters that JSON allows (0x7F to 0x9F) are escaped like the others.
std::string JsonText(const RunSummary& summary);

}  // namespace zentor::companion
