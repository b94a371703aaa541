// The study input: reads a study into the study state and echoes it into the listing.
#pragma once

#include "study/run_context.h"
#include "study/study_state.h"

namespace zentor {

// Steps of the study input that belong to the layers above it. The run driver supplies them.
class StudyInputSteps {
 public:
  virtual ~StudyInputSteps() = default;
  // Variable amplitude, after the events were read: opens the history file, loads every event's curve and,
  // without a shared history, builds the combined load table.
  virtual void LoadHistories(RunContext& run, StudyState& study) = 0;
  // Single location: builds the nodal stress store for the loadings in study.conditions.stress_case.
  virtual void BuildStressStore(RunContext& run, StudyState& study) = 0;
  // Single location in a section: forms the linearised stresses of every loading (unscaled) into
  // study.conditions.linearised; false when no section holds the location.
  virtual bool FormSectionStresses(RunContext& run, StudyState& study) = 0;
};

// Reads the study; returns only when it is complete and consistent, otherwise the run has stopped
// (RunStopped) or an input file could not be used (InputFault, FileError). study.start is set by the caller
// before.
void ReadStudy(RunContext& run, StudyState& study, StudyInputSteps& steps);

}  // namespace zentor
