// Whether the simplified elastic-plastic factor applies at the activated location, and why not.
#pragma once

#include "fatigue/fatigue_run.h"

namespace zentor {

// True when the section's data are complete and the Sm-T curve does not rise. A rising curve shows messages
// 9067 and 9068. Never true for the all-nodes option.
bool DecideElasticPlastic(FatigueRun& run);

// Single location, after the usage factor: the listing's warnings on what kept the factor from being applied.
void PrintElasticPlasticWarnings(FatigueRun& run, bool applied);

}  // namespace zentor
