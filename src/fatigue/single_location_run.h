// A single-location run.
#pragma once

#include "fatigue/fatigue_run.h"

namespace zentor {

// Evaluates the activated location and writes its tables to the listing and ".FTI".
void RunSingleLocation(FatigueRun& run);

}  // namespace zentor
