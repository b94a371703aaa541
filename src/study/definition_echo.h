// The blocks of the listing that show the fatigue definition. Each is written at the listing's end as it
// stands.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

void EchoEvents(TextRecordFile& listing, const EventTable& table);  // constant amplitude

void EchoLocations(TextRecordFile& listing, const StudyState& study);  // ordinary studies

// Sections 1 .. 20: the first two locations, in location order, that carry the number. Path points, radius
// and bending flag are the activated location's when it is one of the two, else the first end's.
void EchoSections(TextRecordFile& listing, const StudyState& study);

// Everything that was stored by command, at any location (ordinary studies).
void EchoStoredConditions(RunContext& run, const StudyState& study);

}  // namespace zentor
