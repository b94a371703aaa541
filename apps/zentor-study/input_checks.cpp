#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "content_checks.h"
#include "input_context.h"

namespace zentor::companion {

namespace {

constexpr std::array<std::string_view, 4> kCorrectionNames = {"none", "soderberg", "goodman", "gerber"};

// The table that a condition is about, with its line.
TableReader TableOf(const InputContext& context, TableReader& root, std::string_view key) {
  if (std::optional<TableReader> table = root.Table(key)) return *table;
  return {*context.config, context.file, "", *context.errors};
}

void CheckMaterials(InputContext& context, TableReader& root) {
  const StudyDefinition& study = context.study;
  const int correction = study.options.mean_stress_correction;
  const bool built_in = study.options.sn_curve_option != 0;
  TableReader options = TableOf(context, root, "options");
  if (study.materials.empty() && built_in) {
    return options.ReportText("sn_curves",
                              "names a built-in curve, expected a [[material]] with a modulus to scale it");
  }
  if (study.materials.empty() && correction > 0) {
    return options.ReportText("mean_stress_correction",
                              "needs strengths, expected at least one [[material]]");
  }
  std::set<int> numbers;
  std::size_t place = 0;
  for (const AuthoredMaterial& material : study.materials) {
    ++place;
    numbers.insert(material.number);
    const float strength = correction == 1 ? material.yield_strength : material.ultimate_strength;
    if (correction > 0 && strength <= 0.0F) {
      options.ReportText(
          "mean_stress_correction",
          fmt::format("is '{}', expected material[{}] (number {}) to have {}",
                      kCorrectionNames[static_cast<std::size_t>(correction)], place, material.number,
                      correction == 1 ? "yield_strength" : "ultimate_strength"));
    }
    if (built_in && material.modulus <= 0.0F) {
      options.ReportText("sn_curves",
                         fmt::format("names a built-in curve, expected material[{}] (number {}) to have a "
                                     "modulus",
                                     place, material.number));
    }
  }
  const bool gaps = !numbers.empty() && *numbers.rbegin() != static_cast<int>(numbers.size());
  if (gaps && (correction > 0 || built_in)) {
    root.ReportText("material",
                    fmt::format("has {} numbers up to {}, expected the numbers 1, 2, ... without gaps, since "
                                "a run asks every number for its properties",
                                numbers.size(), *numbers.rbegin()));
  }
}

int MaterialCount(const StudyDefinition& study) {
  int count = 0;
  for (const AuthoredMaterial& material : study.materials) count = std::max(count, material.number);
  return count;
}

void CheckCurves(InputContext& context, TableReader& root) {
  const StudyDefinition& study = context.study;
  if (study.options.sn_curve_option != 0) return;
  std::set<int> sets;
  for (const AuthoredSnCurve& curve : study.sn_curves) sets.insert(curve.material);
  const int materials = MaterialCount(study);
  if (sets.empty()) {
    const bool needed = study.options.activated_location == kAllNodesLocation || materials == 1 ||
                        context.VariableAmplitude() || context.MultiStudy();
    if (needed) {
      return root.ReportMissing("sn_curve",
                                "at least one table [[sn_curve]], or a built-in curve in options.sn_curves");
    }
    context.Warn("no [[sn_curve]]: the run lists alternating stresses and no usage factor");
    return;
  }
  const int wanted = materials > 0 ? materials : kMaxOrdinaryCurves;
  if (context.MultiStudy() && sets.size() != 1 && static_cast<int>(sets.size()) != wanted) {
    root.ReportText("sn_curve",
                    fmt::format("gives curves to {} of {} material sets, expected curves for exactly one or "
                                "for all of them",
                                sets.size(), wanted));
  }
}

const StoredCondition* ConditionOf(const StudyDefinition& study, int location, int loading) {
  for (const StoredCondition& condition : study.stored_conditions) {
    if (condition.location == location && condition.loading == loading) return &condition;
  }
  return nullptr;
}

void CheckStoredLoadings(InputContext& context, TableReader& root) {
  const StudyDefinition& study = context.study;
  const int location = study.options.activated_location;
  for (const AuthoredEvent& event : study.events) {
    for (const AuthoredLoading& loading : event.loadings) {
      if (loading.stress_case != kStoredStressCase) continue;
      if (location == kAllNodesLocation) {
        root.ReportText("event",
                        fmt::format("{} has loading {} with case 'stored', expected a stress case, since all "
                                    "nodes are evaluated",
                                    event.number, loading.number));
      }
      const StoredCondition* condition = ConditionOf(study, location, loading.number);
      if (condition == nullptr || !condition->stress) {
        root.ReportText(
            "event", fmt::format("{} has loading {} with case 'stored', expected a [[stored_condition]] with "
                                 "its stress at location {}",
                                 event.number, loading.number, location));
      }
    }
  }
}

bool OnlyPlaneElements(const StudyModel& model) {
  constexpr int kQuad = 42;
  constexpr int kTriangle = 2;
  return std::all_of(model.groups.begin(), model.groups.end(), [](const ElementGroup& group) {
    return group.type_code == kQuad || group.type_code == kTriangle;
  });
}

void CheckLocation(InputContext& context, TableReader& root) {
  const StudyDefinition& study = context.study;
  const int number = study.options.activated_location;
  if (context.MultiStudy() || number == kAllNodesLocation) {
    if (!study.locations.empty()) {
      context.Warn(
          fmt::format("all nodes are evaluated, so the {} [[location]] and what is stored at them have no "
                      "effect; options.evaluate names one to evaluate",
                      study.locations.size()));
    }
    if (!study.elastic_plastic.sm_t.empty()) {
      context.Warn("[elastic_plastic] has no effect when all nodes are evaluated");
    }
    return;
  }
  const auto location = std::find_if(study.locations.begin(), study.locations.end(),
                                     [number](const AuthoredLocation& one) { return one.number == number; });
  if (location == study.locations.end()) {
    return TableOf(context, root, "options").Report("evaluate", "the number of a [[location]]");
  }
  const bool elastic_plastic = !study.elastic_plastic.sm_t.empty();
  if (location->section == 0) {
    if (elastic_plastic) {
      context.Warn(
          fmt::format("[elastic_plastic] without a [[section]] at location {} works with stored linearised "
                      "conditions only",
                      number));
    }
    return;
  }
  if (!elastic_plastic) {
    context.Warn(
        fmt::format("location {} is in section {}, but without [elastic_plastic] the section is not used",
                    number, location->section));
  } else if (!OnlyPlaneElements(study.model)) {
    context.Warn("the run stops at a section when the model has elements other than quad4 and tria3");
  }
}

// Factors that an analyst may expect to act on the stresses of the model.
void CheckStressFactors(InputContext& context) {
  const StudyDefinition& study = context.study;
  for (const AuthoredLocation& location : study.locations) {
    const bool used = std::any_of(study.stored_conditions.begin(), study.stored_conditions.end(),
                                  [&location](const StoredCondition& condition) {
                                    return condition.location == location.number && condition.stress;
                                  });
    if (used || location.stress_factors == std::array{1.0F, 1.0F, 1.0F}) continue;
    context.Warn(
        fmt::format("stress_factors of location {} have no effect: they act on the stresses of stored "
                    "conditions, of which it has none",
                    location.number));
  }
}

// A strength below the endurance of the curve, or far above the curve, is one of another unit.
void CheckStrengthUnits(InputContext& context) {
  const StudyDefinition& study = context.study;
  const auto curve = CurveStresses(study);
  const int correction = study.options.mean_stress_correction;
  if (!curve || correction == 0) return;
  for (const AuthoredMaterial& material : study.materials) {
    const float strength = correction == 1 ? material.yield_strength : material.ultimate_strength;
    if (strength >= curve->lowest && strength <= 100.0F * curve->highest) continue;
    context.Warn(fmt::format(
        "the {} strength {} of material {} does not fit an S-N curve with stresses of {} to "
        "{}: are both in the same unit?",
        correction == 1 ? "yield" : "ultimate", strength, material.number, curve->lowest, curve->highest));
  }
}

// Loadings with a load case of their own whose temperatures the elastic-plastic factor would need.
void CheckTemperatures(InputContext& context) {
  const StudyDefinition& study = context.study;
  if (study.elastic_plastic.sm_t.empty() || study.options.activated_location == kAllNodesLocation) return;
  for (const StressCase& one : study.stress_cases) {
    const bool used =
        std::any_of(study.events.begin(), study.events.end(), [&one](const AuthoredEvent& event) {
          return std::any_of(
              event.loadings.begin(), event.loadings.end(),
              [&one](const AuthoredLoading& loading) { return loading.stress_case == one.number; });
        });
    const bool given = std::any_of(
        study.temperatures.begin(), study.temperatures.end(),
        [&one](const NodalTemperatures& temperatures) { return temperatures.stress_case == one.number; });
    if (used && !given) {
      context.Warn(fmt::format(
          "stress case '{}' has no temperatures, so the elastic-plastic factor is not used", one.name));
    }
  }
}

bool SameHistorySettings(const std::vector<AuthoredEvent>& events) {
  return std::all_of(events.begin(), events.end(), [&first = events.front()](const AuthoredEvent& event) {
    return event.history == first.history && event.cycles == first.cycles &&
           event.start_point == first.start_point && event.end_point == first.end_point &&
           event.start_time == first.start_time &&
           std::max(event.history_setting, 1) == std::max(first.history_setting, 1);
  });
}

void CheckVariableAmplitude(InputContext& context, TableReader& root) {
  if (!context.VariableAmplitude()) return;
  const StudyOptions& options = context.study.options;
  TableReader table = TableOf(context, root, "options");
  const bool shared = options.shared_history && SameHistorySettings(context.study.events);
  if (options.shared_history && !shared) {
    table.ReportText("shared_history",
                     "is true, expected events with the same history, repetitions, points, start time "
                     "and setting");
  }
  if (!shared && options.alternating_stress_type != 1) {
    table.ReportText("alternating_stress",
                     "must be 'von-mises' with variable amplitude and events of their own "
                     "histories; expected that or shared_history = true");
  }
  if (context.MultiStudy() && options.shared_history && options.shell_surface == 2) {
    table.ReportText("shell_surface",
                     "is 'bottom', expected 'top' with shared_history in the multi-study layout, where "
                     "one field of the study holds both");
  }
  for (const int node : options.matrix_nodes) {
    if (context.index.Node(node) == ModelIndex::kNone) {
      table.ReportText("matrix_nodes", fmt::format("holds {}, expected nodes of the nodes table", node));
    }
  }
}

void CheckUnusedCases(InputContext& context) {
  for (const StressCase& one : context.study.stress_cases) {
    bool used = false;
    for (const AuthoredEvent& event : context.study.events) {
      for (const AuthoredLoading& loading : event.loadings) used = used || loading.stress_case == one.number;
    }
    if (!used) context.Warn(fmt::format("stress case '{}' is not used by any event", one.name));
  }
}

void CheckShells(InputContext& context) {
  const StudyOptions& options = context.study.options;
  if (options.shell_surface != 2 && options.shell_layer <= 1) return;
  const auto& groups = context.study.model.groups;
  const bool layered = std::any_of(groups.begin(), groups.end(), [](const ElementGroup& group) {
    return group.type_code == 43 || group.type_code == 63 || group.type_code == 93 || group.type_code == 46;
  });
  if (!layered) context.Warn("shell_surface and shell_layer have no effect: the model has no shells");
}

// What the content makes of the results: mistakes at their lines, the rest as warnings.
void ReportContent(InputContext& context, TableReader& root) {
  const StudyDefinition& study = context.study;
  for (const Finding& finding : CheckContent(study, [&study] { return CountMaterialNodes(study.model); })) {
    if (finding.grade == Finding::Grade::kWarning) {
      context.Warn(finding.text);
      continue;
    }
    std::vector<TableReader> tables;
    if (finding.place > 0) {
      tables = root.Tables(finding.table);
    } else {
      tables.push_back(TableOf(context, root, finding.table));
    }
    TableReader& table = tables[finding.place > 0 ? finding.place - 1 : 0];
    const ConfigValue* value = finding.key.empty() ? nullptr : table.Look(finding.key);
    context.errors->Add({context.file, value != nullptr ? value->line : table.line(), finding.text});
  }
}

}  // namespace

void CheckStudy(InputContext& context, TableReader& root) {
  // Conditions between parts that were not understood would only repeat their errors.
  const auto sound = [&context](std::initializer_list<Part> parts) {
    return context.kind_known && context.Sound({Part::kOptions}) && context.Sound(parts);
  };
  if (sound({Part::kMaterials})) CheckMaterials(context, root);
  if (sound({Part::kEvents, Part::kModel})) CheckVariableAmplitude(context, root);
  if (sound({Part::kLocations, Part::kElasticPlastic, Part::kModel})) CheckLocation(context, root);
  if (sound({Part::kEvents, Part::kLocations})) CheckStoredLoadings(context, root);
  if (sound({Part::kMaterials, Part::kCurves})) {
    CheckCurves(context, root);
    CheckStrengthUnits(context);
  }
  if (sound({Part::kLocations})) CheckStressFactors(context);
  if (sound({Part::kEvents, Part::kStress, Part::kElasticPlastic})) CheckTemperatures(context);
  if (sound({Part::kEvents, Part::kStress})) CheckUnusedCases(context);
  if (sound({Part::kModel})) CheckShells(context);
  if (sound({Part::kEvents, Part::kCurves, Part::kMaterials, Part::kModel})) ReportContent(context, root);
}

}  // namespace zentor::companion
