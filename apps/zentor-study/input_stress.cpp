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
  if (bits != 32 && bits != 64) table->Report("pointer_bits", "32 or 64");
  context.study.pointer_words = bits / 32;
  if (context.VariableAmplitude() && context.study.stress_file != StressFileKind::kSte) {
    table->Report("kind", "'STE', which variable amplitude always reads");
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
  if (!rows) return;
  temperatures.values.assign(model.nodes.size(), std::numeric_limits<float>::quiet_NaN());
  const bool model_known = context.Sound({Part::kModel});
  const bool sound = ReadRows(*rows, *context.errors, [&] {
    const int node = rows->Integer(0, {1, kMaxModelNumber});
    const float t = rows->Real(1, kAnyReal);
    const std::int32_t place = context.index.Node(node);
    if (place == ModelIndex::kNone && !model_known) return;
    if (place == ModelIndex::kNone)
      rows->Fail(fmt::format("node is {}, expected a node of the nodes table", node));
    float& value = temperatures.values[static_cast<std::size_t>(place)];
    if (!std::isnan(value)) rows->Fail(fmt::format("node {} has a temperature already, expected one", node));
    value = t;
  });
  const auto missing = std::find_if(temperatures.values.begin(), temperatures.values.end(),
                                    [](float value) { return std::isnan(value); });
  if (sound && model_known && missing != temperatures.values.end()) {
    const int node = model.nodes[static_cast<std::size_t>(missing - temperatures.values.begin())].number;
    table.ReportText("temperatures", fmt::format("has none for node {}, expected one for every node", node));
  }
  context.study.temperatures.push_back(std::move(temperatures));
}

std::string CaseName(InputContext& context, TableReader& table) {
  const ErrorWatch watch(*context.errors);
  std::string name = table.Text("name");
  const bool reserved = name.empty() || name == "zero" || name == "stored";
  if (watch.Clean() && reserved) {
    table.Report(
        "name", "a name other than 'zero' and 'stored', which loadings use for cases without stress results");
  }
  if (context.case_numbers.contains(name)) table.Report("name", "a name that no other stress case has");
  context.cases_named = context.cases_named && watch.Clean();
  return name;
}

// Reads the stresses of the cases when the study is written, case by case. A mistake in one does not keep the
// others from being read, so all of them are told at the last one.
class StressLoader {
 public:
  StressLoader(const InputContext& context, std::size_t cases)
      : errors_(context.errors),
        config_(context.config),
        index_(context.index),
        folder_(context.folder),
        files_(context.files),
        facts_(context.stress_facts),
        model_known_(context.Sound({Part::kModel})),
        left_(cases) {}

  // `readable`: the table could be opened before; else its mistake is known.
  std::vector<StressField> Load(TableReader& table, bool readable, const StudyModel& model,
                                const std::string& name, int number) {
    --left_;
    std::vector<StressField> fields;
    const auto rows = readable ? OpenRows(table, "stresses", folder_, {kStressColumns}, files_) : nullptr;
    if (rows && !model_known_) {
      CheckStressRows(*rows, *errors_);
    } else if (rows) {
      fields = ReadStressCase(model, index_, *rows, name, coverage_, *errors_);
    }
    if (left_ == 0 && !errors_->empty()) errors_->Throw();
    if (errors_->empty()) {
      facts_->Add(number, model, fields);
      return fields;
    }
    // What is written from here on is thrown away.
    return {StressField{
        1, false,
        std::vector<float>(model.element_nodes.size() * 6, std::numeric_limits<float>::quiet_NaN())}};
  }

 private:
  std::shared_ptr<DefinitionErrors> errors_;
  std::shared_ptr<const ConfigValue> config_;  // the tables point into it
  ModelIndex index_;
  std::string folder_;
  platform::FileSystem& files_;
  std::shared_ptr<StressFacts> facts_;
  bool model_known_;
  CaseCoverage coverage_;
  std::size_t left_;  // cases that were not read yet
};

}  // namespace

void ReadStressCases(InputContext& context, TableReader& root) {
  ReadStressFile(context, root);
  if (context.MultiStudy()) {
    root.Refuse("stress_case",
                "has no meaning in the multi-study layout, which takes the stresses of other studies");
    return;
  }
  std::vector<int> taken;
  std::vector<TableReader> tables = root.Tables("stress_case");
  const auto loader = std::make_shared<StressLoader>(context, tables.size());
  for (TableReader& table : tables) {
    StressCase one;
    one.name = CaseName(context, table);
    one.number = CaseNumber(table, taken.size(), taken);
    context.case_numbers.emplace(one.name, one.number);
    // Opened here for its errors only.
    const bool readable =
        OpenRows(table, "stresses", context.folder, {kStressColumns}, context.files) != nullptr;
    ReadTemperatures(context, table, one.number);
    table.Finish();
    one.load = [loader, table, readable, name = one.name,
                number = one.number](const StudyModel& model) mutable {
      return loader->Load(table, readable, model, name, number);
    };
    context.study.stress_cases.push_back(std::move(one));
  }
}

}  // namespace zentor::companion
