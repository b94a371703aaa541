// Opens the listing of the run.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// ".OUT" in multi-study mode, else ".FTG": continued without a head when the study asks for it and the file
// exists, otherwise new with banner and head.
void OpenListing(RunContext& run, const StudyState& study);

}  // namespace zentor
