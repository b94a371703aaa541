// Reads the study-wide options.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// As the tables hold them: from ".FTC" when the study has a list of studies, else from ".MAS".
FatigueProperties ReadFatigueProperties(RunContext& run, bool has_study_list);

// Stops the run for more than 200 bins and gives options that were left at 0 their defaults. Throws
// InputFault for values that no run could use.
void CheckFatigueProperties(RunContext& run, StudyState& study);

// Variable amplitude: the nodes whose range-mean matrices are kept, in the order of the list.
std::vector<int> ReadMatrixNodes(RunContext& run);

}  // namespace zentor
