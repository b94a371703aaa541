// The block "F A T I G U E   P R O P E R T I E S :" of the listing.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

void EchoFatigueProperties(RunContext& run, const StudyState& study);

// Stops the run when no location is activated.
void CheckActivatedLocation(RunContext& run, const FatigueProperties& properties);

}  // namespace zentor
