// Reads a readable definition (docs/study-toml.md) into a study definition.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "authoring/study_definition.h"
#include "definition_state.h"
#include "platform/files.h"
#include "stress_facts.h"

namespace zentor::companion {

struct StudyInput {
  StudyDefinition study;  // with the state of the definition, without its path
  // What is allowed but probably not meant, one line each.
  std::vector<std::string> warnings;
  // Filled while the stress cases are loaded.
  std::shared_ptr<const StressFacts> stress_facts;
  std::vector<NamedFile> tables;
};

// Throws DefinitionError for anything wrong in the file or in the CSV files it names, FileError for a file
// that cannot be read. Stress cases are left as loaders that read their CSV files when they are called; they
// throw the same and need `files` to live until then.
StudyInput ReadStudyInput(const std::string& path, platform::FileSystem& files);

}  // namespace zentor::companion
