#include <fmt/format.h>
#include <fmt/ostream.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <span>
#include <system_error>

#include "commands.h"
#include "definition_state.h"
#include "printable_output.h"
#include "results.h"
#include "results_section.h"
#include "study_settings.h"

namespace zentor::companion {

namespace {

struct ResultsOptions {
  std::string study;
  std::string csv, vtu, matrices, pairs;
  std::optional<std::size_t> top;
  bool section = false;
  int location = 0;  // 0: the activated one

  bool WantsFile() const {
    return !csv.empty() || !vtu.empty() || !matrices.empty() || !pairs.empty() || section;
  }
};

constexpr std::size_t kTopNodes = 10;

// Throws where the results would take the place of what a study is made of or from.
void RequireNoInput(const std::string& path, std::span<const std::string> inputs) {
  namespace fs = std::filesystem;
  if (path.empty() || path == "-") return;
  constexpr std::string_view kRemedy = "name another file for the results, such as job-results.csv";
  std::error_code error;
  const fs::path resolved = fs::weakly_canonical(path, error);
  for (const std::string& name : {path, error ? path : resolved.string()}) {
    const Extension extension = KnownExtension(name);
    if (!extension.empty() && name.ends_with(extension)) {
      throw CommandFailure(fmt::format("{}: the name of a study file; {}", path, kRemedy));
    }
    if (name.ends_with(".toml") && fs::exists(name, error)) {
      throw CommandFailure(fmt::format("{}: a definition; {}", path, kRemedy));
    }
  }
  for (const std::string& input : inputs) {
    if (!IsSameFile(path, input)) continue;
    throw CommandFailure(fmt::format("{}: the study was built from it; {}", path, kRemedy));
  }
}

void RequireNoInputs(const StudyTables& tables, const ResultsOptions& options) {
  const std::vector<std::string> inputs = StoredDefinitionFiles(tables.base());
  for (const std::string& path : {options.csv, options.vtu, options.matrices, options.pairs}) {
    RequireNoInput(path, inputs);
  }
}

template <typename Write>
void WriteFile(const std::string& path, Write write) {
  OutputFile out(path);
  write(out);
  out.Commit();
}

NodeResults RequireNodeResults(StudyTables& tables) {
  if (!tables.HasFile(".FTR")) {
    throw CommandFailure(tables.Path(".FTR") + ": no results per node; they come from a run of all nodes");
  }
  return ReadNodeResults(tables.Path(".FTR"));
}

void ExportMatrices(StudyTables& tables, const std::string& path) {
  if (!tables.HasFile(".FTD")) {
    throw CommandFailure(tables.Path(".FTD") + ": no matrices; they come from a run of variable amplitude");
  }
  MatrixFile matrices(tables.Path(".FTD"), ReadStudySettings(tables).Bins());
  WriteFile(path, [&](OutputFile& out) { WriteMatrixCsv(matrices, out); });
}

void ExportPairs(StudyTables& tables, const std::string& path) {
  if (!tables.HasFile(".FTI")) {
    throw CommandFailure(tables.Path(".FTI") + ": no pairs; they come from a run of a single location");
  }
  const auto runs = ReadLocationResults(tables.Path(".FTI"));
  if (runs.empty()) throw CommandFailure(tables.Path(".FTI") + ": holds no run of a single location");
  WriteFile(path, [&](OutputFile& out) { WritePairCsv(runs.back(), out); });
}

void Results(const ResultsOptions& options) {
  StudyTables tables(StudyBase(options.study));
  RequireWholeStudy(tables.base());
  if (options.WantsFile()) RequireNoInputs(tables, options);
  TellDefinitionChange(tables.base());
  const bool wants_top = options.top.has_value() || !options.WantsFile();
  if (!options.csv.empty() || !options.vtu.empty() || wants_top) {
    const NodeResults results = RequireNodeResults(tables);
    const Mesh mesh = options.vtu.empty() ? ReadNodes(tables) : ReadMesh(tables);
    if (!options.csv.empty())
      WriteFile(options.csv, [&](OutputFile& out) { WriteNodeCsv(mesh, results, out); });
    if (!options.vtu.empty()) {
      const PrintableOutput::Raw binary(std::cout);
      WriteFile(options.vtu, [&](OutputFile& out) { WriteVtu(mesh, results, out); });
    }
    if (wants_top) PrintMostUsed(mesh, results, options.top.value_or(kTopNodes), std::cout);
  }
  if (!options.matrices.empty()) ExportMatrices(tables, options.matrices);
  if (!options.pairs.empty()) ExportPairs(tables, options.pairs);
  if (options.section) {
    WriteFile("-", [&](OutputFile& out) { WriteSectionCsv(tables.base(), options.location, out); });
  }
}

}  // namespace

void PrintMostUsed(const Mesh& mesh, const NodeResults& results, std::size_t count, std::ostream& out) {
  fmt::print(out, "{:>8}  {:>12}  {:>12}  {:>12}  {:>13}  {:>13}", "node", "x", "y", "z", "usage factor",
             "factor of life");
  fmt::print(out, "{}\n", results.HasLife() ? fmt::format("  {:>13}", "life") : "");
  for (const std::size_t i : MostUsed(results, count)) {
    const NodeResult& node = results.nodes[i];
    const auto place = FindNode(mesh, node.node);
    const std::array<float, 3> p = place ? mesh.points[*place] : std::array<float, 3>{};
    fmt::print(out, "{:>8}  {:>12g}  {:>12g}  {:>12g}  {:>13g}  {:>14}", node.node, p[0], p[1], p[2],
               node.usage, LimitText(LifeFactor(node.usage)));
    fmt::print(out, "{}\n", results.HasLife() ? fmt::format("  {:>13}", LimitText(results.Life(node))) : "");
  }
}

void AddResultsCommand(CLI::App& app) {
  auto options = std::make_shared<ResultsOptions>();
  CLI::App* results = app.add_subcommand("results", "Write the results of a run for other programs.");
  results->add_option("study", options->study, "Base path of the study")->required();
  results->add_option("--csv", options->csv, "Results per node as a table; - is standard output");
  results->add_option("--vtu", options->vtu, "Mesh with results at the nodes, for ParaView and VTK readers");
  results->add_option("--matrices,--matrix", options->matrices,
                      "Range-mean matrices as a table of occupied bins");
  results->add_option("--pairs", options->pairs, "Pairs of the last single-location run as a table");
  results
      ->add_option("--top", options->top, "Print the most used nodes (10 of them when no file is asked for)")
      ->check(
          [](const std::string& text) {
            const bool positive = CLI::PositiveNumber(text).empty();
            return positive ? std::string() : text + ", expected a whole number above 0";
          },
          "");
  CLI::Option* section = results->add_flag(
      "--section", options->section, "Print the path of the location's section with its stresses as a table");
  results->add_option("--location", options->location, "Location of --section (default: the evaluated one)")
      ->needs(section);
  results->callback([options] { Results(*options); });
}

}  // namespace zentor::companion
