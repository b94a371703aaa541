#include "result_checks.h"

#include <fmt/format.h>

#include <algorithm>
#include <new>

#include "content_checks.h"
#include "reading_services.h"
#include "services/faults.h"
#include "services/stop.h"
#include "stress/nodal_stress_store.h"
#include "study/events_input.h"
#include "study/fatigue_properties_input.h"
#include "study/model_input.h"
#include "study/stress_results.h"

namespace zentor::companion {

namespace {

// The lookup raises smaller alternating stresses to this.
constexpr float kNoStress = 1e-20F;

// How many of the nodes have no stress in any loading, by the averages that the run evaluates.
std::size_t CountUnstressed(RunContext& run, const std::vector<int>& nodes) {
  DbOpenStudyTables(run.database);
  StudyState study;
  study.properties = ReadFatigueProperties(run, false);
  CheckFatigueProperties(run, study);
  study.sizes = ReadModelSizes(run.database);
  if (IsVariableAmplitude(study.properties)) {
    ReadVariableAmplitudeEvents(run, study);
  } else {
    ReadEvents(run, study);
  }
  study.stress_kind = FindStressKind(run.services, 0);
  std::vector<StoreLoading> loadings;
  for (const Loading& loading : study.definition.loadings) {
    const bool stressed = loading.load_case > 0 && loading.event > 0 && loading.scale_factor != 0.0;
    if (stressed) loadings.push_back({loading.load_case, loading.time_step});
  }
  if (study.stress_kind == StressKind::kNone || loadings.empty()) return nodes.size();
  const NodalStressStore store = BuildNodalStressStore(run, study, loadings);
  const auto unstressed = std::count_if(nodes.begin(), nodes.end(), [&store](int node) {
    for (int slot = 1; slot <= store.slot_count(); ++slot) {
      if (store.NodalStress(node, slot) != StressTensor{}) return false;
    }
    return true;
  });
  return static_cast<std::size_t>(unstressed);
}

std::size_t CountUnstressed(const std::string& base, const std::vector<int>& nodes) {
  MemoryOverlay files;
  ReadingServices services(base, files);
  RunContext run(files, services);
  try {
    return CountUnstressed(run, nodes);
  } catch (const RunStopped&) {
    // The run has read the same files; whatever stops this check says nothing about its results.
  } catch (const InputFault&) {
  } catch (const platform::FileError&) {
  } catch (const std::bad_alloc&) {
  }
  return 0;
}

std::size_t UnstressedNodesWithDamage(const std::string& base, const StudyDefinition& content,
                                      const NodeResults& results) {
  constexpr float kBoundless = 1e15F;
  std::size_t certain = 0;
  std::vector<int> candidates;
  for (const NodeResult& node : results.nodes) {
    if (!(node.usage > 0)) continue;
    if (results.HasFactorOfSafety()) {
      certain += node.factor_of_safety > kBoundless ? 1 : 0;  // any stress over none
    } else if (node.biaxiality == 0.0F) {
      candidates.push_back(node.node);
    }
  }
  const bool elsewhere = content.layout == StudyLayout::kMultiStudy;
  return candidates.empty() || elsewhere ? certain : CountUnstressed(base, candidates);
}

// Whether all nodes have the usage factor of stresses below the S-N curve, and why that may be.
std::string SameUsageText(const StudyDefinition& content, const NodeResults& results) {
  const auto curve = CurveStresses(content);
  if (!curve || content.options.load_amplitude_type == 1 || results.nodes.size() < 2) return {};
  double cycles = 0;
  for (const AuthoredEvent& event : content.events) cycles += event.cycles;
  const float usage = results.nodes.front().usage;
  const double below = cycles / (HasInfiniteLife(content) ? static_cast<double>(content.options.infinite_life)
                                                          : curve->last_cycles);
  const bool same = usage > 0 && static_cast<double>(usage) <= below * 1.000001 &&
                    std::all_of(results.nodes.begin(), results.nodes.end(),
                                [usage](const NodeResult& node) { return node.usage == usage; });
  if (!same) return {};
  return fmt::format(
      "no stress reaches the S-N curve: all {} nodes have the usage factor {:g} of stresses below its "
      "lowest, {:g}; are both in the same unit?",
      results.nodes.size(), usage, curve->lowest);
}

}  // namespace

std::vector<std::string> CheckNodeResults(const std::string& base, const StudyDefinition& content,
                                          const NodeResults& results) {
  const std::size_t unstressed =
      HasInfiniteLife(content) ? 0 : UnstressedNodesWithDamage(base, content, results);
  if (unstressed > 0 && unstressed == results.nodes.size()) {
    return {UnstressedNodesText(unstressed, results.nodes.size())};
  }
  std::vector<std::string> warnings;
  if (unstressed > 0) warnings.push_back(UnstressedNodesText(unstressed, results.nodes.size()));
  if (std::string text = SameUsageText(content, results); !text.empty()) warnings.push_back(std::move(text));
  return warnings;
}

std::vector<std::string> CheckLocationResult(const StudyDefinition& content, const LocationResult& run) {
  const bool usage = run.usage_evaluated && !run.usage.empty() && run.usage.back() > 0;
  const auto curve = CurveStresses(content);
  if (!usage || !curve || run.pairs.empty()) return {};
  float largest = 0.0F;
  for (const PairRecord& pair : run.pairs) largest = std::max(largest, pair.alternating_stress);
  if (largest <= kNoStress) {
    // The formulas as stated can lose a stress that is there; the run then tells how much.
    const bool may_be_lost =
        content.options.alternating_stress_type != 1 && !content.extended.exact_principal_stresses;
    return {fmt::format(
        "the location {}; its usage factor {:g} is that of stresses below the S-N curve",
        may_be_lost ? "has no alternating stress by the principal stresses as stated" : "is free of stress",
        run.usage.back())};
  }
  if (largest > curve->lowest) return {};
  return {
      fmt::format("no stress of the location reaches the S-N curve: the largest alternating stress is {:g}, "
                  "the curve's lowest {:g}; are both in the same unit?",
                  largest, curve->lowest)};
}

}  // namespace zentor::companion
