// Writes all files of a study.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "authoring/study_definition.h"
#include "platform/files.h"

namespace zentor {

struct WrittenFile {
  std::string extension;
  std::uint64_t size = 0;
};

struct WriteReport {
  std::vector<WrittenFile> files;
  std::vector<std::string>
      removed;  // extensions of files of an earlier study or run that no longer belong to it
};

// Writes the study's files as `study_base` plus extension. Every file is first written under a name of its
// own (extension plus ".new") and renamed when all are complete, so a build that fails leaves the earlier
// files as they were. Files of the study that the definition has no use for, and the results of earlier runs,
// are removed; the listing and the run summary stay. Throws FileError.
WriteReport WriteStudy(const StudyDefinition& study, const std::string& study_base,
                       platform::FileSystem& files);

// Whether study_base names a study that WriteStudy did not write.
bool IsForeignStudy(const std::string& study_base, platform::FileSystem& files);

}  // namespace zentor
