// A single-location run of a variable-amplitude study.
#pragma once

#include "fatigue/fatigue_run.h"

namespace zentor {

// Evaluates the activated location twice: the first pass finds its damage, the second one, for the worst node
// of the run, also writes its matrices. Both write their tables.
void RunVariableAmplitudeLocation(FatigueRun& run);

}  // namespace zentor
