// Data of the simplified elastic-plastic factor, and how far they reach.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// The Sm-T curve and the material parameters m and n; sets EpParamsReady. Throws InputFault for more points
// than the table holds.
void ReadElasticPlasticData(RunContext& run, StudyState& study);

// Single location, after its stored conditions were applied: sets EpLinearizedReady and, for now,
// EpTemperatureReady.
void SetLinearizedReadiness(StudyState& study);

// Whether a loading of an event takes its temperature from the thermal file.
bool NeedsTemperatures(const StudyState& study);

// Single location whose linearised stresses are ready: the node's temperature in every load case, from ".HTO"
// (docs/formats/hto.md). Clears EpTemperatureReady when the node, the file or a load case is missing; throws
// InputFault when the file points outside itself.
void ReadLocationTemperatures(RunContext& run, StudyState& study);

}  // namespace zentor
