// What a study's content makes of its results: cases in which a run completes and the reader is misled. The
// same checks serve the definition that is built and the files of a study that is run.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "authoring/study_definition.h"

namespace zentor::companion {

struct Finding {
  // A mistake is refused by build; where a study has one already, a run warns of it.
  enum class Grade { kWarning, kMistake };
  Grade grade = Grade::kWarning;
  std::string_view table;  // of the definition: "options", "event", "sn_curve"
  std::size_t place = 0;   // 1, 2, ... in a list of tables, 0 otherwise
  std::string_view key;    // empty: the table itself
  std::string text;        // a sentence of its own, without the place
};
using Findings = std::vector<Finding>;

struct MaterialNodes {
  std::map<int, std::size_t> counts;  // nodes at elements of each material
  std::set<int> of_first;             // materials at the node of the lowest number
};
MaterialNodes CountMaterialNodes(const StudyModel& model);

// Events and loadings that can do no damage, or less than their cycles say.
void CheckEventDamage(const StudyDefinition& study, Findings& findings);
// The strength reduction factor: values that a run replaces, and which way it turns the stresses.
void CheckStrengthReduction(const StudyDefinition& study, Findings& findings);
// S-N curves that are not looked at or belong to another material, and an infinite life within them.
// `material_nodes` is asked when materials share a curve.
void CheckCurveUse(const StudyDefinition& study, const std::function<MaterialNodes()>& material_nodes,
                   Findings& findings);

// All of them. Uses options, events, curves and the numbers and, with a built-in curve, moduli of the
// materials; stress cases for their names.
Findings CheckContent(const StudyDefinition& study, const std::function<MaterialNodes()>& material_nodes);

// Whether stresses below an S-N curve count with the infinite life instead of the curve's last cycles.
bool HasInfiniteLife(const StudyDefinition& study);

// The stresses of the S-N curves that all nodes use, in a study whose nodes share them. A built-in curve
// needs materials of one modulus.
struct CurveRange {
  float lowest = 0.0F, highest = 0.0F;
  double last_cycles = 0.0;  // the fewest of the curves
};
std::optional<CurveRange> CurveStresses(const StudyDefinition& study);

// Of nodes that get damage though they have no stress.
std::string UnstressedNodesText(std::size_t count, std::size_t nodes);

// "stresses are divided by strength_reduction_factor 2, which lowers them to 50 %"; empty for 1.
std::string StrengthReductionText(float factor);

}  // namespace zentor::companion
