#include <span>

#include "fatigue/node_evaluator.h"
#include "fatigue/node_result_file.h"
#include "fatigue/sn_preparation.h"
#include "stress/node_usage.h"

namespace zentor {
namespace {

// Where the stresses of the plan's loadings come from.
struct LoadingSource {
  int slot = 0;  // 0: no stresses
  double factor = 0.0;
  std::span<const float> values;  // of the slot, six for a node; empty with a store in a file
};

std::vector<LoadingSource> SourcesOf(const FatigueRun& run, const UsagePlan& plan) {
  std::vector<LoadingSource> sources;
  for (std::size_t i = 0; i < plan.loadings; ++i) {
    const Loading& loading = run.study.definition.loadings[plan.loading[i]];
    LoadingSource source;
    source.slot = loading.load_case > 0 ? run.store.SlotOf(plan.loading[i]) : 0;
    source.factor = loading.scale_factor;
    source.values = run.store.Slot(source.slot);
    sources.push_back(source);
  }
  return sources;
}

class ConstantAmplitudeEvaluator final : public NodeEvaluator {
 public:
  ConstantAmplitudeEvaluator(const FatigueRun& run, int threads)
      : run_(run), plan_(MakeUsagePlan(run.study)), sources_(SourcesOf(run, plan_)) {
    for (int t = 0; t < threads; ++t) workspaces_.push_back(std::make_unique<UsageWorkspace>());
  }

  LocationResult Evaluate(int node, bool above_answered, int thread) override {
    UsageWorkspace& work = *workspaces_[static_cast<std::size_t>(thread)];
    FillStresses(node, work.stress);
    return EvaluateUsage(run_.study, plan_, MaterialOfNode(run_.study, node), above_answered, work, form_);
  }

  double Life(const LocationResult& result) const override { return result.life_sum; }
  double FactorOfSafety(const LocationResult& result) const override {
    return result.any_used ? result.smallest_stress_factor : kUnlimitedLife;
  }
  void Settled(int, const LocationResult&) override {}
  void Finish() override {}

 private:
  // As NodeLoadingStates does; loadings without stresses keep the zeros of a new workspace.
  void FillStresses(int node, LoadingStresses& stress) const {
    const std::size_t at = static_cast<std::size_t>(node - 1) * 6;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      const LoadingSource& source = sources_[i];
      if (source.slot == 0) continue;
      if (at + 6 <= source.values.size()) {
        for (std::size_t c = 0; c < 6; ++c) {
          stress[c][i] = source.factor * static_cast<double>(source.values[at + c]);
        }
      } else {
        const StressTensor stored = run_.store.NodalStress(node, source.slot);
        for (std::size_t c = 0; c < 6; ++c) stress[c][i] = source.factor * stored[c];
      }
    }
  }

  const FatigueRun& run_;
  UsagePlan plan_;
  std::vector<LoadingSource> sources_;
  VectorForm form_ = BestVectorForm();
  std::vector<std::unique_ptr<UsageWorkspace>> workspaces_;
};

}  // namespace

std::unique_ptr<NodeEvaluator> MakeConstantAmplitudeEvaluator(FatigueRun& run, int threads) {
  return std::make_unique<ConstantAmplitudeEvaluator>(run, threads);
}

}  // namespace zentor
