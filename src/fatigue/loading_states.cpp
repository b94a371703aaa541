#include "fatigue/loading_states.h"

namespace zentor {
namespace {

StressTensor Scaled(const StressTensor& stress, double factor) {
  StressTensor out{};
  for (std::size_t c = 0; c < out.size(); ++c) out[c] = factor * stress[c];
  return out;
}

// Without a stress file of any kind the nodal result records of the solutions serve.
StressTensor StoredStress(FatigueRun& run, int loading, int load_case) {
  const int node = run.study.location_node;
  if (run.study.stress_kind != StressKind::kNone) {
    return run.store.NodalStress(node, run.store.SlotOf(loading));
  }
  StressTensor stress{};
  NodeStressFromResultRecords(run.context, run.study, load_case, node, stress);
  return stress;
}

}  // namespace

void NodeLoadingStates(const StudyState& study, const NodalStressStore& store, int node, LoadingStates& out) {
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const Loading& loading = study.definition.loadings[k];
    const int slot = loading.load_case > 0 ? store.SlotOf(k) : 0;
    out.stress[k] = slot > 0 ? Scaled(store.NodalStress(node, slot), loading.scale_factor) : StressTensor{};
  }
  out.section_mode = false;
  out.elastic_plastic = false;
}

void LocationLoadingStates(FatigueRun& run, LoadingStates& out) {
  const AppliedConditions& conditions = run.study.conditions;
  for (int k = 1; k <= kMaxLoadings; ++k) {
    const int load_case = conditions.stress_case[k];
    if (load_case == kAppliedLoadCase) {
      out.stress[k] = conditions.stress[k];
    } else if (load_case > 0 && load_case != kZeroLoadCase) {
      out.stress[k] = Scaled(StoredStress(run, k, load_case), run.study.definition.loadings[k].scale_factor);
    } else {
      out.stress[k] = StressTensor{};
    }
  }
  out.section_mode = run.study.readiness.EpSectionReady;
  out.linearised = conditions.linearised;
  out.temperature = conditions.temperature;
}

}  // namespace zentor
