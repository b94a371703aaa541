// Reads the fatigue locations.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// Locations 1 .. 50 with the coordinates of their nodes (constant amplitude).
void ReadLocations(RunContext& run, StudyState& study);

// Node, section and section settings of the activated location.
void ReadActivatedLocation(RunContext& run, StudyState& study);

}  // namespace zentor
