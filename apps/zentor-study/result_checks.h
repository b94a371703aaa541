// What the results of a run show about its study that the tables of results do not say.
#pragma once

#include <string>
#include <vector>

#include "authoring/study_definition.h"
#include "study_results.h"

namespace zentor::companion {

// Warnings, one line each: nodes without stress that got damage, usage factors of which none comes from a
// stress on the S-N curve. `content` as ReadStoredContent gives it.
std::vector<std::string> CheckNodeResults(const std::string& base, const StudyDefinition& content,
                                          const NodeResults& results);
std::vector<std::string> CheckLocationResult(const StudyDefinition& content, const LocationResult& run);

}  // namespace zentor::companion
