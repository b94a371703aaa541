// From a readable definition to the files of a study.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "authoring/study_writer.h"
#include "database/study_lock.h"
#include "platform/files.h"

namespace zentor::companion {

struct BuiltStudy {
  std::string base;
  std::size_t nodes = 0, elements = 0, stress_cases = 0, events = 0;
  std::string scope;  // "all nodes", "location 2"
  std::vector<std::string> warnings;
  WriteReport report;
};

// The definition's path without its extension.
std::string DefaultStudyBase(const std::string& definition);

// The warning about a lock that cannot be.
std::string UnprotectedText(const StudyLock& lock);

// Builds the study `base`. Throws DefinitionError for a definition that has errors, for a study that another
// program works on, or, without `force`, one from elsewhere; FileError when the system fails. Either way no
// file of the study has changed, unless the mark of a half-built study says otherwise.
BuiltStudy BuildStudy(const std::string& definition, const std::string& base, bool force,
                      platform::FileSystem& files);

}  // namespace zentor::companion
