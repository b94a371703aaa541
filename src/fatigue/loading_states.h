// Stress states of the loadings at one node.
#pragma once

#include "fatigue/fatigue_run.h"
#include "stress/pair_evaluation.h"

namespace zentor {

// All-nodes option: for every loading with a result set the stored stress of the node times its scale factor.
// Allocates nothing; in memory mode safe from several threads.
void NodeLoadingStates(const StudyState& study, const NodalStressStore& store, int node, LoadingStates& out);

// Single location: stored conditions where the study has them, otherwise as for a node; with the linearised
// stresses and temperatures of section mode.
void LocationLoadingStates(FatigueRun& run, LoadingStates& out);

}  // namespace zentor
