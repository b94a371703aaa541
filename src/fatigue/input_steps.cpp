#include "fatigue/input_steps.h"

#include <vector>

#include "services/stop.h"

namespace zentor {
namespace {

[[noreturn]] void StopUnsupported(RunContext& context, const char* text) {
  context.listing.Blank(2);
  context.listing.ListDirected(std::string("*** ERROR - ") + text);
  context.services.AskUserText(text, BoxStyle::kError);
  EndRunIfOwner(context.services);
  StopStatement();
}

}  // namespace

void InputSteps::LoadHistories(RunContext& context, StudyState&) {
  StopUnsupported(context, "Variable-amplitude studies are not supported by this version");
}

void InputSteps::BuildStressStore(RunContext& context, StudyState& study) {
  std::vector<StoreLoading> loadings;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    loadings.push_back({study.conditions.stress_case[k], study.definition.loadings[k].time_step});
  }
  run_.store = BuildNodalStressStore(context, study, loadings);
}

bool InputSteps::FormSectionStresses(RunContext& context, StudyState&) {
  StopUnsupported(context, "Sections with the elastic-plastic factor are not supported by this version");
}

}  // namespace zentor
