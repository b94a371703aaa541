#include "build_study.h"

#include <fmt/format.h>

#include <filesystem>

#include "authoring/study_stage.h"
#include "definition_error.h"
#include "definition_state.h"
#include "study_input.h"

namespace zentor::companion {

std::string DefaultStudyBase(const std::string& definition) {
  return std::filesystem::path(definition).replace_extension().string();
}

std::string UnprotectedText(const StudyLock& lock) {
  return fmt::format("nothing keeps other programs away from the study, its file system has no locks: {}",
                     lock.unprotected());
}

namespace {

// Throws for a table that the study's own files would take the place of, at its key.
void RequireTablesOfTheirOwn(const std::vector<NamedFile>& tables, const std::string& definition,
                             const std::string& base) {
  const auto own = ReplacedExtensions();
  std::vector<std::string_view> extensions(own.begin(), own.end());
  extensions.insert(extensions.end(), {".FTG", ".OUT", ".LOG"});  // a run's
  for (const NamedFile& table : tables) {
    for (const std::string_view extension : extensions) {
      if (!IsSameFile(table.path, base + std::string(extension))) continue;
      throw DefinitionError(
          definition, table.line,
          fmt::format("{} is {}, which is a file of the study {} itself; give the table another name",
                      table.key, table.path, base));
    }
  }
}

}  // namespace

BuiltStudy BuildStudy(const std::string& definition, const std::string& base, bool force,
                      platform::FileSystem& files) {
  if (!force && IsForeignStudy(base, files)) {
    throw DefinitionError(
        base + ".MAS", 0,
        "belongs to a study that was not built by this program; choose another study with -o, or "
        "replace it with --force");
  }
  StudyInput input = ReadStudyInput(definition, files);
  RequireTablesOfTheirOwn(input.tables, definition, base);
  input.study.extended.definition = DefinitionFromStudy(definition, base);
  const StudyDefinition& study = input.study;
  BuiltStudy built;
  built.base = base;
  built.nodes = study.model.nodes.size();
  built.elements = study.model.elements.size();
  built.stress_cases = study.stress_cases.size();
  built.events = study.events.size();
  built.scope = study.options.activated_location == kAllNodesLocation
                    ? "all nodes"
                    : fmt::format("location {}", study.options.activated_location);
  built.warnings = std::move(input.warnings);
  const StudyLock lock(base, "zentor-study build");
  if (!lock.holder().empty()) {
    throw DefinitionError(base, 0, fmt::format("in use by {}; build it when that has ended", lock.holder()));
  }
  if (!lock.unprotected().empty()) built.warnings.push_back(UnprotectedText(lock));
  built.report = WriteStudy(study, base, files);
  for (std::string& warning : input.stress_facts->Warnings(study))
    built.warnings.push_back(std::move(warning));
  if (!built.report.left_over.empty()) built.warnings.push_back(built.report.left_over);
  return built;
}

}  // namespace zentor::companion
