// Stress conditions, linearised stresses and temperatures that were stored by command for the loadings of a
// location.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// What the definition table holds for one location and loading; empty when it holds nothing.
struct StoredState {
  bool exists = false;
  bool has_stress = false, has_linearised = false, has_temperature = false;
  std::array<float, 6> stress{};      // SX SY SZ TXY TXZ TYZ
  std::array<float, 4> linearised{};  // SX SY SZ TXY
  float temperature = 0.0F;
};
StoredState ReadStoredState(ModelDatabase& db, int location, int loading);

// Fills study.conditions. Single location: stored conditions take the place of the loadings' load cases,
// normal stresses times the location's stress concentration factors; linearised stresses and temperatures
// only with an Sm-T curve of two points or more. All-nodes option: plain copies of the load cases.
// Throws InputFault for a stored value that is not a finite number.
void ApplyStoredConditions(RunContext& run, StudyState& study);

// Stops the run when a loading of the activated location still waits for stored stresses.
void CheckStoredConditions(RunContext& run, const StudyState& study);

}  // namespace zentor
