#include "study_input.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "authoring/master_table.h"
#include "definition_state.h"
#include "input_context.h"

namespace zentor::companion {

namespace {

constexpr std::array<Choice, 2> kLayouts = {{{"ordinary", 0}, {"multi-study", 1}}};
constexpr std::array<Choice, 12> kLanguages = {{{"English", 0},
                                                {"Chinese", 1},
                                                {"French", 2},
                                                {"German", 3},
                                                {"Japanese", 4},
                                                {"Chinese-simplified", 5},
                                                {"Russian", 6},
                                                {"Italian", 7},
                                                {"Korean", 8},
                                                {"Spanish", 9},
                                                {"Polish", 10},
                                                {"Czech", 11}}};
constexpr std::array<std::string_view, 18> kTopLevelKeys = {
    "title",       "layout",   "language", "run_mode",    "listing",          "options",
    "multi_study", "model",    "material", "stress_file", "stress_case",      "history",
    "event",       "sn_curve", "location", "section",     "stored_condition", "elastic_plastic"};
constexpr std::array<Choice, 2> kListingModes = {{{"replace", 0}, {"append", 1}}};

}  // namespace

InputContext::InputContext(std::string definition_file, platform::FileSystem& file_system)
    : file(std::move(definition_file)),
      folder(std::filesystem::path(file).parent_path().string()),
      config(std::make_shared<const ConfigValue>(ReadConfig(file_system, file))),
      files(file_system),
      errors(std::make_shared<DefinitionErrors>(file)) {}

void ModelIndex::Build(const StudyModel& model) {
  nodes_.assign(static_cast<std::size_t>(model.HighestNode()) + 1, kNone);
  elements_.assign(static_cast<std::size_t>(model.HighestElement()) + 1, kNone);
  std::int32_t place = 0;
  for (const AuthoredNode& node : model.nodes) nodes_[static_cast<std::size_t>(node.number)] = place++;
  place = 0;
  for (const AuthoredElement& element : model.elements) {
    elements_[static_cast<std::size_t>(element.number)] = place++;
  }
}

int EntityNumber(TableReader& table, std::size_t place, int most, std::vector<int>& taken) {
  const bool given = table.Has("number");
  const int number = table.Integer("number", {1, most}, static_cast<int>(place) + 1);
  if (!given && number > most) {
    table.ReportText("number", fmt::format("would be {}, expected at most {} of them", number, most));
    return most;
  }
  if (std::find(taken.begin(), taken.end(), number) != taken.end()) {
    table.ReportText(
        "number", fmt::format("is {}, which another one has already; expected a number of its own", number));
  }
  taken.push_back(number);
  return number;
}

void ReadGeneral(InputContext& context, TableReader& root) {
  StudyDefinition& study = context.study;
  study.title = root.Text("title", "");
  if (study.title.size() > static_cast<std::size_t>(master::kTitleLength)) {
    root.Report("title",
                fmt::format("at most {} characters (it has {})", master::kTitleLength, study.title.size()));
  }
  if (std::any_of(study.title.begin(), study.title.end(), [](unsigned char c) { return c < 0x20; })) {
    root.Report("title", "one line of text without control characters");
  }
  const ErrorWatch layout(*context.errors);
  study.layout = root.Option("layout", kLayouts, 0) == 0 ? StudyLayout::kOrdinary : StudyLayout::kMultiStudy;
  if (!layout.Clean() || root.Misspelt("layout") || root.Misspelt("options")) context.kind_known = false;
  study.options.language = root.Option("language", kLanguages, 0);
  study.options.run_mode = root.Integer("run_mode", {0, 99}, 0);
  study.options.listing_mode = root.Option("listing", kListingModes, 0);
  if (study.options.run_mode > 1) {
    context.Warn(fmt::format("run_mode {}: a run that stops early then ends without its summary in \".LOG\"",
                             study.options.run_mode));
  }
}

namespace {

struct PartReader {
  void (*read)(InputContext&, TableReader&);
  Part part;
  bool depends_on_kind;  // on layout and load amplitude
};

constexpr PartReader kPartReaders[] = {
    {ReadGeneral, Part::kGeneral, false},
    {ReadOptions, Part::kOptions, false},
    {ReadStudyList, Part::kStudyList, true},
    {ReadModel, Part::kModel, false},
    {ReadMaterials, Part::kMaterials, false},
    {ReadStressCases, Part::kStress, true},
    {ReadHistories, Part::kHistories, true},
    {ReadEvents, Part::kEvents, true},
    {ReadSnCurves, Part::kCurves, true},
    {ReadLocations, Part::kLocations, true},
    {ReadElasticPlastic, Part::kElasticPlastic, false},
};

void ReadParts(InputContext& context, TableReader& root) {
  for (const PartReader& reader : kPartReaders) {
    const ErrorWatch watch(*context.errors);
    const bool skipped = reader.depends_on_kind && !context.kind_known;
    if (!skipped) reader.read(context, root);
    if (skipped || !watch.Clean()) context.faulty.set(static_cast<std::size_t>(reader.part));
  }
}

}  // namespace

StudyInput ReadStudyInput(const std::string& path, platform::FileSystem& files) {
  InputContext context(path, files);
  TableReader root(*context.config, path, "", *context.errors);
  for (const std::string_view key : kTopLevelKeys) root.Look(key);
  ReadParts(context, root);
  CheckStudy(context, root);
  root.Finish();
  if (!context.errors->empty()) {
    // The rows of the stress cases are read when the study is written; now they are read for their mistakes.
    for (const StressCase& one : context.study.stress_cases) one.load(context.study.model);
    context.errors->Throw();
  }
  context.study.extended.definition_state = DefinitionState(*context.config, path, files);
  return {std::move(context.study), std::move(context.warnings), std::move(context.stress_facts),
          NamedFiles(*context.config, path)};
}

}  // namespace zentor::companion
