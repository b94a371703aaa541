// ".FTC" entity 60, field 15: 0 while a run is going, 1 once it completed.
#pragma once

#include <cstdint>

#include "study/fatigue_properties.h"
#include "study/run_context.h"

namespace zentor {

// In the ordinary layout the same field is the scale factor of loading 14. When that loading belongs to an
// event the flag is not written: the scale factor is used and survives the run.
void SetCompletionFlag(RunContext& run, const FatigueProperties& properties, std::int32_t value);

// For a study whose options cannot be read: it does not keep the flag of an earlier run, as far as its table
// can be written. Throws nothing.
void ForgetEarlierCompletion(RunContext& run, bool has_study_list);

}  // namespace zentor
