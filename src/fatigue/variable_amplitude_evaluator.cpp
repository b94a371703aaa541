#include <algorithm>

#include "fatigue/loading_states.h"
#include "fatigue/node_evaluator.h"
#include "fatigue/node_result_file.h"
#include "fatigue/sn_preparation.h"
#include "fatigue/variable_amplitude.h"

namespace zentor {
namespace {

constexpr double kNoDamage = 1.0e-32;  // usage factors up to here give an unlimited life

class VariableAmplitudeEvaluator final : public NodeEvaluator {
 public:
  VariableAmplitudeEvaluator(FatigueRun& run, int threads) : run_(run) {
    states_.resize(static_cast<std::size_t>(threads));
    for (int t = 0; t < threads; ++t) {
      workspaces_.push_back(MakeVariableWorkspace(run.study, run.variable));
    }
  }

  LocationResult Evaluate(int node, bool above_answered, int thread) override {
    const auto t = static_cast<std::size_t>(thread);
    NodeLoadingStates(run_.study, run_.store, node, states_[t]);
    return EvaluateVariableNode(run_.study, run_.variable, states_[t], MaterialOfNode(run_.study, node),
                                above_answered, workspaces_[t]);
  }

  double Life(const LocationResult& result) const override {
    return result.usage <= kNoDamage ? kUnlimitedLife : 1.0 / result.usage;
  }
  double FactorOfSafety(const LocationResult&) const override { return 0.0; }

  void Settled(int node, const LocationResult& result) override {
    if (result.usage > worst_usage_) {
      worst_usage_ = result.usage;
      worst_node_ = node;
    }
    const std::vector<int>& listed = run_.study.matrix_nodes;
    if (std::find(listed.begin(), listed.end(), node) != listed.end()) WriteMatrices(node);
  }

  // The worst node is evaluated once more for its matrices; without damage anywhere there is none.
  void Finish() override {
    if (worst_node_ != 0) WriteMatrices(worst_node_);
  }

 private:
  // The workspaces hold other nodes by now, so the node is evaluated again.
  void WriteMatrices(int node) {
    Evaluate(node, true, 0);
    WriteNodeMatrices(run_.study, node, *run_.matrices, workspaces_.front());
  }

  FatigueRun& run_;
  std::vector<LoadingStates> states_;
  std::vector<VariableWorkspace> workspaces_;
  double worst_usage_ = 0.0;
  int worst_node_ = 0;
};

}  // namespace

std::unique_ptr<NodeEvaluator> MakeVariableAmplitudeEvaluator(FatigueRun& run, int threads) {
  return std::make_unique<VariableAmplitudeEvaluator>(run, threads);
}

}  // namespace zentor
