// The stress cases of a study as the steps of a stress result file.
#pragma once

#include <string>

#include "authoring/study_definition.h"
#include "platform/files.h"

namespace zentor {

// Writes the cases, one in memory at a time; step k is the case with number k, steps without a case hold no
// data. Throws what a case's loader throws, FileError, and std::invalid_argument for an element that the
// first case lacks.
void WriteStressCases(const StudyDefinition& study, const std::string& path, platform::FileSystem& files);

}  // namespace zentor
