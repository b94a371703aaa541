// Writes all files of a study.
#pragma once

#include <string>

#include "authoring/study_definition.h"
#include "authoring/study_stage.h"
#include "platform/files.h"

namespace zentor {

// Writes the study's files as `study_base` plus extension, all or none: a build that fails, also in its last
// step, leaves the earlier files as they were (StudyStage). The caller holds the study's lock. Throws
// FileError.
WriteReport WriteStudy(const StudyDefinition& study, const std::string& study_base,
                       platform::FileSystem& files);

// Whether study_base names a study that WriteStudy did not write.
bool IsForeignStudy(const std::string& study_base, platform::FileSystem& files);

}  // namespace zentor
