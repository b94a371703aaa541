#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string_view>
#include <system_error>

#include "build_study.h"
#include "commands.h"
#include "definition_error.h"
#include "study_files.h"

namespace zentor::companion {

namespace {

std::string SizeText(std::uint64_t bytes) {
  if (bytes < 10'000) return fmt::format("{} bytes", bytes);
  if (bytes < 10'000'000) return fmt::format("{:.0f} kB", static_cast<double>(bytes) / 1e3);
  return fmt::format("{:.0f} MB", static_cast<double>(bytes) / 1e6);
}

// The study as an argument that a shell passes on as it stands.
std::string ShellArgument(std::string study) {
  if (study.starts_with('-')) study.insert(0, "./");
  const auto plain = [](unsigned char c) {
    return c >= 0x80 || std::isalnum(c) != 0 ||
           std::string_view("/._-+,:@%=").find(static_cast<char>(c)) != std::string_view::npos;
  };
  if (std::all_of(study.begin(), study.end(), plain)) return study;
  std::string quoted = "'";
  for (const char c : study) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::string Summary(const BuiltStudy& built) {
  std::string text;
  for (const std::string& warning : built.warnings) text += fmt::format("warning: {}\n", warning);
  std::uint64_t total = 0;
  std::string extensions;
  for (const WrittenFile& file : built.report.files) {
    total += file.size;
    extensions += ' ' + file.extension;
  }
  text += fmt::format("{}: {} nodes, {} elements, {} stress cases, {} events; {}\n", built.base, built.nodes,
                      built.elements, built.stress_cases, built.events, built.scope);
  text += fmt::format("wrote{} ({})\n", extensions, SizeText(total));
  if (!built.report.removed.empty()) {
    text += "removed of an earlier study or run:";
    for (const std::string& extension : built.report.removed) text += ' ' + extension;
    text += '\n';
  }
  text += fmt::format("next: zentor-study run {}\n", ShellArgument(built.base));
  return text;
}

// Refuses what could be written but not be found again, or would take the definition's own place.
void RequireOutput(const std::string& base, const std::string& definition) {
  namespace fs = std::filesystem;
  if (fs::path(base).filename().string().find_first_not_of('.') == std::string::npos) {
    throw CommandFailure(
        fmt::format("--output: {} is a folder, expected the base path of a study's files, such as {}", base,
                    (fs::path(base) / fs::path(definition).stem()).string()));
  }
  if (const auto fault = StudyNameFault(base)) throw CommandFailure(fmt::format("{}: {}", base, *fault));
  if (!KnownExtension(definition).empty()) {
    throw CommandFailure(definition + ": a definition cannot have the name of a study file");
  }
  const std::string folder = fs::path(base).parent_path().string();
  std::error_code error;
  if (folder.empty() || fs::is_directory(folder, error)) return;
  const bool exists = fs::exists(folder, error);
  const std::string reason = exists  ? "is no folder"
                             : error ? "cannot be opened: " + error.message()
                                     : "does not exist; create it first";
  throw CommandFailure(fmt::format("--output: the folder {} {}", folder, reason));
}

}  // namespace

void AddBuildCommand(CLI::App& app) {
  struct Options {
    std::string definition;
    std::string study;
    bool force = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("build", "Write the files of a study from a TOML definition");
  command->add_option("FILE", options->definition, "The definition")->required();
  CLI::Option* output = command
                            ->add_option("-o,--output", options->study,
                                         "Base path of the study (default: FILE without extension)")
                            ->type_name("STUDY");
  command->add_flag("--force", options->force, "Replace a study that was not built by this program");
  command->callback([options, output] {
    std::error_code unknown;
    if (std::filesystem::is_directory(options->definition, unknown)) {
      throw CommandFailure(options->definition + ": is a folder, expected a definition");
    }
    if (output->count() > 0 && options->study.empty()) {
      throw CommandFailure("--output: is empty, expected the base path of a study's files");
    }
    const std::string base = options->study.empty() ? DefaultStudyBase(options->definition) : options->study;
    RequireOutput(base, options->definition);
    try {
      std::cout << Summary(
          BuildStudy(options->definition, base, options->force, platform::NativeFileSystem()));
    } catch (const DefinitionError& error) {
      throw CommandFailure(fmt::format("{}\nnothing was written", error.what()));
    } catch (const platform::FileError& error) {
      const bool half = platform::NativeFileSystem().Exists(HalfBuiltMark(base));
      throw CommandFailure(fmt::format(
          "{}\n{}", error.what(),
          half ? "the files of the study are replaced in part; build it again when the cause is gone"
               : "the study is as it was"));
    }
  });
}

}  // namespace zentor::companion
