// The fatigue definition of a study from its files, for the checks that a definition undergoes too.
#pragma once

#include <optional>
#include <string>

#include "authoring/study_definition.h"

namespace zentor::companion {

// Layout, options, events with their loadings, S-N curves and the numbers of the materials, read by the
// solver's own study input; nothing else is filled. Nothing for a study that the solver would stop at, which
// then says why. Throws InputFault and FileError.
std::optional<StudyDefinition> ReadStoredContent(const std::string& base);

}  // namespace zentor::companion
