#include "fatigue/loading_states.h"
#include "fatigue/node_evaluator.h"
#include "fatigue/node_result_file.h"
#include "fatigue/sn_preparation.h"

namespace zentor {
namespace {

// What one thread needs to evaluate a node; about 200 KB.
struct Workspace {
  LoadingStates states;
  PairArrays pairs;
};

class ConstantAmplitudeEvaluator final : public NodeEvaluator {
 public:
  ConstantAmplitudeEvaluator(const FatigueRun& run, int threads) : run_(run) {
    for (int t = 0; t < threads; ++t) workspaces_.push_back(std::make_unique<Workspace>());
  }

  LocationResult Evaluate(int node, bool above_answered, int thread) override {
    Workspace& work = *workspaces_[static_cast<std::size_t>(thread)];
    const int material = MaterialOfNode(run_.study, node);
    NodeLoadingStates(run_.study, run_.store, node, work.states);
    LocationResult result;
    result.condition = EvaluatePairs(run_.study, work.states, material, work.pairs);
    if (result.condition != LocationCondition::kNone) return result;
    return ConsumePairs(run_.study, work.states, material, above_answered, work.pairs);
  }

  double Life(const LocationResult& result) const override { return result.life_sum; }
  double FactorOfSafety(const LocationResult& result) const override {
    return result.any_used ? result.smallest_stress_factor : kUnlimitedLife;
  }
  void Settled(int, const LocationResult&) override {}
  void Finish() override {}

 private:
  const FatigueRun& run_;
  std::vector<std::unique_ptr<Workspace>> workspaces_;
};

}  // namespace

std::unique_ptr<NodeEvaluator> MakeConstantAmplitudeEvaluator(FatigueRun& run, int threads) {
  return std::make_unique<ConstantAmplitudeEvaluator>(run, threads);
}

}  // namespace zentor
