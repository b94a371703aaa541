// The steps of the study input that need stresses or load histories.
#pragma once

#include "fatigue/fatigue_run.h"
#include "study/read_study.h"

namespace zentor {

class InputSteps final : public StudyInputSteps {
 public:
  explicit InputSteps(FatigueRun& run) : run_(run) {}
  void LoadHistories(RunContext& context, StudyState& study) override;
  void BuildStressStore(RunContext& context, StudyState& study) override;
  bool FormSectionStresses(RunContext& context, StudyState& study) override;

 private:
  FatigueRun& run_;
};

}  // namespace zentor
