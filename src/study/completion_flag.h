// ".FTC" entity 60, field 15: 0 while a run is going, 1 once it completed.
#pragma once

#include <cstdint>

#include "study/fatigue_properties.h"
#include "study/run_context.h"

namespace zentor {

// In the ordinary layout the same field is the scale factor of loading 14. When that loading belongs to an
// event the flag is not written: the scale factor is used and survives the run.
void SetCompletionFlag(RunContext& run, const FatigueProperties& properties, std::int32_t value);

}  // namespace zentor
