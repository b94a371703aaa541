// The all-nodes option.
#pragma once

#include "fatigue/fatigue_run.h"

namespace zentor {

// Evaluates every node of the model, the nodes spread over the threads, while the solver thread writes their
// listing lines, ".FTR" records and usage entities in node order. The results do not depend on the number of
// threads.
void RunAllNodes(FatigueRun& run);

// Nodes between two progress reports, by the number of nodes of the run.
int ProgressStep(int total);

}  // namespace zentor
