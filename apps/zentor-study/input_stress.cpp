#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>

#include "input_context.h"
#include "row_source.h"
#include "stress_case_reader.h"

namespace zentor::companion {

namespace {

constexpr std::array<Choice, 3> kFileKinds = {{{"STE", 0}, {"STN", 1}, {"STP", 2}}};

void ReadStressFile(InputContext& context, TableReader& root) {
  std::optional<TableReader> table = root.Table("stress_file");
  if (!table) return;
  if (context.MultiStudy()) root.Refuse("stress_file", "has no meaning in the multi-study layout");
  context.study.stress_file = static_cast<StressFileKind>(table->Option("kind", kFileKinds, 0));
  const int bits = table->Integer("pointer_bits", {32, 64}, 32);
  if (bits != 32 && bits != 64) table->Fail("pointer_bits", "32 or 64");
  context.study.pointer_words = bits / 32;
  if (context.VariableAmplitude() && context.study.stress_file != StressFileKind::kSte) {
    table->Fail("kind", "'STE', which variable amplitude always reads");
  }
  table->Finish();
}

int CaseNumber(TableReader& table, std::size_t place, std::vector<int>& taken) {
  return EntityNumber(table, place, kMaxStressCase, taken);
}

void ReadTemperatures(InputContext& context, TableReader& table, int number) {
  const ConfigValue* given = table.Look("temperatures");
  if (given == nullptr) return;
  const StudyModel& model = context.study.model;
  NodalTemperatures temperatures;
  temperatures.stress_case = number;
  if (given->IsNumber()) {
    temperatures.values.assign(model.nodes.size(), table.Real("temperatures", kAnyReal));
    context.study.temperatures.push_back(std::move(temperatures));
    return;
  }
  constexpr std::array<Column, 2> kColumns = {{{"node"}, {"t"}}};
  const auto rows = OpenRows(table, "temperatures", context.folder, {kColumns}, context.files);
  temperatures.values.assign(model.nodes.size(), std::numeric_limits<float>::quiet_NaN());
  while (rows->Next()) {
    const int node = rows->Integer(0, {1, kMaxModelNumber});
    const std::int32_t place = context.index.Node(node);
    if (place == ModelIndex::kNone)
      rows->Fail(fmt::format("node is {}, expected a node of the nodes table", node));
    float& value = temperatures.values[static_cast<std::size_t>(place)];
    if (!std::isnan(value)) rows->Fail(fmt::format("node {} has a temperature already, expected one", node));
    value = rows->Real(1, kAnyReal);
  }
  const auto missing = std::find_if(temperatures.values.begin(), temperatures.values.end(),
                                    [](float value) { return std::isnan(value); });
  if (missing != temperatures.values.end()) {
    const int node = model.nodes[static_cast<std::size_t>(missing - temperatures.values.begin())].number;
    table.FailText("temperatures", fmt::format("has none for node {}, expected one for every node", node));
  }
  context.study.temperatures.push_back(std::move(temperatures));
}

std::string CaseName(InputContext& context, TableReader& table) {
  std::string name = table.Text("name");
  if (name.empty() || name == "zero" || name == "stored") {
    table.Fail("name",
               "a name other than 'zero' and 'stored', which loadings use for cases without stress results");
  }
  if (context.case_numbers.contains(name)) table.Fail("name", "a name that no other stress case has");
  return name;
}

}  // namespace

void ReadStressCases(InputContext& context, TableReader& root) {
  ReadStressFile(context, root);
  if (context.MultiStudy()) {
    root.Refuse("stress_case",
                "has no meaning in the multi-study layout, which takes the stresses of other studies");
    return;
  }
  const auto index = std::make_shared<ModelIndex>(context.index);
  const auto coverage = std::make_shared<CaseCoverage>();
  std::vector<int> taken;
  for (TableReader& table : root.Tables("stress_case")) {
    StressCase one;
    one.name = CaseName(context, table);
    one.number = CaseNumber(table, taken.size(), taken);
    context.case_numbers.emplace(one.name, one.number);
    // Opened here for its errors only; its rows are read when the stress file is written.
    OpenRows(table, "stresses", context.folder, {kStressColumns}, context.files);
    ReadTemperatures(context, table, one.number);
    table.Finish();
    one.load = [table, index, coverage, name = one.name, config = context.config, folder = context.folder,
                &files = context.files](const StudyModel& model) mutable {
      const auto rows = OpenRows(table, "stresses", folder, {kStressColumns}, files);
      return ReadStressCase(model, *index, *rows, name, *coverage);
    };
    context.study.stress_cases.push_back(std::move(one));
  }
}

}  // namespace zentor::companion
