#include <fmt/format.h>

#include <array>

#include "input_context.h"

namespace zentor::companion {

namespace {

constexpr std::array<Choice, 2> kAmplitudes = {{{"constant", 0}, {"variable", 1}}};
constexpr std::array<Choice, 3> kAlternatingStresses = {
    {{"intensity", 0}, {"von-mises", 1}, {"max-principal", 2}}};
constexpr std::array<Choice, 4> kCorrections = {
    {{"none", 0}, {"soderberg", 1}, {"goodman", 2}, {"gerber", 3}}};
constexpr std::array<Choice, 2> kPrincipalStresses = {{{"as-stated", 0}, {"exact", 1}}};
constexpr std::array<Choice, 2> kInteractions = {{{"random", 0}, {"none", 1}}};
constexpr std::array<Choice, 3> kCurveSources = {
    {{"study", 0}, {"carbon-steel", -1}, {"austenitic-steel", -2}}};
constexpr std::array<Choice, 3> kInterpolations = {{{"log-log", 0}, {"semi-log", 1}, {"linear", 2}}};
constexpr std::array<Choice, 2> kSurfaces = {{{"top", 1}, {"bottom", 2}}};

void ReadRainflow(InputContext& context, TableReader& table) {
  StudyOptions& options = context.study.options;
  if (!context.VariableAmplitude()) {
    for (const std::string_view key :
         {"range_bins", "mean_bins", "filter_percent", "shared_history", "matrix_nodes"}) {
      table.Refuse(key, "has a meaning only with load_amplitude = 'variable'");
    }
    return;
  }
  options.range_bins = table.Integer("range_bins", {1, kMaxBins}, 25);
  options.mean_bins = table.Integer("mean_bins", {1, kMaxBins}, options.range_bins);
  options.filter_percent = table.Integer("filter_percent", {0, 100}, 0);
  options.shared_history = table.Boolean("shared_history", false);
  options.matrix_nodes = table.Integers("matrix_nodes", {1, kMaxModelNumber});
  if (options.matrix_nodes.size() > static_cast<std::size_t>(kMaxMatrixNodes)) {
    table.Report("matrix_nodes", fmt::format("at most {} nodes", kMaxMatrixNodes));
  }
  if (options.range_bins == 1) {
    context.Warn(
        "options.range_bins = 1: every range falls into the bin whose centre is 0, so there is no damage");
  }
  if (table.Has("event_interaction")) {
    context.Warn("options.event_interaction has no effect with load_amplitude = 'variable'");
  }
}

void ReadScope(InputContext& context, TableReader& table) {
  StudyOptions& options = context.study.options;
  if (context.MultiStudy()) {
    table.Refuse("evaluate", "has no meaning in the multi-study layout, which always evaluates all nodes");
    options.surface_only = table.Boolean("surface_only", false);
    return;
  }
  table.Refuse("surface_only", "has a meaning only with layout = 'multi-study'");
  const ConfigValue* evaluate = table.Look("evaluate");
  if (evaluate == nullptr || (evaluate->kind == ConfigValue::Kind::kText && evaluate->text == "all-nodes"))
    return;
  const bool location = evaluate->kind == ConfigValue::Kind::kInteger && evaluate->integer >= 1 &&
                        evaluate->integer <= kMaxAuthoredLocations;
  if (!location) {
    return table.Report(
        "evaluate", fmt::format("'all-nodes' or a location's number from 1 to {}", kMaxAuthoredLocations));
  }
  options.activated_location = static_cast<int>(evaluate->integer);
}

void ReadCurveOptions(InputContext& context, TableReader& table) {
  StudyOptions& options = context.study.options;
  options.sn_curve_option = table.Option("sn_curves", kCurveSources, 0);
  if (context.MultiStudy()) {
    table.Refuse("sn_interpolation",
                 "has a meaning only in the ordinary layout; give every [[sn_curve]] its own");
  } else {
    options.sn_interpolation = table.Option("sn_interpolation", kInterpolations, 0);
  }
}

}  // namespace

void ReadOptions(InputContext& context, TableReader& root) {
  const ConfigValue empty;
  std::optional<TableReader> given = root.Table("options");
  TableReader table = given ? *given : TableReader(empty, context.file, "options", *context.errors);
  StudyOptions& options = context.study.options;
  const ErrorWatch amplitude(*context.errors);
  options.load_amplitude_type = table.Option("load_amplitude", kAmplitudes, 0);
  if (!amplitude.Clean()) context.kind_known = false;
  options.alternating_stress_type = table.Option("alternating_stress", kAlternatingStresses, 0);
  context.study.extended.exact_principal_stresses =
      table.Option("principal_stresses", kPrincipalStresses, 1) == 1;
  options.mean_stress_correction = table.Option("mean_stress_correction", kCorrections, 0);
  options.event_interaction = table.Option("event_interaction", kInteractions, 0);
  options.strength_reduction_factor = table.Real("strength_reduction_factor", kPositive, 1.0F);
  options.infinite_life = table.Real("infinite_life", kNotNegative, 0.0F);
  options.shell_surface = table.Option("shell_surface", kSurfaces, 1);
  options.shell_layer = table.Integer("shell_layer", {1, 9999}, 1);
  ReadCurveOptions(context, table);
  ReadRainflow(context, table);
  ReadScope(context, table);
  table.Finish();
  if (table.Misspelt("load_amplitude")) context.kind_known = false;
}

void ReadStudyList(InputContext& context, TableReader& root) {
  if (!context.MultiStudy()) {
    root.Refuse("multi_study", "has a meaning only with layout = 'multi-study'");
    return;
  }
  std::optional<TableReader> table = root.Table("multi_study");
  if (!table) return root.ReportMissing("multi_study", "a table [multi_study] with the list 'studies'");
  const ConfigValue* studies = table->Look("studies");
  constexpr std::string_view kWanted = "a list of 1 to 40 base names of studies";
  const bool fits = studies != nullptr && studies->kind == ConfigValue::Kind::kArray &&
                    !studies->items.empty() && studies->items.size() <= static_cast<std::size_t>(kMaxStudies);
  if (!fits) table->Report("studies", kWanted);
  for (const ConfigValue& item : fits ? studies->items : std::vector<ConfigValue>{}) {
    const bool name = item.kind == ConfigValue::Kind::kText && !item.text.empty() &&
                      item.text.find_first_of("\r\n") == std::string::npos;
    if (!name) table->ReportAt(item, "studies", "the base name of a study, on one line");
    context.study.studies.push_back(item.text);
  }
  table->Finish();
}

}  // namespace zentor::companion
