#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <iostream>
#include <memory>
#include <optional>

#include "commands.h"
#include "printable_output.h"
#include "show.h"

namespace zentor::companion {

namespace {

struct ShowOptions {
  std::string study;
  std::vector<std::string> words;
  std::uint64_t limit = 40;
  bool all = false;
};

std::vector<int> Numbers(std::span<const std::string> words) {
  std::vector<int> numbers;
  for (const std::string& word : words) {
    int value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc{} || end != word.data() + word.size()) {
      throw CommandFailure("show: \"" + word + "\" is not a number");
    }
    numbers.push_back(value);
  }
  return numbers;
}

void ShowFile(StudyTables& tables, Extension extension, const ShowRequest& request, std::ostream& out) {
  if (const auto table = TableNamed(extension)) return ShowTable(tables, *table, request, out);
  const std::string path = tables.Path(extension);
  const auto is = [&](std::initializer_list<Extension> names) {
    return std::find(names.begin(), names.end(), extension) != names.end();
  };
  if (is({".STE", ".STN", ".STP"})) return ShowStressFile(path, request, out);
  if (is({".PL3", ".PL4"})) return ShowStepFile(tables, extension, request, out);
  if (extension == ".SFA") return ShowScratchStore(path, request, out);
  if (extension == ".FTR") return ShowNodeResults(path, request, out);
  if (extension == ".FTI") return ShowLocationResults(path, request, out);
  if (extension == ".FTD") return ShowMatrices(tables, request, out);
  if (extension == ".FLH") return ShowHistories(path, request, out);
  if (extension == ".HTO") return ShowTemperatures(tables, request, out);
  if (extension == ".FBD") return ShowSurfaceFaces(path, request, out);
  if (extension == ".FTS") return ShowStudyList(path, out);
  ShowText(path, request, out);
}

}  // namespace

void Show(const std::string& study, std::span<const std::string> words, std::uint64_t limit,
          std::ostream& out) {
  const PrintableOutput printable(out);
  ShowRequest request;
  request.limit = limit;
  Extension extension = KnownExtension(study);
  if (extension.empty() && !words.empty()) {
    extension = KnownExtension("." + words.front());
    if (extension.empty()) extension = KnownExtension(words.front());
    if (extension.empty()) throw CommandFailure("show: \"" + words.front() + "\" is no kind of study file");
    words = words.subspan(1);
  }
  request.numbers = Numbers(words);
  StudyTables tables(StudyBase(study));
  if (extension.empty()) {
    TellDefinitionChange(tables.base());
    return ShowOverview(tables, out);
  }
  ShowFile(tables, extension, request, out);
}

void AddShowCommand(CLI::App& app) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* show = app.add_subcommand("show", "Show what is in a study or in one of its files.");
  show->add_option("study", options->study, "Base path of the study, or the path of one of its files")
      ->required();
  show->add_option(
          "what", options->words,
          "Kind of file (FTC, STE, FTR, ...), then numbers: entity and field of a table; step and element of "
          "stresses; node of .FTR; run of .FTI; matrix of .FTD; curve of .FLH; load case of .HTO")
      ->expected(0, 3);
  show->add_option("--limit", options->limit, "Rows of a long list")->capture_default_str();
  show->add_flag("--all", options->all, "Every row; of an entity also the fields that are 0");
  show->callback([options] {
    Show(options->study, options->words, options->all ? kNoLimit : options->limit, std::cout);
  });
}

}  // namespace zentor::companion
