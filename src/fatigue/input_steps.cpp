#include "fatigue/input_steps.h"

#include <vector>

#include "stress/section_stresses.h"

namespace zentor {

void InputSteps::LoadHistories(RunContext& context, StudyState& study) {
  PrepareHistories(context, study, run_.variable);
}

void InputSteps::BuildStressStore(RunContext& context, StudyState& study) {
  std::vector<StoreLoading> loadings;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    loadings.push_back({study.conditions.stress_case[k], study.definition.loadings[k].time_step});
  }
  run_.store = BuildNodalStressStore(context, study, loadings);
}

bool InputSteps::FormSectionStresses(RunContext& context, StudyState& study) {
  return zentor::FormSectionStresses(context, run_.store, study);
}

}  // namespace zentor
