// Results that a run writes into the study's own tables: usage factors per node and the run's status words.
#pragma once

#include "fatigue/fatigue_run.h"

namespace zentor {

// Stores the usage factor of a node in the usage entities of ".FTC" (40 nodes to an entity, created on
// demand). When the table has no room, one warning per run says so. Nothing in multi-study mode.
void StoreNodeUsage(FatigueRun& run, int node, double usage);

// Tells the reader of the usage entities where they begin and that they are complete. Not in multi-study
// mode.
void MarkUsageComplete(FatigueRun& run);
// Marks an all-nodes run that found no S-N curve.
void MarkUsageMissing(FatigueRun& run);

}  // namespace zentor
