#include "stress_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "content_checks.h"

namespace zentor::companion {

namespace {

constexpr std::size_t kComponents = 6;

std::uint64_t Mixed(std::uint64_t digest, float value) {
  constexpr std::uint64_t kPrime = 0x100000001b3;
  return (digest ^ std::bit_cast<std::uint32_t>(value)) * kPrime;
}

// Largest magnitude by which the study multiplies the stresses of a case.
float LargestFactor(const StudyDefinition& study, const AuthoredEvent& event,
                    const AuthoredLoading& loading) {
  float factor = std::abs(loading.scale) / std::max(study.options.strength_reduction_factor, 1e-16F);
  if (study.options.load_amplitude_type != 1) return factor;
  for (const AuthoredHistory& history : study.histories) {
    if (history.number != event.history) continue;
    float largest = 0.0F;
    for (const float value : history.values) largest = std::max(largest, std::abs(value));
    factor *= largest;
  }
  return factor;
}

}  // namespace

void StressFacts::Add(int stress_case, const StudyModel& model, const std::vector<StressField>& fields) {
  Case& facts = cases_[stress_case];
  facts.stressed.assign(static_cast<std::size_t>(model.HighestNode()) + 1, false);
  for (const StressField& field : fields) {
    for (std::size_t i = 0; i < field.values.size(); ++i) {
      const float value = field.values[i];
      facts.digest = Mixed(facts.digest, value);
      if (std::isnan(value) || value == 0.0F) continue;
      facts.largest = std::max(facts.largest, std::abs(value));
      facts.stressed[static_cast<std::size_t>(model.element_nodes[i / kComponents])] = true;
    }
  }
}

std::vector<std::string> StressFacts::Warnings(const StudyDefinition& study) const {
  std::vector<std::string> warnings;
  if (cases_.empty()) return warnings;
  WarnOfUnstressedNodes(study, warnings);
  WarnOfUnits(study, warnings);
  WarnOfTwins(study, warnings);
  return warnings;
}

void StressFacts::WarnOfUnstressedNodes(const StudyDefinition& study,
                                        std::vector<std::string>& warnings) const {
  const bool has_curve = study.options.sn_curve_option != 0 || !study.sn_curves.empty();
  const bool all_nodes = study.options.activated_location == kAllNodesLocation;
  // Without a shared history a node without stress stops the run.
  const bool stops = study.options.load_amplitude_type == 1 && !study.options.shared_history;
  if (!has_curve || !all_nodes || (HasInfiniteLife(study) && !stops)) return;
  std::vector<const Case*> used;
  bool any_pair = study.options.load_amplitude_type == 1;
  for (const AuthoredEvent& event : study.events) {
    any_pair = any_pair || event.loadings.size() > 1 || (!event.loadings.empty() && study.events.size() > 1);
    for (const AuthoredLoading& loading : event.loadings) {
      const auto found = cases_.find(loading.stress_case);
      if (found != cases_.end() && loading.scale != 0.0F) used.push_back(&found->second);
    }
  }
  if (!any_pair) return;
  const auto& nodes = study.model.nodes;
  std::size_t free = 0;
  int first = std::numeric_limits<int>::max();
  for (const AuthoredNode& node : nodes) {
    const bool stressed = std::any_of(used.begin(), used.end(), [&node](const Case* one) {
      return one->stressed[static_cast<std::size_t>(node.number)];
    });
    if (stressed) continue;
    ++free;
    first = std::min(first, static_cast<int>(node.number));
  }
  if (free == 0) return;
  warnings.push_back(stops
                         ? fmt::format("{} of {} nodes have no stress: the run stops at the first, node {}, "
                                       "whose stress history has no cycle to count (message 9060)",
                                       free, nodes.size(), first)
                         : UnstressedNodesText(free, nodes.size()));
}

void StressFacts::WarnOfUnits(const StudyDefinition& study, std::vector<std::string>& warnings) const {
  const auto range = CurveStresses(study);
  if (!range) return;
  float largest = 0.0F;
  for (const AuthoredEvent& event : study.events) {
    for (const AuthoredLoading& loading : event.loadings) {
      const auto found = cases_.find(loading.stress_case);
      if (found == cases_.end()) continue;
      largest = std::max(largest, found->second.largest * LargestFactor(study, event, loading));
    }
  }
  // A range has at most four times the amplitude of its largest component, and at least a few parts of it.
  constexpr float kFar = 10.0F;
  const bool low = largest > 0.0F && 2.0F * largest * kFar < range->lowest;
  const bool high = largest / 2.0F > range->highest * kFar;
  if (!low && !high) return;
  warnings.push_back(fmt::format(
      "the largest stress component of the loadings is {:.3g}, far {} the S-N curve's stresses of "
      "{:.3g} to {:.3g}: are both in the same unit?",
      largest, low ? "below" : "above", range->lowest, range->highest));
}

void StressFacts::WarnOfTwins(const StudyDefinition& study, std::vector<std::string>& warnings) const {
  for (auto one = study.stress_cases.begin(); one != study.stress_cases.end(); ++one) {
    for (auto other = study.stress_cases.begin(); other != one; ++other) {
      const auto a = cases_.find(one->number);
      const auto b = cases_.find(other->number);
      if (a == cases_.end() || b == cases_.end() || a->second.digest != b->second.digest) continue;
      warnings.push_back(
          fmt::format("stress cases '{}' and '{}' hold the same stresses", other->name, one->name));
      break;
    }
  }
}

}  // namespace zentor::companion
