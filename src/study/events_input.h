// Reads the events and loadings of a study into the event tables.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// Constant amplitude, ordinary studies: events 1 .. 20 and the loadings 1 .. 40 that they own. Stops the run
// when a loading of an all-nodes run asks for stored conditions.
void ReadEvents(RunContext& run, StudyState& study);

// Constant amplitude, multi-study mode: the loadings are built from the events' entries in order of
// appearance. Stops the run when they are more than 40.
void ReadMultiStudyEvents(RunContext& run, StudyState& study);

// Variable amplitude: every defined event is also one loading; both are numbered in entity order.
void ReadVariableAmplitudeEvents(RunContext& run, StudyState& study);

// Variable amplitude: whether all events use the same curve, points, repetitions, start time and setting.
bool EventsShareHistory(const EventTable& table);

// Steps that the readers share.
void ReadEventHeads(ModelDatabase& db, EventTable& table);  // events 1 .. 20: number, cycles, pairing
void CountOwnedLoadings(EventTable& table);                 // loading_count and the highest numbers
[[noreturn]] void StopForStoredConditionInAllNodes(RunContext& run);

}  // namespace zentor
