// Which stress results a study has.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// ".STE", else ".STN", else ".STP" of the study (name buffer 0) or of the second study (1). Leaves that
// buffer selected.
StressKind FindStressKind(SolverServices& services, int buffer);

// Whether no build has replaced the files of the second study only in part; if one has, a hidden run is told
// which study that is. Throws FileError when the system cannot tell.
bool ListedStudyIsWhole(RunContext& run);

// Whether any loading takes its stresses from a file.
bool NeedsStressFile(const StudyState& study);

// Sets study.stress_kind from the study itself or, in multi-study mode, from the studies that its loadings
// select. Stops the run when there is no stress file, and when the activated location's node does not exist.
// An ordinary constant-amplitude run of all nodes is left to the run driver, which has its own words for the
// missing file.
void CheckStressResults(RunContext& run, StudyState& study);

}  // namespace zentor
