// Acts on what the evaluation of a node met: the question above the S-N curve and the stops.
#pragma once

#include "fatigue/fatigue_run.h"
#include "stress/pair_evaluation.h"

namespace zentor {

// kAboveCurve: asks whether to go on with the smallest number of cycles; returns when the user says Yes
// (remembered for the rest of the run), stops otherwise. Every other condition stops the run with its
// message. `number`: the location number of a single-location run, else the node number.
void ActOnCondition(FatigueRun& run, LocationCondition condition, int argument, int node, int number);

// Conditions that the loading pairs or the stress history themselves give rise to, whatever the S-N curves.
bool ArisesBeforeLookup(LocationCondition condition);

}  // namespace zentor
